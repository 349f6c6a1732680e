#include "catalog/frmItems.h"

#include "app/db/ado/ahead.h"
#include "base/text.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <vector>

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

constexpr int kMatrix = 2;
constexpr int kSplit = 3;
constexpr int kSuppliersTab = 2;

// All that Populate_FormData opens; of the first tier its price and, twice, its grid: choosing the tier and filling the grid both read it.
void readItemAhead(db::Ahead& ahead) {
    const auto key = itemKey();
    const auto ofFirstTier = itemKeyAnd(intParameter("Tier", 1));
    ahead.select(itemCost());
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier);
    ahead.call("bsp_ItemStockLookup", key);
    ahead.call("bsp_SupplierMatrixDetailLookup", key, true);
    ahead.select(supplierChoices());
    ahead.select(tierChoices());
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier, true);
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier, true);
    ahead.call("bsp_SalesGrid", key);
    ahead.call("bsp_SubsGrid", key, true);
    ahead.call("bsp_ItemMatrixGrid", key, true);
    ahead.call("bsp_SalesMessagesLookup",
               {intParameter("id", static_cast<int>((*modMain().ItemRecordset)["SalesMsgID"].Value().toInteger()))});
    ahead.select(itemSplit());
    ahead.read();
}

} // namespace

frmItems::frmItems(Desk& desk) : Form(desk, "frmItems", "Item Maintenance") {
    setIcon("item");
    int index = 0;
    general_.cmdExit.click = [this] { cmdExit_Click(0); };
    for (ItemPage* page : pages_) {
        ++index;
        page->cmdExit.click = [this, index] { cmdExit_Click(index); };
    }
    tabItems.change = calls(this, &frmItems::tabItems_Change);
    panel.moved = [this] { Populate_FormData(); };
    onKey("F9", [this] { panel.toggle(); });
    onKey("Alt+Up", [this] { pressArrow(true); });
    onKey("Alt+Down", [this] { pressArrow(false); });
    std::vector<Item> items{general_.item(panel.cmdPanel)};
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

void frmItems::pressArrow(bool up) {
    for (ItemPage* page : pages_)
        page->pressArrow(up);
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

void frmItems::Init_ItemListBoxes() {
    guarded({kItemsTag, "Init_ItemListBoxes"}, [this] {
        db::Ahead ahead(*modMain().Conn);
        ahead.call("bsp_ItemTypesLookup", {});
        ahead.call("bsp_DepartmentsLookup", {});
        ahead.call("bsp_TaxClassLookup", {});
        ahead.call("bsp_ItemGroupDefsLookup", {});
        ahead.select(splitParents());
        ahead.read();
        general_.loadLists();
        matrix_.loadGroups();
        misc_.loadParents();
    });
}

bool frmItems::FetchItemData() {
    bool found = false;
    guarded({kItemsTag, "FetchItemData"}, [&] {
        modMain().ItemRecordset = openUpdatable("bsp_ItemLookup", itemKey());
        found = !modMain().ItemRecordset->Eof();
    });
    return found;
}

void frmItems::Populate_FormData() {
    general_.forgetStock();
    const bool whole = guarded({kItemsTag, "Populate_FormData"}, [this] {
        db::Ahead ahead(*modMain().Conn);
        readItemAhead(ahead);
        general_.populate();
        for (ItemPage* page : pages_)
            page->populate();
        filled_ = true;
    });
    if (!whole)
        desk().status("The item could not be read to its end. If it has a cost but no price, give it a price and open it again.");
    panel.refresh();
}

void frmItems::nameChanged(const std::string& typed) {
    const std::string name(trimmed(typed));
    for (ItemPage* page : pages_)
        page->showName(name);
    setCaption(name.empty() ? "Item Maintenance" : "Item Maintenance - " + name);
}

// On the other pages, as it stands in the field.
void frmItems::showRetailPrice() {
    prices_.showRetailPrice(retailPrice());
    suppliers_.showRetailPrice(retailPrice());
}

void frmItems::retailPriceWritten() {
    showRetailPrice();
    prices_.reloadAtPosition();
}

void frmItems::typeChanged(int type) {
    misc_.showFor(type == kSplit);
    matrix_.showFor(type == kMatrix);
}

void frmItems::itemDeleted() {
    deleted_ = true;
    unload();
}

// All that this screen shows of the item's prices, as the store has them.
void frmItems::pricesPutBack() {
    general_.showPrice();
    showRetailPrice();
    prices_.reloadShown();
    panel.pricesChanged();
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
