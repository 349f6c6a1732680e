#include "programs/storehost.h"

#include "app/db/ado/provider.h"
#include "app/db/server/address.h"
#include "app/frmLogin.h"
#include "app/modMain.h"
#include "app/serverstore.h"
#include "app/storefile.h"
#include "programs/screens.h"
#include "ui/play/playdesk.h"

#include <random>

namespace merchantry::programs {
namespace {

std::filesystem::path freshFolder() {
    std::random_device random;
    const auto folder = std::filesystem::temp_directory_path() / ("merchantry-play-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directories(folder);
    return folder;
}

// The rows of the first result that has columns.
class FirstResult : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>& columns) override {
        ++sets_;
        columns_ = static_cast<int>(columns.size());
    }
    void row(const db::RowView& row) override {
        if (sets_ != 1)
            return;
        std::vector<Value>& cells = rows.emplace_back();
        for (int i = 0; i < columns_; ++i)
            cells.push_back(row.value(i));
    }
    std::vector<std::vector<Value>> rows;

private:
    int sets_ = 0;
    int columns_ = 0;
};

app::DbConfig configOf(const std::map<std::string, std::string>& settings, const std::string& store) {
    const auto setting = [&](const char* name) {
        const auto found = settings.find(name);
        return found == settings.end() ? std::string() : found->second;
    };
    const std::string server = setting("server");
    return {setting("name"),      server == "@store" ? store : server, setting("register"), setting("password"), setting("instance"),
            setting("integrated")};
}

} // namespace

StoreHost::StoreHost(const std::string& store, bool ownCopy) : folder_(freshFolder()) {
    if (app::isServerPlace(store)) {
        const db::server::Address address = db::server::addressOf(db::connectionParts(store));
        store_ = address.sourceText();
        password_ = address.password;
        connection_ = store;
        return;
    }
    store_ = std::filesystem::absolute(store).string();
    if (ownCopy) {
        const auto copy = folder_ / "play.store";
        app::backupStoreFile(store_, copy);
        store_ = copy.string();
    }
    connection_ = store_;
}

StoreHost::~StoreHost() {
    app::resetModMain();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void StoreHost::start(ui::play::PlayDesk& desk, const ui::play::StartUp& startUp) {
    app::resetModMain();
    app::ModMain& session = app::modMain();
    session.desk = &desk;
    session.provider = std::make_unique<db::Provider>(&desk.clock());
    session.provider->statementSent = [&desk](const std::string& statement, const std::string& shown) {
        desk.statementSent(statement, shown);
    };
    session.reportOpened = [&desk](const std::string& file, const std::vector<std::string>& parameters) {
        desk.reportOpened(file, parameters);
    };
    session.configFile = folder_ / "databases.toml";
    session.storeMaker = storeMaker();
    app::ConfigStore configurations(session.configFile);
    for (const auto& settings : startUp.configurations) {
        const app::DbConfig config = configOf(settings, store_);
        configurations.put(config);
        configurations.setDefault(config.ConfigName);
    }
    if (startUp.configurations.empty() && !startUp.bare) {
        configurations.put({"Play", store_, "1", password_, "", ""});
        configurations.setDefault("Play");
    }
    if (!configurations.all().empty())
        configurations.save();
    bindDoors(desk);
    desk.show(desk.form<app::frmLogin>());
}

ui::Form* StoreHost::formNamed(ui::play::PlayDesk& desk, const std::string& name) {
    return screenNamed(desk, name);
}

std::vector<std::vector<Value>> StoreHost::query(const std::string& batch) {
    const auto session = app::openStore(connection_);
    session->setClock(clock_.isSet() ? &clock_ : nullptr);
    FirstResult result;
    session->execute(batch, result);
    return std::move(result.rows);
}

std::optional<ui::play::LogEntry> StoreHost::newestLogEntry() {
    const auto rows = query("SELECT TOP 1 Tag, ProcedureName FROM ErrorLog ORDER BY ErrorID DESC");
    if (rows.empty())
        return std::nullopt;
    return ui::play::LogEntry{rows[0][0].toText(), rows[0][1].toText()};
}

} // namespace merchantry::programs
