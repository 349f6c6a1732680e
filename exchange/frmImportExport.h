#pragma once

#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"

#include <filesystem>
#include <string>

namespace merchantry::exchange {

// Starts the packages of flat files: customers, items or suppliers, out of the store or into it.
class frmImportExport : public ui::Form {
public:
    explicit frmImportExport(ui::Desk& desk);

    // Shows the screen, modal, in mode "Std" or "QSell"; nothing is read from a database of the latter, and the screen says so.
    void ShowMode(const std::string& mode);

private:
    void Form_Load() override;
    void showQuickSell();
    void cmdFile_Click();
    void cmdGo_Click();
    bool run();
    bool runExport();
    bool runImport();
    void clearFile();
    std::filesystem::path chosen();

    std::string mode_ = "Std";
    std::filesystem::path file_; // empty when none is chosen

    ui::Frame Frame1{*this, "Frame1", "Direction"};
    ui::OptionButton optExp{*this, "optExp", "&Export"};
    ui::OptionButton optImp{*this, "optImp", "&Import"};
    ui::Frame fraType{*this, "fraType", "Data"};
    ui::OptionButton optCust{*this, "optCust", "&Customers"};
    ui::OptionButton optItems{*this, "optItems", "I&tems"};
    ui::OptionButton optSupp{*this, "optSupp", "&Suppliers"};
    ui::Button cmdFile{*this, "cmdFile", "&File..."};
    ui::Label lblFile{*this, "lblFile"};
    ui::Label lblNote{*this, "lblNote"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdGo{*this, "cmdGo", "&Go"};
};

} // namespace merchantry::exchange
