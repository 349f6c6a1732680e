#pragma once

#include "ui/desk.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/skin.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class QApplication;
class QEventLoop;
class QWidget;

namespace merchantry::ui {

class FormWindow;
class WaitBox;

// The desktop: draws forms as windows and asks the user. One stands for the whole life of a program, made after the QApplication and
// gone before it. It owns the windows; forms belong to the desk as always.
//
// Procedures of screens run inside nested loops. A procedure that ends the process, or fails, cannot be thrown through the toolkit:
// enter() catches what it throws, remembers the end, and every loop below leaves by throwing ProcessEnd on its own, so that each
// waiting procedure is unwound in turn until run() returns.
class QtDesk : public Desk {
public:
    explicit QtDesk(QApplication& application, Tone tone = Tone::System);
    ~QtDesk() override;

    // Runs the program: the start procedure, then the loop until no window is left or a procedure ends the process. Gives the exit
    // code: 0, or 1 when a failure ended the run, after its message was shown.
    int run(const std::function<void()>& start);
    // The one way from the toolkit into a screen's procedure. Nothing is thrown out of it. False when it was not run to its end.
    bool enter(const std::function<void()>& procedure) noexcept;
    bool ending() const { return end_.has_value(); }
    // Why the run ends, empty while it does not or when nothing failed.
    std::string endMessage() const { return end_.has_value() ? end_->message.value_or("") : ""; }
    // Grows by one with every loop that was run; tells a caller whether a window or a box stood in between.
    int loopsRun() const { return loopsRun_; }

    const Skin& skin() const { return skin_; }
    // Draws everything anew in that look.
    void setTone(Tone tone);

    // The window of a form; null when it has none.
    FormWindow* window(const Form& form) const;
    using Desk::message;
    Answer message(const Message& message) override;
    std::optional<std::string> input(const Input& input) override;
    std::optional<std::filesystem::path> file(const FileDialog& dialog) override;
    void beep() override;
    void waitCursor(bool on) override;
    bool waitForStore(std::chrono::milliseconds waited) override;
    void storeIsFree() override;
    void yield() override;
    void browse(const std::string& topic) override;
    void copyText(const std::string& text) override;
    void copyTable(const std::string& text, const std::string& html) override;
    std::vector<std::string> printers() override;
    std::string defaultPrinter() override;
    void setDefaultPrinter(const std::string& printer) override;
    std::optional<PrintChoice> printerSetup(const std::string& title, int pages) override;
    std::unique_ptr<PageSink> pdf(const std::filesystem::path& file, const std::string& title) override;
    const TextMeasure& textMeasure() const override { return measure_; }
    void status(const std::string& text) override;
    void hint(const std::string& text) override;
    std::string remembered(const std::string& form, const std::string& what) override;
    void remember(const std::string& form, const std::string& what, const std::string& text) override;
    // What the status bar says: the last word, and the hint that stands.
    std::string statusText() const;

protected:
    void prepared(Form& form) override;
    void opened(Form& form) override;
    void vanished(Form& form) override;
    void runUntil(const std::function<bool()>& done) override;
    void armTimer(Timer& timer) override;
    void disarmTimer(Timer& timer) override;

private:
    struct Loop {
        QEventLoop* loop;
        const std::function<bool()>* done;
    };

    void runDialog(QWidget& dialog);
    void endWith(ProcessEnd end);
    void leaveLoops();
    void sweepSoon();
    bool anyWindow() const;
    QWidget* owner(const Form* form) const;

    QApplication& application_;
    bool systemDark_;
    Skin skin_;
    std::map<const Form*, QPointer<FormWindow>> windows_;
    std::map<Timer*, std::unique_ptr<QTimer>> timers_;
    std::vector<Loop> loops_;
    std::optional<ProcessEnd> end_;
    std::string status_;
    std::string hint_;
    void showStatus();
    QTimer statusEnd_; // takes the status text away
    QtTextMeasure measure_;
    std::optional<std::string> defaultPrinter_; // once the program has changed it; the system's own until then
    QObject here_;                              // what is put off ends with it
    int depth_ = 0;                             // procedures that are running
    int base_ = 0;                              // 1 while the loop of run() is the outermost: its own procedure and loop hold no form
    bool sweeping_ = false;
    int waits_ = 0;
    std::unique_ptr<WaitBox> waitBox_; // while a statement waits
    int loopsRun_ = 0;
};

} // namespace merchantry::ui
