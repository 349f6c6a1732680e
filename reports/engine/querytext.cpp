#include "reports/engine/querytext.h"

#include "app/db/tsql/parser.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>

namespace merchantry::reports {
namespace {

// Conditions name a day's last second; the store's times go on to its last 997 milliseconds. A sale in between belongs to that day.
std::string toTheEndOfDays(const std::string& conditions) {
    return replaced(conditions, " 11:59:59 PM'", " 11:59:59.997 PM'");
}

class QueryText {
public:
    QueryText(const Definition& definition, const ParameterTexts& parameters) : definition_(definition), parameters_(parameters) {}

    std::string filled() const {
        const std::string& sql = definition_.query.sql;
        std::string result;
        std::size_t at = 0;
        for (std::size_t open = sql.find('{'); open != std::string::npos; open = sql.find('{', at)) {
            const std::size_t close = sql.find('}', open);
            if (close == std::string::npos)
                fail("A brace is opened and not closed.", open);
            result += sql.substr(at, open - at) + place(sql.substr(open + 1, close - open - 1), open);
            at = close + 1;
        }
        return result + sql.substr(at);
    }

private:
    [[noreturn]] void fail(const std::string& reason, std::size_t at) const {
        const std::string& sql = definition_.query.sql;
        const auto lines = std::count(sql.begin(), sql.begin() + static_cast<std::ptrdiff_t>(std::min(at, sql.size())), '\n');
        throw statementError(definition_, static_cast<int>(lines) + 1, reason);
    }
    std::string parameter(std::size_t number) const { return number <= parameters_.size() ? parameters_[number - 1] : std::string(); }

    // What the parameter of a kind holds; empty when the report has none.
    std::string ofKind(ParameterKind kind) const {
        const auto& kinds = definition_.query.parameters;
        const auto found = std::find(kinds.begin(), kinds.end(), kind);
        return found == kinds.end() ? "" : parameter(static_cast<std::size_t>(found - kinds.begin()) + 1);
    }

    std::string place(const std::string& name, std::size_t at) const {
        if (name == "where")
            return toTheEndOfDays(ofKind(ParameterKind::Where));
        if (name == "and") {
            const std::string conditions = conditionsOf(toTheEndOfDays(ofKind(ParameterKind::Where)));
            return conditions.empty() ? "" : " AND (" + conditions + ")";
        }
        if (name == "order")
            return order();
        const auto number = numberOf(name);
        const auto& kinds = definition_.query.parameters;
        if (!number || *number < 1 || *number > static_cast<double>(kinds.size()) ||
            name.find_first_not_of("0123456789") != std::string::npos)
            fail("The place {" + name + "} means nothing here.", at);
        const auto index = static_cast<std::size_t>(*number);
        return literal(kinds[index - 1], parameter(index), index, at);
    }

    std::string literal(ParameterKind kind, const std::string& text, std::size_t index, std::size_t at) const {
        if (kind == ParameterKind::Number) {
            const std::string_view number = trimmed(text);
            if (number.empty())
                return "0";
            if (!numberOf(number) || number.find_first_not_of("0123456789.-") != std::string_view::npos)
                fail("Parameter " + std::to_string(index) + " must be a number, and is \"" + text + "\".", at);
            return std::string(number);
        }
        if (kind != ParameterKind::Text)
            return text;
        std::string quoted = "'";
        for (const char c : text)
            quoted += c == '\'' ? std::string("''") : std::string(1, c);
        return quoted + "'";
    }

    // The groups first, then the chosen columns or the order of last resort, then what tells the rest apart. What stands there already is
    // not said again.
    std::string order() const {
        std::vector<std::vector<std::string>> groups;
        for (const GroupDefinition& group : definition_.groups)
            groups.push_back(group.order.empty() ? std::vector<std::string>{"[" + group.field + "]"} : columnsIn(group.order));
        std::vector<std::string> rest;
        const std::string sort(trimmed(ofKind(ParameterKind::Sort)));
        if (sort.empty()) {
            rest = columnsIn(definition_.query.order);
        } else {
            const auto known = definition_.query.sort.find(lowerCase(sort));
            const std::string direction = upperCase(trimmed(ofKind(ParameterKind::Direction)));
            for (const std::string& column : columnsIn(known == definition_.query.sort.end() ? sort : known->second))
                if (!turned(groups, column, direction))
                    rest.push_back(column + (direction.empty() ? "" : " " + direction));
        }
        std::vector<std::string> parts;
        for (const std::vector<std::string>& group : groups)
            parts.insert(parts.end(), group.begin(), group.end());
        parts.insert(parts.end(), rest.begin(), rest.end());
        for (const std::string& column : columnsIn(definition_.query.then))
            if (std::none_of(parts.begin(), parts.end(), [&](const std::string& part) { return sameText(withoutDirection(part), column); }))
                parts.push_back(column);
        std::erase(parts, "");
        return parts.empty() ? "" : " ORDER BY " + joined(parts, ", ");
    }

    static std::string_view withoutDirection(std::string_view column) {
        for (const std::string_view direction : {" ASC", " DESC"})
            if (column.size() > direction.size() && sameText(column.substr(column.size() - direction.size()), direction))
                return trimmed(column.substr(0, column.size() - direction.size()));
        return column;
    }

    // "Month, MIN(a, b)" are two.
    static std::vector<std::string> columnsIn(const std::string& list) {
        std::vector<std::string> columns(1);
        int depth = 0;
        for (const char c : list) {
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
            if (c == ',' && depth == 0)
                columns.emplace_back();
            else
                columns.back() += c;
        }
        for (std::string& column : columns)
            column = std::string(trimmed(column));
        return columns;
    }

    // A chosen column that is one of a group's becomes the first of that group's order, in the chosen direction.
    static bool turned(std::vector<std::vector<std::string>>& groups, const std::string& column, const std::string& direction) {
        for (std::vector<std::string>& group : groups)
            for (auto part = group.begin(); part != group.end(); ++part) {
                if (!sameText(*part, column))
                    continue;
                *part += direction == "DESC" ? " DESC" : "";
                std::rotate(group.begin(), part, part + 1);
                return true;
            }
        return false;
    }

    const Definition& definition_;
    const ParameterTexts& parameters_;
};

bool isOneQuery(const db::tsql::Batch& batch) {
    if (batch.statements.size() != 1)
        return false;
    const db::tsql::StatementKind kind = batch.statements[0]->kind;
    return kind == db::tsql::StatementKind::Select || kind == db::tsql::StatementKind::Execute;
}

} // namespace

DefinitionError statementError(const Definition& definition, int line, const std::string& reason) {
    return {definition.file.filename().string(), definition.query.line + std::max(1, line) - 1, reason};
}

std::string conditionsOf(const std::string& where) {
    const std::string_view text = trimmed(where);
    return std::string(sameText(text.substr(0, 5), "where") ? trimmed(text.substr(5)) : text);
}

std::string queryText(const Definition& definition, const ParameterTexts& parameters) {
    const QueryText query(definition, parameters);
    std::string text = query.filled();
    try {
        if (isOneQuery(db::tsql::parseBatch(text)))
            return text;
    } catch (const db::DbError& error) {
        throw statementError(definition, error.line(), error.what());
    }
    throw statementError(definition, 1, "A report's query is one SELECT or one call.");
}

} // namespace merchantry::reports
