#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include "app/db/embedded/change_capture.h"

#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::Cell;

ChangedTables ChangeCapture::during(const Tables& tables, const std::function<void()>& change) {
    const Restore outer(seen_, Seen());
    for (const std::shared_ptr<const tsql::TableDef>& table : tables)
        seen_[lowerCase(table->name)].table = table;
    const bool wanted = !seen_.empty();
    if (wanted || hooked_)
        sqlite3_preupdate_hook(connection_.handle(), wanted ? hook : nullptr, this);
    hooked_ = wanted;
    change();
    return std::move(seen_);
}

void ChangeCapture::forget() {
    for (auto& [name, rows] : seen_) {
        rows.inserted->clear();
        rows.deleted->clear();
    }
}

void ChangeCapture::hook(void* capture, sqlite3*, int operation, const char*, const char* name, sqlite3_int64, sqlite3_int64) {
    static_cast<ChangeCapture*>(capture)->take(operation, name);
}

ChangedRows* ChangeCapture::find(const std::string& name) {
    auto found = seen_.find(lowerCase(name));
    if (found == seen_.end()) // a table variable is kept under a name of its own
        found = std::find_if(seen_.begin(), seen_.end(),
                             [&](const auto& entry) { return entry.second.table->storage == "temp." + tsql::quotedName(name); });
    return found == seen_.end() ? nullptr : &found->second;
}

template <class Get> std::vector<Cell> ChangeCapture::row(const tsql::TableDef& table, Get get) {
    std::vector<Cell> cells;
    int index = 0;
    for (const tsql::ColumnDef& column : table.columns) {
        if (column.computed)
            continue;
        sqlite3_value* value = nullptr;
        get(connection_.handle(), index++, &value);
        Cell cell = value ? tsql::CellView(value).copy() : Cell();
        if (column.type.isFloat() && cell.kind == Cell::Kind::Integer)
            cell = Cell::ofReal(static_cast<double>(cell.integer));
        cells.push_back(std::move(cell));
    }
    return cells;
}

void ChangeCapture::take(int operation, const std::string& name) {
    ChangedRows* changed = seen_.empty() ? nullptr : find(name);
    if (!changed)
        return;
    if (operation != SQLITE_INSERT)
        changed->deleted->push_back(row(*changed->table, sqlite3_preupdate_old));
    if (operation != SQLITE_DELETE)
        changed->inserted->push_back(row(*changed->table, sqlite3_preupdate_new));
}

} // namespace merchantry::db::embedded
