#include "catalog/frmItems.h"

namespace merchantry::catalog {

using namespace ui;

// How the pages of frmItems stand on the window.

Item frmItems::generalPage() {
    return column({
        row({title(lblSKUVal), at(panel.cmdPanel), stretch(), figure("Weighted Cost:", lblCostAmt), figure("Committed:", lblCommittedAmt),
             figure("Last Sold Date:", lblLastSoldDateVal)}),
        row({
                fields({
                           field("&Name:", txtName),
                           field("T&ype:", lbxType),
                           field("D&epartment:", lbxDepartment),
                           field("Tax &Class:", lbxTaxClass),
                           field("&Price:", txtPriceAmt),
                           field("In Stock:", txtStockAmt, {at(cmdAdjust)}),
                           field("Reorder Qty:", txtReorder),
                           field("Reorder @:", txtRestock),
                       })
                    .stretched(3),
                box("Options", column({at(cbxActive), at(cbxSerialed), at(cbxFoodStamps), gap(),
                                       row({at(lblProfitMargin), stretch(), at(lblProfitPercent)}), stretch()}))
                    .stretched(1),
            })
            .stretched(),
        buttons({at(cmdDeleteItem), stretch(), note("Every field is saved as you leave it"), at(cmdExit0)}),
    });
}

Item frmItems::suppliersPage() {
    return column({
        row({column({title(lblSuppliersPName), at(lblSuppliersSKU)}), stretch(), figure("Retail Price:", lblSupRetailPrice)}),
        row({at(grdSuppliers).stretched(), column({at(imgArrowUp), at(imgArrowDown), stretch()})}).stretched(),
        buttons({at(cmdAddNewSupplier), gap(), at(cmdDeleteSupplier), stretch(), at(cmdExit1)}),
    });
}

Item frmItems::pricePage() {
    return column({
        row({column({title(lblPricePName), at(lblPriceSKU)}), stretch()}),
        row({fields({field("&Tier:", lbxTier).wide(12)}), gap(), stretch(), figure("Retail Unit Price:", lblRetailUnitPriceAmt),
             figure("Weighted Cost:", lblPriceCostAmt), figure("Weighted Cost (Current):", lblCurCostAmt),
             figure("Sale Price:", lblPriceSaleAmt)}),
        at(grdPriceMatrix).stretched(),
        buttons({at(cmdAddPriceMatrixItem), at(cmdSales), gap(), at(cmdPriceDelete), stretch(), at(cmdExit2)}),
    });
}

Item frmItems::substitutesPage() {
    return column({
        row({column({title(lblSubsPName), at(lblSubsSKU)}), stretch()}),
        row({at(grdSubs).stretched(), column({at(imgSubUp), at(imgSubDown), stretch()})}).stretched(),
        buttons({at(cmdSubsAddNew), gap(), at(cmdSubsDelete), stretch(), at(cmdExit3)}),
    });
}

Item frmItems::notesPage() {
    return column({
        row({column({title(lblNotesPName), at(lblNotesSKU)}), stretch()}),
        at(txtNotes).high(12).stretched(),
        buttons({stretch(), note("Notes are saved as you leave them"), at(cmdExit4)}),
    });
}

Item frmItems::matrixPage() {
    return column({
        row({column({title(lblMatrixPName), at(lblMatrixSKU)}), stretch()}),
        at(lblMatrixMessage),
        row({column({at(lblMatrixGroups), at(lbxMatrixGroups).wide(26).high(4)}),
             column({at(lblMatrixCategories), at(lbxMatrixCategories).wide(26).high(4)}), stretch()}),
        at(grdItemMatrix).stretched(),
        buttons({at(cmdAddCategory), gap(), at(cmdDeleteCatgory), stretch(), at(cmdExit5)}),
    });
}

Item frmItems::miscPage() {
    return column({
        row({column({title(lblMiscPName), at(lblMiscSKU)}), stretch()}),
        box("At the sale", fields({
                               field("Tag Along Item:", lblTagAlongSKU, {at(cmdAddTagAlong), gap(), at(cmdRemoveTagAlong)}),
                               field("Tag Along &Quantity:", txtTagAlongQty).wide(10),
                               field("Sales Message:", lblSalesMsg),
                           })),
        group(fraSplit, column({row({at(lblMiscItemSplit0).wide(10), at(lbxSplitParentSKU).stretched(), at(lblMiscItemSplit1),
                                     at(lbxSplitParentMatrixSKU).stretched()}),
                                row({at(lblMiscItemSplit2).wide(10), at(txtSplitQty).wide(10), stretch(), at(cmdUpdateSplit)})})),
        stretch(),
        buttons({stretch(), at(cmdExit6)}),
    });
}

} // namespace merchantry::catalog
