#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace merchantry::toml {

class Value;
using Array = std::vector<Value>;
using Table = std::map<std::string, Value, std::less<>>;

// A text that is not TOML, or a value that is not there or of another kind than was asked for.
class Error : public std::runtime_error {
public:
    Error(const std::string& what, int line) : std::runtime_error(what), line_(line) {}
    int line() const { return line_; } // from 1; 0 when it belongs to no line

private:
    int line_;
};

// One value of a TOML text with the line where it stands. Dates and times come as texts.
class Value {
public:
    Value() = default;
    Value(bool flag) : data_(flag) {}
    Value(std::int64_t number) : data_(number) {}
    Value(double number) : data_(number) {}
    Value(std::string text) : data_(std::move(text)) {}
    Value(const char* text) : data_(std::string(text)) {}
    Value(Array entries) : data_(std::move(entries)) {}
    Value(Table entries) : data_(std::move(entries)) {}

    bool isFlag() const { return std::holds_alternative<bool>(data_); }
    bool isInteger() const { return std::holds_alternative<std::int64_t>(data_); }
    bool isFloating() const { return std::holds_alternative<double>(data_); }
    bool isText() const { return std::holds_alternative<std::string>(data_); }
    bool isArray() const { return std::holds_alternative<Array>(data_); }
    bool isTable() const { return std::holds_alternative<Table>(data_); }

    // These throw Error when the value is of another kind.
    bool flag() const { return get<bool>("true or false"); }
    std::int64_t integer() const { return get<std::int64_t>("a whole number"); }
    double floating() const { return get<double>("a number"); }
    const std::string& text() const { return get<std::string>("a text"); }
    const Array& array() const { return get<Array>("a list"); }
    const Table& table() const { return get<Table>("a table"); }
    std::vector<std::string> texts() const; // of a list of texts

    // The value under a key of a table: null when the key is not there; at() throws Error then.
    const Value* find(const std::string& key) const;
    const Value& at(const std::string& key) const;

    int line() const { return line_; }                            // where it begins, from 1; 0 for one that was not read
    const std::string& sourceLine() const { return sourceLine_; } // that line's text

    void setPlace(int line, std::string sourceLine) {
        line_ = line;
        sourceLine_ = std::move(sourceLine);
    }

private:
    template <class T> const T& get(const char* wanted) const {
        if (const T* held = std::get_if<T>(&data_))
            return *held;
        throw Error(std::string("This must be ") + wanted + ".", line_);
    }

    std::variant<std::monostate, bool, std::int64_t, double, std::string, Array, Table> data_;
    int line_ = 0;
    std::string sourceLine_;
};

// The root table of a text. Throws Error with the line.
Value parse(const std::string& text);
// The root table of a file. Throws Error, also when the file cannot be read.
Value parseFile(const std::string& path);
// A table as a text that parse reads again.
std::string format(const Table& root);

} // namespace merchantry::toml
