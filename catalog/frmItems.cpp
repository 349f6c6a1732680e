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

void numeric(TextBox& box) {
    box.alignRight = true;
}

} // namespace

frmItems::frmItems(Desk& desk) : Form(desk, "frmItems", "Item Maintenance") {
    setIcon("item");
    wireGeneral();
    wireOtherPages();
    tabItems.change = [this](int left) { tabItems_Change(left); };
    panel.moved = [this] { Populate_FormData(); };
    onKey("F9", [this] { panel.toggle(); });
    setLayout(column({
        row({pages(tabItems, {generalPage(), suppliersPage(), pricePage(), substitutesPage(), notesPage(), matrixPage(), miscPage()})
                 .stretched(3),
             panel.item()})
            .stretched(),
        undoLine.item(),
    }));
    offer("CheckSKUs", [this](const auto& arguments) {
        CheckSKUs(arguments.empty() ? "" : arguments[0], arguments.size() > 1 && arguments[1] == "on");
        return std::string();
    });
}

void frmItems::wireGeneral() {
    for (TextBox* box : {&txtPriceAmt, &txtStockAmt, &txtReorder, &txtRestock, &txtTagAlongQty, &txtSplitQty})
        numeric(*box);
    for (TextBox* box : {&txtName, &txtReorder, &txtRestock, &txtTagAlongQty, &txtSplitQty, &txtPriceAmt})
        box->gotFocus = [box] { box->selectAll(); };
    txtName.maxLength = 255;
    txtStockAmt.setLocked(true);
    txtStockAmt.setToolTip(
        "Stock changes through Adjust. Leaving this field writes the figure shown, also when a register has sold meanwhile.");
    txtPriceAmt.money = true;
    txtPriceAmt.setToolTip("The retail price. A dollar sign may be typed, and what stands before a comma are thousands; after leaving the "
                           "field it shows what is "
                           "stored.");
    lblProfitPercent.setToolTip("Margin on the price, as it was when the item was opened");
    for (Button* button : {&cmdDeleteItem, &cmdDeleteSupplier, &cmdPriceDelete, &cmdSubsDelete, &cmdDeleteCatgory, &cmdRemoveTagAlong})
        button->isDanger = true;
    lbxType.setToolTip(
        "Serialized sets Serial Item and the tax class None. Any other type puts back what Serialized had displaced, also when "
        "Adjust or a change in the price matrix reads the item again.");

    txtName.lostFocus = [this] {
        if (writeField("txtName_LostFocus", "Name", [this] { return Value(trimmed(txtName.text())); }))
            showNameOnTabs();
        else if (const db::RecordsetPtr item = modMain().ItemRecordset; item != nullptr && item->onRow())
            txtName.setText((*item)["Name"].text());
    };
    txtReorder.lostFocus = [this] { numberField_LostFocus(txtReorder, "txtReorder_LostFocus", "Reorder"); };
    txtRestock.lostFocus = [this] { numberField_LostFocus(txtRestock, "txtRestock_LostFocus", "Restock"); };
    txtNotes.lostFocus = [this] {
        if (!neverFilled(txtNotes))
            writeField("txtNotes_LostFocus", "Notes", [this] { return Value(txtNotes.text()); });
    };
    txtPriceAmt.lostFocus = [this] { txtPriceAmt_LostFocus(); };
    txtStockAmt.lostFocus = [this] { txtStockAmt_LostFocus(); };
    cbxActive.click = [this] { writeField("cbxActive_Click", "Active", [this] { return Value(cbxActive.value()); }); };
    cbxFoodStamps.click = [this] { writeField("cbxFoodStamps_Click", "FoodStampFlag", [this] { return Value(cbxFoodStamps.value()); }); };
    cbxSerialed.click = [this] { writeField("cbxSetSerialed_Click", "SerialFlag", [this] { return Value(cbxSerialed.value()); }); };
    lbxDepartment.click = [this] { writeField("lbxDepartment_Click", "DepartmentID", [this] { return Value(lbxDepartment.itemData()); }); };
    lbxTaxClass.click = [this] { lbxTaxClass_Click(); };
    lbxType.click = [this] { lbxType_Click(); };
    cmdAdjust.click = [this] { cmdAdjust_Click(); };
    cmdDeleteItem.click = [this] { cmdDeleteItem_Click(); };
    int index = 0;
    for (Button* exit : {&cmdExit0, &cmdExit1, &cmdExit2, &cmdExit3, &cmdExit4, &cmdExit5, &cmdExit6}) {
        exit->click = [this, index] { cmdExit_Click(index); };
        ++index;
    }
}

void frmItems::wireOtherPages() {
    txtNotes.multiline = true;

    wireSuppliers();
    wirePrices();
    wireSubstitutes();
    wireMatrix();
    wireMisc();
    onKey("Alt+Up", [this] { pressShown({&imgArrowUp, &imgSubUp}); });
    onKey("Alt+Down", [this] { pressShown({&imgArrowDown, &imgSubDown}); });
}

// The arrow of the page that is turned up; the focus stays where it is.
void frmItems::pressShown(std::initializer_list<Image*> arrows) {
    for (Image* arrow : arrows)
        if (arrow->obstacle().empty())
            arrow->press();
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

bool frmItems::writeField(const std::string& procedure, const std::string& column, const std::function<Value()>& value) {
    const bool written = writeItem(procedure, [&](db::Recordset& item) { item[column] = value(); });
    if (!written)
        showStored(column);
    return written;
}

// Boxes, lists and figures show again what the store holds; words stay as they were typed, for another try.
void frmItems::showStored(const std::string& column) {
    const db::RecordsetPtr item = modMain().ItemRecordset;
    if (item == nullptr || !item->onRow())
        return;
    for (const auto& [name, box] :
         {std::pair{"Active", &cbxActive}, std::pair{"FoodStampFlag", &cbxFoodStamps}, std::pair{"SerialFlag", &cbxSerialed}})
        if (column == name)
            box->setValue((*item)[column].Value().toFlag());
    for (const auto& [name, list] :
         {std::pair{"DepartmentID", &lbxDepartment}, std::pair{"TaxID", &lbxTaxClass}, std::pair{"TypeID", &lbxType}})
        if (column == name)
            list->setListIndex(positionOfKey(*list, (*item)[column].Value().toInteger()));
    for (const auto& [name, box] :
         {std::pair{"Reorder", &txtReorder}, std::pair{"Restock", &txtRestock}, std::pair{"TagAlongQty", &txtTagAlongQty}})
        if (column == name)
            box->setText((*item)[column].text());
}

bool frmItems::writeItem(const std::string& procedure, const std::function<void(db::Recordset& item)>& set) {
    const db::RecordsetPtr item = modMain().ItemRecordset;
    if (item == nullptr)
        return false; // the item could not be fetched
    const bool written = guarded({kItemsTag, procedure}, [&] {
        set(*item);
        item->Update();
    });
    if (!written)
        readStored(*item);
    return written;
}

// After a refused write: the row as the store has it now. Someone else may have changed it, and by the old values no later write would meet
// it.
void frmItems::readStored(db::Recordset& item) {
    item.CancelUpdate();
    guarded({kItemsTag, "ReadStored"}, [&] { item.Requery(); });
}

// What stands in the field afterwards is what the store holds, also when someone else changed it or the text is no number.
void frmItems::numberField_LostFocus(TextBox& box, const std::string& procedure, const std::string& column) {
    if (neverFilled(box))
        return;
    if (const std::string wrong = commaComplaint(box.text()); !wrong.empty())
        desk().message(wrong, kProduct);
    else
        writeField(procedure, column, [&] { return Value(numericPrefix(box.text())); });
    if (const db::RecordsetPtr item = modMain().ItemRecordset; item != nullptr && item->onRow())
        box.setText((*item)[column].text());
}

// The population ended before this box, and nobody has typed in it: writing it back would empty what the store holds.
bool frmItems::neverFilled(const TextBox& box) const {
    return !filled_ && box.text().empty();
}

void frmItems::showNameOnTabs() {
    for (Label* header : {&lblSuppliersPName, &lblPricePName, &lblNotesPName, &lblMatrixPName, &lblMiscPName, &lblSubsPName})
        header->setCaption(std::string(trimmed(txtName.text())));
    const std::string name(trimmed(txtName.text()));
    setCaption(name.empty() ? "Item Maintenance" : "Item Maintenance - " + name);
}

void frmItems::lbxTaxClass_Click() {
    if (!Loaded)
        return;
    writeField("lbxTaxClass_Click", "TaxID", [this] {
        const int first = lbxTaxClass.indexOf(lbxTaxClass.text());
        return Value(lbxTaxClass.entries().at(static_cast<std::size_t>(first)).itemData);
    });
}

void frmItems::lbxType_Click() {
    const int type = lbxType.itemData();
    if (!writeField("lbxType_Click", "TypeID", [type] { return Value(type); }))
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

    for (Control* control : std::initializer_list<Control*>{&fraSplit, &lbxSplitParentSKU, &lbxSplitParentMatrixSKU, &txtSplitQty,
                                                            &cmdUpdateSplit, &lblMiscItemSplit0, &lblMiscItemSplit1, &lblMiscItemSplit2})
        control->setVisible(type == kSplit);
    for (Control* control : std::initializer_list<Control*>{&lbxMatrixGroups, &lbxMatrixCategories, &lblMatrixGroups, &lblMatrixCategories,
                                                            &cmdAddCategory, &cmdDeleteCatgory, &grdItemMatrix})
        control->setVisible(type == kMatrix);
    lblMatrixMessage.setVisible(type != kMatrix);
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
        lblRetailUnitPriceAmt.setCaption("$" + txtPriceAmt.text());
        lblSupRetailPrice.setCaption("$" + txtPriceAmt.text());
        reloadPrices(lbxTier.listIndex() + 1);
    });
    if (!written)
        guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] { showPrice(); });
    else
        offerPriceUndo(rows, "txtPriceAmt_LostFocus", kRetailTier);
    panel.pricesChanged();
}

// All that this screen shows of the item's prices, as the store has them.
void frmItems::showPricesAgain() {
    showPrice();
    lblRetailUnitPriceAmt.setCaption("$" + txtPriceAmt.text());
    lblSupRetailPrice.setCaption("$" + txtPriceAmt.text());
    reloadPrices(selectedTier());
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
        if (CurrentTab == leftTab && leftTab == kSuppliersTab && !ValidateSupplierMatrix()) {
            tabItems.setCurrent(kSuppliersTab - 1);
            grdSuppliers.setFocus();
            return;
        }
        CurrentTab = tabItems.current() + 1;
    });
}

void frmItems::cmdExit_Click(int index) {
    guarded({kItemsTag, "cmdExit_Click"}, [&] {
        if (index == 1 && !ValidateSupplierMatrix())
            return;
        if (SaveSupplierMatrix())
            unload();
    });
}

// The close box saves the suppliers as the exit buttons do; what cannot be saved keeps the screen open.
void frmItems::Form_Unload(bool& cancel) {
    cancel = !deleted_ && !SaveSupplierMatrix();
    if (cancel)
        return;
    guarded({kItemsTag, "Form_Unload"}, [this] {
        panel.release();
        for (Grid* grid : {&grdSuppliers, &grdPriceMatrix, &grdSubs, &grdItemMatrix})
            grid->bind(nullptr);
        ModMain& session = modMain();
        for (db::RecordsetPtr* rows : {&session.ItemRecordset, &priceRows_, &supplierRows_, &subsRows_, &matrixRows_})
            closeRows(*rows);
        session.CurrentSKU.clear();
        session.CurrentMatrixSKU.clear();
        session.CurrentItemName.clear();
    });
    if (!Modal && modMain().doors.ShowItemList)
        modMain().doors.ShowItemList();
}

} // namespace merchantry::catalog
