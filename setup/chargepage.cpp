#include "setup/chargepage.h"

#include "app/titles.h"
#include "setup/secretbox.h"
#include "ui/desk.h"

#include <filesystem>

namespace merchantry::setup {

using namespace ui;

namespace {

constexpr const char* kMerchants[] = {"CES", "FDC", "MAPP", "NDC", "FNBO", "GSAR", "VISA", "NB", "FDCN", "MDI", "NPC", "ECHO"};

} // namespace

ChargePage::ChargePage(Form& form)
    : cbxPCCHG(form, "cbxPCCHG", "PC Charge &Enabled"), lblPCCHG(form, "lblPCCHG", "PC Charge &Location:"), txtPCCHG(form, "txtPCCHG"),
      cmdBrowse(form, "cmdBrowse", "&Browse"), lblPCCHGMerch(form, "lblPCCHGMerch", "&Merchant:"), PCChgMerch(form, "PCChgMerch"),
      lblPCCHGMerchActNum(form, "lblPCCHGMerchActNum", "&Account Number:"), PCChgMerchActNum(form, "PCChgMerchActNum"),
      cmdShowAccount(form, "cmdShowAccount", "Show"), lblPCCHGPinPadCom(form, "lblPCCHGPinPadCom", "&Pin Pad Com Port:"),
      PCChgPinPadCom(form, "PCChgPinPadCom") {
    keepSecret(PCChgMerchActNum, cmdShowAccount);
    PCChgPinPadCom.alignRight = true;
    cmdBrowse.click = [this] { cmdBrowse_Click(); };
}

Item ChargePage::item() {
    return column({
        at(cbxPCCHG),
        fields({
            field(lblPCCHG, txtPCCHG, {at(cmdBrowse)}).wide(40),
            field(lblPCCHGMerch, PCChgMerch).wide(12),
            field(lblPCCHGMerchActNum, PCChgMerchActNum, {at(cmdShowAccount)}).wide(24),
            field(lblPCCHGPinPadCom, PCChgPinPadCom).wide(6),
        }),
    });
}

void ChargePage::fillMerchants() {
    PCChgMerch.clear();
    for (const char* merchant : kMerchants)
        PCChgMerch.add(merchant);
}

void ChargePage::enable() {
    Control* const controls[] = {&lblPCCHG,       &txtPCCHG,          &PCChgMerch, &lblPCCHGMerch, &PCChgMerchActNum, &lblPCCHGMerchActNum,
                                 &PCChgPinPadCom, &lblPCCHGPinPadCom, &cmdBrowse,  &cmdShowAccount};
    for (Control* control : controls)
        control->setEnabled(cbxPCCHG.value());
}

// Asks for a file and takes its directory.
void ChargePage::cmdBrowse_Click() {
    Desk& desk = txtPCCHG.form().desk();
    const auto chosen = desk.file({"PC Charge Location", "All Files (*.*)|*.*", txtPCCHG.text(), false});
    if (!chosen)
        return;
    std::error_code unknown;
    if (!std::filesystem::exists(*chosen, unknown)) {
        desk.message("Please select a valid file", app::kProduct);
        txtPCCHG.setText("");
        return;
    }
    txtPCCHG.setText(chosen->parent_path().string());
    txtPCCHG.lostFocus();
}

} // namespace merchantry::setup
