#include "app/db/embedded/rowset.h"

#include "app/db/dberror.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/table_builder.h"

namespace merchantry::db::embedded {
namespace {

struct Table : sqlite3_vtab {
    const RowsetRegistry* registry = nullptr;
    std::string name;
};

struct Cursor : sqlite3_vtab_cursor {
    std::shared_ptr<const Rowset> rows;
    std::size_t at = 0;
    std::size_t skipped = 0; // rows before the first
};

int connect(sqlite3* db, void* registry, int count, const char* const* arguments, sqlite3_vtab** result, char** error) {
    const auto* all = static_cast<const RowsetRegistry*>(registry);
    const std::string name = count > 0 ? arguments[0] : "";
    const RowsetRegistry::Entry* entry = all->find(name);
    if (!entry) {
        *error = sqlite3_mprintf("no rows named %s", name.c_str());
        return SQLITE_ERROR;
    }
    const int code = sqlite3_declare_vtab(db, entry->declaration.c_str());
    if (code != SQLITE_OK)
        return code;
    auto* table = new Table();
    table->registry = all;
    table->name = name;
    *result = table;
    return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
    delete static_cast<Table*>(table);
    return SQLITE_OK;
}

int bestIndex(sqlite3_vtab*, sqlite3_index_info* info) {
    // One constraint on the rowid can be followed at once.
    for (int i = 0; i < info->nConstraint; ++i) {
        if (info->aConstraint[i].usable && info->aConstraint[i].iColumn == -1 && info->aConstraint[i].op == SQLITE_INDEX_CONSTRAINT_EQ) {
            info->aConstraintUsage[i].argvIndex = 1;
            info->idxNum = 1;
            info->estimatedCost = 1;
            info->estimatedRows = 1;
            return SQLITE_OK;
        }
    }
    info->estimatedCost = 100;
    info->estimatedRows = 25;
    return SQLITE_OK;
}

int open(sqlite3_vtab*, sqlite3_vtab_cursor** result) {
    *result = new Cursor();
    return SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<Cursor*>(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* base, int number, const char*, int, sqlite3_value** values) {
    auto* cursor = static_cast<Cursor*>(base);
    const auto* table = static_cast<Table*>(base->pVtab);
    const RowsetRegistry::Entry* entry = table->registry->find(table->name);
    static const auto kNone = std::make_shared<const Rowset>();
    if (!entry)
        cursor->rows = kNone;
    else
        cursor->rows = entry->maker ? entry->maker() : entry->rows ? entry->rows : kNone;
    cursor->at = 0;
    cursor->skipped = 0;
    if (number == 1) { // exactly one row, by its rowid
        const sqlite3_int64 wanted = sqlite3_value_int64(values[0]);
        auto one = std::make_shared<Rowset>();
        if (wanted >= 1 && static_cast<std::size_t>(wanted) <= cursor->rows->size())
            one->push_back((*cursor->rows)[static_cast<std::size_t>(wanted) - 1]);
        cursor->rows = one;
        cursor->skipped = static_cast<std::size_t>(wanted > 0 ? wanted - 1 : 0);
    }
    return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* cursor) {
    ++static_cast<Cursor*>(cursor)->at;
    return SQLITE_OK;
}

int atEnd(sqlite3_vtab_cursor* base) {
    const auto* cursor = static_cast<Cursor*>(base);
    return cursor->at >= cursor->rows->size() ? 1 : 0;
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int number) {
    const auto* cursor = static_cast<Cursor*>(base);
    const auto& row = (*cursor->rows)[cursor->at];
    if (number >= 0 && static_cast<std::size_t>(number) < row.size())
        tsql::resultCell(context, row[static_cast<std::size_t>(number)]);
    return SQLITE_OK;
}

int rowid(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
    const auto* cursor = static_cast<Cursor*>(base);
    *id = static_cast<sqlite3_int64>(cursor->at + cursor->skipped) + 1;
    return SQLITE_OK;
}

sqlite3_module makeModule() {
    sqlite3_module module{};
    // Without xCreate the module is a table by itself, under its own name, which no rollback takes away.
    module.xConnect = connect;
    module.xBestIndex = bestIndex;
    module.xDisconnect = disconnect;
    module.xOpen = open;
    module.xClose = close;
    module.xFilter = filter;
    module.xNext = next;
    module.xEof = atEnd;
    module.xColumn = column;
    module.xRowid = rowid;
    return module;
}

const sqlite3_module kModule = makeModule();

} // namespace

Rowset rowsOf(Connection& connection, sqlite3_stmt* statement) {
    Rowset rows;
    const int columns = sqlite3_column_count(statement);
    while (connection.step(statement)) {
        std::vector<tsql::Cell> row;
        for (int i = 0; i < columns; ++i)
            row.push_back(tsql::columnCell(statement, i));
        rows.push_back(std::move(row));
    }
    return rows;
}

void RowsetRegistry::attach(sqlite3* db) {
    db_ = db;
}

void RowsetRegistry::define(const std::string& name, const tsql::TableDef& shape) {
    std::string declaration = "CREATE TABLE x(";
    for (std::size_t i = 0; i < shape.columns.size(); ++i)
        declaration +=
            (i > 0 ? "," : "") + tsql::quotedName(shape.columns[i].name) + " " + TableBuilder::storageClass(shape.columns[i].type);
    declaration += ")";
    const auto found = entries_.find(name);
    if (found != entries_.end() && found->second.declaration == declaration)
        return;
    entries_[name].declaration = declaration;
    if (sqlite3_create_module_v2(db_, name.c_str(), &kModule, this, nullptr) != SQLITE_OK)
        throw DbError(DbError::Category::Storage, 0, sqlite3_errmsg(db_));
}

void RowsetRegistry::set(const std::string& name, std::shared_ptr<const Rowset> rows) {
    entries_[name].rows = std::move(rows);
}

std::shared_ptr<const Rowset> RowsetRegistry::get(const std::string& name) const {
    const Entry* entry = find(name);
    return entry ? entry->rows : nullptr;
}

void RowsetRegistry::setMaker(const std::string& name, std::function<std::shared_ptr<const Rowset>()> maker) {
    entries_[name].maker = std::move(maker);
}

const RowsetRegistry::Entry* RowsetRegistry::find(const std::string& name) const {
    const auto found = entries_.find(name);
    return found == entries_.end() ? nullptr : &found->second;
}

} // namespace merchantry::db::embedded
