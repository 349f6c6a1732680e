#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/textbox.h"

namespace merchantry::app {

// Where the program starts: loading it opens the store database, its first button lets a manager in.
class frmLogin : public ui::Form {
public:
    explicit frmLogin(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cmdLogin_Click();
    void login();
    void refuse(ui::TextBox& box);

    ui::Label lblStore{*this, "lblStore", "Merchantry"};
    ui::TextBox txtLogin0{*this, "txtLogin(0)"}; // name
    ui::TextBox txtLogin1{*this, "txtLogin(1)"}; // password
    ui::Button cmdLogin0{*this, "cmdLogin(0)", "&Log In"};
    ui::Button cmdLogin1{*this, "cmdLogin(1)", "&Exit"};

    bool loggedIn_ = false;
};

} // namespace merchantry::app
