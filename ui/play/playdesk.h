#pragma once

#include "ui/desk.h"
#include "ui/page.h"
#include "ui/play/transcript.h"

#include <deque>
#include <set>

namespace merchantry::ui::play {

// Draws what a play does; without one a play runs unseen.
class Stage {
public:
    virtual ~Stage() = default;
    // Before the form's load procedure, so that it finds the form's size and its controls' places.
    virtual void prepared(Form& form) = 0;
    virtual void opened(Form& form) = 0;
    virtual void vanished(Form& form) = 0;
    // Between two lines of the script: paint, and take what waits.
    virtual void settle() = 0;
    // Leaves a picture of the form's window under that name.
    virtual void picture(Form& form, const std::string& name) = 0;
    // A PDF in place of paper, named after the picture taken last, and one of any name; null where pages are not drawn.
    virtual std::unique_ptr<PageSink> paper(const std::string& /*title*/) { return nullptr; }
    virtual std::unique_ptr<PageSink> pdf(const std::filesystem::path& /*file*/, const std::string& /*title*/) { return nullptr; }
    // How wide it draws the texts of pages; null when it draws none.
    virtual const TextMeasure* textMeasure() const { return nullptr; }
};

struct PrintedReport {
    std::string file;
    std::vector<std::string> parameters;
};

// What the last verb brought about beyond the screens.
struct Doings {
    bool beeped = false;
    std::vector<std::string> browsed;
    std::vector<PrintedReport> printed;
    std::vector<std::string> statements;
    std::vector<std::string> shownStatements; // the same without their secrets, to be told
};

// The world as a script has it: boxes are answered from queues, time passes when it is told to, and everything is written down.
// A box with one button is acknowledged by itself; a question without an answer ends the play.
class PlayDesk : public Desk {
public:
    // Borrows both; no stage: nothing is drawn.
    explicit PlayDesk(Transcript& transcript, Stage* stage = nullptr) : transcript_(transcript), stage_(stage) {}
    ~PlayDesk() override { close(); }

    void queueAnswer(Answer answer) { answers_.push_back(answer); }
    // Nothing: the box is cancelled.
    void queueInput(std::optional<std::string> text) { inputAnswers_.push_back(std::move(text)); }
    void queueFile(std::optional<std::filesystem::path> path) { fileAnswers_.push_back(std::move(path)); }

    // Called by the host while the application works.
    void statementSent(const std::string& text, const std::string& shown);
    void statementSent(const std::string& text) { statementSent(text, text); }
    void reportOpened(const std::string& file, const std::vector<std::string>& parameters);

    // Lets so many milliseconds pass: timers fire in their order, also the rest of them when one opens a modal form.
    // `tick` is called after each step of the clock.
    void pass(std::int64_t ms, const std::function<void()>& tick);
    // After a line: tells which forms were hidden, and frees what was unloaded when nothing of it can be running.
    void settle(bool idle);
    // A picture of the form, where there is a stage; without one nothing is left.
    void picture(Form& form, const std::string& name);
    // The process is over: no form is left.
    void close();

    // Boxes that appeared and were not yet expected, oldest first.
    std::deque<Message> messages;
    std::deque<Input> inputs;
    std::deque<FileDialog> dialogs;
    Doings doings;
    std::string clipboard;
    std::string statusText;
    std::string hintText;
    std::vector<std::string> printerNames{"PDF"}; // of the workstation

    // Set by the player: runs the script on until the condition holds, and ends the play because the user's answer is missing.
    std::function<void(const std::function<bool()>& done)> loop;
    std::function<void(const std::string& expected, const std::string& found)> stuck;

    using Desk::message;
    Answer message(const Message& message) override;
    std::optional<std::string> input(const Input& input) override;
    std::optional<std::filesystem::path> file(const FileDialog& dialog) override;
    void beep() override;
    void waitCursor(bool) override {}
    void yield() override {}
    void browse(const std::string& topic) override;
    void copyText(const std::string& text) override { clipboard = text; }
    std::vector<std::string> printers() override { return printerNames; }
    void setDefaultPrinter(const std::string& printer) override;
    // All pages, onto paper that only the transcript sees.
    std::optional<PrintChoice> printerSetup(const std::string& title, int pages) override;
    std::unique_ptr<PageSink> pdf(const std::filesystem::path& file, const std::string& title) override;
    const TextMeasure& textMeasure() const override;
    void status(const std::string& text) override {
        statusText = text;
        statusEnds_ = elapsedMs_ + kStatusMs;
    }
    void hint(const std::string& text) override { hintText = text; }
    // For the length of the play, as its one user.
    std::string remembered(const std::string& form, const std::string& what) override { return kept_[{form, what}]; }
    void remember(const std::string& form, const std::string& what, const std::string& text) override { kept_[{form, what}] = text; }

protected:
    void prepared(Form& form) override;
    void opened(Form& form) override;
    void vanished(Form& form) override;
    void runUntil(const std::function<bool()>& done) override { loop(done); }
    void armTimer(Timer& timer) override;
    void disarmTimer(Timer& timer) override;

private:
    struct Alarm {
        Timer* timer;
        std::int64_t due;
    };
    Alarm* nextAlarm(std::int64_t until);

    Transcript& transcript_;
    Stage* stage_;
    std::deque<Answer> answers_;
    std::deque<std::optional<std::string>> inputAnswers_;
    std::deque<std::optional<std::filesystem::path>> fileAnswers_;
    std::set<Form*> shown_;
    std::set<Form*> drawn_; // those that the stage has
    std::vector<Alarm> alarms_;
    std::map<std::pair<std::string, std::string>, std::string> kept_;
    std::int64_t elapsedMs_ = 0;
    std::int64_t statusEnds_ = 0;
};

// The words of the language for these.
std::string wordFor(MessageIcon icon);
std::string wordFor(MessageButtons buttons);
std::string wordFor(Answer answer);
// A box as the transcript and the failures tell it.
std::string told(const Message& message);
std::string told(const Input& input);
std::string told(const FileDialog& dialog);

} // namespace merchantry::ui::play
