#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"

namespace merchantry::app {

// The program's version and what the store says of itself.
class frmAbout : public ui::Form {
public:
    explicit frmAbout(ui::Desk& desk);

private:
    void Form_Load() override;
    void showStore();

    ui::Label lblTitle{*this, "lblTitle", "Merchantry"};
    ui::Label lblVersion{*this, "lblVersion"};
    ui::Label lblSvrInfo{*this, "lblSvrInfo"};
    ui::Label lblDBVersion{*this, "lblDBVersion"};
    ui::Label lblUpgradeDate{*this, "lblUpgradeDate"};
    ui::Label txtURL{*this, "txtURL", "https://merchantry.example"}; // the product's page
    ui::Button cmdClose{*this, "cmdClose", "&Close"};
};

} // namespace merchantry::app
