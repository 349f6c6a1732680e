#include "app/storecopy.h"

#include "app/db/eachrow.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/store.h"
#include "app/db/provider.h"
#include "app/db/schema/schema.h"
#include "app/db/server/database.h"
#include "app/db/server/server.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace merchantry::app {
namespace {

using db::Session;

constexpr int kRowsAtOnce = 200; // of one statement

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

std::string floatText(double number) {
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific);
    return {text.data(), end.ptr};
}

bool isPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

// A value as a statement writes it, in a form that no server reads in its own way.
std::string literal(const Value& value) {
    if (value.isNull())
        return "NULL";
    if (value.is<bool>())
        return value.as<bool>() ? "1" : "0";
    if (value.is<Currency>())
        return value.as<Currency>().toFixedText();
    if (value.is<Decimal>())
        return value.as<Decimal>().toText();
    if (value.is<double>())
        return floatText(value.as<double>());
    if (value.is<Date>())
        return "'" + replaced(value.as<Date>().toIsoTextMs(), " ", "T") + "'";
    if (value.is<Bytes>())
        return hexText(value.as<Bytes>());
    if (value.is<std::string>())
        return (isPlain(value.as<std::string>()) ? "'" : "N'") + replaced(value.as<std::string>(), "'", "''") + "'";
    return value.toText();
}

// The columns of a table that hold something of their own.
std::vector<db::TableShape::Field> storedFields(Session& session, const std::string& table) {
    std::vector<db::TableShape::Field> fields = session.table(table).fields;
    std::erase_if(fields, [](const auto& field) { return field.computed; });
    return fields;
}

std::string namesOf(const std::vector<db::TableShape::Field>& fields) {
    std::string names;
    for (const auto& field : fields)
        names += (names.empty() ? "" : ", ") + bracketed(field.name);
    return names;
}

// Puts the rows that are read from one session into a table of another.
class TableWriter : public db::ResultSink {
public:
    TableWriter(Session& to, std::string table, const std::vector<db::TableShape::Field>& fields)
        : to_(to), table_(bracketed(table)), head_("INSERT INTO " + table_ + " (" + namesOf(fields) + ") VALUES ") {
        identity_ = std::any_of(fields.begin(), fields.end(), [](const auto& field) { return field.identity; });
        switchIdentity("ON");
    }

    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override {
        statement_ += statement_.empty() ? head_ + "(" : ", (";
        for (int i = 0; i < row.size(); ++i)
            statement_ += (i > 0 ? ", " : "") + literal(row.value(i));
        statement_ += ")";
        ++rows;
        if (++waiting_ == kRowsAtOnce)
            flush();
    }
    void finish() {
        flush();
        switchIdentity("OFF");
    }
    std::int64_t rows = 0;

private:
    void flush() {
        if (waiting_ > 0)
            run(statement_);
        statement_.clear();
        waiting_ = 0;
    }
    void switchIdentity(const std::string& word) {
        if (identity_)
            run("SET IDENTITY_INSERT " + table_ + " " + word);
    }
    void run(const std::string& batch) {
        db::NoResult none;
        to_.execute(batch, none);
    }

    Session& to_;
    std::string table_;
    std::string head_;
    bool identity_ = false;
    std::string statement_;
    int waiting_ = 0;
};

std::int64_t countOf(Session& session, const std::string& table) {
    std::int64_t count = 0;
    db::EachRow rows([&](const db::RowView& row) { count = row.value(0).toInteger(); });
    session.execute("SELECT COUNT(*) FROM " + bracketed(table), rows);
    return count;
}

std::int64_t copyTable(Session& from, Session& to, const std::string& table) {
    const auto fields = storedFields(from, table);
    TableWriter writer(to, table, fields);
    from.execute("SELECT " + namesOf(fields) + " FROM " + bracketed(table), writer);
    writer.finish();
    return writer.rows;
}

std::vector<std::string> strangersIn(Session& session) {
    const std::vector<std::string> own = db::schemaTables();
    std::vector<std::string> strangers;
    db::EachRow tables([&](const db::RowView& row) {
        const std::string name = row.value(0).toText();
        if (std::none_of(own.begin(), own.end(), [&](const std::string& one) { return sameText(one, name); }))
            strangers.push_back(name);
    });
    session.execute("SELECT name FROM sys.tables WHERE is_ms_shipped = 0 ORDER BY name", tables);
    return strangers;
}

// What a column adds up to, so that any two servers give the same text.
std::string sumOf(const db::TableShape::Field& field) {
    const std::string name = bracketed(field.name);
    if (field.type.isText())
        return "SUM(CAST(LEN(" + (field.type.length > 0 ? name : "CAST(" + name + " AS varchar(8000))") + ") AS bigint))";
    if (field.type.isDate())
        return "SUM(CAST(DATEDIFF(day, '20000101', " + name + ") AS bigint))";
    if (field.type.isBinary())
        return "SUM(CAST(DATALENGTH(" + name + ") AS bigint))";
    if (field.type.isFloat())
        return "COUNT(" + name + ")"; // the order of adding would show in the last digits
    return "SUM(CAST(" + name + " AS decimal(38,4)))";
}

void compare(Session& from, Session& to, const std::string& table) {
    if (sumsOf(from, table) != sumsOf(to, table))
        throw db::DbError(db::DbError::Category::Storage, 0,
                          "The table " + table +
                              " changed while it was copied, or was not copied whole. Please close the program on every "
                              "desktop and register, and try again.");
}

// A new store of either kind, which goes again unless it is kept.
class NewStore {
public:
    explicit NewStore(const std::string& place) {
        if (isServerPlace(place)) {
            const auto server = db::serverOf(place);
            database_.emplace(server->address());
            session_ = server->session();
        } else {
            file_.emplace(std::filesystem::path(place));
            session_ = db::Store::create(file_->path())->session();
        }
    }
    Session& session() { return *session_; }
    void keep() {
        session_.reset();
        if (database_)
            database_->keep();
        if (file_)
            file_->finish();
    }

private:
    std::optional<db::server::NewDatabase> database_;
    std::optional<db::NewStoreFile> file_;
    std::unique_ptr<Session> session_; // goes first
};

} // namespace

std::string sumsOf(Session& session, const std::string& table) {
    std::string select = "SELECT COUNT(*)";
    for (const auto& field : storedFields(session, table))
        select += ", COUNT(" +
                  (field.type.isText() && field.type.length <= 0 ? "CAST(" + bracketed(field.name) + " AS varchar(8000))"
                                                                 : bracketed(field.name)) +
                  "), " + sumOf(field);
    std::string sums;
    db::EachRow rows([&](const db::RowView& row) {
        for (int i = 0; i < row.size(); ++i)
            sums += row.value(i).toScriptText() + " ";
    });
    session.execute(select + " FROM " + bracketed(table), rows);
    return sums;
}

StoreCopy copyStoreTo(const std::string& from, const std::string& to, const StorePercent& progress) {
    const auto source = openStore(from);
    db::checkSchemaVersion(*source);
    StoreCopy done;
    done.leftBehind = strangersIn(*source);
    const std::vector<std::string> tables = db::schemaTables();
    std::int64_t all = 0;
    for (const std::string& table : tables)
        all += countOf(*source, table);
    NewStore made(to);
    db::createSchemaWith(made.session(), [&] {
        for (const std::string& table : tables) {
            done.rows += copyTable(*source, made.session(), table);
            progress(static_cast<int>(done.rows * 100 / std::max<std::int64_t>(1, all)));
        }
    });
    for (const std::string& table : tables)
        compare(*source, made.session(), table);
    done.tables = static_cast<int>(tables.size());
    made.keep();
    return done;
}

} // namespace merchantry::app
