#include "app/frmDbConfig.h"

#include "app/aside.h"
#include "app/db/ado/provider.h"
#include "app/db/schema/schema.h"
#include "app/db/server/address.h"
#include "app/db/server/locator.h"
#include "app/modMain.h"
#include "base/errortext.h"
#include "base/text.h"
#include "base/textorder.h"
#include "ui/desk.h"
#include "ui/waiting.h"

namespace merchantry::app {

using namespace ui;

frmDbConfig::frmDbConfig(Desk& desk) : Form(desk, "frmDbConfig", "Database Configuration") {
    setIcon("database");
    lstConfigs.dropDown = false;
    txtPassword.password = true;
    txtServerName.placeholder = "Path of a store file, or name of a server";
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;
    cmdRemove.isDanger = true;
    prgMake.setVisible(false);

    lstConfigs.click = [this] { lstConfigs_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdRemove.click = [this] { cmdRemove_Click(); };
    cmdBrowse.click = [this] { cmdBrowse_Click(); };
    cmdFind.setToolTip("Asks the machine which instances of a server run there, and at which ports");
    cmdFind.click = [this] { cmdFind_Click(); };
    cmdTest.click = [this] { cmdTest_Click(); };
    cmdDemo.click = [this] { cmdNew_Click(true); };
    cmdEmpty.click = [this] { cmdNew_Click(false); };
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };

    asksBeforeLeaving({&lstConfigs});
    setLayout(column({
        row({
                box("Stores", column({at(lstConfigs).wide(26).high(9).stretched(), row({at(cmdAdd), gap(), at(cmdRemove)})})),
                column({
                           fields({
                               field("Name:", txtConfigName).wide(44),
                               field("Store file or server:", txtServerName, {at(cmdBrowse)}),
                               field("Instance:", txtInstanceName, {at(cmdFind)}).wide(24),
                               field("Register number:", txtRegisterID),
                               field("Password:", txtPassword),
                               field("", chkIntegrated),
                               field("", chkDefault),
                           }),
                           at(lblState).high(3),
                           at(prgMake),
                           stretch(),
                       })
                    .stretched(2),
            })
            .stretched(),
        buttons({at(cmdDemo), at(cmdEmpty), stretch(), at(cmdTest), at(cmdCancel), at(cmdOK)}),
    }));
}

std::optional<DbConfig> frmDbConfig::Choose(DbConfigurator& configurator, bool startUp) {
    configurator_ = &configurator;
    startUp_ = startUp;
    configurator.store().load();
    ensureLoaded();
    fillList(configurator.store().defaultName());
    const auto broker = modMain().DataBroker;
    lblState.setCaption(!configurator.store().problem().empty() ? configurator.store().problem()
                        : broker == nullptr                     ? ""
                                                                : broker->whyClosed());
    desk().showModal(*this);
    return chosen_;
}

void frmDbConfig::Form_Activate() {
    if (configurator_ != nullptr && configurator_->store().all().empty())
        cmdDemo.setFocus();
}

void frmDbConfig::fillList(const std::string& selected) {
    const ConfigStore& store = configurator_->store();
    lstConfigs.clear();
    for (const DbConfig& config : store.all())
        lstConfigs.add(config.ConfigName);
    if (store.all().empty()) {
        cmdAdd_Click();
        return;
    }
    lstConfigs.setListIndex(std::max(0, lstConfigs.indexOf(selected)));
}

void frmDbConfig::lstConfigs_Click() {
    if (const DbConfig* config = configurator_->store().find(lstConfigs.text()))
        showConfig(*config);
}

void frmDbConfig::cmdAdd_Click() {
    lstConfigs.setListIndex(-1);
    showConfig({"", "", "1", "", "", ""});
    editing_.clear();
}

void frmDbConfig::showConfig(const DbConfig& config) {
    editing_ = config.ConfigName;
    nothingUnsaved();
    txtConfigName.setText(config.ConfigName);
    txtServerName.setText(config.ServerName);
    txtInstanceName.setText(config.InstanceName);
    txtRegisterID.setText(config.RegisterID);
    txtPassword.setText(config.Password);
    chkIntegrated.setValue(config.IntegratedSecurity == "1");
    const std::string& standard = configurator_->store().defaultName();
    chkDefault.setValue(startUp_ || standard.empty() || sameText(standard, config.ConfigName));
    lblState.setCaption("");
}

DbConfig frmDbConfig::shownConfig() const {
    return {std::string(trimmed(txtConfigName.text())),
            std::string(trimmed(txtServerName.text())),
            txtRegisterID.text(),
            txtPassword.text(),
            txtInstanceName.text(),
            chkIntegrated.value() ? "1" : "0"};
}

std::string frmDbConfig::complaint() const {
    const DbConfig shown = shownConfig();
    if (shown.ConfigName.empty())
        return "Please give the configuration a name.";
    if (shown.ServerName.empty())
        return "Please enter the path of a store file or the name of a server.";
    if (!sameText(shown.ConfigName, editing_) && configurator_->store().find(shown.ConfigName) != nullptr)
        return "There is another configuration named \"" + shown.ConfigName + "\". Please choose another name.";
    return "";
}

// Writes the configuration shown into the file; false when there is something wrong with it.
bool frmDbConfig::keepShown() {
    if (const std::string wrong = complaint(); !wrong.empty()) {
        desk().message(wrong, caption(), MessageIcon::Exclamation);
        (shownConfig().ConfigName.empty() ? txtConfigName : txtServerName).setFocus();
        return false;
    }
    ConfigStore& store = configurator_->store();
    const DbConfig shown = shownConfig();
    if (!editing_.empty() && !sameText(editing_, shown.ConfigName))
        store.remove(editing_);
    store.put(shown);
    if (chkDefault.value())
        store.setDefault(shown.ConfigName);
    else if (sameText(store.defaultName(), shown.ConfigName))
        store.setDefault("");
    editing_ = shown.ConfigName;
    if (!save())
        return false;
    nothingUnsaved();
    return true;
}

bool frmDbConfig::save() {
    try {
        configurator_->store().save();
        return true;
    } catch (const std::exception& error) {
        desk().message(std::string("The configurations could not be saved: ") + sentenceOf(error), caption(), MessageIcon::Stop);
        return false;
    }
}

void frmDbConfig::cmdRemove_Click() {
    if (editing_.empty())
        return;
    if (desk().message("Remove the configuration \"" + editing_ + "\" from the list? The store itself is not touched.", caption(),
                       MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    configurator_->store().remove(editing_);
    save();
    fillList("");
}

void frmDbConfig::cmdBrowse_Click() {
    const auto path = desk().file({"Open Store File", "Store Files (*.store)|*.store", desk().documentsFolder().string(), false});
    if (path)
        txtServerName.setText(path->string());
}

void frmDbConfig::cmdFind_Click() {
    const Waiting waiting(desk());
    std::string said;
    try {
        const std::string host = db::server::addressOf({{"data source", shownConfig().ServerName}}).host;
        if (host.empty() || db::isStoreFile(shownConfig().ServerName)) {
            said = "Please enter the name or the address of a server first.";
        } else {
            const auto found = db::server::instancesOn(host);
            if (found.size() == 1)
                txtInstanceName.setText(found.front().name == "MSSQLSERVER" ? "" : found.front().name);
            said = found.empty() ? "The machine " + host + " does not tell of any instance. A server without one needs no name here."
                                 : "Instances on " + host + ": " + db::server::listed(found) + ".";
        }
    } catch (const std::exception& error) {
        said = sentenceOf(error);
    }
    lblState.setCaption(said);
}

// What a test that went well says of the way there.
std::string frmDbConfig::wayTo() const {
    const DbConfig shown = shownConfig();
    if (db::isStoreFile(shown.ServerName))
        return "";
    return db::server::addressOf({{"data source", dataSource(shown)}}).encrypted
               ? " The connection is encrypted."
               : " The connection is not encrypted: the password and all data can be read on the network.";
}

void frmDbConfig::cmdTest_Click() {
    const Waiting waiting(desk());
    lblState.setCaption("");
    std::string said;
    try {
        const std::string place = connectString(shownConfig());
        const auto ask = [place](AsideState&) {
            db::Provider asker;
            db::checkSchemaVersion(*asker.open(place));
        };
        AsideState none;
        bool answered = true;
        if (db::isStoreFile(shownConfig().ServerName))
            ask(none);
        else // one that listens and says nothing is waited for
            answered = runAside(desk(), "Asking the server", ask);
        said = answered ? "The store answers." + wayTo() : "Stopped before the server answered.";
    } catch (const std::exception& error) {
        said = error.what();
    }
    lblState.setCaption(said);
}

void frmDbConfig::cmdNew_Click(bool demo) {
    if (!configurator_->maker()) {
        desk().message("This program cannot make store files.", caption(), MessageIcon::Exclamation);
        return;
    }
    // A new store never takes the place of a configuration that is there.
    if (!editing_.empty())
        cmdAdd_Click();
    std::filesystem::path file(std::string(trimmed(txtServerName.text())));
    if (!file.has_parent_path())
        file = desk().documentsFolder() / (file.empty() ? (demo ? "Demo.store" : "Store.store") : file.filename().string());
    if (std::filesystem::exists(file)) {
        const auto path =
            desk().file({demo ? "New Demo Store" : "New Store", "Store Files (*.store)|*.store", file.parent_path().string(), true});
        if (!path)
            return;
        file = *path;
    }
    makeStore(file, demo);
}

void frmDbConfig::makeStore(const std::filesystem::path& file, bool demo) {
    desk().waitCursor(true);
    prgMake.setVisible(true);
    lblState.setCaption("Making " + file.string() + " ...");
    desk().yield();
    bool made = false;
    try {
        if (!file.parent_path().empty())
            std::filesystem::create_directories(file.parent_path());
        configurator_->maker()(file, demo, [this](int percent) {
            prgMake.set(percent);
            desk().yield();
        });
        made = true;
    } catch (const std::exception& error) {
        lblState.setCaption(std::string("The store could not be made: ") + sentenceOf(error));
    }
    prgMake.setVisible(false);
    desk().waitCursor(false);
    if (!made)
        return;
    txtServerName.setText(file.string());
    if (txtConfigName.text().empty())
        txtConfigName.setText(demo ? "Demo store" : "My store");
    lblState.setCaption("The store is ready. Log in as manager with the password manager.");
    cmdOK.setFocus();
}

void frmDbConfig::cmdOK_Click() {
    if (!keepShown())
        return;
    chosen_ = shownConfig();
    unload();
}

} // namespace merchantry::app
