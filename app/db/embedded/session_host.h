#pragma once

#include "app/db/embedded/calls.h"
#include "app/db/embedded/catalog_functions.h"
#include "app/db/embedded/cursors.h"
#include "app/db/embedded/functions.h"

namespace merchantry::db::embedded {

// What the functions that run inside SQLite find in a session.
class SessionHost : public FunctionHost {
public:
    SessionHost(BatchState& batch, Identities& identities, CatalogFunctions& catalog, const SystemValues& system, Calls& calls,
                Cursors& cursors)
        : batch_(batch), identities_(identities), catalog_(catalog), system_(system), calls_(calls), cursors_(cursors) {}

    const Cell& variable(int slot) override { return batch_.value(slot); }
    void setVariable(int slot, Cell cell) override { batch_.assign(slot, std::move(cell)); }
    Identities& identities() override { return identities_; }
    CatalogFunctions& catalog() override { return catalog_; }
    Cell callFunction(std::int64_t id, const std::vector<CellView>& arguments) override { return calls_.callFunction(id, arguments); }
    bool isUpdated(int column) override { return batch_.isUpdated(column); }
    int cursorStatus(std::string_view name) override { return cursors_.status(std::string(name)); }
    Cell systemValue(tsql::SystemValue value) override { return system_.of(value); }

private:
    BatchState& batch_;
    Identities& identities_;
    CatalogFunctions& catalog_;
    const SystemValues& system_;
    Calls& calls_;
    Cursors& cursors_;
};

} // namespace merchantry::db::embedded
