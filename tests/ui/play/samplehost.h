#pragma once

#include "tests/ui/play/sampleforms.h"
#include "ui/play/player.h"

#include <sstream>

namespace merchantry::ui::sample {

// The sample application's host: a store that knows three batches, and a log.
class SampleHost : public play::PlayHost {
public:
    void start(play::PlayDesk& desk, const play::StartUp& startUp) override {
        for (const auto& configuration : startUp.configurations)
            desk.statementSent("open " + configuration.at("server"));
        if (startUp.bare)
            desk.end();
        desk.statementSent("SELECT 1 FROM Item");
        desk.statementSent("SELECT 2 FROM Item");
        desk.reportOpened("Items.rpt", {"A1", "2026"});
        desk.show(desk.form<frmLogin>());
    }
    Form* formNamed(play::PlayDesk& desk, const std::string& name) override { return name == "frmMain" ? &desk.form<frmMain>() : nullptr; }
    std::vector<std::vector<Value>> query(const std::string& batch) override {
        if (batch == "rows")
            return {{Value(1), Value(Currency::fromUnits(125000)), Value()},
                    {Value("x"), Value(true), Value(*Date::fromParts(2026, 3, 4))}};
        if (batch == "none")
            return {};
        if (batch == "now")
            return {{Value(now)}};
        throw std::runtime_error("Invalid object name");
    }
    std::optional<play::LogEntry> newestLogEntry() override { return play::LogEntry{"modItems", "Populate"}; }
    std::string storePath() const override { return "the.store"; }
    void setClock(Date date) override { now = date; }
    Date now;
};

struct Played {
    bool passed = false;
    std::string transcript;
};

inline Played playText(const std::string& source, bool statements = false) {
    std::ostringstream out;
    play::Transcript transcript(out, statements);
    const play::Script script = play::parseScript("test.play", source);
    SampleHost host;
    play::PlayDesk desk(transcript);
    const bool passed = play::Player(script, desk, host, transcript).run();
    return {passed, out.str()};
}

// Most scripts work in the shop's window.
inline Played playInShop(const std::string& source) {
    return playText("login \"manager\" \"x\"\ncommand mnuShop\n" + source);
}

} // namespace merchantry::ui::sample
