#include "catalog/frmItems.h"

#include "catalog/itemscreen.h"

#include "base/numbers.h"
#include "base/text.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr int kMatrix = 2;
constexpr int kSplit = 3;
constexpr int kSerialized = 5;
constexpr int kSuppliersTab = 2;

} // namespace

frmItems::frmItems(Desk& desk) : Form(desk, "frmItems", "Item Maintenance") {
    setIcon("item");
    wireGeneral();
    wireFields();
    tabItems.change = [this](int left) { tabItems_Change(left); };
    panel.moved = [this] { Populate_FormData(); };
    onKey("F9", [this] { panel.toggle(); });
    onKey("Alt+Up", [this] { pressArrow(true); });
    onKey("Alt+Down", [this] { pressArrow(false); });
    std::vector<Item> items{generalPage()};
    for (ItemPage* page : pages_)
        items.push_back(page->item());
    setLayout(column({
        row({pages(tabItems, std::move(items)).stretched(3), panel.item()}).stretched(),
        undoLine_.item(),
    }));
    offer("CheckSKUs", [this](const auto& arguments) {
        CheckSKUs(arguments.empty() ? "" : arguments[0], arguments.size() > 1 && arguments[1] == "on");
        return std::string();
    });
}

void frmItems::wireGeneral() {
    for (TextBox* box : {&txtPriceAmt, &txtStockAmt, &txtReorder, &txtRestock})
        box->alignRight = true;
    for (TextBox* box : {&txtName, &txtReorder, &txtRestock, &txtPriceAmt})
        selectsAll(*box);
    txtName.maxLength = 255;
    txtStockAmt.setLocked(true);
    txtStockAmt.setToolTip(
        "Stock changes through Adjust. Leaving this field writes the figure shown, also when a register has sold meanwhile.");
    txtPriceAmt.money = true;
    txtPriceAmt.setToolTip("The retail price. A dollar sign may be typed, and what stands before a comma are thousands; after leaving the "
                           "field it shows what is "
                           "stored.");
    lblProfitPercent.setToolTip("Margin on the price, as it was when the item was opened");
    cmdDeleteItem.isDanger = true;
    lbxType.setToolTip(
        "Serialized sets Serial Item and the tax class None. Any other type puts back what Serialized had displaced, also when "
        "Adjust or a change in the price matrix reads the item again.");

    cmdExit0.click = [this] { cmdExit_Click(0); };
    int index = 0;
    for (ItemPage* page : pages_) {
        ++index;
        page->cmdExit.click = [this, index] { cmdExit_Click(index); };
    }
}

void frmItems::wireFields() {
    txtName.lostFocus = [this] {
        if (writeShown("txtName_LostFocus", "Name", [this] { return Value(trimmed(txtName.text())); }))
            showNameOnTabs();
        else if (const db::RecordsetPtr item = itemOnRow())
            txtName.setText((*item)["Name"].text());
    };
    txtReorder.lostFocus = [this] { numberField_LostFocus(txtReorder, "txtReorder_LostFocus", "Reorder"); };
    txtRestock.lostFocus = [this] { numberField_LostFocus(txtRestock, "txtRestock_LostFocus", "Restock"); };
    txtPriceAmt.lostFocus = [this] { txtPriceAmt_LostFocus(); };
    txtStockAmt.lostFocus = [this] { txtStockAmt_LostFocus(); };
    cbxActive.click = [this] { writeShown("cbxActive_Click", "Active", [this] { return Value(cbxActive.value()); }); };
    cbxFoodStamps.click = [this] { writeShown("cbxFoodStamps_Click", "FoodStampFlag", [this] { return Value(cbxFoodStamps.value()); }); };
    cbxSerialed.click = [this] { writeShown("cbxSetSerialed_Click", "SerialFlag", [this] { return Value(cbxSerialed.value()); }); };
    lbxDepartment.click = [this] { writeShown("lbxDepartment_Click", "DepartmentID", [this] { return Value(lbxDepartment.itemData()); }); };
    lbxTaxClass.click = [this] { lbxTaxClass_Click(); };
    lbxType.click = [this] { lbxType_Click(); };
    cmdAdjust.click = [this] { cmdAdjust_Click(); };
    cmdDeleteItem.click = [this] { cmdDeleteItem_Click(); };
}

Item frmItems::generalPage() {
    return column({
        row({title(lblSKUVal), at(panel.cmdPanel), stretch(), figure("Weighted Cost:", lblCostAmt), figure("Committed:", lblCommittedAmt),
             figure("Last Sold Date:", lblLastSoldDateVal)}),
        row({
                fields({
                           field("&Name:", txtName),
                           field("T&ype:", lbxType),
                           field("D&epartment:", lbxDepartment),
                           field("Tax &Class:", lbxTaxClass),
                           field("&Price:", txtPriceAmt),
                           field("In Stock:", txtStockAmt, {at(cmdAdjust)}),
                           field("Reorder Qty:", txtReorder),
                           field("Reorder @:", txtRestock),
                       })
                    .stretched(3),
                box("Options", column({at(cbxActive), at(cbxSerialed), at(cbxFoodStamps), gap(),
                                       row({at(lblProfitMargin), stretch(), at(lblProfitPercent)}), stretch()}))
                    .stretched(1),
            })
            .stretched(),
        buttons({at(cmdDeleteItem), stretch(), note("Every field is saved as you leave it"), at(cmdExit0)}),
    });
}

void frmItems::pressArrow(bool up) {
    for (ItemPage* page : pages_)
        page->pressArrow(up);
}

void frmItems::notYet(const std::string& what) {
    desk().status("\"" + what + "\" is not part of this version yet.");
}

void frmItems::CheckSKUs(const std::string& SKUPair, bool modal) {
    guarded({kItemsTag, "CheckSKUs"}, [&] {
        const std::vector<std::string> parts = split(SKUPair, "|");
        if (parts.size() != 2)
            return;
        if (loaded()) {
            reopen(SKUPair, modal);
            return;
        }
        ensureLoaded();
        modMain().CurrentSKU = parts[0];
        modMain().CurrentMatrixSKU = parts[1];
        Modal = modal;
        if (modal)
            desk().showModal(*this);
        else
            desk().show(*this);
    });
}

// Another item while one is open: that one is left as by its exit, without the list, and the screen starts anew.
void frmItems::reopen(const std::string& SKUPair, bool modal) {
    if (!focus(nullptr))
        return;
    const bool wasModal = std::exchange(Modal, true);
    const ListPlace place = listPlace;
    unload();
    if (closed()) {
        desk().form<frmItems>().listPlace = place;
        desk().form<frmItems>().CheckSKUs(SKUPair, modal);
    } else {
        Modal = wasModal; // its suppliers could not be saved
    }
}

void frmItems::Form_Load() {
    Loading = true;
    CurrentTab = 1;
    Init_ItemListBoxes();
    Loading = false;
}

void frmItems::Form_Activate() {
    if (Loaded)
        return;
    if (!FetchItemData()) {
        unload();
        return;
    }
    Populate_FormData();
    Loaded = true;
}

bool frmItems::writeShown(const std::string& procedure, const std::string& column, const std::function<Value()>& value) {
    const bool written = writeField(procedure, column, value);
    if (!written)
        showStored(column);
    return written;
}

// Boxes, lists and figures show again what the store holds; words stay as they were typed, for another try.
void frmItems::showStored(const std::string& column) {
    const db::RecordsetPtr item = itemOnRow();
    if (item == nullptr)
        return;
    for (const auto& [name, box] :
         {std::pair{"Active", &cbxActive}, std::pair{"FoodStampFlag", &cbxFoodStamps}, std::pair{"SerialFlag", &cbxSerialed}})
        if (column == name)
            box->setValue((*item)[column].Value().toFlag());
    for (const auto& [name, list] :
         {std::pair{"DepartmentID", &lbxDepartment}, std::pair{"TaxID", &lbxTaxClass}, std::pair{"TypeID", &lbxType}})
        if (column == name)
            list->setListIndex(positionOfKey(*list, (*item)[column].Value().toInteger()));
    for (const auto& [name, box] : {std::pair{"Reorder", &txtReorder}, std::pair{"Restock", &txtRestock}})
        if (column == name)
            box->setText((*item)[column].text());
}

// What stands in the field afterwards is what the store holds, also when someone else changed it or the text is no number.
void frmItems::numberField_LostFocus(TextBox& box, const std::string& procedure, const std::string& column) {
    if (neverFilled(box))
        return;
    if (const std::string wrong = commaComplaint(box.text()); !wrong.empty())
        desk().message(wrong, kProduct);
    else
        writeShown(procedure, column, [&] { return Value(numericPrefix(box.text())); });
    if (const db::RecordsetPtr item = itemOnRow())
        box.setText((*item)[column].text());
}

// The population ended before this box, and nobody has typed in it: writing it back would empty what the store holds.
bool frmItems::neverFilled(const TextBox& box) const {
    return !filled_ && box.text().empty();
}

void frmItems::showNameOnTabs() {
    const std::string name(trimmed(txtName.text()));
    for (ItemPage* page : pages_)
        page->showName(name);
    setCaption(name.empty() ? "Item Maintenance" : "Item Maintenance - " + name);
}

void frmItems::lbxTaxClass_Click() {
    if (!Loaded)
        return;
    writeShown("lbxTaxClass_Click", "TaxID", [this] {
        const int first = lbxTaxClass.indexOf(lbxTaxClass.text());
        return Value(lbxTaxClass.entries().at(static_cast<std::size_t>(first)).itemData);
    });
}

void frmItems::lbxType_Click() {
    const int type = lbxType.itemData();
    if (!writeShown("lbxType_Click", "TypeID", [type] { return Value(type); }))
        return;
    guarded({kItemsTag, "lbxType_Click"}, [&] { applyType(type); });
}

void frmItems::applyType(int type) {
    const bool forced = type == kSerialized;
    // While the screen is being populated the two still show nothing of this item: there is nothing to remember.
    if (forced && Loaded) {
        SavedSerialValue = cbxSerialed.value();
        SavedTaxIndex = lbxTaxClass.listIndex();
    }
    if (forced) {
        cbxSerialed.setValue(true);
        lbxTaxClass.setListIndex(TaxNoneIndex);
    }
    cbxSerialed.setEnabled(!forced);
    lbxTaxClass.setEnabled(!forced);
    if (!forced && SavedSerialValue)
        cbxSerialed.setValue(*SavedSerialValue);
    if (!forced && SavedTaxIndex)
        lbxTaxClass.setListIndex(*SavedTaxIndex);

    misc_.showFor(type == kSplit);
    matrix_.showFor(type == kMatrix);
}

void frmItems::txtPriceAmt_LostFocus() {
    if (const std::string wrong = commaComplaint(txtPriceAmt.text()); !wrong.empty()) {
        desk().message(wrong, kProduct);
        guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] { showPrice(); });
        return;
    }
    WrittenRows rows = pricesOfTier(kRetailTier);
    const bool written = guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] {
        modMain().Conn->Execute(Sql("UPDATE PriceMatrix SET Price = ") + numericPrefix(txtPriceAmt.text()) + " WHERE SKU ='" +
                                modMain().CurrentSKU + "' " + " AND MatrixSKU = '" + modMain().CurrentMatrixSKU +
                                "' AND Tier = 1 AND (Quantity = 1 Or Quantity = 0)");
        showStoredPrice();
        showRetailPrice();
        prices_.reloadAtPosition();
    });
    if (!written)
        guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] { showPrice(); });
    else
        prices_.offerPriceUndo(rows, "txtPriceAmt_LostFocus", kRetailTier);
    panel.pricesChanged();
}

// On the other pages, as it stands in the field.
void frmItems::showRetailPrice() {
    prices_.showRetailPrice(txtPriceAmt.text());
    suppliers_.showRetailPrice(txtPriceAmt.text());
}

// All that this screen shows of the item's prices, as the store has them.
void frmItems::pricesPutBack() {
    showPrice();
    showRetailPrice();
    prices_.reloadShown();
    panel.pricesChanged();
}

// As the registers will charge it. A plain number that says the same stays as it was typed.
void frmItems::showStoredPrice() {
    const std::string typed = txtPriceAmt.text();
    showPrice();
    const bool plain = !typed.empty() && typed.find_first_not_of("0123456789.-") == std::string::npos;
    if (plain && numericPrefix(typed) == numericPrefix(txtPriceAmt.text()))
        txtPriceAmt.setText(typed);
}

void frmItems::txtStockAmt_LostFocus() {
    if (txtStockAmt.text().empty())
        return; // the population did not get so far: there is no figure to write back
    guarded({kItemsTag, "txtStockAmt"}, [this] {
        modMain().Conn->Execute(Sql("UPDATE Stock SET Quantity = ") + numericPrefix(txtStockAmt.text()) + " WHERE SKU ='" +
                                modMain().CurrentSKU + "' " + " AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    });
}

void frmItems::cmdAdjust_Click() {
    guarded({kItemsTag, "cmdAdjust_Click"}, [this] {
        const ModMain& session = modMain();
        if (!session.doors.AdjustInv)
            return notYet("Adjust");
        session.doors.AdjustInv(session.CurrentSKU, session.CurrentMatrixSKU, std::string(trimmed(txtName.text())));
        Populate_FormData();
    });
}

void frmItems::cmdDeleteItem_Click() {
    if (desk().message("Are you sure you want to delete this item?", kProduct, MessageIcon::Question, MessageButtons::OkCancel) !=
        Answer::Ok)
        return;
    try {
        modMain().Conn->Execute(Sql("DELETE FROM Item WHERE SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" +
                                modMain().CurrentMatrixSKU + "'");
    } catch (const db::DbError& error) {
        // Any other failure is passed over without a word.
        if (error.hresult() == db::kIntegrityError)
            desk().message("You may not delete an item that has transactions associated with it.", kProduct);
        return;
    }
    deleted_ = true;
    unload();
}

void frmItems::tabItems_Change(int left) {
    guarded({kItemsTag, "tabItems_Click"}, [&] {
        if (Loading) {
            CurrentTab = 1;
            return;
        }
        const int leftTab = left + 1;
        if (CurrentTab == leftTab && leftTab == kSuppliersTab && !suppliers_.ValidateSupplierMatrix()) {
            tabItems.setCurrent(kSuppliersTab - 1);
            suppliers_.setFocus();
            return;
        }
        CurrentTab = tabItems.current() + 1;
    });
}

void frmItems::cmdExit_Click(int index) {
    guarded({kItemsTag, "cmdExit_Click"}, [&] {
        if (index == 1 && !suppliers_.ValidateSupplierMatrix())
            return;
        if (suppliers_.SaveSupplierMatrix())
            unload();
    });
}

// The close box saves the suppliers as the exit buttons do; what cannot be saved keeps the screen open.
void frmItems::Form_Unload(bool& cancel) {
    cancel = !deleted_ && !suppliers_.SaveSupplierMatrix();
    if (cancel)
        return;
    guarded({kItemsTag, "Form_Unload"}, [this] {
        panel.release();
        for (ItemPage* page : pages_)
            page->release();
        ModMain& session = modMain();
        closeRows(session.ItemRecordset);
        session.CurrentSKU.clear();
        session.CurrentMatrixSKU.clear();
        session.CurrentItemName.clear();
    });
    if (!Modal && modMain().doors.ShowItemList)
        modMain().doors.ShowItemList();
}

} // namespace merchantry::catalog
