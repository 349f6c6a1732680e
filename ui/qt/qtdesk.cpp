#include "ui/qt/qtdesk.h"

#include "base/errortext.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/qt/boxes.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/memory.h"
#include "ui/qt/texts.h"
#include "ui/qt/waitbox.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialog>
#include <QEventLoop>
#include <QMimeData>
#include <QPrinterInfo>
#include <QTimer>
#include <QUrl>
#include <QWindow>

namespace merchantry::ui {

QtDesk::QtDesk(QApplication& application, Tone tone)
    : application_(application), systemDark_(Skin::systemIsDark()), skin_(tone, systemDark_) {
    QApplication::setQuitOnLastWindowClosed(false);
    skin_.apply(application_);
    statusEnd_.setSingleShot(true);
    QObject::connect(&statusEnd_, &QTimer::timeout, &here_, [this] { status(""); });
}

QtDesk::~QtDesk() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // windows that were closed still look at the desk
    for (const auto& [form, window] : windows_)
        if (window != nullptr) {
            window->forget();
            delete window.data();
        }
    dismissAll();
}

int QtDesk::run(const std::function<void()>& start) {
    enter([&] {
        start();
        base_ = 1;
        runUntil([this] { return depth_ == 1 && !anyWindow(); });
    });
    if (!end_.has_value() || !end_->message.has_value())
        return 0;
    showBox(skin_, nullptr, {*end_->message, "Merchantry", MessageIcon::Stop, MessageButtons::Ok},
            [](QWidget& box) { static_cast<QDialog&>(box).exec(); });
    return 1;
}

bool QtDesk::enter(const std::function<void()>& procedure) noexcept {
    if (ending() || waitBox_ != nullptr) // a screen that waits for the store does nothing else
        return false;
    ++depth_;
    try {
        procedure();
    } catch (const ProcessEnd& end) {
        endWith(end);
    } catch (const std::exception& failure) {
        endWith({"Run-time error: " + sentenceOf(failure)});
    } catch (...) {
        endWith({std::string("Run-time error: unknown")});
    }
    --depth_;
    leaveLoops();
    if (depth_ == base_)
        sweepSoon();
    return !ending();
}

// The first end counts; those thrown while it unwinds carry nothing.
void QtDesk::endWith(ProcessEnd end) {
    if (!ending())
        end_ = std::move(end);
}

void QtDesk::leaveLoops() {
    for (const Loop& entry : loops_)
        if (ending() || (*entry.done)())
            entry.loop->quit();
}

void QtDesk::runUntil(const std::function<bool()>& done) {
    ++loopsRun_;
    // A wait cursor belongs to the work before; a window that waits for its user shows the plain one.
    const int waits = std::exchange(waits_, 0);
    for (int i = 0; i < waits; ++i)
        QApplication::restoreOverrideCursor();
    while (!ending() && !done()) {
        QEventLoop loop;
        loops_.push_back({&loop, &done});
        loop.exec();
        loops_.pop_back();
    }
    for (int i = 0; i < waits; ++i)
        waitCursor(true);
    if (ending())
        throw ProcessEnd{};
}

// Waits until the dialogue is gone from the screen.
void QtDesk::runDialog(QWidget& dialog) {
    onClosed(dialog, [this] { leaveLoops(); });
    dialog.show();
    runUntil([&dialog] { return !dialog.isVisible(); });
}

// Closed forms are freed when nothing of theirs can be running: by the outermost loop.
void QtDesk::sweepSoon() {
    if (std::exchange(sweeping_, true))
        return;
    QTimer::singleShot(0, &here_, [this] {
        sweeping_ = false;
        if (depth_ == base_ && static_cast<int>(loops_.size()) == base_)
            sweep();
    });
}

bool QtDesk::anyWindow() const {
    for (const Form* form : openForms())
        if (!form->hidden())
            return true;
    return false;
}

void QtDesk::setTone(Tone tone) {
    skin_ = Skin(tone, systemDark_);
    skin_.apply(application_);
    for (const auto& [form, window] : windows_)
        if (window != nullptr)
            window->restyle();
}

FormWindow* QtDesk::window(const Form& form) const {
    const auto found = windows_.find(&form);
    return found == windows_.end() ? nullptr : found->second.data();
}

// The window that a new one stands over: that of the form on top but for the form itself. One that is not modal outlives those on top, and
// would lose its place before the main window with them: it stands over the oldest, as long as no modal one is in between.
QWidget* QtDesk::owner(const Form* form) const {
    const auto& open = openForms();
    QWidget* found = nullptr;
    for (auto other = open.rbegin(); other != open.rend(); ++other) {
        FormWindow* const shown = *other == form || floating(**other) ? nullptr : window(**other);
        if (shown == nullptr || !shown->isVisible())
            continue;
        found = shown;
        if (form == nullptr || form->modal() || floating(*form) || (*other)->modal())
            break;
    }
    return found;
}

void QtDesk::prepared(Form& form) {
    if (window(form) == nullptr)
        windows_[&form] = new FormWindow(*this, form);
}

void QtDesk::opened(Form& form) {
    prepared(form);
    FormWindow* shown = window(form);
    auto* over = dynamic_cast<FormWindow*>(owner(&form));
    if (floating(form) && over != nullptr)
        over->embed(*shown);
    else
        shown->open(over);
}

void QtDesk::vanished(Form& form) {
    FormWindow* gone = window(form);
    windows_.erase(&form);
    if (gone != nullptr)
        gone->retire();
    leaveLoops();
}

Answer QtDesk::message(const Message& message) {
    return showBox(skin_, owner(nullptr), message, [this](QWidget& box) { runDialog(box); });
}

std::optional<std::string> QtDesk::input(const Input& input) {
    return showInput(skin_, owner(nullptr), input, [this](QWidget& box) { runDialog(box); });
}

void QtDesk::beep() {
    QApplication::beep();
}

void QtDesk::waitCursor(bool on) {
    if (on) {
        ++waits_;
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (waits_ > 0) {
        --waits_;
        QApplication::restoreOverrideCursor();
    }
}

bool QtDesk::waitForStore(std::chrono::milliseconds waited) {
    if (waitBox_ == nullptr)
        waitBox_ = std::make_unique<WaitBox>();
    return waitBox_->goOn(waited, owner(nullptr));
}

void QtDesk::storeIsFree() {
    waitBox_.reset();
}

void QtDesk::yield() {
    QCoreApplication::processEvents();
    if (ending())
        throw ProcessEnd{};
}

void QtDesk::browse(const std::string& topic) {
    QDesktopServices::openUrl(QUrl::fromUserInput(toQt(topic), toQt(programFolder().string()), QUrl::AssumeLocalFile));
}

void QtDesk::copyText(const std::string& text) {
    QApplication::clipboard()->setText(toQt(text));
}

void QtDesk::copyTable(const std::string& text, const std::string& html) {
    auto* const both = new QMimeData; // the clipboard's from now on
    both->setText(toQt(text));
    both->setHtml(toQt(html));
    QApplication::clipboard()->setMimeData(both);
}

std::vector<std::string> QtDesk::printers() {
    std::vector<std::string> names;
    for (const QString& name : QPrinterInfo::availablePrinterNames())
        names.push_back(fromQt(name));
    return names;
}

void QtDesk::status(const std::string& text) {
    if (text.empty())
        statusEnd_.stop();
    else
        statusEnd_.start(kStatusMs);
    status_ = text;
    showStatus();
}

void QtDesk::hint(const std::string& text) {
    hint_ = text;
    showStatus();
}

std::string QtDesk::statusText() const {
    return status_.empty() || hint_.empty() ? status_ + hint_ : status_ + "  ·  " + hint_;
}

void QtDesk::showStatus() {
    for (const auto& [form, window] : windows_)
        if (window != nullptr)
            window->showStatus(statusText());
}

std::string QtDesk::remembered(const std::string& form, const std::string& what) {
    return rememberedText(form, what);
}

void QtDesk::remember(const std::string& form, const std::string& what, const std::string& text) {
    rememberText(form, what, text);
}

void QtDesk::armTimer(Timer& timer) {
    auto& clock = timers_[&timer];
    clock = std::make_unique<QTimer>();
    QObject::connect(clock.get(), &QTimer::timeout, clock.get(), [this, &timer] {
        enter([&timer] {
            if (timer.fire)
                timer.fire();
        });
    });
    clock->start(timer.intervalMs);
}

void QtDesk::disarmTimer(Timer& timer) {
    const auto found = timers_.find(&timer);
    if (found == timers_.end())
        return;
    found->second->stop();
    found->second.release()->deleteLater(); // it may be the one that is firing
    timers_.erase(found);
}

} // namespace merchantry::ui
