#pragma once

#include "app/db/ado/recordset.h"
#include "exchange/import/importrows.h"
#include "exchange/import/importsource.h"
#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"
#include "exchange/import/recordplan.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <functional>
#include <memory>
#include <string>

namespace merchantry::exchange {

// Takes a table of another program into the store: chooses the file, matches its columns, shows every bad cell and what each row would
// change, writes all of it in one transaction, and takes earlier imports back. Writes nothing before Import.
class frmExcelImport : public ui::Form {
public:
    explicit frmExcelImport(ui::Desk& desk);
    ~frmExcelImport() override;
    frmExcelImport(const frmExcelImport&) = delete;
    frmExcelImport& operator=(const frmExcelImport&) = delete;

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void setUpGrids();
    void wire();
    ui::Item filePage();
    ui::Item columnsPage();
    ui::Item checkPage();
    ui::Item runsPage();

    void cmdBrowse_Click();
    void open(const std::filesystem::path& file);
    void read();
    void showShape();
    void takeShape();
    void lbxDecimals_Click();
    void showDecimals();
    void lbxTarget_Click();
    void txtHeadings_LostFocus();
    void match();
    void showFound();
    void showSample();
    void showColumns();
    void grdColumns_AfterEdit(int row);
    void loadChoices();
    ImportOptions options() const;
    void outdated();
    void dropPlan();

    void tabImport_Change();
    void cmdCheck_Click();
    void check();
    bool checkAll();
    void showPlan();
    void showFindings();
    void showRows();
    void showReason(const ui::Grid& grid);
    void cmdJump_Click();
    void cmdExportBad_Click();

    void cmdImport_Click();
    bool mayImport();
    void write();
    void loadRuns();
    void cmdUndo_Click();
    void undo(std::int32_t run);

    void setAvailable();
    bool work(const char* procedure, const std::string& what, const std::function<std::function<int()>(db::Session&)>& begun);
    Target target() const;

    ui::Label lblHeading{*this, "lblHeading", "Excel Import"};
    ui::Label lblNew{*this, "lblNew"};
    ui::Label lblChanged{*this, "lblChanged"};
    ui::Label lblSame{*this, "lblSame"};
    ui::Label lblBad{*this, "lblBad"};
    ui::TabSet tabImport{*this, "tabImport", {"1 File", "2 Columns", "3 Check", "Earlier Imports"}};

    ui::TextBox txtFile{*this, "txtFile"};
    ui::Button cmdBrowse{*this, "cmdBrowse", "Choose &File..."};
    ui::ListBox lbxTarget{*this, "lbxTarget"};
    ui::ListBox lbxSheet{*this, "lbxSheet"};
    ui::ListBox lbxEncoding{*this, "lbxEncoding"};
    ui::ListBox lbxDelimiter{*this, "lbxDelimiter"};
    ui::ListBox lbxDecimals{*this, "lbxDecimals"};
    ui::TextBox txtHeadings{*this, "txtHeadings"};
    ui::CheckBox chkHidden{*this, "chkHidden", "Take &hidden rows, too"};
    ui::Label lblFound{*this, "lblFound"};
    ui::Grid grdSample{*this, "grdSample"};

    ui::Grid grdColumns{*this, "grdColumns"};
    ui::ListBox lbxCodes{*this, "lbxCodes"};
    ui::ListBox lbxSupplier{*this, "lbxSupplier"};
    ui::ListBox lbxReason{*this, "lbxReason"};
    ui::CheckBox chkDepartments{*this, "chkDepartments", "Make new &departments"};
    ui::CheckBox chkSuppliers{*this, "chkSuppliers", "Make new &suppliers"};
    ui::CheckBox chkRound{*this, "chkRound", "&Round amounts to cents"};

    ui::ListBox lbxFindings{*this, "lbxFindings"};
    ui::Button cmdJump{*this, "cmdJump", "Show Ro&w"};
    ui::Button cmdExportBad{*this, "cmdExportBad", "Ex&port Bad Cells..."};
    ui::Grid grdFindings{*this, "grdFindings"};
    ui::ListBox lbxRows{*this, "lbxRows"};
    ui::Label lblSums{*this, "lblSums"};
    ui::Grid grdRows{*this, "grdRows"};
    ui::Label lblReason{*this, "lblReason"};

    ui::Grid grdRuns{*this, "grdRuns"};
    ui::Button cmdUndo{*this, "cmdUndo", "&Undo Import..."};

    ui::CheckBox chkLeaveOut{*this, "chkLeaveOut", "&Leave rows with bad cells out"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdCheck{*this, "cmdCheck", "&Check"};
    ui::Button cmdImport{*this, "cmdImport", "&Import..."};

    std::unique_ptr<ImportSource> source_;
    SheetTable table_;
    ColumnMatch match_;
    std::string earlier_; // what there is to tell of an import of the same content
    std::unique_ptr<ItemsInStore> items_;
    std::unique_ptr<RecordsInStore> records_;
    std::unique_ptr<ImportPlan> plan_; // null while nothing was checked, or something was changed since
    PlannedRows plannedRows_;
    FindingRows findingRows_;
    db::RecordsetPtr runs_;
    bool decimalsSaid_ = false; // by the user, of this file
    bool filling_ = false;      // controls are set by the screen itself
};

} // namespace merchantry::exchange
