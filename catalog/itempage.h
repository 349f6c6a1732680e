#pragma once

#include "catalog/itemscreen.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/textbox.h"
#include "ui/undoline.h"

#include <string>

namespace merchantry::catalog {

// What the pages of the item's screen may ask of it and tell it. Which item is open stands in modMain.
class ItemScreen {
public:
    virtual ui::Form& form() = 0;
    virtual ui::UndoLine& undoLine() = 0;
    // Whether the screen stands for the user: what changes before is not the user's doing.
    virtual bool populated() const = 0;
    // Whether all pages were filled: before that, an empty box says nothing of the item.
    virtual bool filled() const = 0;
    // As the first page shows them now.
    virtual std::string retailPrice() const = 0;
    virtual std::string cost() const = 0;
    // The whole item is to be read again.
    virtual void readAgain() = 0;
    // Prices were written, by a page that shows them already.
    virtual void pricesWritten() = 0;
    // Prices were put back: every page that shows one is to read it.
    virtual void pricesPutBack() = 0;
    // The retail price was written by the first page, which shows it.
    virtual void retailPriceWritten() = 0;
    // Offers to take back what the procedure wrote of the tier's prices.
    virtual void offerPriceUndo(app::WrittenRows& rows, const std::string& procedure, int tier) = 0;
    virtual void nameChanged(const std::string& typed) = 0;
    // Pages that only one type of item has are shown or hidden.
    virtual void typeChanged(int type) = 0;
    // The item is gone from the store, and the screen goes.
    virtual void itemDeleted() = 0;

protected:
    ~ItemScreen() = default;
};

// The population ended before this box, and nobody has typed in it: writing it back would empty what the store holds.
inline bool neverFilled(const ItemScreen& screen, const ui::TextBox& box) {
    return !screen.filled() && box.text().empty();
}

// A page of the item's screen behind the first one: headed by the item's name and SKU, with an exit of its own. A member of the screen,
// which populates it in the order of the pages.
class ItemPage {
public:
    virtual ~ItemPage() = default;
    ItemPage(const ItemPage&) = delete;
    ItemPage& operator=(const ItemPage&) = delete;

    // How the page stands on the window.
    virtual ui::Item item() = 0;
    // Shows what the store has of the current item. Throws DbError.
    virtual void populate() = 0;
    // Lets go of the rows, before the screen is left.
    virtual void release() {}
    // Alt and an arrow key, on the page that is turned up.
    virtual void pressArrow(bool /*up*/) {}
    void showName(const std::string& name) { lblPName.setCaption(name); }

    ui::Button cmdExit;

protected:
    // The name as it stands in those of the labels ("Notes" in "lblNotesPName"), and the exit's number.
    ItemPage(ItemScreen& screen, const std::string& name, int exit);

    ui::Desk& desk() const { return screen_.form().desk(); }
    void showSKU();
    ui::Item head();

    ItemScreen& screen_;

private:
    ui::Label lblPName;
    ui::Label lblSKU;
};

// A box whose text is selected as a whole when the user enters it.
void selectsAll(ui::TextBox& box);
// The arrow of a page, if that page is turned up; the focus stays where it is.
void pressIfShown(ui::Image& arrow);

} // namespace merchantry::catalog
