#pragma once

#include "exchange/backup/dmo.h"
#include "exchange/backup/filepicker.h"
#include "exchange/backup/serverlocator.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"

#include <memory>
#include <string>

namespace merchantry::db {
class FileStage;
class Sql;
} // namespace merchantry::db

namespace merchantry::exchange {

class StoreCloser;
struct RestoreOutlook;

// Backs the store up to a file and proves the backup, or restores the store from one. The data server does the work, with the file on its
// drive C, between which and the chosen path it is moved; meanwhile the application has no connection of its own. When that fails before
// the new connection is open, the application has none until Go is pressed anew or the program is started again.
class frmDatabaseBak : public ui::Form {
public:
    explicit frmDatabaseBak(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cmdFile_Click();
    void optMode_Click();
    void cmdGo_Click();

    // cmdGo, in its order.
    struct Work;
    void run(Work& work);
    std::unique_ptr<SQLServer> connected();
    void split(Work& work) const;
    void requireUsable(const Work& work) const;
    bool confirmed(const RestoreOutlook& outlook);
    void stageForRestore(Work& work);
    void stageOnServer();
    std::string shell(const db::Sql& command);
    void closeConn(Work& work);
    void backUp(Work& work);
    void restore(Work& work);
    void openConn(const Work& work);
    void prove(Work& work);
    void keepUnproved(Work& work);
    void unstage(Work& work);
    void unstageOnServer(Work& work);
    void tell(const Work& work);
    void sayFailed(const Work& work);

    bool backsUp() const;
    std::string refusal(const std::string& path) const;
    std::string server() const;
    std::string storeFile() const;
    void watch(const std::string& what);
    BackupProgress progress();
    void say(const std::string& text, bool bad = false);
    void showLast();
    void setAvailable();

    ui::Label lblHeading{*this, "lblHeading", "Database Utility"};
    ui::OptionButton optBak{*this, "optBak", "&Back up the database to a file"};
    ui::OptionButton optRest{*this, "optRest", "&Restore the database from a file"};
    ui::Button cmdFile{*this, "cmdFile", "&File..."};
    ui::Label lblFile{*this, "lblFile"};
    ui::Label lblProved{*this, "lblProved"}; // the last backup or restore, by the store's log
    ui::Label lblState{*this, "lblState"};
    ui::ProgressBar dbBar{*this, "dbBar"};
    ui::Button cmdStop{*this, "cmdStop", "&Stop"};
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};
    ui::Button cmdGo{*this, "cmdGo", "&Go"};

    ServerLocator locator_;
    BackupFilePicker picker_{desk()};
    std::string path_;
    bool serverIsLocal_ = true;
    std::string serverName_; // when it is told from the locator
    bool working_ = false;
    bool stop_ = false;
    bool leave_ = false; // closed while at work: goes when the work has ended
};

} // namespace merchantry::exchange
