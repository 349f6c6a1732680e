#pragma once

#include "base/platform/clock.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <typeindex>
#include <vector>

namespace merchantry::ui {

class Form;
class PageSink;
class TextMeasure;
class Timer;

enum class MessageIcon { None, Stop, Question, Exclamation, Information };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

struct Message {
    std::string text;
    std::string caption;
    MessageIcon icon = MessageIcon::None;
    MessageButtons buttons = MessageButtons::Ok;
};

// A box that asks for one line of text.
struct Input {
    std::string prompt;
    std::string title;
    std::string preset;
};

// The common file dialogue. `filter` as "Report Files (*.rpt)|*.rpt". To save, it suggests a name, gives a name without an ending that of
// the type chosen, and asks the user before it gives a file that exists.
struct FileDialog {
    std::string title;
    std::string filter;
    std::string folder;
    bool save = false;
    std::string name{};     // without an ending
    bool ofFolders = false; // a folder is chosen, or a new one made
};

// What the user chose in a print dialogue: the printer, made ready, and the pages, from 1.
struct PrintChoice {
    std::unique_ptr<PageSink> printer;
    int first = 1;
    int last = 1;
};

// Thrown where the program ends: through every procedure up to the desk's outermost loop, caught nowhere between.
// Not an exception of the standard kind, so that no handler takes it for a failure.
struct ProcessEnd {
    std::optional<std::string> message; // the run-time message, when a failure ends the run
};

// Everything a screen may ask of the world around it. Three kinds: the desktop, the script's, the tests'.
// One thread: all procedures of screens run in the desk's loop.
class Desk {
public:
    Desk();
    virtual ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    // The default instance of a screen: made at the first asking and anew after it was unloaded.
    // It stays alive until nothing of it is running any more.
    template <class F> F& form() {
        auto& slot = instances_[typeid(F)];
        if (slot == nullptr || isClosed(*slot))
            slot = keep(std::make_shared<F>(*this));
        return static_cast<F&>(*slot);
    }
    // The default instance if it exists and is not closed; null otherwise.
    template <class F> F* existing() {
        const auto found = instances_.find(typeid(F));
        return found == instances_.end() || found->second == nullptr || isClosed(*found->second) ? nullptr
                                                                                                 : static_cast<F*>(found->second.get());
    }
    // Another instance of a screen, beside the default one.
    template <class F> F& newForm() { return static_cast<F&>(*keep(std::make_shared<F>(*this))); }

    // Loads and shows; a modal show returns when the form is closed or hidden.
    void show(Form& form);
    void showModal(Form& form);
    // The open forms, oldest first; hidden ones included.
    const std::vector<Form*>& openForms() const { return open_; }
    // The form on top: the newest that is not hidden. Floating panels never are. Null when none.
    Form* top() const;
    // Whether a modal form stands over this one.
    bool covered(const Form& form) const;
    // A small panel beside its owner's list: shown without taking the top. Closed with unload.
    void showFloating(Form& panel);
    bool floating(const Form& form) const;
    // Called by Form::ensureLoaded, before the form's load procedure runs.
    void loading(Form& form) { prepared(form); }
    // Called by Form::unload.
    void closed(Form& form);
    // The form whose focused control has the keyboard; null when none is shown.
    Form* keyboard() const { return keyboard_; }
    // The user or the program turns to this form: the focused control of the form turned away from loses the focus (nothing is
    // validated), the one remembered here gets it back.
    void giveKeyboard(Form& form);

    virtual Answer message(const Message& message) = 0;
    Answer message(const std::string& text, const std::string& caption, MessageIcon icon = MessageIcon::None,
                   MessageButtons buttons = MessageButtons::Ok) {
        return message(Message{text, caption, icon, buttons});
    }
    // The text typed, or nothing when the box was cancelled.
    virtual std::optional<std::string> input(const Input& input) = 0;
    virtual std::optional<std::filesystem::path> file(const FileDialog& dialog) = 0;
    virtual void beep() = 0;
    // Nested: as many off as on.
    virtual void waitCursor(bool on) = 0;
    // Asked again and again, with how long it has lasted, while a statement waits for another program that is saving to the store. Nothing
    // of a screen runs meanwhile. False when the user, or the desk where there is none, gives up.
    virtual bool waitForStore(std::chrono::milliseconds waited);
    virtual void storeIsFree() {} // the end of it
    // Lets the window paint and take what waits; procedures of screens may run meanwhile.
    virtual void yield() = 0;
    // Opens a page of the web or a file of help in the browser; `topic` is shown as it is written.
    virtual void browse(const std::string& topic) = 0;
    // Opens the help page of the form, or the first one where it has none of its own.
    void showHelp(const Form& form);
    virtual void copyText(const std::string& text) = 0;
    // A table for the clipboard: the text with tabs between cells, and the same as HTML where something takes that.
    virtual void copyTable(const std::string& text, const std::string& /*html*/) { copyText(text); }
    virtual std::vector<std::string> printers() = 0;
    // The printer that is taken when none is chosen; empty when there is none. A print dialogue makes the chosen one the default.
    virtual std::string defaultPrinter();
    // Nothing happens for a name that is empty or no printer's.
    virtual void setDefaultPrinter(const std::string& /*printer*/) {}
    // The print dialogue for so many pages; nothing when it was cancelled.
    virtual std::optional<PrintChoice> printerSetup(const std::string& title, int pages);
    // A PDF to be made in place of the file; null where pages cannot be drawn.
    virtual std::unique_ptr<PageSink> pdf(const std::filesystem::path& file, const std::string& title);
    // How wide texts on pages will be drawn: letters of one width where nothing is drawn.
    virtual const TextMeasure& textMeasure() const;
    // Shown in the status bar of the main window for kStatusMs; empty takes it away at once.
    static constexpr int kStatusMs = 10'000;
    virtual void status(const std::string& text) = 0;
    // Stands in that status bar until it is taken away with an empty text.
    virtual void hint(const std::string& /*text*/) {}

    // What a screen keeps for its user from one run of the program to the next, such as how a list is sorted. Empty when nothing is kept: a
    // desk without a user of its own keeps nothing.
    virtual std::string remembered(const std::string& /*form*/, const std::string& /*what*/) { return ""; }
    virtual void remember(const std::string& /*form*/, const std::string& /*what*/, const std::string& /*text*/) {}

    virtual std::filesystem::path programFolder() const;
    virtual std::filesystem::path documentsFolder() const;

    // Ends the program at once.
    [[noreturn]] void end() { throw ProcessEnd{}; }

    Clock& clock() { return clock_; }
    void timerStarted(Timer& timer);
    void timerStopped(Timer& timer);

protected:
    // Builds the drawing unseen, so that the load procedure finds the form's size and its controls' places.
    virtual void prepared(Form& /*form*/) {}
    virtual void opened(Form& form) = 0;   // draw it
    virtual void vanished(Form& form) = 0; // take its drawing away
    // Runs the loop until done() holds.
    virtual void runUntil(const std::function<bool()>& done) = 0;
    virtual void armTimer(Timer& timer) = 0;
    virtual void disarmTimer(Timer& timer) = 0;

    // Frees forms that were unloaded; called by the loops when no procedure of theirs can be running (depth 0).
    void sweep();
    // Frees every form, closed or not, without a word to it. A desk's destructor calls it while its own parts still stand.
    void dismissAll();

private:
    std::shared_ptr<Form> keep(std::shared_ptr<Form> form);
    static bool isClosed(const Form& form);
    void present(Form& form, bool modal);

    std::map<std::type_index, std::shared_ptr<Form>> instances_;
    std::vector<std::shared_ptr<Form>> alive_;
    std::vector<Form*> open_;
    std::vector<Form*> floating_;
    Form* keyboard_ = nullptr;
    Clock clock_;
};

} // namespace merchantry::ui
