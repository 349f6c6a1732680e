#include "app/db/server/scratchstore.h"

#include "app/db/eachrow.h"
#include "app/db/embedded/store.h"
#include "base/guard.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <map>

namespace merchantry::db::server {
namespace {

using Batches = std::function<void(std::string_view batch, ResultSink& sink)>;

constexpr int kBytesOfWide = 2;

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

std::string textAt(const RowView& row, int column) {
    return row.value(column).toText();
}

int numberAt(const RowView& row, int column) {
    return static_cast<int>(row.value(column).toInteger());
}

bool flagAt(const RowView& row, int column) {
    return row.value(column).toFlag();
}

// "varchar(25)", from how the catalogue describes a column.
std::string typeText(const std::string& type, int length, int precision, int scale) {
    const std::string name = lowerCase(type);
    const bool wide = name == "nchar" || name == "nvarchar";
    if (wide || name == "char" || name == "varchar" || name == "binary" || name == "varbinary")
        return name + "(" + (length < 0 ? "max" : std::to_string(wide ? length / kBytesOfWide : length)) + ")";
    if (name == "decimal" || name == "numeric")
        return "decimal(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
    return name;
}

struct Table {
    std::string name;
    std::string columns; // as CREATE TABLE wants them
    std::vector<std::string> keys;
};

using Tables = std::map<std::int64_t, Table>;

// A computed column only needs its type; a default only that it is there.
std::string columnText(const RowView& row) {
    enum { kName = 2, kType, kLength, kPrecision, kScale, kNullable, kIdentity, kComputed, kDefault };
    const std::string type = typeText(textAt(row, kType), numberAt(row, kLength), numberAt(row, kPrecision), numberAt(row, kScale));
    const std::string name = bracketed(textAt(row, kName));
    if (flagAt(row, kComputed))
        return name + " AS CAST(NULL AS " + type + ")";
    return name + " " + type + (flagAt(row, kNullable) ? " NULL" : " NOT NULL") + (flagAt(row, kIdentity) ? " IDENTITY" : "") +
           (numberAt(row, kDefault) != 0 ? " DEFAULT NULL" : "");
}

Tables readTables(const Batches& server) {
    Tables tables;
    EachRow columns([&](const RowView& row) {
        Table& table = tables[row.value(0).toInteger()];
        table.name = textAt(row, 1);
        table.columns += (table.columns.empty() ? "" : ", ") + columnText(row);
    });
    server("SELECT t.object_id, t.name, c.name, TYPE_NAME(c.system_type_id), c.max_length, c.precision, c.scale, c.is_nullable, "
           "c.is_identity, "
           "c.is_computed, c.default_object_id FROM sys.tables t INNER JOIN sys.columns c ON c.object_id = t.object_id "
           "ORDER BY t.object_id, c.column_id",
           columns);
    std::map<std::pair<std::int64_t, int>, std::pair<bool, std::string>> keys;
    EachRow indexes([&](const RowView& row) {
        auto& [primary, names] = keys[{row.value(0).toInteger(), numberAt(row, 1)}];
        primary = flagAt(row, 2);
        names += (names.empty() ? "" : ", ") + bracketed(textAt(row, 3));
    });
    server("SELECT i.object_id, i.index_id, i.is_primary_key, c.name FROM sys.indexes i "
           "INNER JOIN sys.index_columns k ON k.object_id = i.object_id AND k.index_id = i.index_id "
           "INNER JOIN sys.columns c ON c.object_id = k.object_id AND c.column_id = k.column_id "
           "WHERE i.is_unique = 1 ORDER BY i.object_id, i.index_id, k.key_ordinal",
           indexes);
    for (const auto& [place, key] : keys)
        if (const auto table = tables.find(place.first); table != tables.end())
            table->second.keys.push_back((key.first ? "PRIMARY KEY (" : "UNIQUE (") + key.second + ")");
    return tables;
}

std::vector<std::string> readModules(const Batches& server) {
    std::vector<std::string> texts;
    EachRow modules([&](const RowView& row) {
        if (!row.isNull(0))
            texts.push_back(textAt(row, 0));
    });
    server("SELECT m.definition FROM sys.sql_modules m INNER JOIN sys.objects o ON o.object_id = m.object_id "
           "WHERE o.type IN ('V', 'P', 'FN', 'IF', 'TF') AND o.is_ms_shipped = 0 ORDER BY o.object_id",
           modules);
    return texts;
}

bool runs(Session& session, const std::string& batch) {
    try {
        NoResult none;
        session.execute(batch, none);
        return true;
    } catch (const DbError&) {
        return false;
    }
}

// Views may stand on views that come later in the list: as long as some can be made, the others are tried again.
void makeModules(Session& session, std::vector<std::string> texts) {
    for (std::size_t before = texts.size() + 1; !texts.empty() && texts.size() < before;) {
        before = texts.size();
        std::erase_if(texts, [&](const std::string& text) { return runs(session, text); });
    }
}

class Shapes : public ResultSink {
public:
    void beginSet(const std::vector<Column>& columns) override { sets.push_back(columns); }
    void row(const RowView&) override {}
    std::vector<std::vector<Column>> sets;
};

} // namespace

ScratchStore::ScratchStore(const Batches& server) : session_(Store::scratch()->session()) {
    for (const auto& [id, table] : readTables(server)) {
        std::string text = "CREATE TABLE " + bracketed(table.name) + " (" + table.columns;
        for (const std::string& key : table.keys)
            text += ", " + key;
        runs(*session_, text + ")");
    }
    makeModules(*session_, readModules(server));
}

std::vector<std::vector<Column>> ScratchStore::setsOf(std::string_view batch, const std::vector<Parameter>& parameters, bool& known) {
    Shapes shapes;
    std::vector<Parameter> own = parameters;
    session_->begin();
    const AtEnd back([&] {
        if (session_->transactionDepth() > 0)
            session_->rollback();
    });
    try {
        session_->execute(batch, own, shapes);
    } catch (const DbError& error) { // an empty store may refuse what a full one takes
        known = error.category() != DbError::Category::Name;
    }
    return std::move(shapes.sets);
}

TableShape ScratchStore::table(std::string_view name) {
    return session_->table(name);
}

void nameTables(std::vector<Column>& columns, const std::vector<std::vector<Column>>& sets) {
    const auto same = [&](const std::vector<Column>& set) {
        return std::equal(set.begin(), set.end(), columns.begin(), columns.end(),
                          [](const Column& own, const Column& sent) { return own.name.empty() || sameText(own.name, sent.name); });
    };
    const auto found = std::find_if(sets.begin(), sets.end(), same);
    if (found == sets.end())
        return;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].baseTable = (*found)[i].baseTable;
        columns[i].baseColumn = (*found)[i].baseColumn;
        columns[i].identity = (*found)[i].identity;
        columns[i].computed = (*found)[i].computed;
        columns[i].nullable = (*found)[i].nullable;
    }
}

} // namespace merchantry::db::server
