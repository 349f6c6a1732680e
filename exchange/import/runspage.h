#pragma once

#include "app/db/ado/recordset.h"
#include "exchange/import/importscreen.h"
#include "ui/button.h"
#include "ui/grid.h"

#include <cstdint>

namespace merchantry::exchange {

// The Earlier Imports page of frmExcelImport: what was imported, each of which can be taken back.
class RunsPage {
public:
    explicit RunsPage(ImportScreen& screen);

    ui::Item item();
    // Reads the imports of the store. Throws DbError.
    void load();
    // The same behind a change, failures reported.
    void reload();
    void release();

private:
    void cmdUndo_Click();
    void undo(std::int32_t run);
    void setAvailable();

    ImportScreen& screen_;
    ui::Grid grdRuns;
    ui::Button cmdUndo;

    db::RecordsetPtr runs_;
};

} // namespace merchantry::exchange
