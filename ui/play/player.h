#pragma once

#include "ui/play/playdesk.h"
#include "ui/play/playhost.h"
#include "ui/play/script.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace merchantry::ui::play {

// A line that could not be done or did not hold. Not of the standard kind, and never thrown through a screen's procedure.
struct LineFailure {
    std::string expected;
    std::string found;
    bool refused = false; // the screen would not have let the user do it
    bool unmet = false;   // what the line expects is not there; the line itself could be done
};

// Plays one script on one desk. Lines are done one after the other; while a modal form is open, the procedure that showed it waits and the
// lines that follow are done inside its loop. Where the script ends, or fails, with procedures waiting, they are unwound by ProcessEnd.
class Player {
public:
    // Borrows all; the host outlives the desk.
    Player(const Script& script, PlayDesk& desk, PlayHost& host, Transcript& transcript);

    // The whole script. True when every line held; otherwise the transcript's last event tells the line and why.
    bool run();

    PlayDesk& desk() { return desk_; }
    PlayHost& host() { return host_; }
    Transcript& transcript() { return transcript_; }
    StartUp& startUp() { return startUp_; }
    bool started() const { return started_; }
    std::map<std::string, std::string>& variables() { return variables_; }

    // How the process ended, if it did.
    struct Ending {
        std::optional<std::string> message;
        int line = 0;
        bool expected = false;
    };
    std::optional<Ending>& ending() { return ending_; }
    // To be checked when the verb's procedures are through, which may be after a modal loop ended: before the next line.
    void checkLater(std::function<void()> check) { later_ = std::move(check); }
    // While set, opening a modal form means that what should be refused was done.
    void watchRefusal(bool on) { refusalExpected_ = on; }

private:
    bool over() const { return failed_ || next_ >= script_.lines.size(); }
    void next();
    void perform(const Line& line);
    void start();
    // Runs a part of the application or of a line; failures end the play, the application's errors end its process.
    void guarded(const std::function<void()>& act);
    void runUntil(const std::function<bool()>& done);
    void processEnded(const ProcessEnd& end);
    void checkEnd();
    // Ends the play with the current line's failure.
    void fail(const LineFailure& failure);

    const Script& script_;
    PlayDesk& desk_;
    PlayHost& host_;
    Transcript& transcript_;
    StartUp startUp_;
    std::map<std::string, std::string> variables_;
    std::function<void()> later_;
    std::optional<Ending> ending_;
    std::size_t next_ = 0;
    int line_ = 0;  // number of the line being done
    int depth_ = 0; // modal loops that run
    bool started_ = false;
    bool failed_ = false;
    bool unwinding_ = false;
    bool refusalExpected_ = false;
};

struct PlayOptions {
    std::vector<std::filesystem::path> scripts;
    bool statements = false;
    Stage* stage = nullptr; // borrowed
};
using HostMaker = std::function<std::unique_ptr<PlayHost>(const std::filesystem::path& script)>;

// Plays the scripts, each on a host of its own, and writes the transcript with the count of scripts passed and failed as its last line.
// 0 when all passed, otherwise 1.
int runPlays(const PlayOptions& options, const HostMaker& makeHost, std::ostream& out);

} // namespace merchantry::ui::play
