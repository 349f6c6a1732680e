#pragma once

#include "exchange/import/importrows.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"

namespace merchantry::exchange {

// The Check page of frmExcelImport: every bad cell of the file, and what each row would change.
class CheckPage {
public:
    explicit CheckPage(ui::Form& form);

    ui::Item item();
    // Shows a plan, which must live until letGo or another one is shown; null for none.
    void show(const ImportPlan* plan);
    // Shows nothing of the plan, which is about to go.
    void letGo();

private:
    void fillChoices();
    void showFindings();
    void showRows();
    void showReason(const ui::Grid& grid);
    void cmdJump_Click();
    void cmdExportBad_Click();
    void setAvailable();

    const ImportPlan* plan_ = nullptr;
    PlannedRows plannedRows_; // before the grids that show them
    FindingRows findingRows_;
    bool filling_ = false; // lists are filled by the page itself

    ui::ListBox lbxFindings;
    ui::Button cmdJump;
    ui::Button cmdExportBad;
    ui::Grid grdFindings;
    ui::ListBox lbxRows;
    ui::Label lblSums;
    ui::Grid grdRows;
    ui::Label lblReason;
};

} // namespace merchantry::exchange
