#include "catalog/matrixpage.h"

#include "app/takeback.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

enum MatrixColumn { kParent, kMatrix, kCategoryID, kCategory };

} // namespace

MatrixPage::MatrixPage(ItemScreen& screen)
    : ItemPage(screen, "Matrix", 5),
      lblMatrixMessage(screen.form(), "lblMatrixMessage",
                       "You must set Item Type to \"Matrix\" on the General Tab to have these fields available"),
      lblMatrixGroups(screen.form(), "lblMatrixGroups", "Groups"), lblMatrixCategories(screen.form(), "lblMatrixCategories", "Categories"),
      lbxMatrixGroups(screen.form(), "lbxMatrixGroups"), lbxMatrixCategories(screen.form(), "lbxMatrixCategories"),
      cmdAddCategory(screen.form(), "cmdAddCategory", "&Add"), cmdDeleteCatgory(screen.form(), "cmdDeleteCatgory", "&Delete"),
      grdItemMatrix(screen.form(), "grdItemMatrix") {
    grdItemMatrix.setColumns({{.heading = "SKU", .fixedWidth = true},
                              {.heading = "MatrixSKU", .fixedWidth = true},
                              {.heading = "CategoryID", .hidden = true},
                              {.heading = "Categories", .characters = 32}});
    grdItemMatrix.editable = false;
    grdItemMatrix.emptyText = "No categories. Choose a group and one of its categories, then Add.";
    grdItemMatrix.error = answers(this, &MatrixPage::grdItemMatrix_Error);
    cmdDeleteCatgory.isDanger = true;
    lbxMatrixGroups.dropDown = lbxMatrixCategories.dropDown = false;
    lbxMatrixGroups.click = [this] { lbxMatrixGroups_Click(); };
    cmdAddCategory.click = [this] { cmdAddCategory_Click(); };
    cmdDeleteCatgory.click = [this] { cmdDeleteCatgory_Click(); };
}

Item MatrixPage::item() {
    return column({
        row({head(), stretch()}),
        at(lblMatrixMessage),
        row({column({at(lblMatrixGroups), at(lbxMatrixGroups).wide(26).high(4)}),
             column({at(lblMatrixCategories), at(lbxMatrixCategories).wide(26).high(4)}), stretch()}),
        at(grdItemMatrix).stretched(),
        buttons({at(cmdAddCategory), gap(), at(cmdDeleteCatgory), stretch(), at(cmdExit)}),
    });
}

void MatrixPage::loadGroups() {
    fill(lbxMatrixGroups, openList("bsp_ItemGroupDefsLookup"), "GroupName", "GroupID");
}

void MatrixPage::populate() {
    showSKU();
    reloadMatrix();
}

void MatrixPage::release() {
    grdItemMatrix.bind(nullptr);
    closeRows(matrixRows_);
}

void MatrixPage::showFor(bool matrixItem) {
    for (Control* control : std::initializer_list<Control*>{&lbxMatrixGroups, &lbxMatrixCategories, &lblMatrixGroups, &lblMatrixCategories,
                                                            &cmdAddCategory, &cmdDeleteCatgory, &grdItemMatrix})
        control->setVisible(matrixItem);
    lblMatrixMessage.setVisible(!matrixItem);
}

void MatrixPage::reloadMatrix() {
    grdItemMatrix.bind(nullptr);
    matrixRows_ = openUpdatable("bsp_ItemMatrixGrid", itemKey());
    grdItemMatrix.bind(matrixRows_.get());
}

void MatrixPage::lbxMatrixGroups_Click() {
    guarded({kItemsTag, "lbxMatrixGroups_Click"}, [this] {
        const auto categories = openList("bsp_ItemCategorysLookup", {intParameter("GroupID", lbxMatrixGroups.itemData())});
        lbxMatrixCategories.clear();
        for (; !categories->Eof(); categories->MoveNext())
            lbxMatrixCategories.add((*categories)["CategoryName"].text());
        if (lbxMatrixCategories.count() > 0)
            lbxMatrixCategories.setListIndex(0);
    });
}

void MatrixPage::cmdAddCategory_Click() {
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

void MatrixPage::cmdDeleteCatgory_Click() {
    WrittenRows rows({"ItemMatrix", {"SKU", "MatrixSKU", "CategoryID"}},
                     db::Sql("SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'");
    const std::string name = grdItemMatrix.text(grdItemMatrix.row(), kCategory);
    if (grdItemMatrix.removeRow(grdItemMatrix.row()) && rows.compare())
        offerUndo(screen_.undoLine(), {kItemsTag, "cmdDeleteCatgory_Click"}, "Category " + name + " removed.", rows,
                  [this] { reloadMatrix(); });
}

void MatrixPage::grdItemMatrix_Error() {
    desk().message("This entry would invalidate your item matrix! Please check your entry and try again.", kProduct,
                   MessageIcon::Exclamation);
    guarded({kItemsTag, "grdItemMatrix_Error"}, [this] { reloadMatrix(); });
}

} // namespace merchantry::catalog
