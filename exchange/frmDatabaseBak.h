#pragma once

#include "exchange/backup/backuprun.h"
#include "exchange/backup/filepicker.h"
#include "exchange/backup/serverlocator.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"

#include <string>

namespace merchantry::exchange {

// Backs the store up to a file and proves the backup, or restores the store from one: asks what and which file, shows how a BackupRun goes
// on and tells what became of it. When that fails before the new connection is open, the application has none until Go is pressed anew or
// the program is started again.
class frmDatabaseBak : public ui::Form, private BackupScreen {
public:
    explicit frmDatabaseBak(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cmdFile_Click();
    void optMode_Click();
    void cmdGo_Click();

    // What the run asks.
    void stepBegins(const std::string& what) override;
    void stepEnded() override;
    BackupProgress progress() override;
    bool confirmed(const RestoreOutlook& outlook) override;

    void tell(const BackupResult& result);
    void tellOfBackup(const BackupResult& result);
    void sayFailed(const BackupResult& result);

    bool backsUp() const;
    std::string refusal(const std::string& path) const;
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
