#pragma once

#include "app/db/ado/recordset.h"
#include "app/takeback.h"
#include "catalog/itempage.h"
#include "ui/list.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::catalog {

// The Price Matrix page of frmItems: the item's prices by tier and quantity. A cell is saved as it is left, and the whole item read again.
class PricesPage : public ItemPage {
public:
    explicit PricesPage(ItemScreen& screen);

    ui::Item item() override;
    void populate() override;
    void release() override;
    void showRetailPrice(const std::string& price);
    // The prices of the tier that is selected, by its name or by its position. Throw DbError.
    void reloadShown();
    void reloadAtPosition();
    // Compares the tier's prices, and offers to take back what the procedure wrote.
    void offerPriceUndo(app::WrittenRows& rows, const std::string& procedure, int tier);

private:
    void shapeGrid();
    void showSale();
    void lbxTier_Click();
    int selectedTier() const;
    void reloadPrices(int tier);
    void cmdAddPriceMatrixItem_Click();
    void grdPriceMatrix_BeforeEdit(int row, int column, bool& cancel);
    void grdPriceMatrix_AfterEdit(int row, int column);
    void takeEditedPrice(int row, int column);
    void readItemAgain(const std::string& quantity, int column);
    void cmdPriceDelete_Click();
    std::string breakNamed(int tier, const std::string& quantity) const;
    void grdPriceMatrix_Error();

    ui::Label lblRetailUnitPriceAmt;
    ui::Label lblPriceCostAmt;
    ui::Label lblCurCostAmt; // stays blank
    ui::Label lblPriceSaleAmt;
    ui::ListBox lbxTier;
    ui::Grid grdPriceMatrix;
    ui::Button cmdAddPriceMatrixItem;
    ui::Button cmdPriceDelete;
    ui::Button cmdSales;

    std::vector<std::pair<std::string, std::string>> tiers_; // name and id
    ValueBefore LastPrice;
    std::optional<app::WrittenRows> editedPrices_; // of the tier, before the edit under way
    db::RecordsetPtr priceRows_;
};

} // namespace merchantry::catalog
