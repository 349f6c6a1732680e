#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <string>
#include <vector>

namespace merchantry::setup {

// Which means of payment the registers offer, under which names and in which order. Held in the grid and written by cmdOK; the set itself
// comes from the database.
class frmTenderTypes : public ui::Form {
public:
    explicit frmTenderTypes(ui::Desk& desk);

private:
    void Form_Load() override;

    void loadTenders();
    void grdTenders_BeforeEdit(int row, bool& cancel);
    void grdTenders_ValidateEdit(int row, int column, const std::string& text, bool& cancel);
    void grdTenders_RowColChange();
    void cmdUP_Click();
    void cmdDown_Click();
    std::string storedTenders();
    bool mayOverwrite();
    void cmdOK_Click();
    void write();
    void swapRows(int row, int other);
    // What is wrong with a name for that row; empty when it may stand.
    std::string complaint(int row, const std::string& name) const;
    bool isTender(int row) const { return row >= 1 && row <= tenders_; }
    int offered() const;

    ui::Label lblHeading{*this, "lblHeading", "Tender Types"};
    ui::Label lblWhat{*this, "lblWhat", "The registers offer what is ticked, from top to bottom, by these names."};
    ui::Grid grdTenders{*this, "grdTenders"};
    ui::Button cmdUP{*this, "cmdUP", "Move &Up"};
    ui::Button cmdDown{*this, "cmdDown", "Move &Down"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};

    int tenders_ = 0;                // rows of the grid that are tenders; those below are empty
    std::string loaded_;             // as they stood in the store
    std::vector<std::string> names_; // the tenders' own names, in the order of the rows
    bool changed_ = false;
};

} // namespace merchantry::setup
