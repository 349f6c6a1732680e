#pragma once

#include "base/date.h"
#include "base/value.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::ui {
class Form;
}

namespace merchantry::ui::play {

class PlayDesk;

// How the application of a play finds its store.
struct StartUp {
    // Settings by name ("name", "server", ...), in the order of their lines; the last is the default configuration.
    std::vector<std::map<std::string, std::string>> configurations;
    // Nothing is stored, as on a new computer; otherwise, without any configuration, the host's own for the play's store holds.
    bool bare = false;
};

struct LogEntry {
    std::string tag;
    std::string procedure;
};

// What a play needs of the application and its store. The program that composes both implements it; one host serves one script, and
// outlives its desk. Procedures throw std::exception with the store's message where the store refuses.
// The host tells the desk, as it happens, which statements the application's connections send (PlayDesk::statementSent) and which reports
// it opens (PlayDesk::reportOpened).
class PlayHost {
public:
    virtual ~PlayHost() = default;

    // Runs the application's start-up on this desk; called once. It may end the process.
    virtual void start(PlayDesk& desk, const StartUp& startUp) = 0;
    // The form of that name, its default instance made when there is none; null when the program has no such form.
    virtual Form* formNamed(PlayDesk& desk, const std::string& name) = 0;

    // Runs a batch on a session of its own, beside the application's, and gives the rows of its first result that has columns.
    virtual std::vector<std::vector<Value>> query(const std::string& batch) = 0;
    // The newest row of the error log; nothing when it is empty.
    virtual std::optional<LogEntry> newestLogEntry() = 0;
    // What stands for "@store" in a configuration.
    virtual std::string storePath() const = 0;
    // The store's idea of now, from here on.
    virtual void setClock(Date now) = 0;
};

} // namespace merchantry::ui::play
