#pragma once

#include "app/db/embedded/conflicts.h"

namespace merchantry::db::embedded {

// An UPDATE whose rows take each other's keys on the way: all old rows go, then all new ones come, under their old rowids.
class KeyMover {
public:
    KeyMover(Connection& connection, StoreCatalog& store, ChangeCapture& capture, Evaluator& evaluator, Conflicts& conflicts)
        : connection_(connection), store_(store), capture_(capture), evaluator_(evaluator), conflicts_(conflicts) {}

    // Does the change anew, after it failed at a duplicate; how many rows it changed. Throws the error with the name of its rule.
    std::int64_t move(const tsql::ChangePlan& change);

private:
    void replace(const tsql::TableDef& table, const Rowset& rows);

    Connection& connection_;
    StoreCatalog& store_;
    ChangeCapture& capture_;
    Evaluator& evaluator_;
    Conflicts& conflicts_;
};

} // namespace merchantry::db::embedded
