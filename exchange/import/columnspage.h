#pragma once

#include "exchange/import/importplan.h"
#include "exchange/import/importscreen.h"
#include "exchange/import/matchedtable.h"
#include "ui/choice.h"
#include "ui/grid.h"
#include "ui/list.h"

namespace merchantry::exchange {

// The Columns page of frmExcelImport: which column goes where, and what is done with what the store does not have.
class ColumnsPage {
public:
    // The table must outlive the page.
    ColumnsPage(ImportScreen& screen, MatchedTable& matched);

    ui::Item item();
    // The lists to choose from, once as the screen opens. Throws DbError.
    void load();
    // Shows the columns of the table and where they go.
    void show();
    // Sets what is chosen here.
    void addTo(ImportOptions& chosen) const;

private:
    void loadChoices();
    void grdColumns_AfterEdit(int row);
    void choice_Click();

    ImportScreen& screen_;
    MatchedTable& matched_;
    bool filling_ = false; // lists are filled by the page itself

    ui::Grid grdColumns;
    ui::ListBox lbxCodes;
    ui::ListBox lbxSupplier;
    ui::ListBox lbxReason;
    ui::CheckBox chkDepartments;
    ui::CheckBox chkSuppliers;
    ui::CheckBox chkRound;
};

} // namespace merchantry::exchange
