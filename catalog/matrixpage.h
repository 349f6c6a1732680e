#pragma once

#include "app/db/ado/recordset.h"
#include "catalog/itempage.h"
#include "ui/list.h"

namespace merchantry::catalog {

// The Item Matrix page of frmItems: the categories that a matrix item has.
class MatrixPage : public ItemPage {
public:
    explicit MatrixPage(ItemScreen& screen);

    ui::Item item() override;
    // The groups to choose from, once as the screen opens.
    void loadGroups();
    void populate() override;
    void release() override;
    // Everything of it is hidden for an item of another type, which a message tells.
    void showFor(bool matrixItem);

private:
    void reloadMatrix();
    void lbxMatrixGroups_Click();
    void cmdAddCategory_Click();
    void cmdDeleteCatgory_Click();
    void grdItemMatrix_Error();

    ui::Label lblMatrixMessage;
    ui::Label lblMatrixGroups;
    ui::Label lblMatrixCategories;
    ui::ListBox lbxMatrixGroups;
    ui::ListBox lbxMatrixCategories;
    ui::Button cmdAddCategory;
    ui::Button cmdDeleteCatgory;
    ui::Grid grdItemMatrix;

    db::RecordsetPtr matrixRows_;
};

} // namespace merchantry::catalog
