#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/change_capture.h"
#include "app/db/embedded/code_cache.h"
#include "app/db/embedded/runner.h"
#include "app/db/embedded/transaction.h"

#include <map>
#include <tuple>

namespace merchantry::db::embedded {

// Runs the triggers of tables and views. An event is I, U or D.
class TriggerRunner {
public:
    TriggerRunner(BatchState& batch, StoreCatalog& store, const SchemaVersion& schema, CodeCache& code, RowsetRegistry& rows,
                  const Transaction& transaction, Runner& runner)
        : batch_(batch), store_(store), schema_(schema), code_(code), rows_(rows), transaction_(transaction), runner_(runner) {}

    // The tables whose changed rows are wanted by a trigger that fires: the table itself, and those that its deletes and updates reach by
    // their foreign keys, which change or delete rows of their own. A change of nothing else needs no rows.
    const Tables& watched(const std::shared_ptr<const tsql::TableDef>& table, char event);
    // Fires those of the changed table, then those of the tables that followed it. One that rolls back is the last.
    void fireAfter(const tsql::ChangePlan& plan, const ChangedTables& changed, char event);
    // Fires the one that stands in place of the statement.
    void fireInstead(const tsql::ChangePlan& plan, char event, const std::shared_ptr<const Rowset>& inserted,
                     const std::shared_ptr<const Rowset>& deleted);
    // Shows an OUTPUT clause what it reads as inserted and deleted.
    void show(const ChangedRows& rows);

private:
    using Ids = std::vector<std::int64_t>;
    struct Firing {
        std::shared_ptr<const tsql::TableDef> table;
        std::shared_ptr<const Rowset> inserted;
        std::shared_ptr<const Rowset> deleted;
        const std::vector<bool>* updated; // by column
    };
    const Ids& triggersOf(std::int64_t table, char event, bool insteadOf);
    Tables reached(const std::shared_ptr<const tsql::TableDef>& table, char event);
    void fire(const Firing& firing, char event, bool insteadOf);
    void run(const StoredObject& trigger, const Firing& firing);

    BatchState& batch_;
    StoreCatalog& store_;
    const SchemaVersion& schema_;
    CodeCache& code_;
    RowsetRegistry& rows_;
    const Transaction& transaction_;
    Runner& runner_;

    // Found anew for each version of the schema.
    struct Triggering {
        std::uint64_t version = 0;
        Ids triggers;
    };
    std::map<std::tuple<std::int64_t, char, bool>, Triggering> triggering_; // by table, event and whether they stand in place of it
    struct Watched {
        std::uint64_t version = 0;
        Tables tables;
    };
    std::map<std::pair<std::int64_t, char>, Watched> watched_; // by table and event
};

} // namespace merchantry::db::embedded
