#include "app/frmAbout.h"

#include "app/modMain.h"
#include "ui/desk.h"

namespace merchantry::app {

using namespace ui;

frmAbout::frmAbout(Desk& desk) : Form(desk, "frmAbout", "About Merchantry") {
    setIcon("about");
    setFixedSize();
    cmdClose.isDefault = cmdClose.isCancel = true;
    cmdClose.click = [this] { unload(); };
    txtURL.click = [this] { this->desk().browse(txtURL.caption()); };
    setLayout(column({
        title(lblTitle),
        at(lblVersion),
        gap(),
        at(lblSvrInfo),
        at(lblDBVersion),
        at(lblUpgradeDate),
        gap(),
        at(txtURL),
        buttons({stretch(), at(cmdClose)}),
    }));
}

void frmAbout::Form_Load() {
    lblVersion.setCaption("Version " MERCHANTRY_VERSION);
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [this] { showStore(); });
}

void frmAbout::showStore() {
    const auto info = modMain().Conn->Execute("sp_GetSysInfo");
    if (info->Eof())
        return;
    const Value version = (*info)["Version"].Value();
    const Value date = (*info)["Date"].Value();
    lblSvrInfo.setCaption((*info)["SvrInfo"].text());
    lblDBVersion.setCaption("Dababase version: " + (version.isNull() ? std::string("Unknown") : version.toText()));
    lblUpgradeDate.setCaption("Upgrade date: " + (date.is<Date>() ? date.as<Date>().toStatementText() : std::string("Unknown")));
}

} // namespace merchantry::app
