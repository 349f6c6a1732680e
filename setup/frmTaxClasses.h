#pragma once

#include "app/codegrid.h"
#include "setup/itemuse.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <set>
#include <string>

namespace merchantry::setup {

// The tax classes with their rates in percent. The first row, ID 0, stands for no tax. One class is the default, which new items get.
class frmTaxClasses : public ui::Form {
public:
    explicit frmTaxClasses(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    app::CodeTable table();

    void grdTax_EndEdit(int column, std::string& text);
    void cmdAdd_Click();
    void cmdDefault_Click();
    void cmdDelete_Click();
    void showAround();
    void showDefault();
    void showDoubles();

    ui::Label lblHeading{*this, "lblHeading", "Tax Classes"};
    ui::Label lblDefault{*this, "lblDefault"}; // the class that new items get
    ui::Grid grdTax{*this, "grdTax"};
    ui::Grid grdPreview{*this, "grdPreview"}; // what $10.00 costs in each class
    ui::Label lblUse{*this, "lblUse"};
    ui::Button cmdShowItems{*this, "cmdShowItems", "Show &Items..."};
    ui::Label lblNote{
        *this, "lblNote",
        "NOTE: The first class stands for no tax and cannot be changed. Items of a deleted class go there. What was sold keeps "
        "the rate of its day."};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdDefault{*this, "cmdDefault", "&Set As Default"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};

    std::set<std::int64_t> doubles_; // keys of classes that accounting would take for another
    app::CodeGrid classes_{grdTax, table()};
    ItemUse use_{{"MR_frmTaxClasses", "ShowUse"}, app::ItemGroup::TaxClass, lblUse, cmdShowItems};
};

} // namespace merchantry::setup
