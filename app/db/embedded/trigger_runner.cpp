#include "app/db/embedded/trigger_runner.h"
#include "app/db/embedded/scopes.h"

#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {

using TablePtr = std::shared_ptr<const tsql::TableDef>;

namespace {

bool firesFor(const tsql::CreateTriggerStatement& trigger, char event) {
    return event == 'I' ? trigger.onInsert : event == 'U' ? trigger.onUpdate : trigger.onDelete;
}

// The name under which SQLite reads inserted or deleted of a table.
std::string shownName(const char* which, const tsql::TableDef& table) {
    return "ts_" + std::string(which) + "_" + std::to_string(table.id);
}

// The shape of inserted or deleted: that of the table, without what only a table can do.
TablePtr shapeOf(const char* which, const tsql::TableDef& table) {
    auto shape = std::make_shared<tsql::TableDef>(table);
    shape->name = which;
    shape->readOnly = true;
    shape->storage = tsql::quotedName(shownName(which, table));
    std::erase_if(shape->columns, [](const tsql::ColumnDef& column) { return column.computed != nullptr; });
    return shape;
}

// Whether rows of its table change or go with those that it refers to.
bool follows(const tsql::ForeignKeyDef& key) {
    return !key.onDelete.empty() || !key.onUpdate.empty();
}

} // namespace

// ---- which fire

const TriggerRunner::Ids& TriggerRunner::triggersOf(std::int64_t table, char event, bool insteadOf) {
    Triggering& known = triggering_[{table, event, insteadOf}];
    if (known.version == schema_.number())
        return known.triggers;
    Ids triggers;
    for (const StoredObject* object : store_.childrenOf(table, "TR")) {
        if (!object->enabled)
            continue;
        const std::shared_ptr<Code> code = code_.module(*object);
        const auto& trigger = static_cast<const tsql::CreateTriggerStatement&>(*code->module);
        if (trigger.insteadOf == insteadOf && firesFor(trigger, event))
            triggers.push_back(object->id);
    }
    known.triggers = std::move(triggers);
    known.version = schema_.number();
    return known.triggers;
}

const Tables& TriggerRunner::watched(const TablePtr& table, char event) {
    static const Tables kNone;
    if (!store_.hasTriggers() || table->isTemporary())
        return kNone;
    Watched& known = watched_[{table->id, event}];
    if (known.version == schema_.number())
        return known.tables;
    known.tables.clear();
    for (const TablePtr& one : reached(table, event)) {
        const bool fires = one == table ? !triggersOf(one->id, event, false).empty()
                                        : !triggersOf(one->id, 'U', false).empty() || !triggersOf(one->id, 'D', false).empty();
        if (fires)
            known.tables.push_back(one);
    }
    known.version = schema_.number();
    return known.tables;
}

// The table and those whose rows change with its own.
Tables TriggerRunner::reached(const TablePtr& table, char event) {
    Tables all = {table};
    if (event == 'I' || !store_.hasReferences())
        return all;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const auto& [other, key] : store_.referencesTo(all[i]->name)) {
            const auto isOther = [id = other->id](const TablePtr& known) { return known->id == id; };
            if (follows(key) && std::none_of(all.begin(), all.end(), isOther))
                all.push_back(other);
        }
    }
    return all;
}

// ---- firing

void TriggerRunner::fireAfter(const tsql::ChangePlan& plan, const ChangedTables& changed, char event) {
    const auto own = changed.find(lowerCase(plan.table->name));
    if (own != changed.end())
        fire({plan.table, own->second.inserted, own->second.deleted, &plan.updated}, event, false);
    for (const auto& [name, rows] : changed) {
        if (rows.table->id == plan.table->id || (rows.inserted->empty() && rows.deleted->empty()))
            continue;
        const std::vector<bool> all(rows.table->columns.size(), true);
        fire({rows.table, rows.inserted, rows.deleted, &all}, rows.inserted->empty() ? 'D' : 'U', false);
    }
}

void TriggerRunner::fireInstead(const tsql::ChangePlan& plan, char event, const std::shared_ptr<const Rowset>& inserted,
                                const std::shared_ptr<const Rowset>& deleted) {
    fire({plan.insteadShape, inserted, deleted, &plan.updated}, event, true);
}

void TriggerRunner::fire(const Firing& firing, char event, bool insteadOf) {
    // A trigger's own changes of its table do not fire it again.
    const Frame* inner = batch_.frame;
    while (inner && !inner->isTrigger)
        inner = inner->caller;
    const std::uint64_t endings = transaction_.endings();
    const Ids triggers = triggersOf(firing.table->id, event, insteadOf); // a copy: a trigger may define objects
    for (const std::int64_t id : triggers) {
        const StoredObject* trigger = store_.findById(id);
        if (!trigger || (inner && inner->code->objectId == id))
            continue;
        run(*trigger, firing);
        if (endings != transaction_.endings() || transaction_.isDoomed())
            return;
    }
}

void TriggerRunner::run(const StoredObject& trigger, const Firing& firing) {
    const LevelScope level(batch_);
    const std::string insertedName = shownName("inserted", *firing.table);
    const std::string deletedName = shownName("deleted", *firing.table);
    const std::shared_ptr<Code> code = code_.module(trigger);
    if (code->triggerTable != firing.table) { // its first run on this version of the schema
        code->triggerTable = firing.table;
        code->inserted = shapeOf("inserted", *firing.table);
        code->deleted = shapeOf("deleted", *firing.table);
        rows_.define(insertedName, *code->inserted);
        rows_.define(deletedName, *code->deleted);
    }
    const ShownRowsScope inserted(rows_, insertedName, firing.inserted);
    const ShownRowsScope deleted(rows_, deletedName, firing.deleted);
    Frame frame;
    frame.code = code;
    frame.isTrigger = true;
    frame.updated = firing.updated;
    frame.variables.resize(code->variables.size());
    try {
        runner_.runFrame(frame);
    } catch (const ScopeEnd& end) {
        throw DbError(end.error);
    }
}

void TriggerRunner::show(const ChangedRows& rows) {
    const auto one = [&](const char* which, const std::shared_ptr<const Rowset>& shown) {
        const std::string name = shownName(which, *rows.table);
        rows_.define(name, *shapeOf(which, *rows.table));
        rows_.set(name, shown);
    };
    one("inserted", rows.inserted);
    one("deleted", rows.deleted);
}

} // namespace merchantry::db::embedded
