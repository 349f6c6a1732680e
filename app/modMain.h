#pragma once

#include "app/DataBroker.h"
#include "app/DbConfigurator.h"
#include "app/ErrLog.h"
#include "app/doors.h"
#include "app/failure.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::app {

// The module-level state that all screens lean on: one copy for the whole process, the only global of the program. Screens read and write
// it directly.
struct ModMain {
    std::string ConnectString; // built by StartUpSystem
    std::string DBUser;        // "sa" after start-up
    std::string DBPassword;
    std::string DBServer;     // server, or server\instance
    std::string DBServerName; // the bare server
    std::int16_t RegisterID = 1;

    db::ConnectionPtr Conn; // the one application-wide connection; the error logger may replace it
    std::shared_ptr<app::DataBroker> DataBroker;
    std::shared_ptr<app::ErrLog> ErrLog;
    db::RecordsetPtr ItemRecordset; // the row of the item open on frmItems
    DbConfig CurrentDB;
    std::shared_ptr<DbConfigurator> Configurator; // made once

    std::string CurrentSKU; // the item open on frmItems
    std::string CurrentMatrixSKU;
    std::string CurrentItemName;

    db::RecordsetPtr ReportRS; // of the report being shown

    std::unique_ptr<db::Waiter> waiter; // asks the desk while a statement waits for another program

    // Called with each report file that is run and its numbered parameters. For scripts that look on.
    std::function<void(const std::string& file, const std::vector<std::string>& parameters)> reportOpened;

    // What the program composed before its start: the desk, the provider of sessions, the doors between screens.
    ui::Desk* desk = nullptr;
    std::unique_ptr<db::Provider> provider;
    std::filesystem::path configFile; // empty: the user's configuration folder
    StoreMaker storeMaker;
    Doors doors;

    // The logger, also before StartUpSystem has made it.
    app::ErrLog& errLog();
};

// The one instance.
ModMain& modMain();
// Puts everything back to how a process begins, for the next play of one process. Requires: no screen is open.
void resetModMain();

// Takes the default database configuration, builds the connection string and opens Conn, through the configurator as often as it takes;
// ends the program when the user gives up.
void StartUpSystem();
// Builds ConnectString, DBPassword, DBServer and DBServerName from CurrentDB.
void rebuildConnectString();

// Unloads every open frmReport_Generate and frmReportCriteria.
void CloseReportForms();

// Opens a broker recordset the way all screens do: a command on a connection of its own, made from Conn's string.
db::RecordsetPtr openBroker(const db::Sql& text, db::CommandType type, db::CursorType cursor, db::LockType lock,
                            const std::vector<db::Parameter>& parameters = {});
// Lets a screen's recordset go: a pending change is cancelled, the rows are closed. Null or closed rows are let go as they are.
void closeRows(db::RecordsetPtr& rows);
// A varchar parameter of that length.
db::Parameter textParameter(const std::string& name, int length, const std::string& value);
db::Parameter intParameter(const std::string& name, int value);
// A recordset opened directly on Conn.
db::RecordsetPtr openDirect(const db::Sql& text, db::CursorType cursor = db::CursorType::ForwardOnly,
                            db::LockType lock = db::LockType::ReadOnly);

} // namespace merchantry::app
