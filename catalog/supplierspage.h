#pragma once

#include "app/db/ado/recordset.h"
#include "catalog/itempage.h"
#include "catalog/suppliermatrix.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::catalog {

// The Suppliers page of frmItems: its rows are held in memory and written when the screen is left.
class SuppliersPage : public ItemPage {
public:
    explicit SuppliersPage(ItemScreen& screen);

    ui::Item item() override;
    void populate() override;
    void release() override;
    void pressArrow(bool up) override;
    void setFocus();
    void showRetailPrice(const std::string& price);
    // False when the rows cannot be saved as they are, which a message told.
    bool ValidateSupplierMatrix();
    bool SaveSupplierMatrix(); // false when the store refused it

private:
    void fillSupplierChoices();
    void takeSupplier(db::Recordset& rows);
    void PopulateSupplierRow(int GridRow, int Index);
    void showSupplierCount();
    int supplierAt(int gridRow) const;
    void grdSuppliers_BeforeEdit(int row, int column, bool& cancel);
    void grdSuppliers_AfterEdit(int row, int column);
    void warnOfCost(int row);
    void takeSupplierCell(SupplierRow& entry, int row, int column);
    void putCostBack(SupplierRow& entry, int row, const std::string& sentence);
    void putMinOrderBack(SupplierRow& entry, int row, const std::string& sentence);
    void cmdAddNewSupplier_Click();
    void cmdDeleteSupplier_Click();
    void showSupplierRows();
    std::string putSupplierBack(int index, int reading);
    void moveSupplier(int step);
    void grdSuppliers_Error();
    void deleteSupplier(SupplierRow& row);
    void writeSupplier(SupplierRow& row, const std::optional<Currency>& parked);

    ui::Label lblSupRetailPrice;
    ui::Grid grdSuppliers;
    ui::Button cmdAddNewSupplier;
    ui::Button cmdDeleteSupplier;
    ui::Image imgArrowUp;
    ui::Image imgArrowDown;

    std::vector<SupplierRow> suppliers_; // as shown and as deleted; the hidden column of grdSuppliers holds positions in it
    int supplierReadings_ = 0;
    bool suppliersDropped_ = false; // changes of them were lost when the item was read again, and nothing was changed since
    int DefaultSupplier = -1;       // of a new row; -1 when the store has no supplier at all
    ValueBefore LastCost;
    ValueBefore LastMinOrder;
    db::RecordsetPtr supplierRows_;
};

} // namespace merchantry::catalog
