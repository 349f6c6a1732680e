#include "base/tomltable.h"

#include "base/text.h"

#include <sstream>

namespace merchantry::toml {
namespace {

std::string plain(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

} // namespace

FileError::FileError(const std::string& file, int line, const std::string& reason)
    : std::runtime_error(file + ":" + (line > 0 ? std::to_string(line) + ": " : " ") + reason), line_(line) {}

CheckedTable::CheckedTable(const Value& value, std::string file, std::string what)
    : value_(value), file_(std::move(file)), what_(std::move(what)) {
    if (!value.isTable())
        fail(value, what_ + " must be a table.");
}

int CheckedTable::lineOfText(const char* key) const {
    const std::string line(trimmed(value_.at(key).sourceLine()));
    return lineOfKey(key) + (line.ends_with("\"\"\"") || line.ends_with("'''") ? 1 : 0);
}

void CheckedTable::fail(const Value& where, const std::string& reason) const {
    throw FileError(file_, where.line(), reason);
}

const Value* CheckedTable::find(const char* key) {
    asked_.insert(key);
    return value_.find(key);
}

void CheckedTable::read(const char* key, std::string& result) {
    if (const Value* value = find(key)) {
        if (!value->isText())
            fail(*value, quoted(key) + " must be a text.");
        result = value->text();
    }
}

void CheckedTable::read(const char* key, bool& result) {
    if (const Value* value = find(key)) {
        if (!value->isFlag())
            fail(*value, quoted(key) + " must be true or false.");
        result = value->flag();
    }
}

void CheckedTable::read(const char* key, double& result, double low, double high) {
    const Value* value = find(key);
    if (value == nullptr)
        return;
    if (!value->isInteger() && !value->isFloating())
        fail(*value, quoted(key) + " must be a number.");
    result = value->isInteger() ? static_cast<double>(value->integer()) : value->floating();
    if (!(result >= low && result <= high))
        fail(*value, quoted(key) + " must be from " + plain(low) + " to " + plain(high) + ".");
}

void CheckedTable::read(const char* key, int& result, int low, int high) {
    const Value* value = find(key);
    if (value == nullptr)
        return;
    if (!value->isInteger() || value->integer() < low || value->integer() > high)
        fail(*value, quoted(key) + " must be a whole number from " + std::to_string(low) + " to " + std::to_string(high) + ".");
    result = static_cast<int>(value->integer());
}

std::string CheckedTable::wanted(const char* key) {
    std::string text;
    read(key, text);
    if (trimmed(text).empty())
        failHere(what_ + " wants its " + quoted(key) + ".");
    return text;
}

std::vector<CheckedTable> CheckedTable::list(const char* key, const std::string& what) {
    std::vector<CheckedTable> result;
    if (const Value* value = find(key)) {
        if (!value->isArray())
            fail(*value, quoted(key) + " stands in double brackets: [[" + key + "]].");
        for (const Value& entry : value->array())
            result.emplace_back(entry, file_, what);
    }
    return result;
}

std::optional<CheckedTable> CheckedTable::table(const char* key) {
    const Value* value = find(key);
    return value == nullptr ? std::nullopt : std::optional<CheckedTable>(CheckedTable(*value, file_, std::string("[") + key + "]"));
}

void CheckedTable::finish() const {
    for (const auto& [key, value] : value_.table())
        if (asked_.count(key) == 0)
            fail(value, quoted(key) + " means nothing in " + what_ + ".");
}

} // namespace merchantry::toml
