#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include "app/db/embedded/engine.h"
#include "app/db/embedded/scopes.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

bool firesFor(const tsql::CreateTriggerStatement& trigger, char event) {
    return event == 'I' ? trigger.onInsert : event == 'U' ? trigger.onUpdate : trigger.onDelete;
}

} // namespace

std::string Engine::pseudoName(const char* which, std::int64_t table) const {
    return "ts_" + std::string(which) + "_" + std::to_string(table);
}

// The shape of inserted or deleted: that of the table, without what only a table can do.
std::shared_ptr<const tsql::TableDef> Engine::pseudoTable(const char* which, const tsql::TableDef& table) {
    auto shape = std::make_shared<tsql::TableDef>(table);
    shape->name = which;
    shape->readOnly = true;
    shape->storage = tsql::quotedName(pseudoName(which, table.id));
    std::erase_if(shape->columns, [](const tsql::ColumnDef& column) { return column.computed != nullptr; });
    return shape;
}

const Engine::Triggers& Engine::triggersOf(std::int64_t table, char event, bool insteadOf) {
    Triggering& known = triggering_[{table, event, insteadOf}];
    if (known.version == schema_.number())
        return known.triggers;
    Triggers triggers;
    for (const StoredObject* object : store_.childrenOf(table, "TR")) {
        if (!object->enabled)
            continue;
        const std::shared_ptr<Code> code = code_.module(*object);
        const auto& trigger = static_cast<const tsql::CreateTriggerStatement&>(*code->module);
        if (trigger.insteadOf == insteadOf && firesFor(trigger, event))
            triggers.push_back(object);
    }
    known.triggers = std::move(triggers);
    known.version = schema_.number();
    return known.triggers;
}

// The tables whose changed rows are wanted by a trigger that fires: the table itself, and those that its deletes and updates reach by their
// foreign keys, which change or delete rows of their own.
const Engine::Tables& Engine::watchedTables(const std::shared_ptr<const tsql::TableDef>& table, char event) {
    Watched& watched = watched_[{table->id, event}];
    if (watched.version == schema_.number())
        return watched.tables;
    watched.tables.clear();
    Tables reached = {table};
    for (std::size_t i = 0; i < reached.size(); ++i) {
        const std::shared_ptr<const tsql::TableDef> one = reached[i];
        const bool fires = i == 0 ? !triggersOf(one->id, event, false).empty()
                                  : !triggersOf(one->id, 'U', false).empty() || !triggersOf(one->id, 'D', false).empty();
        if (fires)
            watched.tables.push_back(one);
        if (event == 'I' || !store_.hasReferences())
            break;
        for (const auto& [other, key] : store_.referencesTo(one->name)) {
            const bool follows = !key.onDelete.empty() || !key.onUpdate.empty();
            const auto isOther = [id = other->id](const auto& known) { return known->id == id; };
            if (follows && std::none_of(reached.begin(), reached.end(), isOther))
                reached.push_back(other);
        }
    }
    watched.version = schema_.number();
    return watched.tables;
}

// Begins to gather the rows that change, where someone wants to see them; always those of the table itself for an OUTPUT clause.
void Engine::startCapture(const std::shared_ptr<const tsql::TableDef>& table, char event, bool always) {
    const auto take = [this](const std::shared_ptr<const tsql::TableDef>& one) {
        Captured captured;
        captured.table = one;
        capture_.tables[lowerCase(one->name)] = std::move(captured);
    };
    if (store_.hasTriggers() && !table->isTemporary())
        for (const auto& one : watchedTables(table, event))
            take(one);
    if (always && !capture_.tables.contains(lowerCase(table->name)))
        take(table);
    capture_.active = !capture_.tables.empty();
    if (capture_.active || hooked_)
        sqlite3_preupdate_hook(connection_.handle(), capture_.active ? captureHook : nullptr, this);
    hooked_ = capture_.active;
}

// The rows that change while that runs.
Engine::CapturedTables Engine::captureOf(const std::shared_ptr<const tsql::TableDef>& table, char event, bool always,
                                         const std::function<void()>& change) {
    const Restore outer(capture_, CaptureState());
    startCapture(table, event, always);
    change();
    return std::move(capture_.tables);
}

void Engine::captureHook(void* engine, sqlite3*, int operation, const char* schema, const char* name, sqlite3_int64, sqlite3_int64) {
    static_cast<Engine*>(engine)->capture(operation, schema, name);
}

void Engine::capture(int operation, const char*, const char* name) {
    if (!capture_.active)
        return;
    auto found = capture_.tables.find(lowerCase(name));
    if (found == capture_.tables.end()) { // a table variable is kept under a name of its own
        found = std::find_if(capture_.tables.begin(), capture_.tables.end(),
                             [&](const auto& entry) { return entry.second.table->storage == "temp." + tsql::quotedName(name); });
        if (found == capture_.tables.end())
            return;
    }
    Captured& captured = found->second;
    const auto read = [&](auto get) {
        std::vector<Cell> row;
        int index = 0;
        for (const tsql::ColumnDef& column : captured.table->columns) {
            if (column.computed)
                continue;
            sqlite3_value* value = nullptr;
            get(connection_.handle(), index++, &value);
            Cell cell = value ? CellView(value).copy() : Cell();
            if (column.type.isFloat() && cell.kind == Cell::Kind::Integer)
                cell = Cell::ofReal(static_cast<double>(cell.integer));
            row.push_back(std::move(cell));
        }
        return row;
    };
    if (operation != SQLITE_INSERT)
        captured.deleted->push_back(read(sqlite3_preupdate_old));
    if (operation != SQLITE_DELETE)
        captured.inserted->push_back(read(sqlite3_preupdate_new));
}

// Fires the triggers of the changed table, then those of the tables that followed it.
void Engine::fireFor(const tsql::ChangePlan& plan, const std::map<std::string, Captured>& captured, char event) {
    const auto own = captured.find(lowerCase(plan.table->name));
    if (own != captured.end())
        fireTriggers(plan.table, event, own->second.inserted, own->second.deleted, plan.updated, false);
    for (const auto& [name, rows] : captured) {
        if (rows.table->id == plan.table->id || (rows.inserted->empty() && rows.deleted->empty()))
            continue;
        const std::vector<bool> all(rows.table->columns.size(), true);
        fireTriggers(rows.table, rows.inserted->empty() ? 'D' : 'U', rows.inserted, rows.deleted, all, false);
    }
}

void Engine::fireTriggers(const std::shared_ptr<const tsql::TableDef>& table, char event, const std::shared_ptr<const Rowset>& inserted,
                          const std::shared_ptr<const Rowset>& deleted, const std::vector<bool>& updated, bool insteadOf) {
    // A trigger's own changes of its table do not fire it again.
    const Frame* inner = batch_.frame;
    while (inner && !inner->isTrigger)
        inner = inner->caller;
    const std::uint64_t rollbacks = transaction_.rollbacks();
    const Triggers triggers = triggersOf(table->id, event, insteadOf); // a copy: a trigger may define objects
    for (const StoredObject* trigger : triggers) {
        if (inner && inner->code->objectId == trigger->id)
            continue;
        runTrigger(*trigger, table, inserted, deleted, updated);
        if (rollbacks != transaction_.rollbacks())
            return;
    }
}

void Engine::runTrigger(const StoredObject& trigger, const std::shared_ptr<const tsql::TableDef>& table,
                        const std::shared_ptr<const Rowset>& inserted, const std::shared_ptr<const Rowset>& deleted,
                        const std::vector<bool>& updated) {
    const LevelScope level(batch_);
    const std::string insertedName = pseudoName("inserted", table->id);
    const std::string deletedName = pseudoName("deleted", table->id);
    const std::shared_ptr<Code> code = code_.module(trigger);
    if (code->triggerTable != table) { // its first run on this version of the schema
        code->triggerTable = table;
        code->inserted = pseudoTable("inserted", *table);
        code->deleted = pseudoTable("deleted", *table);
        rows_.define(insertedName, *code->inserted);
        rows_.define(deletedName, *code->deleted);
    }
    const AtEnd outer([&, outerInserted = rows_.get(insertedName), outerDeleted = rows_.get(deletedName)] {
        rows_.set(insertedName, outerInserted);
        rows_.set(deletedName, outerDeleted);
    });
    rows_.set(insertedName, inserted);
    rows_.set(deletedName, deleted);
    Frame frame;
    frame.code = code;
    frame.isTrigger = true;
    frame.updated = &updated;
    frame.variables.resize(code->variables.size());
    try {
        runFrame(frame);
    } catch (const ScopeEnd& end) {
        throw DbError(end.error);
    }
}

void Engine::runInstead(StatementPlan& plan) {
    const tsql::ChangePlan& change = *plan.change;
    auto inserted = std::make_shared<Rowset>();
    auto deleted = std::make_shared<Rowset>();
    if (!change.insteadNew.text.empty())
        *inserted = evaluator_.rows(change.insteadNew);
    if (!change.insteadOld.text.empty())
        *deleted = evaluator_.rows(change.insteadOld);
    static constexpr char kEvents[] = {'I', 'U', 'D'};
    const auto rows = static_cast<std::int64_t>(std::max(inserted->size(), deleted->size()));
    {
        const TriggerCount count(transaction_, true);
        const Restore instead(catalog_.inInstead, change.insteadOf);
        fireTriggers(change.insteadShape, kEvents[static_cast<int>(change.kind)], inserted, deleted, change.updated, true);
    }
    session_.rowCount = rows;
}

} // namespace merchantry::db::embedded
