#include "app/frmLogin.h"

#include "app/frmMain.h"
#include "app/modMain.h"
#include "base/text.h"
#include "ui/desk.h"

namespace merchantry::app {

using namespace ui;

frmLogin::frmLogin(Desk& desk) : Form(desk, "frmLogin", "Login") {
    setIcon("login");
    setFixedSize();
    txtLogin1.password = true;
    cmdLogin0.isDefault = true;
    cmdLogin1.isCancel = true;
    cmdLogin0.click = [this] { cmdLogin_Click(); };
    cmdLogin1.click = [this] { this->desk().end(); };
    for (TextBox* box : {&txtLogin0, &txtLogin1})
        box->gotFocus = [box] { box->selectAll(); };

    setLayout(column({
        title(lblStore),
        note("Store management for managers. Your register login works here."),
        gap(),
        fields({
            field("&User name:", txtLogin0).wide(28),
            field("&Password:", txtLogin1).wide(28),
        }),
        buttons({stretch(), at(cmdLogin1), at(cmdLogin0)}),
    }));
}

void frmLogin::Form_Load() {
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [] { StartUpSystem(); });
}

// Closing the window instead of logging in ends the program.
void frmLogin::Form_Unload(bool& /*cancel*/) {
    if (!loggedIn_)
        desk().end();
}

void frmLogin::cmdLogin_Click() {
    guarded({name(), "cmdLogin_Click", caption() + " - Critical Error"}, [this] { login(); });
}

void frmLogin::refuse(TextBox& box) {
    desk().beep();
    desk().message("You must enter a valid User Name and Password in order to log in to the system.", "Login Failure", MessageIcon::Stop);
    box.setFocus();
}

void frmLogin::login() {
    if (txtLogin0.text().empty())
        return refuse(txtLogin0);
    if (txtLogin1.text().empty())
        return refuse(txtLogin1);
    const auto rows = openDirect(db::Sql("SELECT * From Cashier where name = '") + std::string(trimmed(txtLogin0.text())) + "' " +
                                 " and password = '" + db::Secret{std::string(trimmed(txtLogin1.text()))} + "' and managerflag = 1");
    if (rows->Eof()) {
        desk().beep();
        desk().message("Invalid User Name or Password. Please try again.", "Login Failure", MessageIcon::Stop);
        txtLogin1.setText("");
        txtLogin1.setFocus();
        return;
    }
    rows->Close();
    loggedIn_ = true;
    hide();
    unload();
    desk().show(desk().form<frmMain>());
}

} // namespace merchantry::app
