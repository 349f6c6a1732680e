#pragma once

#include "base/currency.h"
#include "purchasing/frmPOPickItems.h"
#include "purchasing/supplierframe.h"
#include "purchasing/supplierprice.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/undoline.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// One order with its supplier and lines: made, changed or only looked at. The lines are held in memory, each with what happened to it, and
// written together by OK and by Print. Set the members, show it modally, read DialogResult,
// unload it.
class frmPurchaseOrders_Edit : public ui::Form {
public:
    explicit frmPurchaseOrders_Edit(ui::Desk& desk);

    std::int32_t PONumber = -1;  // kNewOrder: the order is made here
    std::int16_t SupplierID = 0; // of a new order; otherwise filled from the order
    bool ReadOnly = false;
    bool DialogResult = false; // left by OK

private:
    struct Line {
        std::string Name;
        std::string SKU;
        std::string MatrixSKU;
        std::string PartNo;
        std::int16_t OpenQty = 0;
        std::int16_t Qty = 0;
        Currency Cost; // of one piece
        bool InDatabase = false;
        bool Changed = false;
        bool Deleted = false;
        bool Memorize = false; // remember cost and part number for the supplier
    };

    void Form_Load() override;
    void Form_Activate() override;

    void formatGrid();
    void ShowSupplierInfo();
    void LoadData();
    void showHeading();
    void fillGrid();
    void showRow(int row, const Line& line);
    void showTotal();
    Currency extension(const Line& line) const;
    Currency total() const;
    Line* lineAt(int row);

    void cmdAddItem_Click();
    Line lineFor(const ItemPick& item) const;
    void cmdDeleteItem_Click();
    std::string putLineBack(std::size_t index);
    void grdPOItems_BeforeEdit(int row, int column, bool& cancel);
    void grdPOItems_AfterEdit(int row, int column);
    bool takeCell(Line& line, int column, const std::string& text) const;
    void cmdOK_Click();
    void SavePO();
    void writeOrder();
    bool saveLine(const Line& line, std::int32_t poid) const;
    void closeIfDone(std::int32_t number) const;
    void MemorizePO();
    void cmdPrint_Click();
    void cmdViewHist_Click();

    ui::Label lblHeading{*this, "lblHeading"};
    ui::Label lblTotal{*this, "lblTotal"};
    SupplierFrame supplier_{*this};
    ui::Grid grdPOItems{*this, "grdPOItems"};
    ui::Button cmdAddItem{*this, "cmdAddItem", "&Add Items"};
    ui::Button cmdDeleteItem{*this, "cmdDeleteItem", "&Delete Item"};
    ui::Button cmdViewHist{*this, "cmdViewHist", "Item &History"};
    ui::Button cmdPrint{*this, "cmdPrint", "&Print"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};
    ui::UndoLine undoLine{*this};

    std::vector<Line> lines_;
    std::string supplierName_;
    SupplierPrice price_;
    std::string oldText_;  // of the cell that is being edited
    bool gaveUp_ = false;  // the last save met another writer, and the user did not wait for it, or lost the connection: it can be repeated
    bool unsaved_ = false; // something was changed since the last save
    bool activated_ = false;
};

} // namespace merchantry::purchasing
