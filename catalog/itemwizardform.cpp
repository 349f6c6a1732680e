#include "catalog/itemwizardform.h"

#include "app/modMain.h"
#include "catalog/frmItemParent.h"
#include "catalog/gridsearch.h"
#include "catalog/modItemLookup.h"
#include "ui/desk.h"

#include <algorithm>
#include <array>

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmItemLookup";
constexpr int kMatrixType = 2;
constexpr std::array<const char*, 3> kColumns{"SKU", "MatrixSKU", "Name"};
constexpr const char* kParentLookup = "Matrix Parent Lookup";

bool flag(const std::vector<std::string>& arguments, std::size_t index) {
    return index < arguments.size() && arguments[index] == "on";
}

std::string textAt(const std::vector<std::string>& arguments, std::size_t index) {
    return index < arguments.size() ? arguments[index] : std::string();
}

} // namespace

ItemWizardForm::ItemWizardForm(Desk& desk, const char* name, const char* caption) : Form(desk, name, caption) {
    setIcon("items");
    lblHeading.setCaption(caption);
    grdItems.setColumns({{.heading = "SKU", .fixedWidth = true},
                         {.heading = "MatrixSKU", .fixedWidth = true, .characters = 22},
                         {.heading = "Name", .characters = 40}});
    grdItems.editable = false;
    grdItems.emptyText = "No item is of this kind. Choose another entry of the list above, or add an item.";
    grdItems.setToolTip("A click on a heading, or into the first row, sorts by that column.");
    cmbFilterBy.editable = true;
    cmbFilterBy.setToolTip(
        "An entry below \"Serial\" lists the items whose type number is the entry's place in this list, counted from 0.");
    cmdEdit.isDefault = true;
    cmdExit.isCancel = true;
    lblHeading.tag = lblGridInstructions.tag = "Width";
    txtSearchCriteria.tag = "Width";
    lblFilterBy.tag = cmbFilterBy.tag = "Left";
    grdItems.tag = "Width Height";
    cmdExit.tag = cmdEdit.tag = "Top Left";

    WireDelayedSearch(txtSearchCriteria, tmrSearchCriteriaDelay, grdItems, [this](const std::string& text) { search(text); });
    cmbFilterBy.change = [this] { cmbFilterBy_Change(); };
    cmbFilterBy.click = [this] { cmbFilterBy_Change(); };
    grdItems.click = [this] { grdItems_Click(); };
    grdItems.dblClick = [this] { cmdEdit_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    cmdExit.click = [this] { unload(); };
}

std::vector<Item> ItemWizardForm::layoutAbove() {
    return {
        title(lblHeading),
        gap(),
        row({fields({field("Sea&rch for:", txtSearchCriteria).wide(40)}).stretched(), gap(), at(lblFilterBy), at(cmbFilterBy).wide(20)}),
        at(lblGridInstructions),
        at(grdItems).high(16).wide(96).stretched(),
    };
}

void ItemWizardForm::Form_Load() {
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [this] { fillFilter(); });
    resizer_.Initialize(*this);
}

void ItemWizardForm::fillFilter() {
    cmbFilterBy.add("Show All");
    cmbFilterBy.add("Serial");
    const auto types = openDirect("SELECT * FROM ItemTypes ORDER BY TypeId");
    for (; !types->Eof(); types->MoveNext())
        cmbFilterBy.add((*types)["Description"].text());
}

void ItemWizardForm::Form_Resize() {
    resizer_.Resize();
}

void ItemWizardForm::Form_Unload(bool& /*cancel*/) {
    guarded({kTag, "Form_Unload"}, [this] {
        tmrSearchCriteriaDelay.stop();
        grdItems.bind(nullptr);
        closeRows(rows_);
    });
}

void ItemWizardForm::customize(const std::string& title, const std::string& mode) {
    ensureLoaded();
    setCaption(title);
    lblHeading.setCaption(title);
    if (title == kParentLookup)
        showAsParents();
    if (cmbFilterBy.text() == mode)
        cmbFilterBy_Change(); // no change of the text tells of itself
    cmbFilterBy.setText(mode);
    const bool free = mode.empty() || mode == "Standard";
    cmbFilterBy.setVisible(free);
    lblFilterBy.setVisible(free);
}

void ItemWizardForm::showAsParents() {
    lblGridInstructions.setCaption(
        "You may enter a valid Matrix parent SKU or scan an item already associated with the Matrix Parent SKU you "
        "are looking for");
    grdItems.setColumns(
        {{.heading = "SKU", .hidden = true}, {.heading = "MatrixSKU", .characters = 40}, {.heading = "Name", .characters = 40}});
}

void ItemWizardForm::requery(const std::string& orderBy) {
    InitLookupGrid(rows_, cmbFilterBy.text(), cmbFilterBy.listIndex(), grdItems, orderBy, "");
}

// The rows come in the order of their codes; the one that the user chose last is restored on them.
void ItemWizardForm::cmbFilterBy_Change() {
    requery("");
    const std::string sort = desk().remembered(name(), "sort");
    if (rows_ == nullptr || std::find(kColumns.begin(), kColumns.end(), sort) == kColumns.end())
        return;
    guarded({kTag, "cmbFilterBy_Change"}, [&] {
        rows_->setSort(sort + " asc");
        grdItems.setSorted(std::nullopt); // the rows tell it themselves now
    });
}

void ItemWizardForm::grdItems_Click() {
    if (grdItems.row() != 1 || grdItems.col() < 0 || grdItems.col() >= static_cast<int>(kColumns.size()))
        return;
    const char* const column = kColumns[static_cast<std::size_t>(grdItems.col())];
    requery(column);
    desk().remember(name(), "sort", column);
}

std::string ItemWizardForm::currentPair() const {
    if (!grdItems.selected())
        return "";
    return itemPairAt(grdItems, grdItems.row());
}

void ItemWizardForm::cmdEdit_Click() {
    guarded({kTag, "cmdEdit_Click"}, [this] {
        if (const std::string pair = currentPair(); !pair.empty())
            choose(pair);
    });
}

// A child that was scanned leads to its parent's line.
void ItemWizardForm::search(const std::string& text) {
    guarded({.tag = kTag, .procedure = "tmrSearchCriteriaDelay_Timer", .plain = "The search could not be made."}, [&] {
        TellSearch(grdItems, text, true);
        if (!text.empty() && SelectInGrid(grdItems, text))
            return;
        const auto children = openDirect(Sql("Select SKU from Item where MatrixSKU = '") + text + "'");
        TellSearch(grdItems, text, !children->Eof() && SelectInColumn(grdItems, (*children)["SKU"].text(), kParentColumn));
    });
}

ItemEditWizard::ItemEditWizard(Desk& desk, const char* name, const char* caption) : ItemWizardForm(desk, name, caption) {
    cmdAddNewItem.tag = cmdAddMatrixParent.tag = "Top";
    cmdAddNewItem.click = [this] { addItem(); };
    cmdAddMatrixParent.click = [this] { cmdAddMatrixParent_Click(); };
    std::vector<Item> items = layoutAbove();
    items.push_back(buttons({at(cmdAddNewItem), at(cmdAddMatrixParent), stretch(), at(cmdExit), at(cmdEdit)}));
    setLayout(column(std::move(items)));
    offer("CustomizeForm", [this](const auto& arguments) {
        CustomizeForm(textAt(arguments, 0), flag(arguments, 1), flag(arguments, 2), textAt(arguments, 3));
        return std::string();
    });
}

void ItemEditWizard::CustomizeForm(const std::string& title, bool showAddItem, bool showAddParent, const std::string& mode) {
    customize(title, mode);
    cmdAddNewItem.setVisible(showAddItem);
    cmdAddMatrixParent.setVisible(showAddParent);
}

void ItemEditWizard::cmdAddMatrixParent_Click() {
    guarded({kTag, "cmdAddMatrixParent_Click"}, [this] {
        AddNewParent();
        requery("SKU");
    });
}

frmItemLookupWiz::frmItemLookupWiz(Desk& desk) : ItemEditWizard(desk, "frmItemLookupWiz", "Item Lookup") {
    cmdEdit.setToolTip("Opens the matrix parent of the item.");
    offer("ShowItemLookup",
          [](const auto& arguments) { return ShowItemLookup(static_cast<int>(Value(textAt(arguments, 0)).toInteger())); });
}

void frmItemLookupWiz::choose(const std::string& pair) {
    desk().form<frmItemParent>().UpdateParent(pair);
    requery("SKU");
}

void frmItemLookupWiz::addItem() {
    AddNewItem(kMatrixType, "", "Please input new item SKU", "New Item SKU", false);
}

frmItemMatrixLookupWiz::frmItemMatrixLookupWiz(Desk& desk) : ItemEditWizard(desk, "frmItemMatrixLookupWiz", "Item Matrix Lookup") {
    grdItems.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 22},
                         {.heading = "MatrixSKU", .fixedWidth = true, .characters = 22},
                         {.heading = "Name", .characters = 40}});
}

void frmItemMatrixLookupWiz::choose(const std::string& pair) {
    modMain().doors.CheckSKUs(pair, true);
    requery("SKU");
}

void frmItemMatrixLookupWiz::addItem() {
    guarded({kTag, "cmdAddNewItem_Click"}, [this] {
        AddNewItem(kMatrixType, "", "Please input new item SKU", "New Item SKU", false);
        requery("SKU");
    });
}

frmParentLookup::frmParentLookup(Desk& desk) : ItemWizardForm(desk, "frmParentLookup", kParentLookup) {
    cmdEdit.setCaption("&Select");
    std::vector<Item> items = layoutAbove();
    items.push_back(buttons({stretch(), at(cmdExit), at(cmdEdit)}));
    setLayout(column(std::move(items)));
    offer("CustomizeForm", [this](const auto& arguments) {
        CustomizeForm(textAt(arguments, 0), textAt(arguments, 3));
        return std::string();
    });
    offer("Pair", [this](const auto&) { return pair_; });
}

void frmParentLookup::CustomizeForm(const std::string& title, const std::string& mode) {
    pair_.clear();
    customize(title, mode);
}

void frmParentLookup::choose(const std::string& pair) {
    pair_ = pair;
    unload();
}

} // namespace merchantry::catalog
