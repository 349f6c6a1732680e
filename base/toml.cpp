// The only place that knows the library: its header takes seconds to compile.
#include "base/toml.h"

#include <fstream>
#include <sstream>
#include <toml.hpp>

namespace merchantry::toml {
namespace {

Value converted(const ::toml::value& source) {
    Value result;
    if (source.is_boolean()) {
        result = Value(source.as_boolean());
    } else if (source.is_integer()) {
        result = Value(static_cast<std::int64_t>(source.as_integer()));
    } else if (source.is_floating()) {
        result = Value(source.as_floating());
    } else if (source.is_string()) {
        result = Value(source.as_string().str);
    } else if (source.is_array()) {
        Array entries;
        for (const ::toml::value& entry : source.as_array())
            entries.push_back(converted(entry));
        result = Value(std::move(entries));
    } else if (source.is_table()) {
        Table entries;
        for (const auto& [key, entry] : source.as_table())
            entries.emplace(key, converted(entry));
        result = Value(std::move(entries));
    } else {
        std::ostringstream text;
        text << source;
        result = Value(text.str());
    }
    const ::toml::source_location place = source.location();
    result.setPlace(static_cast<int>(place.line()), place.line_str());
    return result;
}

::toml::value converted(const Value& source) {
    if (source.isFlag())
        return source.flag();
    if (source.isInteger())
        return source.integer();
    if (source.isFloating())
        return source.floating();
    if (source.isText())
        return source.text();
    if (source.isArray()) {
        ::toml::array entries;
        for (const Value& entry : source.array())
            entries.push_back(converted(entry));
        return entries;
    }
    ::toml::table entries;
    for (const auto& [key, entry] : source.table())
        entries.emplace(key, converted(entry));
    return entries;
}

} // namespace

std::vector<std::string> Value::texts() const {
    std::vector<std::string> result;
    for (const Value& entry : array())
        result.push_back(entry.text());
    return result;
}

const Value* Value::find(const std::string& key) const {
    const Table& entries = table();
    const auto found = entries.find(key);
    return found == entries.end() ? nullptr : &found->second;
}

const Value& Value::at(const std::string& key) const {
    if (const Value* found = find(key))
        return *found;
    throw Error("\"" + key + "\" is missing.", line_);
}

Value parse(const std::string& text) {
    std::istringstream stream(text);
    try {
        return converted(::toml::parse(stream, ""));
    } catch (const ::toml::syntax_error& error) {
        throw Error("This is not TOML here.", static_cast<int>(error.location().line()));
    } catch (const ::toml::exception& error) {
        throw Error(error.what(), static_cast<int>(error.location().line()));
    }
}

Value parseFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf()))
        throw Error("The file " + path + " cannot be read.", 0);
    return parse(text.str());
}

std::string format(const Table& root) {
    std::ostringstream text;
    text << converted(Value(root));
    return text.str();
}

} // namespace merchantry::toml
