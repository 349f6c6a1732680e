#include "exchange/backup/filepicker.h"

#include "ui/desk.h"

namespace merchantry::exchange {
namespace {

constexpr const char* kForm = "frmDatabaseBak";
constexpr const char* kFolder = "folder";

} // namespace

// Backups go where the last one went.
std::string BackupFilePicker::Pick(bool toWrite, const std::string& proposedName) {
    const std::string last = desk_.remembered(kForm, kFolder);
    const std::string folder = last.empty() ? desk_.documentsFolder().string() : last;
    const auto chosen = desk_.file({toWrite ? "Backup File" : "Restore From", "", folder, toWrite, toWrite ? proposedName : ""});
    if (!chosen)
        return "";
    desk_.remember(kForm, kFolder, chosen->parent_path().string());
    return chosen->string();
}

} // namespace merchantry::exchange
