#pragma once

#include "base/toml.h"

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace merchantry::toml {

// A mistake in a file, told as "file:line: reason". Line 0 where no line is to blame.
class FileError : public std::runtime_error {
public:
    FileError(const std::string& file, int line, const std::string& reason);
    int line() const { return line_; }

private:
    int line_;
};

// The words that a key may hold, with their meanings.
template <class E> using Words = std::vector<std::pair<std::string_view, E>>;

// One table of a file: hands out its values by key and kind, and in the end refuses the keys that nobody asked for. Every mistake is a
// FileError.
class CheckedTable {
public:
    // The value must outlive it; `what` says in errors what it is, as "a report".
    CheckedTable(const Value& value, std::string file, std::string what);

    int line() const { return value_.line(); }
    int lineOfKey(const char* key) const { return has(key) ? value_.at(key).line() : line(); }
    // Where the text of a key begins: below its three quotes, when they end their line.
    int lineOfText(const char* key) const;

    [[noreturn]] void fail(const Value& where, const std::string& reason) const;
    [[noreturn]] void failHere(const std::string& reason) const { fail(value_, reason); }
    [[noreturn]] void failAt(const char* key, const std::string& reason) const { fail(value_.at(key), reason); }

    bool has(const char* key) const { return value_.find(key) != nullptr; }
    const Value* find(const char* key);
    // For what another reads.
    void leave(const char* key) { asked_.insert(key); }

    // A key that is not there leaves the result as it is; a number must lie between both bounds.
    void read(const char* key, std::string& result);
    void read(const char* key, bool& result);
    void read(const char* key, double& result, double low, double high);
    void read(const char* key, int& result, int low, int high);
    template <class E> void read(const char* key, E& result, const Words<E>& words) {
        if (const Value* value = find(key))
            result = word(*value, key, words);
    }
    template <class E> E word(const Value& value, const char* key, const Words<E>& words) const {
        std::string known;
        for (const auto& [name, meaning] : words) {
            if (value.isText() && value.text() == name)
                return meaning;
            known += (known.empty() ? "" : ", ") + std::string(name);
        }
        fail(value, quoted(key) + " must be one of: " + known + ".");
    }
    // A text that must be there and say something.
    std::string wanted(const char* key);

    // The entries of a list of tables, each with the name of what it is.
    std::vector<CheckedTable> list(const char* key, const std::string& what);
    std::optional<CheckedTable> table(const char* key);

    // Requires: every key that means something was asked for.
    void finish() const;

    static std::string quoted(const std::string& key) { return "\"" + key + "\""; }

private:
    const Value& value_;
    std::string file_;
    std::string what_;
    std::set<std::string> asked_;
};

} // namespace merchantry::toml
