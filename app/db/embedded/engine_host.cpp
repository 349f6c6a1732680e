#include "app/db/embedded/engine.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/types.h"
#include "base/text.h"

namespace merchantry::db::embedded {
namespace {

tsql::ObjectName nameOf(std::string_view text) {
    tsql::ObjectName name;
    for (std::string part : split(trimmed(text), ".")) {
        if (part.size() > 1 && ((part.front() == '[' && part.back() == ']') || (part.front() == '"' && part.back() == '"')))
            part = part.substr(1, part.size() - 2);
        name.parts.push_back(std::move(part));
    }
    return name;
}

} // namespace

const Cell& Engine::variable(int slot) {
    return frame_->variables[static_cast<std::size_t>(slot)];
}

void Engine::setVariable(int slot, Cell cell) {
    assign(slot, std::move(cell));
}

// ---- identities

// The number that the next row builds on. Numbers of failed statements are used up: what this process gave counts beside what the file
// holds.
Engine::Counter& Engine::counterOf(std::int64_t table) {
    const auto found = counters_.find(table);
    if (found != counters_.end())
        return found->second;
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    const tsql::ColumnDef& column = definition->columns[static_cast<std::size_t>(definition->identityColumn())];
    Counter counter{column.seed - column.increment, column.increment, false};
    const auto later = [&](std::int64_t number) {
        return column.increment > 0 ? std::max(counter.last, number) : std::min(counter.last, number);
    };
    if (table < 0) {
        const auto own = temporaryCounters_.find(table);
        if (own != temporaryCounters_.end())
            counter.last = own->second;
        return counters_[table] = counter;
    }
    if (!readIdentity_)
        readIdentity_ = Statement3(connection_.handle(), "SELECT last FROM ts_identity WHERE id = ?1");
    {
        const ResetGuard guard(readIdentity_.get());
        sqlite3_bind_int64(readIdentity_.get(), 1, table);
        if (connection_.step(readIdentity_.get()))
            counter.last = later(sqlite3_column_int64(readIdentity_.get(), 0));
    }
    const std::lock_guard lock(shared_->mutex);
    const auto shared = shared_->lastIdentity.find(table);
    if (shared != shared_->lastIdentity.end())
        counter.last = later(shared->second);
    return counters_[table] = counter;
}

std::int64_t Engine::nextIdentity(std::int64_t table) {
    Counter& counter = counterOf(table);
    if (__builtin_add_overflow(counter.last, counter.increment, &counter.last))
        throw tsql::valueError(8115, "Arithmetic overflow error converting IDENTITY to data type bigint.");
    counter.changed = true;
    identity_ = Cell::ofInteger(counter.last);
    if (table < 0) {
        temporaryCounters_[table] = counter.last;
        return counter.last;
    }
    const std::lock_guard lock(shared_->mutex);
    shared_->lastIdentity[table] = counter.last;
    return counter.last;
}

void Engine::noteIdentity(std::int64_t table, std::int64_t given) {
    Counter& counter = counterOf(table);
    identity_ = Cell::ofInteger(given);
    if (counter.increment > 0 ? given <= counter.last : given >= counter.last)
        return;
    counter.last = given;
    counter.changed = true;
    if (table < 0) {
        temporaryCounters_[table] = given;
        return;
    }
    const std::lock_guard lock(shared_->mutex);
    shared_->lastIdentity[table] = given;
}

// The file gets the numbers with the transaction's end: until then no other writer can ask for them.
void Engine::keepCounters() {
    for (const auto& [table, counter] : counters_)
        if (table >= 0 && counter.changed)
            unwritten_[table] = counter.last;
    counters_.clear();
}

void Engine::writeCounters() {
    for (const auto& [table, last] : unwritten_) {
        if (!writeIdentity_)
            writeIdentity_ =
                Statement3(connection_.handle(),
                           "INSERT INTO ts_identity(id, last) VALUES (?1, ?2) ON CONFLICT(id) DO UPDATE SET last = excluded.last");
        const ResetGuard guard(writeIdentity_.get());
        sqlite3_bind_int64(writeIdentity_.get(), 1, table);
        sqlite3_bind_int64(writeIdentity_.get(), 2, last);
        connection_.step(writeIdentity_.get());
    }
    unwritten_.clear();
}

// which: 0 the last number, 1 the seed, 2 the increment.
Cell Engine::identityInfo(std::string_view table, int which) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.table(nameOf(table));
    if (!definition || definition->identityColumn() < 0)
        return {};
    const tsql::ColumnDef& column = definition->columns[static_cast<std::size_t>(definition->identityColumn())];
    if (which == 1)
        return Cell::ofInteger(column.seed);
    if (which == 2)
        return Cell::ofInteger(column.increment);
    const std::map<std::int64_t, Counter> running = counters_;
    counters_.clear();
    const Counter counter = counterOf(definition->id);
    counters_ = running;
    return Cell::ofInteger(counter.last == column.seed - column.increment ? column.seed : counter.last);
}

// ---- the catalogue by functions

Cell Engine::objectId(std::string_view name, std::string_view kind) {
    const tsql::ObjectName object = nameOf(name);
    std::string wanted = upperCase(trimmed(kind));
    if (!object.last().empty() && object.last().front() == '#') {
        const std::shared_ptr<const tsql::TableDef> table = catalog_.table(object);
        return table && (wanted.empty() || wanted == "U") ? Cell::ofInteger(table->id) : Cell();
    }
    const StoredObject* found = store_.find(object.last());
    if (!found) {
        for (const StoredObject* one : store_.all()) { // constraints are objects too
            if (one->kind != "U")
                continue;
            const std::shared_ptr<const tsql::TableDef> table = store_.tableById(one->id);
            std::int64_t number = table->id * 1000;
            for (const tsql::KeyDef& key : table->keys) {
                ++number;
                if (tsql::sameName(key.name, object.last()) && (wanted.empty() || wanted == (key.primary ? "PK" : "UQ")))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 100;
            for (const tsql::CheckDef& check : table->checks) {
                ++number;
                if (tsql::sameName(check.name, object.last()) && (wanted.empty() || wanted == "C"))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 200;
            for (const tsql::ForeignKeyDef& key : table->foreignKeys) {
                ++number;
                if (tsql::sameName(key.name, object.last()) && (wanted.empty() || wanted == "F"))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 300;
            for (const tsql::ColumnDef& column : table->columns) {
                ++number;
                if (tsql::sameName(column.defaultName, object.last()) && (wanted.empty() || wanted == "D"))
                    return Cell::ofInteger(number);
            }
        }
        return {};
    }
    if (found->kind == "IX" || found->kind == "TY" || (!wanted.empty() && wanted != found->kind))
        return {};
    return Cell::ofInteger(found->id);
}

Cell Engine::objectName(std::int64_t id) {
    const StoredObject* found = store_.findById(id);
    return found ? Cell::ofText(found->name) : Cell();
}

Cell Engine::columnInfo(std::int64_t table, std::string_view column, std::string_view property) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    const int found = definition ? definition->find(column) : -1;
    if (found < 0)
        return {};
    const tsql::ColumnDef& one = definition->columns[static_cast<std::size_t>(found)];
    const auto flag = [](bool is) { return Cell::ofInteger(is ? 1 : 0); };
    if (tsql::sameName(property, "AllowsNull"))
        return flag(one.nullable);
    if (tsql::sameName(property, "IsIdentity"))
        return flag(one.identity);
    if (tsql::sameName(property, "IsComputed"))
        return flag(one.computed != nullptr);
    if (tsql::sameName(property, "ColumnId"))
        return Cell::ofInteger(found + 1);
    if (tsql::sameName(property, "Precision"))
        return Cell::ofInteger(one.type.kind == TypeKind::Decimal ? one.type.precision : tsql::asDecimal(one.type).precision);
    if (tsql::sameName(property, "Scale"))
        return Cell::ofInteger(one.type.kind == TypeKind::Decimal ? one.type.scale : 0);
    return {};
}

Cell Engine::columnName(std::int64_t table, std::int64_t number) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    if (!definition || number < 1 || static_cast<std::size_t>(number) > definition->columns.size())
        return {};
    return Cell::ofText(definition->columns[static_cast<std::size_t>(number) - 1].name);
}

Cell Engine::columnLength(std::string_view table, std::string_view column) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.table(nameOf(table));
    const int found = definition ? definition->find(column) : -1;
    return found < 0 ? Cell() : Cell::ofInteger(tsql::storedLength(definition->columns[static_cast<std::size_t>(found)].type));
}

Cell Engine::objectProperty(std::int64_t id, std::string_view property) {
    const StoredObject* object = store_.findById(id);
    if (!object)
        return {};
    const auto flag = [](bool is) { return Cell::ofInteger(is ? 1 : 0); };
    if (tsql::sameName(property, "IsTable") || tsql::sameName(property, "IsUserTable"))
        return flag(object->kind == "U");
    if (tsql::sameName(property, "IsView"))
        return flag(object->kind == "V");
    if (tsql::sameName(property, "IsProcedure"))
        return flag(object->kind == "P");
    if (tsql::sameName(property, "IsTrigger"))
        return flag(object->kind == "TR");
    if (tsql::sameName(property, "IsScalarFunction"))
        return flag(object->kind == "FN");
    if (tsql::sameName(property, "IsInlineFunction") || tsql::sameName(property, "IsTableFunction"))
        return flag(object->kind == "IF");
    if (tsql::sameName(property, "TableHasIdentity")) {
        const std::shared_ptr<const tsql::TableDef> table = store_.tableById(id);
        return table ? flag(table->identityColumn() >= 0) : Cell();
    }
    if (tsql::sameName(property, "TableHasPrimaryKey")) {
        const std::shared_ptr<const tsql::TableDef> table = store_.tableById(id);
        return table ? flag(table->primaryKey() != nullptr) : Cell();
    }
    return flag(false);
}

} // namespace merchantry::db::embedded
