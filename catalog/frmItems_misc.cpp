// The Substitutes and Misc pages of frmItems: substitutes, tag-along, sales message, split.
#include "base/counted.h"
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

enum SubsColumn { kParent = 0, kSubSKU = 2, kSubMatrixSKU = 3, kPriority = 4 };

constexpr const char* kNoTagAlong = "Click Here To Select Tag Along Item";
constexpr const char* kNoSalesMessage = "Click Here To Select Item Sales Message";

// The pair that the user picks in the item lookup as its two codes; empty when none was picked.
std::vector<std::string> pickedItem() {
    const auto& lookup = modMain().doors.SelectSKU;
    const std::vector<std::string> codes = split(lookup ? lookup(0) : "", "|");
    return codes.size() == 2 ? codes : std::vector<std::string>();
}

} // namespace

// --- substitutes ---

void frmItems::wireSubstitutes() {
    grdSubs.setColumns({{.heading = "Parent", .fixedWidth = true},
                        {.heading = "Matrix", .fixedWidth = true},
                        {.heading = "Substitute Parent", .fixedWidth = true},
                        {.heading = "Substitute Matrix", .fixedWidth = true},
                        {.heading = "Priority", .format = GridColumn::Format::Number},
                        {.heading = "Notes", .characters = 20}});
    grdSubs.emptyText = "No substitutes.";
    grdSubs.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kParent; };
    grdSubs.error = [this](const std::string&, bool& handled) {
        handled = true;
        grdSubs_Error();
    };
    grdSubs.afterRefresh = [this] { guarded({kItemsTag, "grdSubs_AfterDataRefresh"}, [this] { showSubstituteCount(); }); };
    cmdSubsAddNew.click = [this] { cmdSubsAddNew_Click(); };
    cmdSubsDelete.click = [this] { cmdSubsDelete_Click(); };
    imgSubUp.click = [this] { grdSubs_ChangePriority(true); };
    imgSubDown.click = [this] { grdSubs_ChangePriority(false); };
}

void frmItems::populateSubstitutes() {
    lblSubsSKU.setCaption(modMain().CurrentSKU);
    reloadSubstitutes();
}

void frmItems::reloadSubstitutes() {
    grdSubs.bind(nullptr);
    subsRows_ = openUpdatable("bsp_SubsGrid", itemKey());
    grdSubs.bind(subsRows_.get());
}

void frmItems::showSubstituteCount() {
    const int rows = grdSubs.dataRows();
    grdSubs.setStatusText(counted(rows, "substitute") + ". Each change is saved at once, deletions too.");
}

void frmItems::cmdSubsAddNew_Click() {
    guarded({kItemsTag, "cmdSubsAddNew_Click"}, [this] {
        const std::vector<std::string> picked = pickedItem();
        if (picked.empty())
            return;
        if (grdSubs.rows() == nullptr)
            reloadSubstitutes(); // the last reading failed: a row of an unbound grid would go nowhere
        // Without a row this is the heading, which counts as 0.
        const std::string last = grdSubs.rawText(grdSubs.dataRows(), kPriority);
        const auto priority = (last == "Priority" ? 0 : Value(last).toInteger()) + 1;
        for (int row = 1; row <= grdSubs.dataRows(); ++row)
            if (sameText(grdSubs.rawText(row, kSubSKU), picked[0]) && sameText(grdSubs.rawText(row, kSubMatrixSKU), picked[1])) {
                desk().message("This item already exists as a substitute!", kProduct);
                return;
            }
        if (grdSubs.addRow({modMain().CurrentSKU, modMain().CurrentMatrixSKU, picked[0], picked[1], std::to_string(priority)}))
            showSubstituteCount();
    });
}

void frmItems::cmdSubsDelete_Click() {
    guarded({kItemsTag, "cmdSubsDelete_Click"}, [this] {
        WrittenRows rows({"ItemSubstitutes", {"SKU", "MatrixSKU", "SubSKU", "SubMatrixSKU"}},
                         Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
        if (!grdSubs.removeRow(grdSubs.row()))
            return;
        showSubstituteCount();
        if (rows.compare())
            offerUndo(undoLine, {kItemsTag, "cmdSubsDelete_Click"}, "Substitute " + rows.was("SubMatrixSKU").toText() + " removed.", rows,
                      [this] { reloadSubstitutes(); });
    });
}

void frmItems::grdSubs_ChangePriority(bool Up) {
    guarded({kItemsTag, "grdPriceMatrix_Error"}, [&] {
        const int row = grdSubs.row();
        const int neighbour = Up ? row - 1 : row + 1;
        if (row < 1 || neighbour < 1 || neighbour > grdSubs.dataRows())
            return;
        const int column = grdSubs.col();
        if (!grdSubs.setText(row, kPriority, std::to_string(neighbour)) || !grdSubs.setText(neighbour, kPriority, std::to_string(row)))
            return;
        reloadSubstitutes();
        grdSubs.setCurrent(neighbour, column);
    });
}

void frmItems::grdSubs_Error() {
    guarded({kItemsTag, "grdSubs_Error"}, [this] {
        desk().message("This entry would invalidate your substitute matrix! Please check your entry and try again.", kProduct);
        reloadSubstitutes();
    });
}

// --- tag-along ---

void frmItems::wireMisc() {
    lblTagAlongSKU.setToolTip("Click to pick the item that a sale of this one adds by itself; \"()\" stands for none.");
    lblTagAlongSKU.click = [this] { lblTagAlongSKU_Click(); };
    cmdAddTagAlong.click = [this] { lblTagAlongSKU_Click(); };
    cmdRemoveTagAlong.click = [this] { cmdRemoveTagAlong_Click(); };
    txtTagAlongQty.lostFocus = [this] { txtTagAlongQty_LostFocus(); };
    lblSalesMsg.click = [this] { lblSalesMsg_Click(); };
    lbxSplitParentSKU.click = [this] { lbxSplitParentSKU_Click(); };
    cmdUpdateSplit.click = [this] { UpdateSplit(); };
}

void frmItems::populateMisc() {
    db::Recordset& item = *modMain().ItemRecordset;
    lblMiscSKU.setCaption(modMain().CurrentSKU);
    showTagAlong();
    txtTagAlongQty.setText(item["TagAlongQty"].text());
    const auto message =
        openList("bsp_SalesMessagesLookup", {intParameter("id", static_cast<int>(item["SalesMsgID"].Value().toInteger()))});
    showSalesMessage(message->Eof() ? "" : (*message)["Message"].text());
    showSplit();
}

void frmItems::lblTagAlongSKU_Click() {
    guarded({kItemsTag, "lblTagAlongSKU_Click"}, [this] {
        const std::vector<std::string> picked = pickedItem();
        if (!picked.empty() && writeTagAlong("lblTagAlongSKU_Click", picked[0], picked[1]))
            lblTagAlongSKU.setCaption(picked[0] + " (" + picked[1] + ")");
    });
}

void frmItems::cmdRemoveTagAlong_Click() {
    WrittenRows rows({"Item", {"SKU", "MatrixSKU"}},
                     Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    if (!writeTagAlong("cmdRemoveTagAlong", Value(), Value()))
        return;
    lblTagAlongSKU.setCaption(kNoTagAlong);
    if (rows.compare() && !rows.was("TagAlongMatrixSKU").isNull())
        offerUndo(undoLine, {kItemsTag, "cmdRemoveTagAlong"}, "Tag along item " + rows.was("TagAlongMatrixSKU").toText() + " removed.",
                  rows, [this] {
                      readStored(*modMain().ItemRecordset);
                      showTagAlong();
                  });
}

void frmItems::showTagAlong() {
    db::Recordset& item = *modMain().ItemRecordset;
    lblTagAlongSKU.setCaption(item["TagAlongSKU"].text() + " (" + item["TagAlongMatrixSKU"].text() + ")");
}

bool frmItems::writeTagAlong(const std::string& procedure, const Value& sku, const Value& matrixSku) {
    return writeItem(procedure, [&](db::Recordset& item) {
        item["TagAlongSKU"] = sku;
        item["TagAlongMatrixSKU"] = matrixSku;
    });
}

void frmItems::txtTagAlongQty_LostFocus() {
    if (const std::string wrong = commaComplaint(txtTagAlongQty.text()); !wrong.empty()) {
        desk().message(wrong, kProduct);
        txtTagAlongQty.setText("");
        return;
    }
    if (numericPrefix(txtTagAlongQty.text()) > 0) {
        if (writeField("CheckSKUs", "TagAlongQty", [this] { return Value(txtTagAlongQty.text()); }))
            txtTagAlongQty.setText((*modMain().ItemRecordset)["TagAlongQty"].text());
        return;
    }
    desk().message("Please enter a Tag Along Quantity greater than zero", kProduct);
    txtTagAlongQty.setText("");
}

// --- sales message ---

// The base message is an empty text, which nobody could click.
void frmItems::showSalesMessage(const std::string& message) {
    lblSalesMsg.setCaption(message.empty() ? kNoSalesMessage : message);
}

void frmItems::lblSalesMsg_Click() {
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

void frmItems::lbxSplitParentSKU_Click() {
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

void frmItems::showSplit() {
    const auto split = openDirect(itemSplit());
    if (split->Eof())
        return;
    lbxSplitParentSKU.setListIndex(lbxSplitParentSKU.indexOf((*split)["SplitParentSKU"].text()));
    lbxSplitParentMatrixSKU.setListIndex(lbxSplitParentMatrixSKU.indexOf((*split)["SplitParentMatrixSKU"].text()));
    txtSplitQty.setText((*split)["SplitQuantity"].text());
}

void frmItems::UpdateSplit() {
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
