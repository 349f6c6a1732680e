#include "catalog/generalpage.h"

#include "app/profit.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr int kSerialized = 5;
constexpr int kNeverSold = 1900;

} // namespace

GeneralPage::GeneralPage(ItemScreen& screen)
    : cmdExit(screen.form(), "cmdExit(0)", "E&xit"), screen_(screen), lblSKUVal(screen.form(), "lblSKUVal"),
      lblCostAmt(screen.form(), "lblCostAmt"), lblProfitMargin(screen.form(), "lblProfitMargin", "Profit Margin:"),
      lblProfitPercent(screen.form(), "lblProfitPercent"), lblCommittedAmt(screen.form(), "lblCommittedAmt"),
      lblLastSoldDateVal(screen.form(), "lblLastSoldDateVal"), txtName(screen.form(), "txtName"), lbxType(screen.form(), "lbxType"),
      lbxDepartment(screen.form(), "lbxDepartment"), lbxTaxClass(screen.form(), "lbxTaxClass"), txtPriceAmt(screen.form(), "txtPriceAmt"),
      txtStockAmt(screen.form(), "txtStockAmt"), cmdAdjust(screen.form(), "cmdAdjust", "Adjust"), txtReorder(screen.form(), "txtReorder"),
      txtRestock(screen.form(), "txtRestock"), cbxActive(screen.form(), "cbxActive", "Active"),
      cbxSerialed(screen.form(), "cbxSerialed", "Serial Item"), cbxFoodStamps(screen.form(), "cbxFoodStamps", "OK to use Food Stamps"),
      cmdDeleteItem(screen.form(), "cmdDeleteItem", "Delete This Item") {
    wire();
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
}

void GeneralPage::wire() {
    txtName.lostFocus = [this] {
        if (writeShown("txtName_LostFocus", "Name", [this] { return Value(trimmed(txtName.text())); }))
            screen_.nameChanged(txtName.text());
        else if (const db::RecordsetPtr item = itemOnRow(); item != nullptr && !passing_) // else it stays, for another try
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

Item GeneralPage::item(Button& panelButton) {
    return column({
        row({title(lblSKUVal), at(panelButton), stretch(), figure("Weighted Cost:", lblCostAmt), figure("Committed:", lblCommittedAmt),
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
        buttons({at(cmdDeleteItem), stretch(), note("Every field is saved as you leave it"), at(cmdExit)}),
    });
}

void GeneralPage::loadLists() {
    fill(lbxType, openList("bsp_ItemTypesLookup"), "Description", "TypeID");
    fill(lbxDepartment, openList("bsp_DepartmentsLookup"), "Department", "DepartmentID");
    fill(lbxTaxClass, openList("bsp_TaxClassLookup"), "Description", "TaxID");
    for (int i = 0; i < lbxTaxClass.count(); ++i)
        if (lbxTaxClass.entries()[static_cast<std::size_t>(i)].text == "None")
            TaxNoneIndex = i;
}

void GeneralPage::forgetStock() {
    txtStockAmt.setText("");
}

void GeneralPage::populate() {
    showItem();
    showCost();
    showPrice();
    showProfit();
    showStock();
}

void GeneralPage::showItem() {
    db::Recordset& item = *modMain().ItemRecordset;
    const auto type = item["TypeID"].Value().toInteger();
    lbxType.setListIndex(positionOfKey(lbxType, type));
    lbxDepartment.setListIndex(positionOfKey(lbxDepartment, item["DepartmentID"].Value().toInteger()));
    txtName.setText(item["Name"].text());
    modMain().CurrentItemName = item["Name"].text();
    lblSKUVal.setCaption(modMain().CurrentMatrixSKU);
    cbxFoodStamps.setValue(item["FoodStampFlag"].Value().toFlag());
    cbxActive.setValue(item["Active"].Value().toFlag());
    cbxSerialed.setValue(item["SerialFlag"].Value().toFlag());
    lbxTaxClass.setListIndex(positionOfKey(lbxTaxClass, item["TaxID"].Value().toInteger()));
    screen_.nameChanged(txtName.text());
}

void GeneralPage::showCost() {
    const auto cost = openDirect(itemCost());
    if (!cost->Eof())
        lblCostAmt.setCaption("$" + (*cost)["Cost_wt"].text());
}

void GeneralPage::showPrice() {
    const auto prices = openList("bsp_PriceMatrixGrid", itemKeyAnd(intParameter("Tier", 1)));
    if (!prices->Eof())
        txtPriceAmt.setText((*prices)["Price"].text());
}

void GeneralPage::showProfit() {
    const std::string& cost = lblCostAmt.caption();
    if (cost.empty() || txtPriceAmt.text().empty() || numericPrefix(cost.substr(1)) <= 0)
        return;
    const int percent = profitPercent(Currency::fromDouble(numericPrefix(txtPriceAmt.text())), Currency::fromText(cost));
    lblProfitPercent.setCaption(std::to_string(percent) + "%");
}

void GeneralPage::showStock() {
    const auto stock = openList("bsp_ItemStockLookup", itemKey());
    if (!stock->Eof())
        txtStockAmt.setText((*stock)["Quantity"].text());
    db::Recordset& item = *modMain().ItemRecordset;
    const Value sold = item["DateLastSold"].Value();
    lblLastSoldDateVal.setCaption(sold.is<Date>() && sold.as<Date>().year() != kNeverSold ? sold.toText() : "");
    txtReorder.setText(item["Reorder"].text());
    txtRestock.setText(item["Restock"].text());
}

bool GeneralPage::writeShown(const std::string& procedure, const std::string& column, const std::function<Value()>& value) {
    passing_ = false;
    const bool written = writeField(procedure, column, value, &passing_);
    if (!written)
        showStored(column);
    return written;
}

// Boxes, lists and figures show again what the store holds; words stay as they were typed, for another try.
void GeneralPage::showStored(const std::string& column) {
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
        if (column == name && !passing_)
            box->setText((*item)[column].text());
}

// What stands in the field afterwards is what the store holds, also when someone else changed it or the text is no number.
void GeneralPage::numberField_LostFocus(TextBox& box, const std::string& procedure, const std::string& column) {
    if (neverFilled(screen_, box))
        return;
    passing_ = false;
    if (const std::string wrong = commaComplaint(box.text()); !wrong.empty())
        screen_.form().desk().message(wrong, kProduct);
    else
        writeShown(procedure, column, [&] { return Value(numericPrefix(box.text())); });
    if (const db::RecordsetPtr item = itemOnRow(); item != nullptr && !passing_)
        box.setText((*item)[column].text());
}

void GeneralPage::lbxTaxClass_Click() {
    if (!screen_.populated())
        return;
    writeShown("lbxTaxClass_Click", "TaxID", [this] {
        const int first = lbxTaxClass.indexOf(lbxTaxClass.text());
        return Value(lbxTaxClass.entries().at(static_cast<std::size_t>(first)).itemData);
    });
}

void GeneralPage::lbxType_Click() {
    const int type = lbxType.itemData();
    if (!writeShown("lbxType_Click", "TypeID", [type] { return Value(type); }))
        return;
    guarded({kItemsTag, "lbxType_Click"}, [&] { applyType(type); });
}

void GeneralPage::applyType(int type) {
    const bool forced = type == kSerialized;
    // While the screen is being populated the two still show nothing of this item: there is nothing to remember.
    if (forced && screen_.populated()) {
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
    screen_.typeChanged(type);
}

void GeneralPage::writePrice() {
    modMain().Conn->Execute(Sql("UPDATE PriceMatrix SET Price = ") + numericPrefix(txtPriceAmt.text()) + " WHERE SKU ='" +
                            modMain().CurrentSKU + "' " + " AND MatrixSKU = '" + modMain().CurrentMatrixSKU +
                            "' AND Tier = 1 AND (Quantity = 1 Or Quantity = 0)");
}

void GeneralPage::txtPriceAmt_LostFocus() {
    if (const std::string wrong = commaComplaint(txtPriceAmt.text()); !wrong.empty()) {
        screen_.form().desk().message(wrong, kProduct);
        guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] { showPrice(); });
        return;
    }
    WrittenRows rows = pricesOfTier(kRetailTier);
    bool passing = false;
    const bool written = guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [&] {
        notingPassing(&passing, [this] { writePrice(); });
        showStoredPrice();
        screen_.retailPriceWritten();
    });
    if (passing)
        return;
    if (!written)
        guarded({kItemsTag, "txtPriceAmt_LostFocus"}, [this] { showPrice(); });
    else
        screen_.offerPriceUndo(rows, "txtPriceAmt_LostFocus", kRetailTier);
    screen_.pricesWritten();
}

// As the registers will charge it. A plain number that says the same stays as it was typed.
void GeneralPage::showStoredPrice() {
    const std::string typed = txtPriceAmt.text();
    showPrice();
    const bool plain = !typed.empty() && typed.find_first_not_of("0123456789.-") == std::string::npos;
    if (plain && numericPrefix(typed) == numericPrefix(txtPriceAmt.text()))
        txtPriceAmt.setText(typed);
}

void GeneralPage::txtStockAmt_LostFocus() {
    if (txtStockAmt.text().empty())
        return; // the population did not get so far: there is no figure to write back
    guarded({kItemsTag, "txtStockAmt"}, [this] {
        modMain().Conn->Execute(Sql("UPDATE Stock SET Quantity = ") + numericPrefix(txtStockAmt.text()) + " WHERE SKU ='" +
                                modMain().CurrentSKU + "' " + " AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    });
}

void GeneralPage::cmdAdjust_Click() {
    guarded({kItemsTag, "cmdAdjust_Click"}, [this] {
        const ModMain& session = modMain();
        if (!session.doors.AdjustInv)
            return notYet("Adjust");
        session.doors.AdjustInv(session.CurrentSKU, session.CurrentMatrixSKU, std::string(trimmed(txtName.text())));
        screen_.readAgain();
    });
}

void GeneralPage::notYet(const std::string& what) {
    screen_.form().desk().status("\"" + what + "\" is not part of this version yet.");
}

void GeneralPage::cmdDeleteItem_Click() {
    if (screen_.form().desk().message("Are you sure you want to delete this item?", kProduct, MessageIcon::Question,
                                      MessageButtons::OkCancel) != Answer::Ok)
        return;
    try {
        modMain().Conn->Execute(Sql("DELETE FROM Item WHERE SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" +
                                modMain().CurrentMatrixSKU + "'");
    } catch (const db::DbError& error) {
        // Any other failure is passed over without a word.
        if (error.hresult() == db::kIntegrityError)
            screen_.form().desk().message("You may not delete an item that has transactions associated with it.", kProduct);
        return;
    }
    screen_.itemDeleted();
}

} // namespace merchantry::catalog
