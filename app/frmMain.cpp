#include "app/frmMain.h"

#include "app/backuplog.h"
#include "app/commands.h"
#include "app/frmAbout.h"
#include "app/itemcodes.h"
#include "app/modMain.h"
#include "app/titles.h"
#include "base/textorder.h"
#include "ui/desk.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace merchantry::app {

using namespace ui;

namespace {

constexpr const char* kCaption = "Merchantry Manager";
constexpr Twips kWidth = 1060 * kTwipsPerPixel;
constexpr Twips kHeight = 680 * kTwipsPerPixel;

// A tool, and the command that has the same behind it.
struct ToolRow {
    ToolButton button;
    const char* command;
};
const std::vector<ToolRow> kTools{
    {{"Items", "Items", "View/Modify Items", "items"}, "mnuItemsItemmaintenance"},
    {{"Customers", "Customers", "View/Modify Customers", "customers"}, "mnuCustomersCustomermaintenance"},
    {{"Import", "Excel Import", "Excel Import", "import"}, "mnuExcelImport"},
    {{"BackupRestore", "Backup", "Backup/Restore Database", "backup"}, "mnuFileDButil"},
    {{"Options", "Options", "Options", "options"}, "mnuStoreGeneraloptions"},
    {{"Labels", "Labels", "Print Labels", "labels"}, "mnuReportsPrintlabelsItems"},
    {{"AddNow", "Add Item Now", "Add Item Now", "addnow"}, "mnuItemsItemmaintenance"},
    {{"Quickbooks", "QuickBooks", "Quickbooks Export", "quickbooks"}, "mnuFileQuickbooksexport"},
};

std::vector<ToolButton> toolButtons() {
    std::vector<ToolButton> buttons;
    for (const ToolRow& tool : kTools)
        buttons.push_back(tool.button);
    return buttons;
}

// What the commands of frmMain's own need to be bound; those that are not here need nothing.
struct Need {
    const char* command;
    bool (*met)(const Doors& doors);
};
constexpr Need kNeeds[] = {
    {"mnuImportexportQuicksell", [](const Doors& doors) { return doors.ImportExport != nullptr; }},
    {"mnuImportexportStandard", [](const Doors& doors) { return doors.ImportExport != nullptr; }},
    {"mnuExcelImport", [](const Doors& doors) { return doors.ExcelImport != nullptr; }},
    {"mnuItemsItemmaintenance", [](const Doors& doors) { return doors.SelectSKU != nullptr && doors.CheckSKUs != nullptr; }},
    {"mnuItemsMatrixitemsAddparent", [](const Doors& doors) { return doors.AddNewParent != nullptr; }},
    {"mnuItemsMatrixitemsParentlookup", [](const Doors& doors) { return doors.ShowItemLookup != nullptr; }},
    {"mnuItemsMatrixitemsMatrixitemlookup", [](const Doors& doors) { return doors.ItemMatrixLookup != nullptr; }},
    {"mnuItemsSetupSalesmessages", [](const Doors& doors) { return doors.SalesMessages != nullptr; }},
    {"mnuFileQuickbooksexport", [](const Doors& doors) { return doors.QuickBooksExport != nullptr; }},
    {"mnuRunCustomerStatements", [](const Doors& doors) { return doors.CustomerStatements != nullptr; }},
    {"mnuCustomReport", [](const Doors& doors) { return doors.CustomReport != nullptr; }},
};

bool isBound(const CommandRow& command) {
    const Doors& doors = modMain().doors;
    if (command.kind == CommandKind::Screen)
        return doors.HasScreen && doors.HasScreen(command.target);
    if (command.kind == CommandKind::Report)
        return doors.ReportCriteria != nullptr;
    const auto* const need =
        std::find_if(std::begin(kNeeds), std::end(kNeeds), [&](const Need& n) { return sameText(n.command, command.name); });
    return need == std::end(kNeeds) || need->met(doors);
}

bool isBound(const std::string& name) {
    const auto rows = commandTable();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const CommandRow& command) { return name == command.name; });
    return row != rows.end() && isBound(*row);
}

} // namespace

frmMain::frmMain(Desk& desk) : Form(desk, "frmMain", kCaption), Toolbar1(*this, "Toolbar1", toolButtons()) {
    setIcon("store");
    setSize(kWidth, kHeight);
    buildMenu();
    Toolbar1.buttonClick = [this](const std::string& key) { Toolbar1_ButtonClick(key); };
    road_.changed = [this] { lblWelcome.setVisible(!road_.shown()); };
    setLayout(column({stretch(), row({stretch(), title(lblWelcome), stretch()}), row({stretch(), road_.layout(), stretch()}), stretch()}));
}

void frmMain::buildMenu() {
    std::map<std::string, MenuEntry*> menus;
    for (const CommandRow& command : commandTable()) {
        MenuEntry* parent = *command.parent == '\0' ? nullptr : menus.at(command.parent);
        entries_.push_back(std::make_unique<MenuEntry>(*this, command.name, command.caption, parent));
        MenuEntry* entry = entries_.back().get();
        if (command.kind == CommandKind::Menu)
            menus[command.name] = entry;
        else if (command.kind != CommandKind::Line)
            entry->click = [this, name = command.name] { Command(name); };
    }
}

void frmMain::Form_Load() {
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [this] {
        setCaption(kCaption);
        greyUnbound();
    });
}

void frmMain::Form_Activate() {
    remind();
    road_.offer();
}

namespace {

// As long as the default manager account has the password that every store starts with.
std::string passwordHint() {
    const auto known = openDirect("SELECT ID FROM Cashier WHERE ID = 5 AND Password = 'manager'");
    return known->Eof() ? "" : "The manager's password is still \"manager\". Please change it under Store, Cashiers.";
}

// Of a store in a file; what became of a server's backups is not known here.
std::string backupHint(Date now) {
    const std::string& store = modMain().DBServer;
    if (store.find('/') == std::string::npos && !store.ends_with(".store"))
        return "";
    const auto made = openDirect("SELECT MIN(UpgradeDate) AS Made FROM SchemaVersion");
    return backupReminder(store, (*made)["Made"].Value().as<Date>(), now);
}

} // namespace

// What stands in the status bar until it is seen to. Only hints: a failure is nobody's concern.
void frmMain::remind() {
    if (modMain().Conn->State() == 0)
        return desk().hint(
            "There is no connection to the store: open File, Backup/Restore Database and press Go, or start the program again.");
    std::string hints;
    const auto add = [&](const std::string& hint) { hints += (hints.empty() || hint.empty() ? "" : "  \u00B7  ") + hint; };
    try {
        add(passwordHint());
        add(backupHint(desk().clock().now()));
    } catch (const std::exception&) { // what is known stands
    }
    desk().hint(hints);
}

void frmMain::Form_Unload(bool& /*cancel*/) {
    desk().end();
}

MenuEntry& frmMain::entry(const std::string& name) {
    return dynamic_cast<MenuEntry&>(*find(name));
}

void frmMain::Command(const std::string& name) {
    run(name);
    road_.refresh();
}

void frmMain::run(const std::string& name) {
    for (const CommandRow& command : commandTable()) {
        if (name != command.name)
            continue;
        if (command.closesReports)
            CloseReportForms();
        switch (command.kind) {
        case CommandKind::Screen:
            return showScreen(command.target);
        case CommandKind::Report:
            return report(command.target);
        case CommandKind::Message:
            desk().message(command.target, kProduct);
            return;
        default:
            break;
        }
    }
    const Doors& doors = modMain().doors;
    const auto through = [&](const auto& door, auto&&... arguments) {
        if (door)
            door(arguments...);
    };
    if (name == "mnuDBConfiguration")
        mnuDBConfiguration_Click();
    else if (name == "mnuImportexportQuicksell")
        through(doors.ImportExport, "QSell");
    else if (name == "mnuImportexportStandard")
        through(doors.ImportExport, "Std");
    else if (name == "mnuFileQuickbooksexport")
        mnuFileQuickbooksexport_Click();
    else if (name == "mnuExcelImport")
        through(doors.ExcelImport);
    else if (name == "mnuFileExit")
        unload();
    else if (name == "mnuItemsItemmaintenance")
        mnuItemsItemmaintenance_Click();
    else if (name == "mnuItemsMatrixitemsAddparent")
        through(doors.AddNewParent);
    else if (name == "mnuItemsMatrixitemsParentlookup")
        through(doors.ShowItemLookup, 2);
    else if (name == "mnuItemsMatrixitemsMatrixitemlookup")
        through(doors.ItemMatrixLookup);
    else if (name == "mnuItemsSetupSalesmessages")
        through(doors.SalesMessages, 0);
    else if (name == "mnuRunCustomerStatements")
        through(doors.CustomerStatements, 1, 5);
    else if (name == "mnuCustomerCustomFields")
        desk().message("Run-time error '424':\r\n\r\nObject required", kCaption, MessageIcon::Stop);
    else if (name == "mnuCustomReport")
        mnuCustomReport_Click();
    else if (name == "mnuFirstRoad")
        road_.bringBack();
    else if (name == "mnuProductHelp")
        mnuProductHelp_Click();
    else if (name == "mnuAbout")
        desk().showModal(desk().form<frmAbout>());
}

void frmMain::greyUnbound() {
    for (const CommandRow& command : commandTable())
        if (command.kind != CommandKind::Menu && command.kind != CommandKind::Line)
            entry(command.name).setEnabled(isBound(command));
    for (const ToolRow& tool : kTools)
        Toolbar1.setButtonEnabled(tool.button.key, isBound(tool.command));
}

void frmMain::showScreen(const std::string& form) {
    if (const auto& door = modMain().doors.ShowScreen)
        door(form);
    remind();
}

void frmMain::report(const std::string& key) {
    if (const auto& door = modMain().doors.ReportCriteria)
        door(key);
}

void frmMain::Toolbar1_ButtonClick(const std::string& key) {
    CloseReportForms();
    if (key == "Items")
        Command("mnuItemsItemmaintenance");
    else if (key == "Customers")
        showScreen("frmCustomerView");
    else if (key == "Import")
        Command("mnuExcelImport");
    else if (key == "BackupRestore")
        showScreen("frmDatabaseBak");
    else if (key == "Options")
        showScreen("frmOptions");
    else if (key == "Labels")
        report("ItemLabels");
    else if (key == "AddNow")
        AddItemNow();
    else if (key == "Quickbooks")
        mnuFileQuickbooksexport_Click();
    road_.refresh();
}

void frmMain::mnuDBConfiguration_Click() {
    ModMain& session = modMain();
    int confirmed = 0;
    session.Configurator->EditConfiguration(session.Conn, confirmed);
    if (confirmed == 0)
        return;
    session.CurrentDB = session.Configurator->GetCurrentConfiguration();
    const DbConfig standard = session.Configurator->GetDefaultConfiguration();
    if (session.CurrentDB.ConfigName != standard.ConfigName) {
        setCaption(session.CurrentDB.ConfigName + " - " + kCaption);
        rebuildConnectString();
    } else {
        setCaption(kCaption);
    }
}

void frmMain::mnuItemsItemmaintenance_Click() {
    const Doors& doors = modMain().doors;
    if (doors.SelectSKU && doors.CheckSKUs)
        doors.CheckSKUs(doors.SelectSKU(1), false);
}

void frmMain::AddItemNow() {
    guarded({"MR_frmMain", "AddItemNow"}, [this] { addItem(); });
}

void frmMain::addItem() {
    const Doors& doors = modMain().doors;
    if (!doors.GetSKU || !doors.GetMatrixSKU || !doors.CheckSKUs)
        return;
    std::string matrixSku = doors.GetSKU();
    const std::string sku = doors.GetMatrixSKU(matrixSku);
    if (sku.empty())
        return;
    if (matrixSku.empty())
        matrixSku = sku;
    if (const std::string wrong = itemCodeComplaint(sku, matrixSku); !wrong.empty()) {
        desk().message(wrong, kProduct);
        return;
    }
    const auto known = openDirect(db::Sql("SELECT SKU from Item WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku + "'",
                                  db::CursorType::Keyset, db::LockType::ReadOnly);
    if (known->RecordCount() > 0) {
        desk().message("That item already exists in your store! Please enter a different SKU/MatrixSKU", kProduct);
        return;
    }
    const auto made = openBroker("bsp_NewItem", db::CommandType::StoredProcedure, db::CursorType::ForwardOnly, db::LockType::ReadOnly,
                                 {textParameter("SKU", 100, sku), textParameter("MatrixSKU", 100, matrixSku)});
    if (made->Eof() || (*made)["cnt"].Value().toInteger() != 1)
        return;
    made->Close();
    doors.CheckSKUs(sku + "|" + matrixSku, false);
}

bool frmMain::HasDuplicateTaxClasses() {
    const auto rows = modMain().Conn->Execute("sp_QBGetTaxDefDups");
    const bool found = !rows->Eof();
    rows->Close();
    return found;
}

void frmMain::mnuFileQuickbooksexport_Click() {
    guarded({"frmMain", "mnuFileQuickbooksexport_Click"}, [this] { QuickBooksExport(); });
}

void frmMain::QuickBooksExport() {
    const auto& screen = modMain().doors.ShowScreen;
    while (HasDuplicateTaxClasses()) {
        const auto answer =
            desk().message("Duplicate tax classes have been detected. You need to correct the problem before running QuickBooks "
                           "export. Would you like to correct it now?",
                           kProduct, MessageIcon::Question, MessageButtons::YesNo);
        if (answer != Answer::Yes)
            return;
        // Without the screen that could correct them, asking again would never end.
        if (!screen || !screen("frmTaxClasses"))
            return;
    }
    MenuEntry& command = entry("mnuFileQuickbooksexport");
    command.setEnabled(false);
    modMain().doors.QuickBooksExport(1);
    command.setEnabled(true);
}

void frmMain::mnuCustomReport_Click() {
    const std::string program = desk().programFolder().string();
    std::filesystem::path path;
    while (true) {
        const auto chosen =
            desk().file({"Open Report File", "Report Files (*.rpt)|*.rpt", (desk().documentsFolder() / "Velmora Reports").string(), false});
        if (!chosen)
            return;
        path = *chosen;
        const std::string folder = path.parent_path().string();
        const std::size_t shorter = std::min(folder.size(), program.size());
        if (folder.compare(0, shorter, program, 0, shorter) != 0)
            break;
        desk().message("Custom reports are not allowed in this directory", kProduct, MessageIcon::Information);
    }
    desk().yield();
    const auto& generate = modMain().doors.CustomReport;
    if (generate)
        generate(path.string());
}

void frmMain::mnuProductHelp_Click() {
    desk().browse((desk().programFolder() / "help" / "Cover2.htm").string());
}

} // namespace merchantry::app
