#pragma once

#include "reports/conditions.h"
#include "reports/keptcriteria.h"
#include "reports/rptfile.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"
#include "ui/undoline.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// What a report is about: conditions, built one by one, and the order; for item labels how many of each and on what. Not modal; one
// instance serves one report after another.
class frmReportCriteria : public ui::Form {
public:
    explicit frmReportCriteria(ui::Desk& desk);

    // The criteria of the report with this key, from the beginning.
    void LoadForm(const std::string& key);
    void InitListBoxes();

    std::string ReportKey;
    bool Custom = false;          // no fields are offered
    std::string CustomReportFile; // kept, and not used further here

private:
    void wire();
    void Form_Load() override;

    void Initialise();
    void cboQty_Click();
    void cmdAdd_Click();
    void AddCrit();
    void cmdDelete_Click();
    std::vector<std::string> shownRows() const;
    void cmdGen_Click();
    void generateReport();
    void generateLabels();

    // Beyond the report itself.
    void cmdCount_Click();
    void cmdKeep_Click();
    void cmdRecall_Click();
    void cmdForget_Click();

    bool isLabels() const { return ReportKey == "ItemLabels"; }
    void say(const std::string& text);
    void listKept(const std::string& chosen = "");
    std::string rowText() const { return grdSel.text(grdSel.row(), 0); }
    void setRow(int row, const std::string& text);
    void conditionsChanged();
    std::string sortField() const;
    std::optional<double> wholeQuantity() const;
    bool orderExists(double number) const;
    // What the labels want before they can be made; false when something is missing, which was said.
    bool checkLabels();
    // The labels' report with its parameters; null when it cannot be opened, which was said.
    RptFilePtr labelReport();
    RptFilePtr preparedReport();

    ui::TabSet tabCriteria{*this, "tabCriteria", {"Criteria", "Kept Criteria"}};

    // Criteria
    ui::Label lblFields{*this, "lblFields", "Field"};
    ui::ListBox lbxFields{*this, "lbxFields"};
    ui::Label lblOperator{*this, "lblOperator", "Is"};
    ui::ListBox lbxOperator{*this, "lbxOperator"};
    ui::Label lblCondition{*this, "lblCondition", "Condition"};
    ui::TextBox txtCondition{*this, "txtCondition"};
    ui::OptionButton optAnd{*this, "optAnd", "A&nd", true};
    ui::OptionButton optOr{*this, "optOr", "&Or"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Grid grdSel{*this, "grdSel"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};

    ui::Frame fraSort{*this, "fraSort", "Order"};
    ui::Label lblSort{*this, "lblSort", "Sort by:"};
    ui::ListBox lbxSortBy{*this, "lbxSortBy"};
    ui::OptionButton optAsc{*this, "optAsc", "A&scending", true};
    ui::OptionButton optDesc{*this, "optDesc", "D&escending"};

    ui::Frame fraLabels{*this, "fraLabels", "Labels"};
    ui::ComboBox cboQty{*this, "cboQty"};
    ui::Label lblQtyN{*this, "lblQtyN", "Number:"};
    ui::TextBox txtQty{*this, "txtQty"};
    ui::ComboBox cboPrn{*this, "cboPrn"};

    // Kept Criteria
    ui::Label lblKept{*this, "lblKept", "Conditions and order can be kept under a name and used again. Nothing is kept by itself."};
    ui::ListBox lbxKept{*this, "lbxKept"};
    ui::Button cmdRecall{*this, "cmdRecall", "&Use These"};
    ui::Button cmdForget{*this, "cmdForget", "&Forget"};
    ui::Button cmdKeep{*this, "cmdKeep", "&Keep the Present Ones..."};

    ui::Button cmdCount{*this, "cmdCount", "&Count Rows"};
    ui::Label lblCount{*this, "lblCount"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdGen{*this, "cmdGen", "&Generate"};
    ui::UndoLine undoLine{*this};

    std::vector<CriteriaField> Fields; // the first is number 1, as the list's item data says
    Criteria criteria_;                // SqlConditions, DisplayConditions and CriteriaCount
    bool loadedOnce_ = false;
};

} // namespace merchantry::reports
