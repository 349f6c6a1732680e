#include "ui/play/player.h"

#include "ui/play/step.h"
#include "ui/play/verbs.h"

#include <utility>

namespace merchantry::ui::play {
namespace {

// Counts a loop for as long as it runs.
struct Deeper {
    explicit Deeper(int& counted) : depth(counted) { ++depth; }
    ~Deeper() { --depth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
    int& depth;
};

} // namespace

Player::Player(const Script& script, PlayDesk& desk, PlayHost& host, Transcript& transcript)
    : script_(script), desk_(desk), host_(host), transcript_(transcript) {
    desk_.loop = [this](const std::function<bool()>& done) { runUntil(done); };
    desk_.stuck = [this](const std::string& expected, const std::string& found) {
        fail({expected, found});
        throw ProcessEnd{};
    };
}

bool Player::run() {
    while (!over() || (later_ && !failed_)) {
        try {
            next();
        } catch (const ProcessEnd& end) {
            processEnded(end);
        }
        desk_.settle(true);
        if (started_ && !ending_ && !failed_ && desk_.openForms().empty())
            processEnded({});
    }
    if (!failed_)
        guarded([this] { checkEnd(); });
    return !failed_;
}

void Player::next() {
    if (later_) {
        guarded(std::exchange(later_, nullptr));
        return;
    }
    const Line& line = script_.lines[next_];
    line_ = line.number;
    if (!started_ && startsUp(line)) {
        start();
        return;
    }
    ++next_;
    perform(line);
}

void Player::start() {
    started_ = true;
    guarded([this] { host_.start(desk_, startUp_); });
}

void Player::perform(const Line& line) {
    guarded([&] { doLine(*this, line); });
}

void Player::guarded(const std::function<void()>& act) {
    try {
        act();
    } catch (const LineFailure& failure) {
        fail(failure);
        if (depth_ > 0)
            throw ProcessEnd{};
    } catch (const std::exception& error) {
        throw ProcessEnd{error.what()};
    }
}

void Player::runUntil(const std::function<bool()>& done) {
    if (refusalExpected_) {
        fail({"this to be refused", "it opened a form"});
        throw ProcessEnd{};
    }
    const Deeper deeper(depth_);
    while (!done()) {
        if (over() && !later_) {
            unwinding_ = true;
            throw ProcessEnd{};
        }
        next();
        desk_.settle(false);
    }
}

void Player::processEnded(const ProcessEnd& end) {
    later_ = nullptr;
    refusalExpected_ = false;
    if (!failed_ && !unwinding_) {
        ending_ = Ending{end.message, line_, false};
        transcript_.event(end.message ? "ended " + inQuotes(*end.message) : "ended");
    }
    desk_.close();
}

void Player::checkEnd() {
    if (ending_ && ending_->message && !ending_->expected) {
        line_ = ending_->line;
        throw LineFailure{"the process to go on", "it ended with " + inQuotes(*ending_->message)};
    }
    // A question that the play has answered was read.
    for (const Message& box : desk_.messages)
        if (box.buttons == MessageButtons::Ok)
            throw LineFailure{"no unread message at the end", "there was message " + told(box)};
}

void Player::fail(const LineFailure& failure) {
    if (failed_)
        return;
    failed_ = true;
    transcript_.event(script_.name + ":" + std::to_string(line_) + ": expected " + failure.expected + ", " + failure.found);
}

int runPlays(const PlayOptions& options, const HostMaker& makeHost, std::ostream& out) {
    int passed = 0;
    int failed = 0;
    Transcript transcript(out, options.statements);
    for (const std::filesystem::path& file : options.scripts) {
        bool held = false;
        try {
            const Script script = readScript(file);
            checkVerbs(script);
            const std::unique_ptr<PlayHost> host = makeHost(file);
            PlayDesk desk(transcript, options.stage);
            held = Player(script, desk, *host, transcript).run();
        } catch (const ScriptError& error) {
            transcript.event(error.what());
        } catch (const std::exception& error) {
            transcript.event(file.string() + ": expected a store to play on, " + error.what());
        }
        ++(held ? passed : failed);
    }
    out << passed << " passed, " << failed << " failed" << std::endl;
    return failed == 0 ? 0 : 1;
}

} // namespace merchantry::ui::play
