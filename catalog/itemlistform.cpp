#include "catalog/itemlistform.h"

#include "app/ADOUtilities.h"
#include "app/modMain.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/text.h"
#include "catalog/codedialog.h"
#include "catalog/frmBulkPrice.h"
#include "catalog/frmItems.h"
#include "catalog/modItemLookup.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <algorithm>
#include <array>

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kPlace = "frmItemList"; // under which all lists of items keep their sort

struct SearchField {
    const char* caption;
    const char* column;
};
constexpr std::array kFields{SearchField{"Parent", "SKU"}, SearchField{"Matrix", "MatrixSKU"}, SearchField{"Description", "Name"},
                             SearchField{"Department", "Department"}};

constexpr std::array<const char*, 3> kSorts{"SKU asc", "MatrixSKU asc", "Name asc"};

std::string condition(const SearchField& field, const std::string& text) {
    return std::string(field.column) + " like '%" + text + "%'";
}

// The filter for a field's caption and a text; empty for no text.
std::string filterFor(const std::string& caption, const std::string& text) {
    if (text.empty())
        return "";
    std::vector<std::string> conditions;
    for (const SearchField& field : kFields)
        if (caption == "All" || caption == field.caption)
            conditions.push_back(condition(field, text));
    return joined(conditions, " or ");
}

} // namespace

ItemListForm::ItemListForm(Desk& desk, const char* name, const char* caption, const char* initGridTag)
    : Form(desk, name, caption), initGridTag_(initGridTag) {
    setIcon("items");
    lblHeading.setCaption(caption);
    grdItems.setColumns({
        {.heading = "SKU", .fixedWidth = true, .characters = 18},
        {.heading = "MatrixSKU", .fixedWidth = true, .characters = 18},
        {.heading = "Name", .characters = 48},
        {.heading = "Department", .hidden = true},
    });
    grdItems.editable = false;
    grdItems.emptyText = "No items match. Change the search, or add an item.";
    cmdAddNew.setVisible(false);
    cmdBulkPrice.setToolTip("Changes the prices of the items listed, as the search has narrowed them.");
    cmdSelect.isDefault = true;
    cmdExit.isCancel = true;

    for (OptionButton* option : {&optAll, &optActive, &optInactive})
        option->click = [this] { reload(); };
    grdItems.click = [this] { grdItems_Click(); };
    grdItems.dblClick = [this] { cmdSelect_Click(); };
    cmdSelect.click = [this] { cmdSelect_Click(); };
    cmdAddNew.click = [this] { cmdAddNew_Click(); };
    cmdBulkPrice.click = [this] { cmdBulkPrice_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch(), at(optAll), at(optActive), at(optInactive)}),
        at(grdItems).high(18).wide(96).stretched(),
        buttons({at(cmdAddNew), at(cmdBulkPrice), stretch(), at(cmdExit), at(cmdSelect)}),
    }));
    offer("SelectSKU", [this](const auto& arguments) {
        return SelectSKU(arguments.empty() ? 0 : Value(arguments[0]).toInteger() == 1 ? 1 : 0);
    });
    offer("Init_Grid", [this](const auto& arguments) {
        Init_Grid(arguments.size() > 0 && arguments[0] == "on", arguments.size() > 1 && arguments[1] == "on");
        return std::string();
    });
    offer("srch_FieldSearch", [this](const auto& arguments) {
        srch_FieldSearch(arguments.size() > 0 ? arguments[0] : "All", arguments.size() > 1 ? arguments[1] : "");
        return std::string();
    });
}

std::string ItemListForm::SelectSKU(int mode) {
    ensureLoaded();
    cmdAddNew.setVisible(mode == 1);
    place_ = {};
    desk().showModal(*this);
    return std::exchange(pair_, "");
}

void ItemListForm::Form_Load() {
    reload();
}

void ItemListForm::Form_Activate() {
    if (activated_)
        return;
    activated_ = true;
    OpenSearch();
    takePlace();
}

// As the list was left: what it shows, its search, its row.
void ItemListForm::takePlace() {
    const ListPlace place = place_;
    if (place.shown != ListPlace::Shown::All)
        (place.shown == ListPlace::Shown::Active ? optActive : optInactive).setValue(true);
    if (!place.text.empty() && search_ != nullptr)
        search_->Search(place.field, place.text);
    standOn(place.pair);
}

void ItemListForm::standOn(const std::string& pair) {
    for (int row = 0; rows_ != nullptr && !pair.empty() && row < rows_->RecordCount(); ++row)
        if (std::string(rows_->cellText(row, 0)) + "|" + std::string(rows_->cellText(row, 1)) == pair)
            return grdItems.setCurrent(row + 1, std::max(0, grdItems.col()));
}

void ItemListForm::Form_Unload(bool& /*cancel*/) {
    guarded({"MR_frmItemLookup", "Form_Unload"}, [this] {
        if (search_ != nullptr)
            search_->Close();
        grdItems.bind(nullptr);
        closeRows(rows_);
    });
}

void ItemListForm::OpenSearch() {
    desk().waitCursor(true);
    search_ = std::make_unique<VelmoraSearch>(desk());
    search_->FieldSearch = calls(this, &ItemListForm::srch_FieldSearch);
    std::vector<std::string> captions{"All"};
    for (const SearchField& field : kFields)
        captions.emplace_back(field.caption);
    search_->Initialise(joined(captions, search_->Delimiter()), *this, grdItems.place().left / kTwipsPerPixel, 0, 3);
    search_->Show();
    desk().yield();
    desk().waitCursor(false);
}

void ItemListForm::reload() {
    desk().waitCursor(true);
    Init_Grid(optAll.value() || optActive.value(), optAll.value() || optInactive.value());
    desk().waitCursor(false);
}

void ItemListForm::Init_Grid(bool activeOnly, bool inactiveOnly) {
    guarded({initGridTag_, "Init_Grid"}, [&] {
        if (activeOnly && inactiveOnly)
            loadGrid("sp_GetAllItems 1, 0");
        else if (activeOnly)
            loadGrid("sp_GetAllItems 1, 1");
        else if (inactiveOnly)
            loadGrid("sp_GetAllItems 0, 0");
    });
}

void ItemListForm::loadGrid(const Sql& command) {
    grdItems.bind(nullptr);
    closeRows(rows_);
    rows_ = openDirect(command, db::CursorType::Static, db::LockType::ReadOnly);
    const std::string sort = desk().remembered(kPlace, "sort");
    if (std::find(kSorts.begin(), kSorts.end(), sort) != kSorts.end())
        rows_->setSort(sort);
    const AtEnd listed([this] { shown(); });
    filter_.reapply(*rows_);
}

// After the rows or their filter changed.
void ItemListForm::shown() {
    grdItems.bind(rows_.get());
    cmdSelect.setEnabled(rows_->RecordCount() > 0);
    const int count = rows_->RecordCount();
    grdItems.setStatusText(filter_.words(count, counted(count, "item")));
}

void ItemListForm::srch_FieldSearch(const std::string& field, const std::string& text) {
    guarded({.tag = initGridTag_, .procedure = "srch_FieldSearch", .plain = "The search could not be made."}, [&] {
        place_.field = field;
        place_.text = text;
        const AtEnd listed([this] {
            if (rows_ != nullptr) // the list could be loaded
                shown();
        });
        filter_.apply(rows_.get(), filterFor(field, text));
    });
}

void ItemListForm::grdItems_Click() {
    if (rows_ == nullptr || grdItems.row() != 1 || grdItems.col() >= static_cast<int>(kSorts.size()))
        return;
    guarded({initGridTag_, "grdItems_Click"}, [this] {
        const char* const sort = kSorts[static_cast<std::size_t>(grdItems.col())];
        rows_->setSort(sort);
        desk().remember(kPlace, "sort", sort);
    });
}

void ItemListForm::cmdSelect_Click() {
    if (!grdItems.selected())
        return;
    place_.pair = itemPairAt(grdItems, grdItems.row());
    place_.shown = optActive.value() ? ListPlace::Shown::Active : optInactive.value() ? ListPlace::Shown::Inactive : ListPlace::Shown::All;
    choose(place_.pair);
}

void ItemListForm::cmdAddNew_Click() {
    guarded({"MR_frmItemLookup", "AddNew_Click"}, [this] {
        std::string matrixSku = desk().form<frmSKU>().GetSKU();
        std::string sku = desk().form<frmMatrixSKU>().GetMatrixSKU(matrixSku);
        if (sku.empty())
            return;
        if (matrixSku.empty())
            matrixSku = sku;
        cleanCodes(sku, matrixSku);
        if (isRefused(sku, matrixSku) || ItemExists(sku, matrixSku, true))
            return;
        if (makeItem(sku, matrixSku))
            added(sku + "|" + matrixSku);
    });
}

// For the items that the list shows, in its order.
void ItemListForm::cmdBulkPrice_Click() {
    guarded({"MR_frmItemLookup", "cmdBulkPrice_Click"}, [this] {
        std::vector<frmBulkPrice::ListedItem> items;
        for (int row = 0; rows_ != nullptr && row < rows_->RecordCount(); ++row)
            items.push_back({rows_->cell(row, kParentColumn).toText(), rows_->cell(row, kMatrixColumn).toText(),
                             rows_->cell(row, kNameColumn).toText()});
        desk().form<frmBulkPrice>().ChangePrices(std::move(items));
    });
}

frmItemList::frmItemList(Desk& desk) : ItemListForm(desk, "frmItemList", "Item List", "MR_frmItemLookup") {
    offer("ShowFormAddNewVisible", [this](const auto&) {
        ShowFormAddNewVisible();
        return std::string();
    });
}

void frmItemList::ShowFormAddNewVisible() {
    const bool open = loaded();
    if (const auto* item = desk().existing<frmItems>())
        place_ = item->listPlace;
    ensureLoaded();
    if (open) // behind the item screen: what was added, renamed or deleted there
        reload();
    cmdAddNew.setVisible(true);
    desk().show(*this);
}

void frmItemList::choose(const std::string& pair) {
    desk().form<frmItems>().listPlace = place_;
    modMain().doors.CheckSKUs(pair, false);
    unload();
}

void frmItemList::added(const std::string& pair) {
    choose(pair);
}

frmItemLookup::frmItemLookup(Desk& desk) : ItemListForm(desk, "frmItemLookup", "Item Lookup", "frmItemLookup") {}

void frmItemLookup::choose(const std::string& pair) {
    if (cmdAddNew.visible()) // not for a screen that asks for another item
        desk().form<frmItems>().listPlace = place_;
    pair_ = pair;
    unload();
}

void frmItemLookup::cleanCodes(std::string& sku, std::string& matrixSku) const {
    sku = CleanSQLValue(sku);
    matrixSku = CleanSQLValue(matrixSku);
}

void frmItemLookup::added(const std::string& pair) {
    choose(pair);
}

} // namespace merchantry::catalog
