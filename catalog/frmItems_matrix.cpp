#include "catalog/frmItems.h"
#include "catalog/itemscreen.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

constexpr int kCategory = 3; // the column of names

} // namespace

// The Item Matrix page of frmItems: the categories that a matrix item has.

void frmItems::wireMatrix() {
    grdItemMatrix.setColumns({{.heading = "SKU", .fixedWidth = true},
                              {.heading = "MatrixSKU", .fixedWidth = true},
                              {.heading = "CategoryID", .hidden = true},
                              {.heading = "Categories", .characters = 32}});
    grdItemMatrix.editable = false;
    grdItemMatrix.emptyText = "No categories. Choose a group and one of its categories, then Add.";
    grdItemMatrix.error = [this](const std::string&, bool& handled) {
        handled = true;
        grdItemMatrix_Error();
    };
    lbxMatrixGroups.dropDown = lbxMatrixCategories.dropDown = false;
    lbxMatrixGroups.click = [this] { lbxMatrixGroups_Click(); };
    cmdAddCategory.click = [this] { cmdAddCategory_Click(); };
    cmdDeleteCatgory.click = [this] { cmdDeleteCatgory_Click(); };
}

void frmItems::populateMatrix() {
    lblMatrixSKU.setCaption(modMain().CurrentSKU);
    reloadMatrix();
}

void frmItems::reloadMatrix() {
    grdItemMatrix.bind(nullptr);
    matrixRows_ = openUpdatable("bsp_ItemMatrixGrid", itemKey());
    grdItemMatrix.bind(matrixRows_.get());
}

void frmItems::lbxMatrixGroups_Click() {
    guarded({kItemsTag, "lbxMatrixGroups_Click"}, [this] {
        const auto categories = openList("bsp_ItemCategorysLookup", {intParameter("GroupID", lbxMatrixGroups.itemData())});
        lbxMatrixCategories.clear();
        for (; !categories->Eof(); categories->MoveNext())
            lbxMatrixCategories.add((*categories)["CategoryName"].text());
        if (lbxMatrixCategories.count() > 0)
            lbxMatrixCategories.setListIndex(0);
    });
}

void frmItems::cmdAddCategory_Click() {
    guarded({kItemsTag, "cmdAddCategory_Click"}, [this] {
        if (lbxMatrixCategories.listIndex() < 0)
            return;
        const auto known = openList("bsp_CategoryIDLookup", {textParameter("categname", 255, lbxMatrixCategories.text()),
                                                             intParameter("groupid", lbxMatrixGroups.itemData())});
        if (known->Eof() || matrixRows_ == nullptr)
            return;
        // The name belongs to the category's own row; it is read again with the rest.
        if (grdItemMatrix.addRow({modMain().CurrentSKU, modMain().CurrentMatrixSKU, (*known)["CategoryID"].text()}))
            reloadMatrix();
    });
}

void frmItems::cmdDeleteCatgory_Click() {
    WrittenRows rows({"ItemMatrix", {"SKU", "MatrixSKU", "CategoryID"}},
                     db::Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    const std::string name = grdItemMatrix.text(grdItemMatrix.row(), kCategory);
    if (grdItemMatrix.removeRow(grdItemMatrix.row()) && rows.compare())
        offerUndo(undoLine, {kItemsTag, "cmdDeleteCatgory_Click"}, "Category " + name + " removed.", rows, [this] { reloadMatrix(); });
}

void frmItems::grdItemMatrix_Error() {
    desk().message("This entry would invalidate your item matrix! Please check your entry and try again.", kProduct,
                   MessageIcon::Exclamation);
    guarded({kItemsTag, "grdItemMatrix_Error"}, [this] { reloadMatrix(); });
}

} // namespace merchantry::catalog
