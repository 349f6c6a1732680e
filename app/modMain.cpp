#include "app/modMain.h"

#include "app/db/ado/provider.h"
#include "app/db/embedded/filehead.h"
#include "app/serverstore.h"
#include "app/storefile.h"
#include "base/errortext.h"
#include "base/numbers.h"
#include "base/platform/platform.h"
#include "ui/desk.h"
#include "ui/form.h"

namespace merchantry::app {
namespace {

constexpr long kConnectTimeoutSeconds = 60;

std::int16_t registerNumber(const std::string& text) {
    const auto number = numberOf(text);
    return number ? toInt16(*number) : std::int16_t{1};
}

// The desk shows that a statement waits, and lets the user give up.
class DeskWaiter : public db::Waiter {
public:
    explicit DeskWaiter(ui::Desk& desk) : desk_(desk) {}
    bool goOn(std::chrono::milliseconds waited) override { return desk_.waitForStore(waited); }
    void over() override { desk_.storeIsFree(); }

private:
    ui::Desk& desk_;
};

void tellNotice(ui::Desk& desk) {
    if (const std::string notice = db::takeStoreNotice(); !notice.empty())
        desk.message(notice, "Store", ui::MessageIcon::Information);
}

void openConn(ModMain& session) {
    session.Conn = std::make_shared<db::Connection>(*session.provider);
    long timeout = kConnectTimeoutSeconds;
    session.DataBroker->OpenConnection(session.ConnectString, session.ErrLog, timeout, session.Conn);
}

// All who use it must have this version then, so the question is asked of whoever starts it first.
bool upgradedOnServer(ModMain& session) {
    const auto answer = session.desk->message("The store on the server was made by an earlier version of the program. Bring it up to date "
                                              "now?\r\nMake a backup of its database on the server first. Desktops with the earlier "
                                              "version cannot open it any more.",
                                              "Store", ui::MessageIcon::Question, ui::MessageButtons::YesNo);
    if (answer != ui::Answer::Yes)
        return false;
    try {
        upgradeServerStore(session.ConnectString);
        session.desk->message("The store is up to date.", "Store", ui::MessageIcon::Information);
        return true;
    } catch (const std::exception& error) {
        session.desk->message("The store could not be brought up to date and is as it was. " + sentenceOf(error) +
                                  "\r\nIt takes a login that may change the database, as its owner's or the administrator's.",
                              "Store", ui::MessageIcon::Stop);
        return false;
    }
}

// A store that an earlier version of the program made is brought up to date when the user wants it; true when it was.
bool upgraded(ModMain& session) {
    const std::filesystem::path file = session.DBServer;
    if (!db::isStoreFile(session.DBServer))
        return session.DataBroker->wasReached() && isOlderServerStore(session.ConnectString) && upgradedOnServer(session);
    if (!isOlderStore(file))
        return false;
    const auto answer = session.desk->message("The store was made by an earlier version of the program. Bring it up to date now?\r\n"
                                              "A copy of it as it is will be kept beside it.",
                                              "Store", ui::MessageIcon::Question, ui::MessageButtons::YesNo);
    if (answer != ui::Answer::Yes)
        return false;
    try {
        const std::filesystem::path copy = upgradeStoreFile(file);
        session.desk->message("The store is up to date. The old one is kept as " + copy.string(), "Store", ui::MessageIcon::Information);
        return true;
    } catch (const std::exception& error) {
        session.desk->message(std::string("The store could not be brought up to date and is as it was. ") + sentenceOf(error), "Store",
                              ui::MessageIcon::Stop);
        return false;
    }
}

// Asks whether to edit the configuration; ends the program when the user gives up.
void offerConfigurator(ModMain& session) {
    const auto answer = session.desk->message("You can use database configurator to edit default configuration\r\n"
                                              "To edit default configuration click OK to exit application click Cancel.",
                                              "DB Configurator", ui::MessageIcon::Exclamation, ui::MessageButtons::OkCancel);
    if (answer == ui::Answer::Cancel)
        session.desk->end();
    db::ConnectionPtr none;
    int confirmed = 0;
    session.Configurator->EditConfiguration(none, confirmed);
}

void startUp(ModMain& session) {
    if (session.provider == nullptr)
        session.provider = std::make_unique<db::Provider>(&session.desk->clock());
    if (session.waiter == nullptr)
        session.waiter = std::make_unique<DeskWaiter>(*session.desk);
    session.provider->waiter = session.waiter.get();
    session.DataBroker = std::make_shared<DataBroker>(*session.provider);
    session.ErrLog = std::make_shared<ErrLog>(*session.desk);
    if (session.Configurator == nullptr) {
        const auto file = session.configFile.empty() ? platform::configurationFolder() / "databases.toml" : session.configFile;
        session.Configurator = std::make_shared<DbConfigurator>(*session.desk, file, session.storeMaker);
    }
    session.Conn = std::make_shared<db::Connection>(*session.provider); // closed, should anything fail before it can be opened
    while (true) {
        session.CurrentDB = session.Configurator->GetDefaultConfiguration();
        if (session.CurrentDB.ConfigName.empty())
            session.CurrentDB = session.Configurator->GetFirstConfiguration();
        session.DBUser = "sa";
        rebuildConnectString();
        session.RegisterID = registerNumber(session.CurrentDB.RegisterID);
        openConn(session);
        if (session.Conn->State() == 0 && upgraded(session))
            openConn(session);
        if (session.Conn->State() != 0)
            break;
        offerConfigurator(session);
    }
    tellNotice(*session.desk);
    session.Configurator->SetCurrentConfiguration(session.CurrentDB);
}

} // namespace

ErrLog& ModMain::errLog() {
    if (ErrLog == nullptr)
        ErrLog = std::make_shared<app::ErrLog>(*desk);
    return *ErrLog;
}

ModMain& modMain() {
    static ModMain session;
    return session;
}

void resetModMain() {
    modMain() = ModMain();
}

void StartUpSystem() {
    guarded({"modMain", "StartUpSystem", "Critical Error", false}, [] { startUp(modMain()); });
}

void rebuildConnectString() {
    ModMain& session = modMain();
    session.DBPassword = session.CurrentDB.Password;
    session.DBServerName = session.CurrentDB.ServerName;
    session.DBServer = dataSource(session.CurrentDB);
    session.ConnectString = connectString(session.CurrentDB);
}

void CloseReportForms() {
    std::vector<ui::Form*> reports;
    for (ui::Form* form : modMain().desk->openForms())
        if (form->name() == "frmReport_Generate" || form->name() == "frmReportCriteria")
            reports.push_back(form);
    for (ui::Form* form : reports)
        form->unload();
}

void closeRows(db::RecordsetPtr& rows) {
    if (rows != nullptr && rows->State() != 0) {
        if (rows->onRow())
            rows->CancelUpdate();
        rows->Close();
    }
    rows.reset();
}

db::RecordsetPtr openBroker(const db::Sql& text, db::CommandType type, db::CursorType cursor, db::LockType lock,
                            const std::vector<db::Parameter>& parameters) {
    ModMain& session = modMain();
    auto rows = std::make_shared<db::Recordset>();
    db::CommandPtr command;
    session.DataBroker->NewCommand(session.Conn, session.ErrLog, command);
    command->setActiveConnection(session.Conn->ConnectionString());
    command->setCommandType(type);
    command->setCommandText(text);
    for (const db::Parameter& parameter : parameters)
        command->append(parameter.name, parameter.type, parameter.value);
    int status = 0;
    session.DataBroker->OpenCommand(rows, session.ErrLog, command, cursor, lock, status);
    return rows;
}

db::Parameter textParameter(const std::string& name, int length, const std::string& value) {
    return {name, {db::TypeKind::VarChar, length, 0, 0}, value, false};
}

db::Parameter intParameter(const std::string& name, int value) {
    return {name, {db::TypeKind::Int, 0, 0, 0}, value, false};
}

db::RecordsetPtr openDirect(const db::Sql& text, db::CursorType cursor, db::LockType lock) {
    auto rows = std::make_shared<db::Recordset>();
    rows->Open(text, modMain().Conn, cursor, lock);
    return rows;
}

} // namespace merchantry::app
