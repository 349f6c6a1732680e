#pragma once

#include <ostream>
#include <string>

namespace merchantry::ui::play {

// The record of a play: one event a line, in order.
class Transcript {
public:
    // Borrows the stream.
    explicit Transcript(std::ostream& out, bool statements = false) : out_(out), statements_(statements) {}
    void event(const std::string& line) { out_ << line << std::endl; }
    bool showsStatements() const { return statements_; }

private:
    std::ostream& out_;
    bool statements_;
};

} // namespace merchantry::ui::play
