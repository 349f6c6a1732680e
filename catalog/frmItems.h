#pragma once

#include "catalog/generalpage.h"
#include "catalog/itempanel.h"
#include "catalog/listplace.h"
#include "catalog/matrixpage.h"
#include "catalog/miscpage.h"
#include "catalog/notespage.h"
#include "catalog/pricespage.h"
#include "catalog/substitutespage.h"
#include "catalog/supplierspage.h"
#include "ui/tabset.h"

#include <array>
#include <string>

namespace merchantry::catalog {

// One item, on seven pages, each of a class of its own. There is no Save: every field is written when the user leaves or clicks it.
class frmItems : public ui::Form, private ItemScreen {
public:
    explicit frmItems(ui::Desk& desk);

    // Opens the item of the pair "SKU|MatrixSKU"; does nothing for a text that is not two parts. The only way in.
    void CheckSKUs(const std::string& SKUPair, bool Modal);
    // Set by the list that the item was chosen from; the list that opens on leaving takes it up.
    ListPlace listPlace;

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void reopen(const std::string& SKUPair, bool modal);

    // Opening and population, in their order.
    void Init_ItemListBoxes();
    bool FetchItemData();
    void Populate_FormData();

    // What the pages ask.
    ui::Form& form() override { return *this; }
    ui::UndoLine& undoLine() override { return undoLine_; }
    bool populated() const override { return Loaded; }
    bool filled() const override { return filled_; }
    std::string retailPrice() const override { return general_.retailPrice(); }
    std::string cost() const override { return general_.cost(); }
    void readAgain() override { Populate_FormData(); }
    void pricesWritten() override { panel.pricesChanged(); }
    void pricesPutBack() override;
    void retailPriceWritten() override;
    void offerPriceUndo(app::WrittenRows& rows, const std::string& procedure, int tier) override {
        prices_.offerPriceUndo(rows, procedure, tier);
    }
    void nameChanged(const std::string& typed) override;
    void typeChanged(int type) override;
    void itemDeleted() override;

    void showRetailPrice();
    void cmdExit_Click(int index);
    void tabItems_Change(int left);

    void pressArrow(bool up);

    ui::TabSet tabItems{*this, "tabItems", {"General", "Suppliers", "Price Matrix", "Substitutes", "Notes", "Item Matrix", "Misc"}};

    GeneralPage general_{*this};
    SuppliersPage suppliers_{*this};
    PricesPage prices_{*this};
    SubstitutesPage substitutes_{*this};
    NotesPage notes_{*this};
    MatrixPage matrix_{*this};
    MiscPage misc_{*this};
    const std::array<ItemPage*, 6> pages_{&suppliers_, &prices_, &substitutes_, &notes_, &matrix_, &misc_};

    ItemPanel panel{*this};
    ui::UndoLine undoLine_{*this}; // of what the pages delete, and of prices

    bool Loaded = false;  // the screen has been populated
    bool Loading = false; // Form_Load is running
    bool Modal = false;
    bool filled_ = false;  // a population has come to its end
    bool deleted_ = false; // the item is gone from the store: nothing of it is to be saved
    int CurrentTab = 1;    // from 1
};

} // namespace merchantry::catalog
