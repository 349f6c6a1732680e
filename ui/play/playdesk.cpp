#include "ui/play/playdesk.h"

#include "base/counted.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/page.h"
#include "ui/play/script.h"

#include <algorithm>

namespace merchantry::ui::play {
namespace {

bool offers(MessageButtons buttons, Answer answer) {
    switch (buttons) {
    case MessageButtons::Ok:
        return answer == Answer::Ok;
    case MessageButtons::OkCancel:
        return answer == Answer::Ok || answer == Answer::Cancel;
    case MessageButtons::YesNo:
        return answer == Answer::Yes || answer == Answer::No;
    case MessageButtons::YesNoCancel:
        return answer != Answer::Ok;
    }
    return false;
}

template <class T> T taken(std::deque<T>& queue) {
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
}

} // namespace

std::string wordFor(MessageIcon icon) {
    constexpr const char* kWords[] = {"none", "stop", "question", "exclamation", "information"};
    return kWords[static_cast<int>(icon)];
}

std::string wordFor(MessageButtons buttons) {
    constexpr const char* kWords[] = {"OK", "OKCancel", "YesNo", "YesNoCancel"};
    return kWords[static_cast<int>(buttons)];
}

std::string wordFor(Answer answer) {
    constexpr const char* kWords[] = {"OK", "Cancel", "Yes", "No"};
    return kWords[static_cast<int>(answer)];
}

std::string told(const Message& message) {
    return inQuotes(message.text) + " caption " + inQuotes(message.caption) + " icon " + wordFor(message.icon) + " buttons " +
           wordFor(message.buttons);
}

std::string told(const Input& input) {
    return inQuotes(input.prompt) + " title " + inQuotes(input.title);
}

std::string told(const FileDialog& dialog) {
    return inQuotes(dialog.title) + " filter " + inQuotes(dialog.filter);
}

Answer PlayDesk::message(const Message& message) {
    messages.push_back(message);
    if (message.buttons == MessageButtons::Ok) {
        transcript_.event("message " + told(message));
        return Answer::Ok;
    }
    if (answers_.empty() || !offers(message.buttons, answers_.front())) {
        transcript_.event("asked " + told(message));
        stuck("an answer to the question " + told(message),
              answers_.empty() ? "none was given before" : "the next answer is " + wordFor(answers_.front()));
    }
    const Answer answer = taken(answers_);
    transcript_.event("asked " + told(message) + " answered " + wordFor(answer));
    return answer;
}

std::optional<std::string> PlayDesk::input(const Input& input) {
    inputs.push_back(input);
    if (inputAnswers_.empty())
        stuck("an input for the box " + told(input), "none was given before");
    const auto answer = taken(inputAnswers_);
    transcript_.event("input " + told(input) + " answered " + (answer ? inQuotes(*answer) : "cancel"));
    return answer;
}

std::optional<std::filesystem::path> PlayDesk::file(const FileDialog& dialog) {
    dialogs.push_back(dialog);
    if (fileAnswers_.empty())
        stuck("a file for the dialogue " + told(dialog), "none was given before");
    const auto answer = taken(fileAnswers_);
    transcript_.event("dialog " + told(dialog) + " answered " + (answer ? inQuotes(answer->string()) : "cancel"));
    return answer;
}

void PlayDesk::beep() {
    doings.beeped = true;
    transcript_.event("beep");
}

namespace {

// Paper of which the transcript tells, drawn where there is a stage for it.
class ToldPaper : public PageSink {
public:
    ToldPaper(Transcript& transcript, std::string title, std::unique_ptr<PageSink> drawn)
        : transcript_(transcript), title_(std::move(title)), drawn_(std::move(drawn)) {}
    void put(const Page& page) override {
        ++pages_;
        if (drawn_ != nullptr)
            drawn_->put(page);
    }
    void finish() override {
        if (drawn_ != nullptr)
            drawn_->finish();
        transcript_.event("paper " + inQuotes(title_) + " " + counted(pages_, "page"));
    }

private:
    Transcript& transcript_;
    std::string title_;
    std::unique_ptr<PageSink> drawn_;
    int pages_ = 0;
};

} // namespace

void PlayDesk::setDefaultPrinter(const std::string& printer) {
    transcript_.event("default printer " + inQuotes(printer));
}

std::optional<PrintChoice> PlayDesk::printerSetup(const std::string& title, int pages) {
    auto drawn = stage_ == nullptr ? nullptr : stage_->paper(title);
    return PrintChoice{std::make_unique<ToldPaper>(transcript_, title, std::move(drawn)), 1, pages};
}

std::unique_ptr<PageSink> PlayDesk::pdf(const std::filesystem::path& file, const std::string& title) {
    return stage_ == nullptr ? nullptr : stage_->pdf(file, title);
}

const TextMeasure& PlayDesk::textMeasure() const {
    const TextMeasure* drawn = stage_ == nullptr ? nullptr : stage_->textMeasure();
    return drawn == nullptr ? Desk::textMeasure() : *drawn;
}

void PlayDesk::browse(const std::string& topic) {
    doings.browsed.push_back(topic);
    transcript_.event("browsed " + inQuotes(topic));
}

void PlayDesk::statementSent(const std::string& text, const std::string& shown) {
    doings.statements.push_back(text);
    doings.shownStatements.push_back(shown);
    if (transcript_.showsStatements())
        transcript_.event("statement " + inQuotes(shown));
}

void PlayDesk::reportOpened(const std::string& file, const std::vector<std::string>& parameters) {
    doings.printed.push_back({file, parameters});
    std::string line = "printed " + inQuotes(file);
    for (const std::string& parameter : parameters)
        line += " " + inQuotes(parameter);
    transcript_.event(line);
}

void PlayDesk::prepared(Form& form) {
    drawn_.insert(&form);
    if (stage_ != nullptr)
        stage_->prepared(form);
}

void PlayDesk::opened(Form& form) {
    if (shown_.insert(&form).second)
        transcript_.event("opened " + form.name());
    if (stage_ != nullptr)
        stage_->opened(form);
}

void PlayDesk::vanished(Form& form) {
    drawn_.erase(&form);
    if (shown_.erase(&form) > 0)
        transcript_.event("closed " + form.name());
    if (stage_ != nullptr)
        stage_->vanished(form);
}

void PlayDesk::picture(Form& form, const std::string& name) {
    transcript_.event("picture " + name);
    if (stage_ != nullptr)
        stage_->picture(form, name);
}

void PlayDesk::close() {
    if (stage_ != nullptr)
        for (Form* form : drawn_)
            stage_->vanished(*form);
    drawn_.clear();
    shown_.clear();
    dismissAll();
    alarms_.clear();
}

void PlayDesk::settle(bool idle) {
    std::erase_if(shown_, [&](const Form* form) {
        if (!form->hidden())
            return false;
        transcript_.event("closed " + form->name());
        return true;
    });
    if (stage_ != nullptr)
        stage_->settle();
    if (idle)
        sweep();
}

void PlayDesk::armTimer(Timer& timer) {
    alarms_.push_back({&timer, elapsedMs_ + timer.intervalMs});
}

void PlayDesk::disarmTimer(Timer& timer) {
    std::erase_if(alarms_, [&](const Alarm& alarm) { return alarm.timer == &timer; });
}

PlayDesk::Alarm* PlayDesk::nextAlarm(std::int64_t until) {
    Alarm* first = nullptr;
    for (Alarm& alarm : alarms_)
        if (alarm.due <= until && !alarm.timer->form().closed() && (first == nullptr || alarm.due < first->due))
            first = &alarm;
    return first;
}

void PlayDesk::pass(std::int64_t ms, const std::function<void()>& tick) {
    const std::int64_t until = elapsedMs_ + ms;
    const auto advanceTo = [&](std::int64_t time) {
        if (time <= elapsedMs_)
            return;
        clock().advance(time - elapsedMs_);
        elapsedMs_ = time;
        tick();
    };
    while (Alarm* alarm = nextAlarm(until)) {
        Timer& timer = *alarm->timer;
        advanceTo(alarm->due);
        alarm->due += std::max(timer.intervalMs, 1);
        if (timer.fire)
            timer.fire();
    }
    advanceTo(until);
    if (elapsedMs_ >= statusEnds_)
        statusText.clear();
}

} // namespace merchantry::ui::play
