#include "inventory/frmInventory_Adjust.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/numbers.h"
#include "inventory/adjustment.h"
#include "inventory/frmInvReasonCodes.h"
#include "ui/desk.h"

namespace merchantry::inventory {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kHeading = "Inventory Adjustment";

std::string balanceInWords(std::int64_t present, const std::string& quantity) {
    try {
        return std::to_string(adjusted(present, readAdjustment(quantity, "").quantity));
    } catch (const OverflowError&) {
        return "beyond what can be posted";
    }
}

} // namespace

frmInventory_Adjust::frmInventory_Adjust(Desk& desk) : Form(desk, "frmInventory_Adjust", "Inventory Adjustment") {
    setIcon("items");
    for (TextBox* box : {&txtQty, &txtCost}) {
        box->alignRight = true;
        box->gotFocus = [box] { box->selectAll(); };
    }
    txtQty.setToolTip("Whole units; a half is rounded to the even number, and less than a half posts a movement of 0");
    txtCost.setToolTip("Cost of one unit; an empty field posts 0");
    lbxReasonCode.dropDown = false;
    cmdAdjust.setToolTip("Writes the balance read a moment before plus this quantity: what a register sells in between is lost from it");
    cmdAdjust.isDefault = true;
    cmdClose.isCancel = true;

    txtQty.change = [this] { showAfterwards(); };
    cmdAddCode.click = [this] { cmdAddCode_Click(); };
    cmdAdjust.click = [this] { cmdAdjust_Click(); };
    cmdClose.click = [this] { unload(); };

    asksBeforeLeaving({&lbxReasonCode});
    setLayout(column({
        title(lblInvAdjust),
        row({
                column({
                    fields({
                        field("SKU:", lblSKU),
                        field("Name:", lblMatrixSKU),
                        field("&Quantity:", txtQty).wide(14),
                        field("C&ost:", txtCost).wide(14),
                        field("On hand:", lblOnHand),
                        field("Afterwards:", lblAfterwards),
                    }),
                    stretch(),
                }),
                gap(),
                box("Reason", column({at(lbxReasonCode).wide(30).high(6).stretched(), row({at(cmdAddCode), stretch()})})).stretched(1),
            })
            .stretched(),
        at(lblQtyNote),
        at(lblCostNote),
        buttons({stretch(), at(cmdClose), at(cmdAdjust)}),
    }));
    offer("AdjustInv", [this](const auto& arguments) {
        const auto argument = [&](std::size_t at) { return at < arguments.size() ? arguments[at] : std::string(); };
        AdjustInv(argument(0), argument(1), argument(2), static_cast<std::int16_t>(Value(argument(3)).toInteger()));
        return std::string();
    });
}

void frmInventory_Adjust::AdjustInv(const std::string& SKU, const std::string& MatrixSKU, const std::string& Name, std::int16_t Row) {
    sku_ = SKU;
    matrixSku_ = MatrixSKU;
    name_ = Name;
    row_ = Row;
    lblSKU.setCaption(matrixSku_);
    lblMatrixSKU.setCaption(name_);
    desk().showModal(*this);
}

void frmInventory_Adjust::Form_Load() {
    guarded({"MR_frmInventory_Adjust", "Form_Load", caption() + " - Critical Error"}, [this] {
        lblInvAdjust.setCaption(std::string(kHeading) + " For " + sku_ + "/" + matrixSku_);
        present_.reset();
        lblOnHand.setCaption("");
        txtQty.setText("1");
        fillReasons();
        showCost();
        showOnHand();
    });
}

void frmInventory_Adjust::fillReasons() {
    const auto reasons = openDirect("SELECT ReasonCode FROM InvReasonCodes ORDER BY ReasonCode");
    lbxReasonCode.clear();
    for (; !reasons->Eof(); reasons->MoveNext())
        lbxReasonCode.add((*reasons)["ReasonCode"].text());
    if (lbxReasonCode.count() > 0)
        lbxReasonCode.setListIndex(0);
}

void frmInventory_Adjust::showCost() {
    const auto cost = openDirect(Sql("SELECT Top 1 Cost_wt FROM InventoryLedger WHERE SKU = '") + sku_ + "' AND MatrixSKU = '" +
                                 matrixSku_ + "' ORDER BY PostDate DESC");
    txtCost.setText(cost->Eof() ? "" : (*cost)["Cost_wt"].text());
}

void frmInventory_Adjust::showOnHand() {
    const auto stock = openDirect(Sql("SELECT Quantity FROM Stock WHERE SKU = '") + sku_ + "' AND MatrixSKU = '" + matrixSku_ + "'");
    if (!stock->Eof())
        present_ = (*stock)["Quantity"].Value().toInteger();
    lblOnHand.setCaption(present_ ? std::to_string(*present_) : "no stock is kept of it");
    showAfterwards();
}

// By the rules of the posting, which reads the stock again. Empty where it would be refused or changes no stock.
void frmInventory_Adjust::showAfterwards() {
    lblAfterwards.setCaption(present_ && complaintAbout(txtQty.text(), "").empty() ? balanceInWords(*present_, txtQty.text()) : "");
}

void frmInventory_Adjust::cmdAddCode_Click() {
    desk().showModal(desk().form<frmInvReasonCodes>());
    Form_Load();
}

void frmInventory_Adjust::cmdAdjust_Click() {
    guarded({"MR_Inventory_Adjust", "cmdAdjust"}, [this] {
        if (const std::string wrong = complaintAbout(txtQty.text(), txtCost.text()); !wrong.empty()) {
            desk().message(wrong, kProduct);
            return;
        }
        postAdjustment(*modMain().Conn, sku_, matrixSku_, lbxReasonCode.text(), readAdjustment(txtQty.text(), txtCost.text()));
        desk().message("Adjustment Made", kProduct);
        unload();
    });
}

} // namespace merchantry::inventory
