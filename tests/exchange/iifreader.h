#pragma once

#include "base/currency.h"
#include "base/text.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace merchantry::exchange {

// Reads the text format of accounting programs back, as one of them would: fields by the names of their heading, and every entry must come
// to 0. Throws std::runtime_error with the line.
class IifReader {
public:
    using Record = std::map<std::string, std::string>; // by heading
    struct Entry {
        std::vector<Record> lines;
    };

    explicit IifReader(const std::string& bytes) {
        const auto lines = split(bytes, "\r\n");
        if (lines.back().empty() == false)
            throw std::runtime_error("the last line has no end");
        for (line_ = 0; line_ + 1 < lines.size(); ++line_)
            take(split(lines[line_], "\t"));
        if (open_)
            fail("ends within an entry");
    }

    std::map<std::string, std::vector<Record>> lists; // by keyword
    std::vector<Entry> entries;

    // What an account's lines add up to.
    Currency sumOf(const std::string& account) const {
        Currency sum;
        for (const Entry& entry : entries)
            for (const Record& line : entry.lines)
                if (line.at("ACCNT") == account || line.at("ACCNT").starts_with(account + ":"))
                    sum += Currency::fromText(line.at("AMOUNT"));
        return sum;
    }

private:
    [[noreturn]] void fail(const std::string& why) const { throw std::runtime_error("line " + std::to_string(line_ + 1) + ": " + why); }

    void take(const std::vector<std::string>& fields) {
        if (fields[0].starts_with("!")) {
            headings_[fields[0].substr(1)] = fields;
            return;
        }
        if (!headings_.contains(fields[0]))
            fail("no heading for " + fields[0]);
        const auto& heading = headings_[fields[0]];
        if (fields.size() != heading.size())
            fail("another number of fields than its heading");
        Record record;
        for (std::size_t i = 1; i < fields.size(); ++i)
            record[heading[i]] = fields[i];
        if (fields[0] == "TRNS" || fields[0] == "SPL")
            entryLine(fields[0] == "TRNS", record);
        else if (fields[0] == "ENDTRNS")
            entryEnd();
        else
            lists[fields[0]].push_back(record);
    }
    void entryLine(bool first, const Record& record) {
        if (first == open_)
            fail("an entry begins in another, or a line stands outside of one");
        if (first)
            entries.emplace_back();
        open_ = true;
        entries.back().lines.push_back(record);
    }
    void entryEnd() {
        Currency sum;
        for (const Record& line : entries.back().lines)
            sum += Currency::fromText(line.at("AMOUNT"));
        if (!open_ || sum != Currency() || entries.back().lines.size() < 2)
            fail("the entry comes to " + sum.toText());
        open_ = false;
    }

    std::map<std::string, std::vector<std::string>> headings_;
    std::size_t line_ = 0;
    bool open_ = false;
};

} // namespace merchantry::exchange
