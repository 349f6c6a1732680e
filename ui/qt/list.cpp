#include "ui/list.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QAbstractListModel>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QWheelEvent>

namespace merchantry::ui {
namespace {

// The entries of a list or combo, read in place. What was added or taken away is shown at the next refresh, once for many changes.
class EntryModel : public QAbstractListModel {
public:
    EntryModel(const std::vector<ListEntry>& entries, QObject* parent) : QAbstractListModel(parent), entries_(entries) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count_; }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto at = static_cast<std::size_t>(index.row());
        return live_ && role == Qt::DisplayRole && index.isValid() && at < entries_.size() ? QVariant(toQt(entries_[at].text)) : QVariant();
    }
    void reload() {
        beginResetModel();
        count_ = live_ ? static_cast<int>(entries_.size()) : 0;
        endResetModel();
    }
    void forget() { live_ = false; }

private:
    const std::vector<ListEntry>& entries_;
    bool live_ = true;
    int count_ = 0;
};

// A closed list: its arrow follows the skin, the wheel scrolls the page and not the choice.
class DropDown : public QComboBox {
public:
    DropDown(FormWindow& host, QWidget* parent) : QComboBox(parent), host_(host) {
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(10);
        setFixedHeight(measure::kField);
        setMaxVisibleItems(14);
        setLook(*this, "field");
        auto* list = new QListView(this);
        list->setUniformItemSizes(true);
        setView(list);
    }
    std::function<void()> aboutToOpen;

    void showPopup() override {
        if (aboutToOpen)
            aboutToOpen();
        QComboBox::showPopup();
    }

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
    void paintEvent(QPaintEvent* event) override {
        QComboBox::paintEvent(event);
        QPainter painter(this);
        const Tokens& t = host_.skin().tokens();
        const QRect where(width() - 24, (height() - 16) / 2, 16, 16);
        host_.skin().icon(QStringLiteral("arrow-down"), t.dim).paint(&painter, where);
    }

private:
    FormWindow& host_;
};

// Waits with taking over the entries until the procedure that changes them is done.
class Reloader : public QObject {
public:
    Reloader(QObject* parent, std::function<void()> reload) : QObject(parent), reload_(std::move(reload)) {}
    void ask() {
        if (std::exchange(asked_, true))
            return;
        QMetaObject::invokeMethod(
            this, [this] { now(); }, Qt::QueuedConnection);
    }
    void now() {
        if (std::exchange(asked_, false) && live_)
            reload_();
    }
    void forget() { live_ = false; }

private:
    std::function<void()> reload_;
    bool asked_ = false;
    bool live_ = true;
};

template <class L> class DropDownDrawing : public Drawing {
public:
    DropDownDrawing(FormWindow& host, L& list, QWidget* parent)
        : Drawing(host, list, new DropDown(host, parent)), list_(list), model_(new EntryModel(list.entries(), widget_)),
          reloader_(new Reloader(widget_, [this] { reload(); })) {
        combo().setModel(model_);
        dropDown().aboutToOpen = [this] { reloader_->now(); };
        QObject::connect(&combo(), &QComboBox::activated, widget_, [this](int index) { picked(index); });
        host_.watch(*widget_, list);
        if constexpr (std::is_base_of_v<ComboBox, L>)
            if (list.editable)
                makeEditable();
    }

    void forget() override {
        model_->forget();
        reloader_->forget();
    }
    bool wide() const override { return true; }
    void wish(int characters, int) override { Drawing::wish(characters > 0 ? characters + 2 : 0, 0); }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Items)
            reloader_->ask();
        if (aspect == Aspect::Text || aspect == Aspect::Choice)
            showChoice();
        if constexpr (std::is_base_of_v<ComboBox, L>)
            if (aspect == Aspect::Choice && std::exchange(dropWishes_, list_.dropWishes()) != list_.dropWishes())
                openSoon();
        if constexpr (std::is_base_of_v<ComboBox, L>)
            if (aspect == Aspect::State && widget_->property("readOnly").toBool() != list_.locked()) {
                widget_->setProperty("readOnly", list_.locked());
                setLook(*widget_, "field");
            }
    }

private:
    QComboBox& combo() { return *static_cast<QComboBox*>(widget_); }
    DropDown& dropDown() { return *static_cast<DropDown*>(widget_); }

    void makeEditable() {
        combo().setEditable(true);
        combo().setInsertPolicy(QComboBox::NoInsert);
        combo().setCompleter(nullptr);
        host_.watch(*combo().lineEdit(), list_);
        QObject::connect(combo().lineEdit(), &QLineEdit::textEdited, widget_, [this](const QString& text) {
            if constexpr (std::is_base_of_v<ComboBox, L>)
                host_.act([&] { gestures::type(list_, fromQt(text)); });
            if (host_.form() != nullptr)
                showChoice();
        });
    }

    // When the procedure that wishes it is done, and the keyboard is here.
    void openSoon() {
        QMetaObject::invokeMethod(
            widget_,
            [this] {
                if (host_.form() != nullptr && combo().hasFocus())
                    combo().showPopup();
            },
            Qt::QueuedConnection);
    }

    void picked(int index) {
        host_.act([&] { gestures::pick(list_, index); });
        if (host_.form() != nullptr)
            showChoice();
    }

    void reload() {
        const QSignalBlocker quiet(combo());
        model_->reload();
        showChoice();
    }

    void showChoice() {
        if (model_->rowCount() != list_.count())
            model_->reload();
        const QSignalBlocker quiet(combo());
        combo().setCurrentIndex(list_.listIndex());
        const QString text = toQt(list_.text());
        if (combo().isEditable()) {
            if (combo().lineEdit()->text() != text)
                combo().lineEdit()->setText(text);
        } else {
            combo().setPlaceholderText(list_.listIndex() < 0 ? text : QString());
        }
    }

    L& list_;
    EntryModel* model_;
    Reloader* reloader_;
    int dropWishes_ = 0;
};

// A list that stands open.
class OpenListDrawing : public Drawing {
public:
    OpenListDrawing(FormWindow& host, ListBox& list, QWidget* parent)
        : Drawing(host, list, new QListView(parent)), list_(list), model_(new EntryModel(list.entries(), widget_)),
          reloader_(new Reloader(widget_, [this] { reload(); })) {
        setLook(*widget_, "list");
        view().setUniformItemSizes(true);
        view().setEditTriggers(QAbstractItemView::NoEditTriggers);
        view().setMinimumSize(140, 104);
        view().setModel(model_);
        QObject::connect(view().selectionModel(), &QItemSelectionModel::currentChanged, widget_,
                         [this](const QModelIndex& now) { picked(now.row()); });
        QObject::connect(&view(), &QListView::clicked, widget_, [this](const QModelIndex& at) {
            if (!justPicked_)
                picked(at.row());
            justPicked_ = false;
        });
        QObject::connect(&view(), &QListView::doubleClicked, widget_, [this] {
            host_.act([this] {
                if (list_.dblClick)
                    list_.dblClick();
            });
        });
        host_.watch(*widget_, list);
        host_.watch(*view().viewport(), list);
    }

    void forget() override {
        model_->forget();
        reloader_->forget();
    }
    bool wide() const override { return true; }
    bool tall() const override { return true; }
    void wish(int characters, int lines) override {
        Drawing::wish(characters, 0);
        if (lines > 0)
            widget_->setMinimumHeight(lines * 28 + 12);
    }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Items)
            reloader_->ask();
        if (aspect == Aspect::Choice)
            showChoice();
    }

private:
    QListView& view() { return *static_cast<QListView*>(widget_); }

    void picked(int index) {
        if (showing_ || index < 0 || index >= list_.count())
            return;
        justPicked_ = true;
        host_.act([&] { gestures::pick(list_, index); });
        if (host_.form() != nullptr)
            showChoice();
    }
    void reload() {
        showing_ = true;
        model_->reload();
        showing_ = false;
        showChoice();
    }
    void showChoice() {
        if (model_->rowCount() != list_.count()) {
            reloader_->ask();
            return;
        }
        showing_ = true;
        if (list_.listIndex() >= 0)
            view().setCurrentIndex(model_->index(list_.listIndex()));
        else
            view().selectionModel()->clear();
        showing_ = false;
    }

    ListBox& list_;
    EntryModel* model_;
    Reloader* reloader_;
    bool showing_ = false;
    bool justPicked_ = false;
};

} // namespace

Drawn drawList(FormWindow& host, ListBox& list, QWidget* parent) {
    if (list.dropDown)
        return std::make_unique<DropDownDrawing<ListBox>>(host, list, parent);
    return std::make_unique<OpenListDrawing>(host, list, parent);
}

Drawn drawCombo(FormWindow& host, ComboBox& combo, QWidget* parent) {
    return std::make_unique<DropDownDrawing<ComboBox>>(host, combo, parent);
}

} // namespace merchantry::ui
