#include "app/storerows.h"

#include "base/text.h"
#include "base/value.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace merchantry::app {
namespace {

using Fields = std::vector<db::TableShape::Field>;

constexpr int kRowsOfStatement = 200;
constexpr int kRowsOfJson = 2000;
constexpr std::size_t kJsonBytes = 1 << 20; // a block is sent when it has grown so far

// Without a sign between day, month and year it is read in one way only, whatever the language, and faster than any other.
std::string dateText(Date date) {
    return replaced(date.toIsoTextMs(), "-", "");
}

std::string floatText(double number) {
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific);
    return {text.data(), end.ptr};
}

bool isPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

// Numbers, which are written alike everywhere.
std::string numberText(const Value& value) {
    if (value.is<bool>())
        return value.as<bool>() ? "1" : "0";
    if (value.is<Currency>())
        return value.as<Currency>().toFixedText();
    if (value.is<Decimal>())
        return value.as<Decimal>().toText();
    return value.is<double>() ? floatText(value.as<double>()) : value.toText();
}

// A value as a statement writes it, in a form that no server reads in its own way.
std::string literal(const Value& value) {
    if (value.isNull())
        return "NULL";
    if (value.is<Date>())
        return "'" + dateText(value.as<Date>()) + "'";
    if (value.is<Bytes>())
        return hexText(value.as<Bytes>());
    if (value.is<std::string>())
        return (isPlain(value.as<std::string>()) ? "'" : "N'") + replaced(value.as<std::string>(), "'", "''") + "'";
    return numberText(value);
}

class StatementBlock : public RowBlock {
public:
    StatementBlock(const std::string& table, const Fields& fields)
        : head_("INSERT INTO " + bracketed(table) + " (" + namesOf(fields) + ") VALUES ") {}

    void add(const db::RowView& row) override {
        text_ += rows_++ == 0 ? head_ + "(" : ", (";
        for (int i = 0; i < row.size(); ++i)
            text_ += (i > 0 ? ", " : "") + literal(row.value(i));
        text_ += ")";
    }
    bool isFull() const override { return rows_ == kRowsOfStatement; }
    void send(db::Session& to) override {
        db::NoResult none;
        if (rows_ > 0)
            to.execute(text_, none);
        text_.clear();
        rows_ = 0;
    }

private:
    std::string head_;
    std::string text_;
    int rows_ = 0;
};

// Whether JSON writes every character of it as it is. Compatible servers hand on those that it does not in their written form.
bool isCleanJson(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return c == '"' || c == '\\' || static_cast<unsigned char>(c) < static_cast<unsigned char>(' '); });
}

// The type under which a cell is taken out of JSON.
std::string jsonType(const db::SqlType& type) {
    switch (type.kind) {
    case db::TypeKind::Text:
        return "varchar(max)";
    case db::TypeKind::NText:
        return "nvarchar(max)";
    case db::TypeKind::Image: // such a row goes in a statement, unless it is null
        return "varbinary(max)";
    default:
        return type.toText();
    }
}

// Rows as JSON; those that it cannot hold as they are go in statements.
class JsonBlock : public RowBlock {
public:
    JsonBlock(const std::string& table, const Fields& fields) : others_(table, fields) {
        std::string columns;
        std::string types;
        for (const auto& field : fields) {
            const std::string key = "c" + std::to_string(keys_.size());
            keys_.push_back((keys_.empty() ? "\"" : ",\"") + key + "\":");
            columns += (columns.empty() ? "" : ", ") + key;
            types += (types.empty() ? "" : ", ") + key + " " + jsonType(field.type);
        }
        statement_ = "INSERT INTO " + bracketed(table) + " (" + namesOf(fields) + ") SELECT " + columns + " FROM OPENJSON(@rows) WITH (" +
                     types + ")";
    }

    void add(const db::RowView& row) override {
        const std::size_t before = json_.size();
        json_ += rows_ == 0 ? "[{" : ",{";
        for (int i = 0; i < row.size(); ++i) {
            if (!addCell(keys_[static_cast<std::size_t>(i)], row.value(i))) {
                json_.resize(before);
                others_.add(row);
                return;
            }
        }
        json_ += "}";
        ++rows_;
    }
    bool isFull() const override { return rows_ == kRowsOfJson || json_.size() > kJsonBytes || others_.isFull(); }
    void send(db::Session& to) override {
        others_.send(to);
        if (rows_ == 0)
            return;
        std::vector<db::Parameter> rows{{"rows", {db::TypeKind::VarChar, db::SqlType::kMax, 0, 0}, std::move(json_) + "]"}};
        db::NoResult none;
        to.execute(statement_, rows, none);
        json_.clear();
        rows_ = 0;
    }

private:
    bool addCell(const std::string& key, const Value& value) {
        json_ += key;
        if (value.is<std::string>()) {
            json_ += '"' + value.as<std::string>() + '"';
            return isCleanJson(value.as<std::string>());
        }
        json_ += value.isNull() ? "null" : value.is<Date>() ? '"' + dateText(value.as<Date>()) + '"' : numberText(value);
        return !value.is<Bytes>();
    }

    StatementBlock others_;
    std::vector<std::string> keys_;
    std::string statement_;
    std::string json_;
    int rows_ = 0;
};

} // namespace

std::vector<db::TableShape::Field> storedFields(db::Session& session, const std::string& table) {
    Fields fields = session.table(table).fields;
    std::erase_if(fields, [](const auto& field) { return field.computed; });
    return fields;
}

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

std::string namesOf(const Fields& fields) {
    std::string names;
    for (const auto& field : fields)
        names += (names.empty() ? "" : ", ") + bracketed(field.name);
    return names;
}

std::unique_ptr<RowBlock> rowBlockFor(const std::string& table, const Fields& fields, bool takesJson) {
    if (takesJson)
        return std::make_unique<JsonBlock>(table, fields);
    return std::make_unique<StatementBlock>(table, fields);
}

bool takesJson(db::Session& session) {
    try {
        db::NoResult none;
        session.execute("SELECT c FROM OPENJSON('[{\"c\":1}]') WITH (c int)", none);
        return true;
    } catch (const db::DbError&) {
        return false;
    }
}

} // namespace merchantry::app
