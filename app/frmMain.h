#pragma once

#include "app/firstroad.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/menu.h"

#include <functional>
#include <memory>
#include <vector>

namespace merchantry::app {

// The shell: a menu, a toolbar and an empty background, on which a new store offers its first steps. Its end is the program's end.
class frmMain : public ui::Form {
public:
    explicit frmMain(ui::Desk& desk);

    // Runs the command of that name as its menu entry does.
    void Command(const std::string& name);
    // Asks for a code and makes an item with it.
    void AddItemNow();

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void Toolbar1_ButtonClick(const std::string& key);

    void mnuDBConfiguration_Click();
    void mnuItemsItemmaintenance_Click();
    void mnuFileQuickbooksexport_Click();
    void mnuCustomReport_Click();
    void mnuProductHelp_Click();
    bool HasDuplicateTaxClasses();
    void QuickBooksExport();
    void addItem();
    void run(const std::string& name);
    ui::MenuEntry& entry(const std::string& name);
    // Greys what has no screen behind it, in the menu and on the tool bar.
    void greyUnbound();
    void showScreen(const std::string& form);
    void remind();
    void report(const std::string& key);
    void buildMenu();

    std::vector<std::unique_ptr<ui::MenuEntry>> entries_;
    ui::Toolbar Toolbar1;
    ui::Label lblWelcome{*this, "lblWelcome", "Merchantry"};
    FirstRoad road_{*this, [this](const std::string& form) { form.empty() ? AddItemNow() : showScreen(form); }};
};

} // namespace merchantry::app
