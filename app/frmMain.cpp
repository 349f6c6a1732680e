#include "app/frmMain.h"

#include "app/commands.h"
#include "app/frmAbout.h"
#include "app/itemcodes.h"
#include "app/modMain.h"
#include "base/text.h"
#include "ui/desk.h"

#include <map>

namespace merchantry::app {

using namespace ui;

namespace {

constexpr const char* kCaption = "Merchantry Manager";
constexpr Twips kWidth = 1060 * kTwipsPerPixel;
constexpr Twips kHeight = 680 * kTwipsPerPixel;
constexpr const char* kProduct = "Velmora Tillmark Professional";

std::vector<ToolButton> toolButtons() {
    return {
        {"Items", "Items", "View/Modify Items", "items"},     {"Customers", "Customers", "View/Modify Customers", "customers"},
        {"Import", "Excel Import", "Excel Import", "import"}, {"BackupRestore", "Backup", "Backup/Restore Database", "backup"},
        {"Options", "Options", "Options", "options"},         {"Labels", "Labels", "Print Labels", "labels"},
        {"AddNow", "Add Item Now", "Add Item Now", "addnow"}, {"Quickbooks", "QuickBooks", "Quickbooks Export", "quickbooks"},
    };
}

} // namespace

frmMain::frmMain(Desk& desk) : Form(desk, "frmMain", kCaption), Toolbar1(*this, "Toolbar1", toolButtons()) {
    setIcon("store");
    setSize(kWidth, kHeight);
    buildMenu();
    Toolbar1.buttonClick = [this](const std::string& key) { Toolbar1_ButtonClick(key); };
    setLayout(column({stretch(), row({stretch(), title(lblWelcome), stretch()}), stretch()}));
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
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [this] { setCaption(kCaption); });
}

// Reminds the owner of the password that every store starts with. Only a reminder: a failure is nobody's concern.
void frmMain::Form_Activate() {
    try {
        const auto known = openDirect("SELECT ID FROM Cashier WHERE ID = 5 AND Name = 'manager' AND Password = 'manager'");
        desk().status(known->Eof() ? "" : "The manager's password is still \"manager\". Please change it under Store, Cashiers.");
    } catch (const std::exception&) {
        desk().status("");
    }
}

void frmMain::Form_Unload(bool& /*cancel*/) {
    desk().end();
}

MenuEntry& frmMain::entry(const std::string& name) {
    return dynamic_cast<MenuEntry&>(*find(name));
}

void frmMain::Command(const std::string& name) {
    for (const CommandRow& command : commandTable()) {
        if (name != command.name)
            continue;
        if (command.closesReports)
            CloseReportForms();
        switch (command.kind) {
        case CommandKind::Screen:
            return showScreen(command.caption, command.target);
        case CommandKind::Report:
            return report(command.caption, command.target);
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
        else
            notYet(entry(name).caption());
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
    else if (name == "mnuProductHelp")
        mnuProductHelp_Click();
    else if (name == "mnuAbout")
        desk().showModal(desk().form<frmAbout>());
}

void frmMain::notYet(const std::string& command) {
    desk().status("\"" + replaced(command, "&", "") + "\" is not part of this version yet.");
}

void frmMain::showScreen(const std::string& command, const std::string& form) {
    const auto& door = modMain().doors.ShowScreen;
    if (!door || !door(form))
        notYet(command);
}

void frmMain::report(const std::string& command, const std::string& key) {
    const auto& door = modMain().doors.ReportCriteria;
    if (door)
        door(key);
    else
        notYet(command);
}

void frmMain::Toolbar1_ButtonClick(const std::string& key) {
    CloseReportForms();
    if (key == "Items")
        Command("mnuItemsItemmaintenance");
    else if (key == "Customers")
        showScreen("Customers", "frmCustomerView");
    else if (key == "Import")
        Command("mnuExcelImport");
    else if (key == "BackupRestore")
        showScreen("Backup", "frmDatabaseBak");
    else if (key == "Options")
        showScreen("Options", "frmOptions");
    else if (key == "Labels")
        report("Labels", "ItemLabels");
    else if (key == "AddNow")
        AddItemNow();
    else if (key == "Quickbooks")
        mnuFileQuickbooksexport_Click();
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
    else
        notYet("Item Maintenance");
}

void frmMain::AddItemNow() {
    guarded({"MR_frmMain", "AddItemNow"}, [this] { addItem(); });
}

void frmMain::addItem() {
    const Doors& doors = modMain().doors;
    if (!doors.GetSKU || !doors.GetMatrixSKU || !doors.CheckSKUs)
        return notYet("Add Item Now");
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
            return notYet("Tax Classes");
    }
    const auto& exporter = modMain().doors.QuickBooksExport;
    if (!exporter)
        return notYet("QuickBooks Export");
    MenuEntry& command = entry("mnuFileQuickbooksexport");
    command.setEnabled(false);
    exporter(1);
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
    else
        notYet("Custom Reports");
}

void frmMain::mnuProductHelp_Click() {
    desk().browse((desk().programFolder() / "help" / "Cover2.htm").string());
}

} // namespace merchantry::app
