#pragma once

#include "app/DbConfig.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <filesystem>
#include <optional>

namespace merchantry::app {

class DbConfigurator;

// The dialog of the known database configurations: add, edit, test, choose the default, and make a new store file with or without demo
// goods.
class frmDbConfig : public ui::Form {
public:
    explicit frmDbConfig(ui::Desk& desk);

    // Modal. The configuration chosen; nothing when the dialog was cancelled. At start-up the choice is offered as the default, too.
    std::optional<DbConfig> Choose(DbConfigurator& configurator, bool startUp);

private:
    void Form_Activate() override;

    void lstConfigs_Click();
    void cmdAdd_Click();
    void cmdRemove_Click();
    void cmdBrowse_Click();
    void cmdFind_Click();
    void cmdTest_Click();
    void cmdNew_Click(bool demo);
    void cmdOK_Click();

    void fillList(const std::string& selected);
    void showConfig(const DbConfig& config);
    DbConfig shownConfig() const;
    std::string wayTo() const;
    // What is wrong with the configuration shown, as a sentence; empty when nothing is.
    std::string complaint() const;
    bool keepShown();
    // Writes the file of configurations; says so and gives false when it cannot.
    bool save();
    void makeStore(const std::filesystem::path& file, bool demo);

    ui::ListBox lstConfigs{*this, "lstConfigs"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdRemove{*this, "cmdRemove", "&Remove"};
    ui::TextBox txtConfigName{*this, "txtConfigName"};
    ui::TextBox txtServerName{*this, "txtServerName"}; // a store file's path or a server
    ui::Button cmdBrowse{*this, "cmdBrowse", "&Browse..."};
    ui::TextBox txtInstanceName{*this, "txtInstanceName"};
    ui::Button cmdFind{*this, "cmdFind", "&Find"}; // asks the machine for its instances
    ui::TextBox txtRegisterID{*this, "txtRegisterID"};
    ui::TextBox txtPassword{*this, "txtPassword"};
    ui::CheckBox chkIntegrated{*this, "chkIntegrated", "Use the &operating system's login"};
    ui::CheckBox chkDefault{*this, "chkDefault", "Open this store at &start-up"};
    ui::Label lblState{*this, "lblState"}; // what a test said, or why the store could not be opened
    ui::ProgressBar prgMake{*this, "prgMake"};
    ui::Button cmdDemo{*this, "cmdDemo", "New &Demo Store"};
    ui::Button cmdEmpty{*this, "cmdEmpty", "New &Empty Store"};
    ui::Button cmdTest{*this, "cmdTest", "&Test Connection"};
    ui::Button cmdCancel{*this, "cmdCancel", "Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&Use This Store"};

    DbConfigurator* configurator_ = nullptr;
    bool startUp_ = false;
    std::optional<DbConfig> chosen_;
    std::string editing_; // name of the configuration shown; empty for a new one
};

} // namespace merchantry::app
