#include "catalog/miscpage.h"

#include "app/takeback.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kNoTagAlong = "Click Here To Select Tag Along Item";
constexpr const char* kNoSalesMessage = "Click Here To Select Item Sales Message";

} // namespace

MiscPage::MiscPage(ItemScreen& screen)
    : ItemPage(screen, "Misc", 6), lblTagAlongSKU(screen.form(), "lblTagAlongSKU", kNoTagAlong),
      cmdAddTagAlong(screen.form(), "cmdAddTagAlong", "Add Tag Along"),
      cmdRemoveTagAlong(screen.form(), "cmdRemoveTagAlong", "&Remove Tag Along"), txtTagAlongQty(screen.form(), "txtTagAlongQty"),
      lblSalesMsg(screen.form(), "lblSalesMsg", kNoSalesMessage), fraSplit(screen.form(), "fraSplit", "Split"),
      lblMiscItemSplit0(screen.form(), "lblMiscItemSplit(0)", "Split Parent:"),
      lblMiscItemSplit1(screen.form(), "lblMiscItemSplit(1)", "Split Matrix:"),
      lblMiscItemSplit2(screen.form(), "lblMiscItemSplit(2)", "Split Quantity:"), lbxSplitParentSKU(screen.form(), "lbxSplitParentSKU"),
      lbxSplitParentMatrixSKU(screen.form(), "lbxSplitParentMatrixSKU"), txtSplitQty(screen.form(), "txtSplitQty"),
      cmdUpdateSplit(screen.form(), "cmdUpdateSplit", "Update") {
    for (TextBox* box : {&txtTagAlongQty, &txtSplitQty}) {
        box->alignRight = true;
        selectsAll(*box);
    }
    cmdRemoveTagAlong.isDanger = true;
    lblTagAlongSKU.setToolTip("Click to pick the item that a sale of this one adds by itself; \"()\" stands for none.");
    lblTagAlongSKU.click = [this] { lblTagAlongSKU_Click(); };
    cmdAddTagAlong.click = [this] { lblTagAlongSKU_Click(); };
    cmdRemoveTagAlong.click = [this] { cmdRemoveTagAlong_Click(); };
    txtTagAlongQty.lostFocus = [this] { txtTagAlongQty_LostFocus(); };
    lblSalesMsg.click = [this] { lblSalesMsg_Click(); };
    lbxSplitParentSKU.click = [this] { lbxSplitParentSKU_Click(); };
    cmdUpdateSplit.click = [this] { UpdateSplit(); };
}

Item MiscPage::item() {
    return column({
        row({head(), stretch()}),
        box("At the sale", fields({
                               field("Tag Along Item:", lblTagAlongSKU, {at(cmdAddTagAlong), gap(), at(cmdRemoveTagAlong)}),
                               field("Tag Along &Quantity:", txtTagAlongQty).wide(10),
                               field("Sales Message:", lblSalesMsg),
                           })),
        group(fraSplit, column({row({at(lblMiscItemSplit0).wide(10), at(lbxSplitParentSKU).stretched(), at(lblMiscItemSplit1),
                                     at(lbxSplitParentMatrixSKU).stretched()}),
                                row({at(lblMiscItemSplit2).wide(10), at(txtSplitQty).wide(10), stretch(), at(cmdUpdateSplit)})})),
        stretch(),
        buttons({stretch(), at(cmdExit)}),
    });
}

void MiscPage::loadParents() {
    const auto parents = openDirect(splitParents());
    lbxSplitParentSKU.clear();
    for (; !parents->Eof(); parents->MoveNext())
        lbxSplitParentSKU.add((*parents)[0].text());
}

void MiscPage::showFor(bool splitItem) {
    for (Control* control : std::initializer_list<Control*>{&fraSplit, &lbxSplitParentSKU, &lbxSplitParentMatrixSKU, &txtSplitQty,
                                                            &cmdUpdateSplit, &lblMiscItemSplit0, &lblMiscItemSplit1, &lblMiscItemSplit2})
        control->setVisible(splitItem);
}

void MiscPage::populate() {
    db::Recordset& item = *modMain().ItemRecordset;
    showSKU();
    showTagAlong();
    txtTagAlongQty.setText(item["TagAlongQty"].text());
    const auto message =
        openList("bsp_SalesMessagesLookup", {intParameter("id", static_cast<int>(item["SalesMsgID"].Value().toInteger()))});
    showSalesMessage(message->Eof() ? "" : (*message)["Message"].text());
    showSplit();
}

void MiscPage::lblTagAlongSKU_Click() {
    guarded({kItemsTag, "lblTagAlongSKU_Click"}, [this] {
        const std::vector<std::string> picked = pickedItem();
        if (!picked.empty() && writeTagAlong("lblTagAlongSKU_Click", picked[0], picked[1]))
            lblTagAlongSKU.setCaption(picked[0] + " (" + picked[1] + ")");
    });
}

void MiscPage::cmdRemoveTagAlong_Click() {
    WrittenRows rows({"Item", {"SKU", "MatrixSKU"}},
                     Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    if (!writeTagAlong("cmdRemoveTagAlong", Value(), Value()))
        return;
    lblTagAlongSKU.setCaption(kNoTagAlong);
    if (rows.compare() && !rows.was("TagAlongMatrixSKU").isNull())
        offerUndo(screen_.undoLine(), {kItemsTag, "cmdRemoveTagAlong"},
                  "Tag along item " + rows.was("TagAlongMatrixSKU").toText() + " removed.", rows, [this] {
                      readStored(*modMain().ItemRecordset);
                      showTagAlong();
                  });
}

void MiscPage::showTagAlong() {
    db::Recordset& item = *modMain().ItemRecordset;
    lblTagAlongSKU.setCaption(item["TagAlongSKU"].text() + " (" + item["TagAlongMatrixSKU"].text() + ")");
}

bool MiscPage::writeTagAlong(const std::string& procedure, const Value& sku, const Value& matrixSku) {
    return writeItem(procedure, [&](db::Recordset& item) {
        item["TagAlongSKU"] = sku;
        item["TagAlongMatrixSKU"] = matrixSku;
    });
}

void MiscPage::txtTagAlongQty_LostFocus() {
    if (const std::string wrong = commaComplaint(txtTagAlongQty.text()); !wrong.empty()) {
        desk().message(wrong, kProduct);
        txtTagAlongQty.setText("");
        return;
    }
    if (numericPrefix(txtTagAlongQty.text()) > 0) {
        writeField("CheckSKUs", "TagAlongQty", [this] { return Value(txtTagAlongQty.text()); });
        if (const db::RecordsetPtr item = itemOnRow())
            txtTagAlongQty.setText((*item)["TagAlongQty"].text());
        return;
    }
    desk().message("Please enter a Tag Along Quantity greater than zero", kProduct);
    txtTagAlongQty.setText("");
}

// --- sales message ---

// The base message is an empty text, which nobody could click.
void MiscPage::showSalesMessage(const std::string& message) {
    lblSalesMsg.setCaption(message.empty() ? kNoSalesMessage : message);
}

void MiscPage::lblSalesMsg_Click() {
    guarded({kItemsTag, "lblSalesMsg_Click"}, [this] {
        const auto& messages = modMain().doors.SalesMessages;
        const std::vector<std::string> picked = split(messages ? messages(1) : "", "|");
        if (picked.size() != 2)
            return;
        showSalesMessage(picked[0]);
        const double id = numericPrefix(picked[1]);
        writeField("lblSalesMsg_Click", "SalesMsgID", [id] { return Value(id > 0 ? id : 0.0); });
    });
}

// --- split ---

void MiscPage::lbxSplitParentSKU_Click() {
    guarded({kItemsTag, "lbxSplitSku_Click"}, [this] {
        const std::string parent = lbxSplitParentSKU.text();
        const std::string& mine = modMain().CurrentMatrixSKU;
        const bool own = sameText(parent, modMain().CurrentSKU);
        lbxSplitParentMatrixSKU.clear(); // also when the new parent's items cannot be read
        const auto children =
            own ? openDirect(Sql("SELECT MatrixSKU FROM Item WHERE (SKU = '") + parent + "' AND MatrixSKU <> '" + mine +
                             "' AND TypeID <> 4) ORDER BY MatrixSKU")
                : openDirect(Sql("SELECT MatrixSKU FROM Item WHERE (SKU = '") + parent + "' AND TypeID <> 4) ORDER BY MatrixSKU");
        for (; !children->Eof(); children->MoveNext())
            if (const std::string child = (*children)[0].text(); !own || !sameText(child, mine))
                lbxSplitParentMatrixSKU.add(child);
        if (lbxSplitParentMatrixSKU.count() > 0 && lbxSplitParentMatrixSKU.listIndex() < 0)
            lbxSplitParentMatrixSKU.setListIndex(0);
    });
}

void MiscPage::showSplit() {
    const auto split = openDirect(itemSplit());
    if (split->Eof())
        return;
    lbxSplitParentSKU.setListIndex(lbxSplitParentSKU.indexOf((*split)["SplitParentSKU"].text()));
    lbxSplitParentMatrixSKU.setListIndex(lbxSplitParentMatrixSKU.indexOf((*split)["SplitParentMatrixSKU"].text()));
    txtSplitQty.setText((*split)["SplitQuantity"].text());
}

void MiscPage::UpdateSplit() {
    guarded({kItemsTag, "UpdateSplit"}, [this] {
        const std::string parent = lbxSplitParentSKU.text();
        const std::string parentMatrix = lbxSplitParentMatrixSKU.text();
        if (parent.empty() || parentMatrix.empty()) {
            desk().message("Please select both split Parent and Matrix SKUs", kProduct);
            return;
        }
        if (const std::string wrong = commaComplaint(txtSplitQty.text()); !wrong.empty()) {
            desk().message(wrong, kProduct);
            return;
        }
        const double quantity = numericPrefix(txtSplitQty.text());
        if (quantity < 1) {
            desk().message("Please select a valid split quantity for this item", kProduct);
            return;
        }
        const ModMain& session = modMain();
        session.Conn->Execute(Sql("DELETE FROM ItemSplitMatrix WHERE SKU = '") + session.CurrentSKU + "' And MatrixSKU = '" +
                              session.CurrentMatrixSKU + "'");
        session.Conn->Execute(
            Sql("INSERT Into ItemSplitMatrix (SKU, MatrixSKU, SplitParentSku, SplitParentMatrixSKU, SplitQuantity)  VALUES ('") +
            session.CurrentSKU + "', '" + session.CurrentMatrixSKU + "', '" + parent + "', '" + parentMatrix + "', " + quantity + ")");
        txtSplitQty.setText(shortestDecimal(quantity));
        desk().message("Split Updated", kProduct);
    });
}

} // namespace merchantry::catalog
