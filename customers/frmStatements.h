#pragma once

#include "app/db/ado/recordset.h"
#include "customers/statements/statementrun.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <cstdint>
#include <functional>

namespace merchantry::customers {

// Draws up the customers' statements as at a day, posts them with their finance charges, and prints and takes back what was posted. Writes
// nothing before Post.
class frmStatements : public ui::Form {
public:
    explicit frmStatements(ui::Desk& desk);

    // For whom it posts; set before it is shown.
    int StoreId = 1;
    int CashierId = 5;

private:
    void shapeGrids();
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void cmdDrawUp_Click();
    void drawUp(Date day);
    void cmdPost_Click();
    bool postingConfirmed();
    void post();
    void cmdPrint_Click();
    void cmdTakeBack_Click();
    bool takenBack(std::int64_t run);
    void loadRuns();
    void show(const StatementRun& run);
    void fitAmounts();
    void showReckoning();
    void setAvailable();
    std::optional<Date> dayTyped();
    std::int32_t runOf(Date day) const;
    std::optional<Date> lastPosted() const;
    bool work(const char* procedure, const std::function<void(db::Session&, const RunProgress&)>& body);

    ui::Label lblHeading{*this, "lblHeading", "Customer Statements"};
    ui::TextBox txtAsAt{*this, "txtAsAt"};
    ui::Button cmdDrawUp{*this, "cmdDrawUp", "&Draw Up"};
    ui::Label lblCount{*this, "lblCount"};
    ui::Label lblCharges{*this, "lblCharges"};
    ui::Label lblBalances{*this, "lblBalances"};
    ui::TabSet tabStatements{*this, "tabStatements", {"Statements", "Posted Runs"}};
    ui::Grid grdStatements{*this, "grdStatements"};
    ui::Label lblReckoning{*this, "lblReckoning"};
    ui::Grid grdRuns{*this, "grdRuns"};
    ui::Button cmdPrint{*this, "cmdPrint", "P&rint Again..."};
    ui::Button cmdTakeBack{*this, "cmdTakeBack", "&Take Back"};
    ui::Label lblState{*this, "lblState"};
    ui::ProgressBar prgWork{*this, "prgWork"};
    ui::Button cmdStop{*this, "cmdStop", "&Stop"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdPost{*this, "cmdPost", "&Post..."};

    db::RecordsetPtr runs_;
    StatementRun drawn_;
    bool fresh_ = false; // what is shown can be posted
    bool activated_ = false;
    bool working_ = false;
    bool stop_ = false;
    bool leave_ = false; // closed while at work: goes when the work has ended
};

} // namespace merchantry::customers
