#include "ui/qt/inspect.h"

#include "ui/qt/formwindow.h"
#include "ui/qt/gridcell.h"
#include "ui/qt/gridview.h"
#include "ui/qt/screenroom.h"
#include "ui/qt/tabset.h"
#include "ui/qt/texts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabBar>

#include <algorithm>
#include <map>

namespace merchantry::ui {
namespace {

bool isThing(const QWidget& widget) {
    return dynamic_cast<const QLabel*>(&widget) != nullptr || dynamic_cast<const QAbstractButton*>(&widget) != nullptr ||
           dynamic_cast<const QLineEdit*>(&widget) != nullptr || dynamic_cast<const QComboBox*>(&widget) != nullptr ||
           (dynamic_cast<const QAbstractScrollArea*>(&widget) != nullptr && dynamic_cast<const ScrollRoom*>(&widget) == nullptr) ||
           dynamic_cast<const QProgressBar*>(&widget) != nullptr || dynamic_cast<const QTabBar*>(&widget) != nullptr ||
           dynamic_cast<const QMenuBar*>(&widget) != nullptr;
}

// The texts, fields, buttons and lists that can be seen now, without their inner parts.
void collect(const QWidget& parent, std::vector<const QWidget*>& things) {
    for (const QObject* child : parent.children()) {
        const auto* widget = dynamic_cast<const QWidget*>(child);
        if (widget == nullptr || !widget->isVisible() || widget->isWindow())
            continue;
        if (isThing(*widget))
            things.push_back(widget);
        else
            collect(*widget, things);
    }
}

QString textOf(const QWidget& widget) {
    if (const auto* label = dynamic_cast<const QLabel*>(&widget))
        return label->text();
    if (const auto* button = dynamic_cast<const QAbstractButton*>(&widget))
        return button->text();
    return {};
}

std::string nameOf(const QWidget& widget) {
    for (const QWidget* at = &widget; at != nullptr && !at->isWindow(); at = at->parentWidget())
        if (!at->objectName().isEmpty() && !at->objectName().startsWith(QLatin1String("qt_")))
            return fromQt(at->objectName() +
                          (at == &widget || textOf(widget).isEmpty() ? QString() : QStringLiteral(" “%1”").arg(textOf(widget))));
    return fromQt(QStringLiteral("“%1”").arg(textOf(widget)));
}

bool labelClipped(const QLabel& label) {
    if (label.text().isEmpty())
        return false;
    if (label.wordWrap())
        return label.heightForWidth(label.width()) > label.height();
    return label.sizeHint().width() > label.width() || label.sizeHint().height() > label.height();
}

bool clipped(const QWidget& widget) {
    if (const auto* label = dynamic_cast<const QLabel*>(&widget))
        return labelClipped(*label);
    if (dynamic_cast<const QAbstractButton*>(&widget) != nullptr)
        return widget.sizeHint().width() > widget.width() || widget.fontMetrics().height() > widget.height() - 4;
    if (const auto* combo = dynamic_cast<const QComboBox*>(&widget))
        return combo->fontMetrics().horizontalAdvance(combo->currentText()) > combo->width() - 40 ||
               combo->height() < combo->fontMetrics().height() + 8;
    if (dynamic_cast<const QLineEdit*>(&widget) != nullptr)
        return widget.height() < widget.fontMetrics().height() + 8 || widget.width() < 40;
    if (dynamic_cast<const QTabBar*>(&widget) != nullptr || dynamic_cast<const QMenuBar*>(&widget) != nullptr)
        return widget.sizeHint().width() > widget.width();
    return false;
}

class Inspection {
public:
    Inspection(FormWindow& window, std::vector<Finding>& findings) : window_(window), findings_(findings) {}

    // What can be seen now; things on a page are looked at only while it is up.
    void look() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        std::vector<const QWidget*> things;
        collect(window_, things);
        lookAtTexts(things);
        lookAtPlaces(things);
        lookAtMnemonics(things);
        for (const auto& drawing : window_.drawings())
            if (const auto* grid = dynamic_cast<const GridView*>(drawing->focusTarget()); grid != nullptr && grid->isVisible())
                lookAtHeadings(*grid, static_cast<const Grid&>(drawing->control()));
    }

    void lookAtTabOrder(const Form& form) {
        const auto order = form.tabOrder();
        for (const Control* control : form.controls()) {
            if (!control->takesFocus() || !control->visible())
                continue;
            const Drawing* const drawing = window_.drawing(*control);
            if (std::find(order.begin(), order.end(), control) == order.end())
                add(control->name(), drawing == nullptr ? "is not on the window" : "is not in the tab order");
            else if (drawing == nullptr || drawing->focusTarget()->focusPolicy() == Qt::NoFocus)
                add(control->name(), "cannot take the focus");
        }
    }

private:
    void add(const std::string& control, const std::string& what) {
        const auto known =
            std::find_if(findings_.begin(), findings_.end(), [&](const Finding& f) { return f.control == control && f.what == what; });
        if (known == findings_.end())
            findings_.push_back({control, what});
    }

    QRect placeOf(const QWidget& widget) const { return {widget.mapTo(&window_, QPoint(0, 0)), widget.size()}; }

    // What the widget scrolls in; null outside.
    static const QWidget* roomOf(const QWidget& widget) {
        const QWidget* around = &widget;
        while (around != nullptr && dynamic_cast<const ScrollRoom*>(around) == nullptr)
            around = around->parentWidget();
        return around;
    }

    void lookAtTexts(const std::vector<const QWidget*>& things) {
        for (const QWidget* thing : things)
            if (clipped(*thing))
                add(nameOf(*thing), "text is clipped");
    }

    void lookAtPlaces(const std::vector<const QWidget*>& things) {
        for (std::size_t i = 0; i < things.size(); ++i) {
            const QRect place = placeOf(*things[i]);
            // What scrolls is cut off by its window, and reached all the same.
            for (const QWidget* around = things[i]->parentWidget(); around != nullptr && around != window_.parentWidget() &&
                                                                    dynamic_cast<const ScrollRoom*>(around->parentWidget()) == nullptr;
                 around = around->parentWidget())
                if (!around->rect().contains(QRect(things[i]->mapTo(around, QPoint(0, 0)), things[i]->size()))) {
                    add(nameOf(*things[i]), "sticks out");
                    break;
                }
            for (std::size_t k = i + 1; k < things.size(); ++k)
                if (roomOf(*things[i]) == roomOf(*things[k]) && place.intersects(placeOf(*things[k])))
                    add(nameOf(*things[i]), "overlaps " + nameOf(*things[k]));
        }
    }

    void lookAtMnemonics(const std::vector<const QWidget*>& things) {
        std::map<QString, std::string> taken;
        const auto take = [&](const QString& text, const std::string& by) {
            const QString key = QKeySequence::mnemonic(text).toString();
            if (key.isEmpty())
                return;
            if (const auto [first, fresh] = taken.emplace(key, by); !fresh)
                add(by, "shares " + fromQt(key) + " with " + first->second);
        };
        for (const QWidget* thing : things) {
            const auto* label = dynamic_cast<const QLabel*>(thing);
            if ((label != nullptr && label->buddy() != nullptr) || dynamic_cast<const QAbstractButton*>(thing) != nullptr)
                take(textOf(*thing), nameOf(*thing));
            if (const auto* tabs = dynamic_cast<const QTabBar*>(thing))
                for (int i = 0; i < tabs->count(); ++i)
                    take(tabs->tabText(i), "tab " + fromQt(tabs->tabText(i)));
            if (const auto* bar = dynamic_cast<const QMenuBar*>(thing))
                for (const QAction* action : bar->actions())
                    take(action->text(), "menu " + fromQt(action->text()));
        }
    }

    void lookAtHeadings(const GridView& view, const Grid& grid) {
        const QFontMetrics metrics(window_.skin().strong());
        for (int column = 0; column < grid.columnCount(); ++column)
            if (!grid.column(column).hidden &&
                metrics.horizontalAdvance(toQt(grid.text(0, column))) + 2 * kCellMargin > view.columnWidth(column))
                add(grid.name(), "heading is clipped: " + grid.text(0, column));
    }

    FormWindow& window_;
    std::vector<Finding>& findings_;
};

} // namespace

std::vector<Finding> inspect(QtDesk& desk, const Form& form) {
    FormWindow* const window = desk.window(form);
    if (window == nullptr || !window->isVisible())
        return {{form.name(), "has no window"}};
    return inspect(*window);
}

std::vector<Finding> inspect(FormWindow& window) {
    std::vector<Finding> findings;
    QCoreApplication::processEvents();
    Inspection inspection(window, findings);
    onEveryPage(window, [&] { inspection.look(); });
    if (window.form() != nullptr)
        inspection.lookAtTabOrder(*window.form());
    return findings;
}

void onEveryPage(FormWindow& window, const std::function<void()>& call) {
    call();
    for (const auto& drawing : window.drawings()) {
        auto* const pages = dynamic_cast<TurnsPages*>(drawing.get());
        for (int page = 0; pages != nullptr && page < pages->pages(); ++page) {
            pages->turnTo(page);
            call();
        }
        if (pages != nullptr)
            pages->turnBack();
    }
}

std::string toText(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings)
        text += finding.control + " " + finding.what + "\n";
    return text;
}

} // namespace merchantry::ui
