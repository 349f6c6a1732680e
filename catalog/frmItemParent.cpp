#include "catalog/frmItemParent.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/text.h"
#include "catalog/gridsearch.h"
#include "catalog/modItemLookup.h"
#include "ui/desk.h"

#include <array>

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmItemParent";
constexpr int kMatrixType = 2;

} // namespace

frmItemParent::frmItemParent(Desk& desk) : Form(desk, "frmItemParent", "Matrix Parent") {
    setIcon("item");
    txtSKU.dataField = "SKU";
    txtSKU.setLocked(true);
    txtSKU.fixedWidth = true;
    txtField0.dataField = "Name";
    txtField0.maxLength = 255;
    txtField1.dataField = "Notes";
    txtField1.multiline = txtSalesMsg.multiline = true;
    txtSalesMsg.setLocked(true);
    txtSalesMsg.setToolTip("The message that the registers show. One looked up here is only shown; the parent keeps the one it has.");
    cmdDeleteItem.isDanger = true;
    cmdDeleteItem.setToolTip("Deletes the parent alone; its items stay.");
    cmdExit.isCancel = true;
    cmdExit.setToolTip("Leaves without saving what was changed in the parent's details.");
    cmdUpdateItem.isDefault = true;
    grdItems.setColumns({{.heading = "SKU", .fixedWidth = true},
                         {.heading = "MatrixSKU", .fixedWidth = true, .characters = 22},
                         {.heading = "Name", .characters = 44}});
    grdItems.editable = false;
    grdItems.emptyText = "The parent has no items yet. Add New Item makes the first.";
    grdItems.setToolTip("A click on a heading, or into the first row, sorts by that column.");

    growWithTheWindow();

    wire();

    asksBeforeLeaving({&txtSearchCriteria, &grdItems});
    setLayout(column({
        title(lblHeading),
        pages(tabParent,
              {
                  column({
                      at(lblParentDetail),
                      fields({
                                 field("SKU:", txtSKU),
                                 field("&Name:", txtField0),
                                 field("De&partment:", dcxDepartment),
                                 field("N&otes:", txtField1).high(5).stretched(),
                                 field("Sales message:", txtSalesMsg, {at(cmdLookupSalesMessage)}).high(3),
                             })
                          .stretched(),
                  }),
                  column({
                      at(lblMatrixChildren),
                      fields({field("Sea&rch for:", txtSearchCriteria)}),
                      at(lblGridInstructions),
                      at(grdItems).high(12).stretched(),
                      row({at(cmdAddNewItem), stretch(), at(cmdSelect)}),
                  }),
              }),
        buttons({at(cmdDeleteItem), stretch(), note("Update saves the parent's details"), at(cmdExit), at(cmdUpdateItem)}),
    }));
    offer("UpdateParent", [this](const auto& arguments) {
        UpdateParent(arguments.empty() ? "" : arguments[0]);
        return std::string();
    });
}

void frmItemParent::growWithTheWindow() {
    lblHeading.tag = "Width";
    tabParent.tag = "Width Height";
    txtField0.tag = txtSKU.tag = dcxDepartment.tag = "Width";
    txtField1.tag = "Width Height";
    txtSalesMsg.tag = "Top Width";
    cmdLookupSalesMessage.tag = "Top Left";
    txtSearchCriteria.tag = lblGridInstructions.tag = "Width";
    grdItems.tag = "Width Height";
    cmdAddNewItem.tag = cmdDeleteItem.tag = "Top";
    cmdSelect.tag = cmdExit.tag = cmdUpdateItem.tag = "Top Left";
}

void frmItemParent::wire() {
    dcxDepartment.click = [this] { dcxDepartment_Click(); };
    dcxDepartment.change = [this] { dcxDepartment_Click(); };
    cmdLookupSalesMessage.click = [this] { cmdLookupSalesMessage_Click(); };
    WireDelayedSearch(txtSearchCriteria, tmrSearchCriteriaDelay, grdItems,
                      [this](const std::string& text) { TellSearch(grdItems, text, text.empty() || SelectInGrid(grdItems, text)); });
    grdItems.click = [this] { grdItems_Click(); };
    grdItems.dblClick = [this] { cmdSelect_Click(); };
    cmdAddNewItem.click = [this] { cmdAddNewItem_Click(); };
    cmdSelect.click = [this] { cmdSelect_Click(); };
    cmdDeleteItem.click = [this] { cmdDeleteItem_Click(); };
    cmdUpdateItem.click = [this] { cmdUpdateItem_Click(); };
    cmdExit.click = [this] { unload(); };
}

void frmItemParent::UpdateParent(const std::string& SKUPair) {
    sku_ = ParentOfPair(SKUPair);
    ensureLoaded();
    if (item_ == nullptr) {
        unload();
        return;
    }
    desk().showModal(*this);
}

void frmItemParent::Form_Load() {
    resizer_.Initialize(*this);
    guarded({kTag, "Form_Load"}, [this] { load(); });
    showing_ = false; // also when what was to be shown could not be read
}

void frmItemParent::load() {
    departments_ = openDirect("SELECT * FROM Departments Order By DepartmentID", CursorType::Static);
    const auto item =
        openDirect(Sql("SELECT * FROM Item WHERE SKU='") + sku_ + "' and TypeId = 4", CursorType::Keyset, LockType::Optimistic);
    if (item->Eof()) {
        desk().message("SKU " + sku_ + " does not exist", "Error Adding Parent");
        return;
    }
    item_ = item;
    data_.setRecordset(item_);
    showing_ = true;
    BindControls(*this, data_);
    dcxDepartment.fill(*departments_, "Department");
    showDepartment();
    showSalesMessage();
    lblHeading.setCaption(txtField0.text().empty() ? sku_ : txtField0.text());
    loadChildren("");
}

void frmItemParent::showDepartment() {
    if ((*item_)["DepartmentId"].isNull())
        return;
    departments_->MoveFirst();
    departments_->Find("DepartmentId = " + (*item_)["DepartmentId"].text());
    if (!departments_->Eof())
        dcxDepartment.setText((*departments_)["Department"].text());
}

void frmItemParent::showSalesMessage() {
    const Value id = (*item_)["SalesMsgId"].Value();
    if (id.isNull() || id.toInteger() == 0)
        return;
    const auto message = openDirect(Sql("Select Message FROM SalesMessages WHERE SalesMsgId = ") + static_cast<int>(id.toInteger()));
    if (!message->Eof())
        txtSalesMsg.setText((*message)["Message"].text());
}

void frmItemParent::Form_Resize() {
    resizer_.Resize();
}

void frmItemParent::loadChildren(const std::string& orderBy) {
    InitLookupGrid(children_, "Standard", 0, grdItems, orderBy, txtSKU.text());
}

void frmItemParent::dcxDepartment_Click() {
    if (showing_ || item_ == nullptr)
        return;
    guarded({kTag, "dcxDepartment_Click"},
            [this] { FillFieldFromCombo(dcxDepartment, *item_, "DepartmentId", *departments_, "Department"); });
}

void frmItemParent::cmdLookupSalesMessage_Click() {
    guarded({kTag, "cmdLookupSalesMessage_Click"}, [this] {
        const auto& pick = modMain().doors.SalesMessages;
        if (!pick)
            return desk().status("\"Lookup Sales Message\" is not part of this version yet.");
        const std::string picked = pick(1);
        if (picked.empty())
            return;
        std::string lines;
        for (const std::string& part : split(picked, "|"))
            lines += part + "\r\n";
        txtSalesMsg.setText(lines);
    });
}

void frmItemParent::cmdUpdateItem_Click() {
    // What was entered stays pending after a failure, so that it can be put right and saved again.
    guarded({kTag, "cmdUpdateItem_Click"}, [this] {
        data_.collect();
        item_->Update();
        lblHeading.setCaption(txtField0.text().empty() ? sku_ : txtField0.text());
        desk().status("Saved.");
    });
}

void frmItemParent::cmdDeleteItem_Click() {
    if (desk().message("Are you sure you want to delete this item?", kProduct, MessageIcon::Question, MessageButtons::OkCancel) !=
        Answer::Ok)
        return;
    try {
        modMain().Conn->Execute(Sql("DELETE FROM Item WHERE SKU = '") + txtSKU.text() + "' AND MatrixSKU = '" + txtSKU.text() + "'");
    } catch (const db::DbError& error) {
        // Any other failure is passed over without a word, as on the item screen.
        if (error.hresult() == db::kIntegrityError)
            desk().message("You may not delete an item that has transactions associated with it.", kProduct);
        return;
    }
    unload();
}

void frmItemParent::cmdAddNewItem_Click() {
    guarded({kTag, "cmdAddNewItem_Click"}, [this] {
        const std::string pair = AddNewItem(kMatrixType, txtSKU.text(), "Please input new item SKU", "New Item SKU", true);
        modMain().doors.CheckSKUs(pair, true);
        loadChildren("");
    });
}

void frmItemParent::cmdSelect_Click() {
    guarded({kTag, "cmdSelect_Click"}, [this] {
        if (grdItems.selected())
            modMain().doors.CheckSKUs(itemPairAt(grdItems, grdItems.row()), true);
    });
}

void frmItemParent::grdItems_Click() {
    static constexpr std::array<const char*, 3> kColumns{"SKU", "MatrixSKU", "Name"};
    if (grdItems.row() == 1 && grdItems.col() >= 0 && grdItems.col() < static_cast<int>(kColumns.size()))
        loadChildren(kColumns[static_cast<std::size_t>(grdItems.col())]);
}

void frmItemParent::Form_Unload(bool& /*cancel*/) {
    guarded({kTag, "Form_Unload"}, [this] {
        tmrSearchCriteriaDelay.stop();
        grdItems.bind(nullptr);
        for (db::RecordsetPtr* rows : {&children_, &item_, &departments_})
            closeRows(*rows);
    });
}

} // namespace merchantry::catalog
