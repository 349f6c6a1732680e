#pragma once

#include "exchange/import/checkpage.h"
#include "exchange/import/columnspage.h"
#include "exchange/import/filepage.h"
#include "exchange/import/itemsinstore.h"
#include "exchange/import/recordplan.h"
#include "exchange/import/runspage.h"
#include "ui/tabset.h"

#include <memory>
#include <string>

namespace merchantry::exchange {

// Takes a table of another program into the store: chooses the file, matches its columns, shows every bad cell and what each row would
// change, writes all of it in one transaction, and takes earlier imports back; each on a page of its own. Writes nothing before Import.
class frmExcelImport : public ui::Form, private ImportScreen {
public:
    explicit frmExcelImport(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    // What the pages ask.
    ui::Form& form() override { return *this; }
    void columnsMatched() override;
    void columnMoved() override;
    void outdated() override;

    void tabImport_Change();
    void cmdCheck_Click();
    void check();
    bool checkAll();
    int stepPlan();
    void beginPlan();
    void dropPlan();
    void showPlan();

    void cmdImport_Click();
    bool mayImport();
    std::string questionBefore(const std::string& earlier) const;
    void write();

    void setAvailable();

    ui::Label lblHeading{*this, "lblHeading", "Excel Import"};
    ui::Label lblNew{*this, "lblNew"};
    ui::Label lblChanged{*this, "lblChanged"};
    ui::Label lblSame{*this, "lblSame"};
    ui::Label lblBad{*this, "lblBad"};
    ui::TabSet tabImport{*this, "tabImport", {"1 File", "2 Columns", "3 Check", "Earlier Imports"}};

    MatchedTable matched_;
    // What a plan is reckoned from, the one or the other.
    std::unique_ptr<ItemsInStore> items_;
    std::unique_ptr<RecordsInStore> records_;
    std::unique_ptr<ImportPlan> plan_; // null while nothing was checked, or something was changed since

    FilePage file_{*this, matched_};
    ColumnsPage columns_{*this, matched_};
    CheckPage check_{*this};
    RunsPage runs_{*this};

    ui::CheckBox chkLeaveOut{*this, "chkLeaveOut", "&Leave rows with bad cells out"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdCheck{*this, "cmdCheck", "&Check"};
    ui::Button cmdImport{*this, "cmdImport", "&Import..."};
};

} // namespace merchantry::exchange
