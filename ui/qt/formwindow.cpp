#include "ui/qt/formwindow.h"

#include "ui/gestures.h"
#include "ui/qt/frame.h"
#include "ui/qt/gridview.h"
#include "ui/qt/layoutbuilder.h"
#include "ui/qt/memory.h"
#include "ui/qt/menu.h"
#include "ui/qt/screenroom.h"
#include "ui/qt/texts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include <set>
#include <utility>

namespace merchantry::ui {
namespace {

constexpr int kNarrowest = 300;
constexpr int kMark = 144;
// Keys that are the form's wherever the focus stands.
const std::set<std::string_view> kSteering{"Tab",      "Shift+Tab",      "Enter",         "Escape",      "F1",
                                           "Shift+F1", "Ctrl+Shift+Tab", "Ctrl+PageDown", "Ctrl+PageUp", "Ctrl+Tab"};
constexpr QSize kRoomy(920, 620);

// A widget that is not shown yet would lay out what it holds only when it is.
void layOutUnseen(QWidget& widget) {
    QResizeEvent resized(widget.size(), QSize());
    QCoreApplication::sendEvent(&widget, &resized);
    for (QWidget* child : widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        layOutUnseen(*child);
}

} // namespace

FormWindow::FormWindow(QtDesk& desk, Form& form) : desk_(desk), form_(&form) {
    setObjectName(toQt(form.name()));
    setWindowTitle(toQt(form.caption()));
    setFocusPolicy(Qt::NoFocus);
    build();
    form.attach(this);
    takeWishedSize();
}

FormWindow::~FormWindow() {
    forget();
    for (const auto& panel : panels_)
        if (panel != nullptr)
            panel->setParent(nullptr);
    // The widgets go before the drawings that they would still call.
    qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

void FormWindow::forget() {
    if (form_ != nullptr && form_->view() == this)
        form_->attach(nullptr);
    form_ = nullptr;
    for (const auto& drawing : drawings_)
        drawing->forget();
}

void FormWindow::retire() {
    rememberSize();
    forget();
    for (const auto& panel : panels_)
        if (panel != nullptr) {
            panel->hide();
            panel->setParent(nullptr);
        }
    panels_.clear();
    hide();
    deleteLater();
}

bool FormWindow::act(const std::function<void()>& procedure) {
    // A form of another desk is only shown here: that desk moves it.
    return form_ != nullptr && !form_->closed() && &form_->desk() == &desk_ && desk_.enter(procedure);
}

bool FormWindow::read(const std::function<void()>& procedure) {
    return form_ != nullptr && !form_->closed() && desk_.enter(procedure);
}

void FormWindow::build() {
    outer_ = new QVBoxLayout(this);
    outer_->setContentsMargins(0, 0, 0, 0);
    outer_->setSpacing(0);
    outer_->addStrut(kNarrowest);
    content_ = new Content;
    buildBars();
    LayoutBuilder builder(*this);
    builder.fill(*content_, form_->layout());
    room_ = new ScrollRoom(content_, this);
    outer_->addWidget(room_, 1);
    if (QWidget* const foot = builder.foot(this, form_->layout()))
        outer_->addWidget(foot); // seen also where the content scrolls
    if (menu_ != nullptr) {
        status_ = new QLabel(this);
        status_->setProperty("look", "status");
        status_->setTextFormat(Qt::PlainText);
        status_->setIndent(0);
        status_->setContentsMargins(measure::kEdge, 6, measure::kEdge, 6);
        status_->setAttribute(Qt::WA_StyledBackground);
        outer_->addWidget(status_);
        showStatus(desk_.statusText());
    }
    if (!form_->icon().empty())
        setWindowIcon(skin().windowIcon(toQt(form_->icon())));
    if (!form_->sizeable())
        outer_->setSizeConstraint(QLayout::SetFixedSize);
    for (const auto& drawing : drawings_) {
        for (const Aspect aspect : {Aspect::Rows, Aspect::Items, Aspect::Text, Aspect::Choice, Aspect::State, Aspect::Look})
            drawing->refresh(aspect);
        drawing->refreshCommon();
    }
}

// The menu bar, and tool bars that the layout does not place itself.
void FormWindow::buildBars() {
    menu_ = MenuDrawing::of(*this);
    if (menu_ != nullptr)
        outer_->addWidget(menu_->bar());
    const auto placed = form_->tabOrder();
    for (Control* control : form_->controls())
        if (control->role() == Role::Toolbar && std::find(placed.begin(), placed.end(), control) == placed.end())
            outer_->addWidget(addDrawing(*control, this).widget());
}

void FormWindow::takeWishedSize() {
    ensurePolished();
    for (QWidget* child : findChildren<QWidget*>())
        child->ensurePolished();
    outer_->activate();
    QSize size = sizeHint().expandedTo(outer_->minimumSize());
    if (form_->width() > 0 && form_->height() > 0)
        size = size.expandedTo(QSize(form_->width(), form_->height()) / kTwipsPerPixel);
    else if (std::any_of(drawings_.begin(), drawings_.end(), [](const auto& drawing) { return drawing->tall(); }))
        size = size.expandedTo(kRoomy); // what grows is worth the room
    wished_ = size;
    resize(size.boundedTo(roomOnScreen(*this)));
    outer_->activate();
    settled_ = true;
    recordPlaces();
    placing_ = true;
    form_->setSize(width() * kTwipsPerPixel, height() * kTwipsPerPixel); // not loaded yet: no event
    placing_ = false;
}

// Only when the window opens: the screen has loaded by then, and what it took for its design size is the one that its layout asks for.
void FormWindow::takeRememberedSize() {
    if (!form_->sizeable())
        return;
    outer_->activate();
    if (!freed_) {
        outer_->setGeometry(rect());
        layOutUnseen(*room_);
        recordPlaces(); // a screen may have hidden controls before it is shown
    }
    const QSize kept = rememberedSize(form_->name(), QSize());
    wished_ = kept.isEmpty() ? wished_.expandedTo(size()) : kept;
    resize((kept.isEmpty() ? size() : kept).expandedTo(outer_->minimumSize()).boundedTo(roomOnScreen(*this)));
    openedAt_ = size();
}

Drawing& FormWindow::addDrawing(Control& control, QWidget* parent) {
    drawings_.push_back(draw(*this, control, parent));
    Drawing& made = *drawings_.back();
    made.widget()->setObjectName(toQt(control.name()));
    byControl_[&control] = &made;
    return made;
}

Drawing* FormWindow::drawing(const Control& control) const {
    return byControl_.value(&control, nullptr);
}

void FormWindow::open(FormWindow* over) {
    const Qt::WindowModality wanted = form_->modal() ? Qt::ApplicationModal : Qt::NonModal;
    if (isVisible() && windowModality() != wanted)
        hide();
    setWindowModality(wanted);
    if (!std::exchange(opened_, true))
        takeRememberedSize();
    if (!isVisible())
        fitOnScreen();
    if (!isVisible() && over != nullptr && over->windowHandle() != nullptr) {
        // Window systems keep only a dialogue in front of its owner.
        setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                       Qt::WindowCloseButtonHint | (form_->sizeable() ? Qt::WindowMaximizeButtonHint : Qt::WindowFlags()));
        standOver(*this, over);
    }
    show();
    raise();
    activateWindow();
    focusChanged();
}

void FormWindow::embed(FormWindow& panel) {
    if (panel.parentWidget() != this) {
        panel.setParent(this);
        panel.embeddedIn_ = this;
        panels_.push_back(&panel);
        setLook(*panel.content_, "float");
        panel.content_->setAttribute(Qt::WA_StyledBackground);
        panel.outer_->setContentsMargins(measure::kEdge, measure::kGroups, measure::kEdge, 0);
        panel.outer_->setSizeConstraint(QLayout::SetDefaultConstraint);
        panel.setMinimumSize(0, 0);
        panel.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        if (QLayout* inside = panel.content_->layout())
            inside->setContentsMargins(12, 8, 12, 8);
        outer_->insertWidget(outer_->indexOf(room_), &panel);
        panel.setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }
    panel.show();
}

void FormWindow::restyle() {
    for (const auto& drawing : drawings_) {
        drawing->restyle();
        drawing->refresh(Aspect::Look);
    }
    if (form_ != nullptr && !form_->icon().empty())
        setWindowIcon(skin().windowIcon(toQt(form_->icon())));
    update();
}

void FormWindow::showStatus(const std::string& text) {
    if (status_ != nullptr)
        status_->setText(toQt(text));
}

QMenuBar* FormWindow::menuBar() const {
    return menu_ == nullptr ? nullptr : menu_->bar();
}

// --- from the form ---

void FormWindow::controlChanged(Control& control, Aspect aspect) {
    if (control.role() == Role::MenuEntry && menu_ != nullptr)
        menu_->refresh(control);
    Drawing* const drawn = drawing(control);
    if (drawn == nullptr)
        return;
    if (aspect == Aspect::Place) {
        moved(control);
        return;
    }
    if (aspect == Aspect::State || aspect == Aspect::Look) {
        // A widget that is hidden or disabled would hand its focus to a neighbour, which no user did.
        QWidget* const holder = focusWidget();
        if (holder != nullptr && (holder == drawn->widget() || drawn->widget()->isAncestorOf(holder)) &&
            !(control.enabled() && control.visible()))
            setFocus();
        drawn->refreshCommon();
    }
    drawn->refresh(aspect);
    if (aspect == Aspect::State && form_->focused() != nullptr && form_->focused()->obstacle().empty())
        focusLater();
}

void FormWindow::formChanged() {
    setWindowTitle(toQt(form_->caption()));
    if (form_->hidden() && isVisible()) {
        rememberSize();
        hide();
    }
    const QSize wanted = QSize(form_->width(), form_->height()) / kTwipsPerPixel;
    if (settled_ && !placing_) { // what was hidden just now no longer holds the window wide
        if (content_->layout() != nullptr)
            content_->layout()->activate();
        outer_->activate();
    }
    if (settled_ && !placing_ && embeddedIn_ == nullptr && wanted != size() && !wanted.isEmpty()) {
        const QSize before = size();
        resize(wanted.boundedTo(roomOnScreen(*this)));
        if (size() == before && &form_->desk() == &desk_)
            reportSize(); // no room: the screen hears what it has
        fitOnScreen();
    }
}

void FormWindow::focusChanged() {
    if (form_ == nullptr)
        return;
    for (const auto& drawing : drawings_)
        if (const auto* box = dynamic_cast<const TextBox*>(&drawing->control()); box != nullptr && box->money)
            drawing->refresh(Aspect::Text);
    Drawing* const drawn = form_->focused() == nullptr ? nullptr : drawing(*form_->focused());
    QWidget* const target = drawn == nullptr ? this : drawn->focusTarget();
    if (target->hasFocus() || (target == this && focusWidget() == nullptr) || target->isAncestorOf(QApplication::focusWidget()))
        return;
    focusing_ = true;
    target->setFocus(Qt::OtherFocusReason);
    focusing_ = false;
    if (drawn != nullptr)
        reveal(*drawn->widget());
    if (auto* line = dynamic_cast<QLineEdit*>(target); line != nullptr && byKeyboard_)
        line->selectAll();
}

void FormWindow::reveal(const QWidget& widget) {
    if (content_->isAncestorOf(&widget))
        room_->ensureWidgetVisible(const_cast<QWidget*>(&widget), measure::kRelated, measure::kRelated);
}

void FormWindow::focusLater() {
    QTimer::singleShot(0, this, [this] { focusChanged(); });
}

// --- from the user ---

// A click must not move the toolkit's focus before the form was asked.
void FormWindow::watch(QWidget& widget, Control& control) {
    if (widget.focusPolicy() != Qt::NoFocus)
        widget.setFocusPolicy(Qt::TabFocus);
    watched_[&widget] = &control;
    widget.installEventFilter(this);
}

bool FormWindow::finishEdit() {
    if (form_ == nullptr || form_->focused() == nullptr)
        return true;
    Drawing* const drawn = drawing(*form_->focused());
    return drawn == nullptr || drawn->finishEdit();
}

bool FormWindow::eventFilter(QObject* object, QEvent* event) {
    Control* const control = watched_.value(object, nullptr);
    if (control == nullptr || form_ == nullptr)
        return QWidget::eventFilter(object, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return !pressed(*control);
    case QEvent::KeyPress:
        return keyed(control, static_cast<QKeyEvent&>(*event));
    case QEvent::FocusIn:
        arrived(*control);
        return false;
    default:
        return false;
    }
}

// The focus moves before the click acts. A click that brought up a window or a box, or was refused, does nothing further.
bool FormWindow::pressed(Control& control) {
    byKeyboard_ = false;
    return entered(control);
}

bool FormWindow::entered(Control& control) {
    if (form_ == nullptr || form_->focused() == &control || !control.takesFocus())
        return form_ != nullptr;
    const int before = desk_.loopsRun();
    bool entered = false;
    const bool ran = act([&] { entered = finishEdit() && gestures::enter(control).empty(); });
    return ran && entered && form_ != nullptr && desk_.loopsRun() == before;
}

// The toolkit moved its focus by itself, for a mnemonic say.
void FormWindow::arrived(Control& control) {
    if (focusing_ || form_->focused() == &control || !control.takesFocus())
        return;
    byKeyboard_ = true;
    bool entered = false;
    act([&] { entered = finishEdit() && gestures::enter(control).empty(); });
    if (!entered)
        return focusLater();
    if (const Drawing* const drawn = form_ == nullptr ? nullptr : drawing(control))
        reveal(*drawn->widget());
}

bool FormWindow::keyed(Control* control, QKeyEvent& event) {
    const std::string name = keyName(event);
    auto* box = dynamic_cast<TextBox*>(control);
    const bool steers = kSteering.contains(name) || (form_ != nullptr && form_->takesKey(name));
    const bool newLine = name == "Enter" && box != nullptr && box->multiline && !box->locked();
    if (form_ == nullptr || (embeddedIn_ != nullptr && !steers && passedToOwner(event, name)))
        return form_ != nullptr;
    // Where typing means nothing of its own it goes on in the panel.
    const bool idle = dynamic_cast<Button*>(control) != nullptr || dynamic_cast<OptionButton*>(control) != nullptr ||
                      dynamic_cast<CheckBox*>(control) != nullptr;
    if (idle && !panels_.empty() && event.key() != Qt::Key_Space && name == fromQt(event.text()) && typeIntoPanel(event.text()))
        return true;
    if (name.empty() || (!steers && (box == nullptr || !box->keyDown)))
        return false;
    if (newLine) {
        bool swallowed = false;
        act([&] {
            if (box->keyDown)
                box->keyDown(name, swallowed);
        });
        return swallowed;
    }
    byKeyboard_ = true;
    bool taken = false;
    act([&] { taken = !finishEdit() || gestures::key(*form_, name); });
    return taken || passedToOwner(event, name) || name == "Tab" || name == "Shift+Tab";
}

// From a floating panel the list below is moved through and chosen from without leaving what was typed.
bool FormWindow::passedToOwner(QKeyEvent& event, const std::string& name) {
    FormWindow* const owner = embeddedIn_;
    if (owner == nullptr || owner->form() == nullptr)
        return false;
    if (name == "Enter" || name == "Escape") {
        bool taken = false;
        owner->act([&] { taken = gestures::key(*owner->form(), name); });
        return taken;
    }
    auto* const list = owner->first<GridView>();
    if (list == nullptr || (name != "Up" && name != "Down" && name != "PageUp" && name != "PageDown"))
        return false;
    QCoreApplication::sendEvent(list, &event);
    return true;
}

template <class D> D* FormWindow::first() const {
    for (const auto& drawing : drawings_)
        if (auto* found = dynamic_cast<D*>(drawing->focusTarget()); found != nullptr && found->isVisible() && found->isEnabled())
            return found;
    return nullptr;
}

bool FormWindow::typeIntoPanel(const QString& text) {
    for (const auto& panel : panels_) {
        auto* const line = panel == nullptr || panel->form() == nullptr ? nullptr : panel->first<QLineEdit>();
        if (line == nullptr)
            continue;
        Control* const control = panel->watched_.value(line, nullptr);
        panel->act([&] { gestures::enter(*control); });
        line->setFocus(Qt::OtherFocusReason);
        line->end(false);
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, text);
        QCoreApplication::sendEvent(line, &press);
        return true;
    }
    return false;
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
    if (form_ == nullptr || (focusWidget() != nullptr && focusWidget() != this) || !keyed(nullptr, *event))
        QWidget::keyPressEvent(event);
}

void FormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    act([this] {
        if (finishEdit())
            gestures::close(*form_);
    });
}

void FormWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::WindowStateChange && form_ != nullptr)
        form_->setMinimised(isMinimized());
    if (event->type() == QEvent::ActivationChange && form_ != nullptr && isActiveWindow() && !form_->desk().covered(*form_) && isVisible())
        act([this] { form_->desk().giveKeyboard(*form_); });
    QWidget::changeEvent(event);
}

// A window that fills a small screen is as large as it can be there, not as large as its user wants it: a larger wish outlives that screen.
// One that nobody made another is not remembered: next time its content may ask for more.
void FormWindow::rememberSize() {
    if (form_ == nullptr || !form_->sizeable() || !isVisible() || embeddedIn_ != nullptr || isMaximized() || size() == openedAt_)
        return;
    constexpr int kFrames = 40; // by which the frames of window managers differ
    const QSize room = roomOnScreen(*this);
    QSize own = size();
    if (own.width() > room.width() - kFrames)
        own.setWidth(std::max(own.width(), wished_.width()));
    if (own.height() > room.height() - kFrames)
        own.setHeight(std::max(own.height(), wished_.height()));
    rememberSizeOf(form_->name(), own);
}

// A main window is no hole: a calm mark stands in its middle, above the words there if it has some.
void FormWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), skin().tokens().paper);
    if (menu_ == nullptr || form_ == nullptr)
        return;
    const int side = std::min({room_->width(), room_->height() / 3, kMark});
    QRect where(0, 0, side, side);
    where.moveCenter(room_->geometry().center());
    for (const auto& drawing : drawings_)
        if (drawing->control().takesFocus())
            return; // a window to work in
        else if (content_->isAncestorOf(drawing->widget()))
            where.moveBottom(std::min(where.bottom(), drawing->widget()->mapTo(this, QPoint(0, -measure::kGroups)).y()));
    skin().icon(QStringLiteral("mark"), skin().tokens().line).paint(&painter, where);
}

} // namespace merchantry::ui
