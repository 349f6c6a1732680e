#include "exchange/frmImportExport.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "exchange/flat/modPackages.h"
#include "ui/desk.h"

namespace merchantry::exchange {

using namespace ui;

namespace {

constexpr const char* kStandard = "Std";
constexpr const char* kQuickSell = "QSell";
constexpr const char* kWhatIsMoved = "Customers and items want a first row with the columns' names, suppliers none.";
constexpr const char* kNoQuickSell =
    "QuickSell databases cannot be read by this version. Save the data as a workbook or as text there, and take "
    "it in with File, Excel Import.";

} // namespace

frmImportExport::frmImportExport(Desk& desk) : Form(desk, "frmImportExport", "Import/Export Data") {
    setIcon("import");
    for (OptionButton* choice : {&optExp, &optImp, &optCust, &optItems, &optSupp})
        choice->click = [this] { clearFile(); };
    cmdFile.click = [this] { cmdFile_Click(); };
    cmdGo.click = [this] { cmdGo_Click(); };
    cmdExit.click = [this] { unload(); };
    cmdExit.isCancel = true;
    cmdFile.setToolTip("Chooses the file to write, or the one to read.");
    cmdGo.setToolTip("An import adds rows and changes none: a code that the store has already stops it, and nothing is added.");
    setLayout(column({
        row({group(Frame1, column({at(optExp), at(optImp)})), group(fraType, column({at(optCust), at(optItems), at(optSupp)})), stretch()}),
        row({at(cmdFile), at(lblFile).wide(60).stretched()}),
        at(lblNote).wide(70),
        stretch(),
        buttons({stretch(), at(cmdExit), at(cmdGo)}),
    }));
    offer("ShowMode", [this](const auto& arguments) {
        ShowMode(arguments.empty() ? kStandard : arguments[0]);
        return std::string();
    });
}

void frmImportExport::ShowMode(const std::string& mode) {
    mode_ = mode;
    desk().showModal(*this);
}

void frmImportExport::Form_Load() {
    lblNote.setCaption(kWhatIsMoved);
    if (mode_ == kQuickSell) {
        showQuickSell();
    } else {
        optExp.setEnabled(true);
        optExp.setValue(true);
        optImp.setEnabled(true);
        fraType.setEnabled(true);
    }
    optCust.setValue(true);
    clearFile();
}

void frmImportExport::showQuickSell() {
    optImp.setEnabled(false);
    optImp.setValue(true);
    optExp.setValue(false);
    optExp.setEnabled(false);
    fraType.setVisible(false);
    Frame1.setVisible(false);
    lblNote.setCaption(kNoQuickSell);
    setCaption("QuickSell Data Import");
}

void frmImportExport::clearFile() {
    file_.clear();
    lblFile.setCaption("");
    cmdGo.setEnabled(false);
}

void frmImportExport::cmdFile_Click() {
    clearFile();
    file_ = chosen();
    if (file_.empty())
        return;
    cmdGo.setEnabled(true);
    lblFile.setCaption(file_.string());
}

// Empty when the dialogue was cancelled, or after saying so when there is no such file.
std::filesystem::path frmImportExport::chosen() {
    const bool save = !optImp.value();
    const char* const filter = mode_ == kStandard ? "Tillmark Backup|*.bki" : "QuickSell MDB|*.mdb";
    const auto file = desk().file({caption(), filter, desk().documentsFolder().string(), save});
    if (!file || save)
        return file.value_or(std::filesystem::path());
    std::error_code ignored;
    if (std::filesystem::exists(*file, ignored))
        return *file;
    desk().message("Please select a valid file", app::kProduct);
    return {};
}

void frmImportExport::cmdGo_Click() {
    app::guarded({"MR_frmDatabaseBak", "ImportExport_Error"}, [this] {
        desk().message(run() ? "Database Operation Complete" : "Database Operation Failed -- Please Check Data Source for Accuracy",
                       app::kProduct);
        clearFile();
    });
}

bool frmImportExport::run() {
    if (!optImp.value())
        return runExport();
    return mode_ == kStandard && runImport();
}

// Customers and suppliers are written twice, the second time over the first.
bool frmImportExport::runExport() {
    if (optItems.value())
        return ExportItemData(file_);
    const auto package = optCust.value() ? ExportCust : ExportSuppliers;
    const bool first = package(file_);
    return package(file_) && first;
}

// The items are tried also where their stock failed.
bool frmImportExport::runImport() {
    if (optCust.value())
        return ImportCust(file_);
    if (optSupp.value())
        return ImportSupp(file_);
    const bool stock = ImportStock(file_);
    return ImportData(file_) && stock;
}

} // namespace merchantry::exchange
