#include "catalog/frmItemMatrix.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::CommandType;
using db::CursorType;
using db::LockType;

namespace {

// Some procedures report under a name with a letter too many.
constexpr const char* kTag = "MR_frmItemMatrix";
constexpr const char* kOtherTag = "MR_frmItemsMatrix";
enum GroupColumn { kGroupId, kGroupName };
enum CategoryColumn { kGroupOfCategory, kCategoryName, kCategoryId };

} // namespace

frmItemMatrix::frmItemMatrix(Desk& desk) : Form(desk, "frmItemMatrix", "Item Matrix Configuration") {
    setIcon("items");
    lbxMatrixGroups.dropDown = false;
    grdMatrixGroups.setColumns({{.heading = "GroupID", .hidden = true}, {.heading = "Group", .characters = 40}});
    grdMatrixGroups.emptyText = "No groups yet. Add makes the first, such as Size or Colour.";
    grdMatrixCategs.setColumns(
        {{.heading = "GroupID", .hidden = true}, {.heading = "Category", .characters = 40}, {.heading = "CategoryID", .hidden = true}});
    grdMatrixCategs.emptyText = "No categories in this group yet.";
    cmdDeleteGroup.isDanger = cmdDeleteCategory.isDanger = true;
    cmdExit.isDefault = true;
    cmdExit.isCancel = true;

    tabItemMatrix.change = [this](int) { selectGroup(); };
    cmdAddGroup.click = [this] { cmdAddGroup_Click(); };
    cmdDeleteGroup.click = [this] { cmdDeleteGroup_Click(); };
    grdMatrixGroups.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kGroupId; };
    grdMatrixGroups.afterEdit = calls(this, &frmItemMatrix::grdMatrixGroups_AfterEdit);
    grdMatrixGroups.error = answers(this, &frmItemMatrix::grdMatrixGroups_Error);
    lbxMatrixGroups.click = [this] { loadCategories(); };
    cmdAddCategory.click = [this] { cmdAddCategory_Click(); };
    cmdDeleteCategory.click = [this] { cmdDeleteCategory_Click(); };
    grdMatrixCategs.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kCategoryName; };
    grdMatrixCategs.afterEdit = calls(this, &frmItemMatrix::grdMatrixCategs_AfterEdit);
    grdMatrixCategs.error = answers(this, &frmItemMatrix::grdMatrixCategs_Error);
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        pages(tabItemMatrix,
              {
                  column({
                      at(lblGroupsNote),
                      at(grdMatrixGroups).high(10).stretched(),
                      row({at(cmdAddGroup), gap(), at(cmdDeleteGroup), stretch()}),
                  }),
                  column({
                      at(lblCategoriesNote),
                      row({
                              column({at(lblMatrixGroups), at(lbxMatrixGroups).wide(24).stretched()}),
                              at(grdMatrixCategs).high(10).stretched(),
                          })
                          .stretched(),
                      row({at(cmdAddCategory), gap(), at(cmdDeleteCategory), stretch()}),
                  }),
              }),
        buttons({stretch(), note("Every cell is saved as you leave it"), at(cmdExit)}),
    }));
}

void frmItemMatrix::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        loadGroups();
        selectGroup();
    });
}

void frmItemMatrix::loadGroups() {
    grdMatrixGroups.bind(nullptr);
    groups_ = openBroker("bsp_ItemMatrixGroupDefs", CommandType::StoredProcedure, CursorType::Dynamic, LockType::Optimistic);
    grdMatrixGroups.bind(groups_.get());
}

// The list of groups anew, on the group that was chosen or on the first.
void frmItemMatrix::selectGroup() {
    guarded({kOtherTag, "grdMatrixGroups_Click"}, [this] {
        const int chosen = lbxMatrixGroups.listIndex() < 0 ? 0 : lbxMatrixGroups.itemData();
        const auto groups =
            openBroker("bsp_ItemGroupDefsLookup", CommandType::StoredProcedure, CursorType::ForwardOnly, LockType::ReadOnly);
        lbxMatrixGroups.clear();
        int position = 0;
        for (; !groups->Eof(); groups->MoveNext()) {
            const int id = static_cast<int>((*groups)["GroupID"].Value().toInteger());
            if (id == chosen)
                position = lbxMatrixGroups.count();
            lbxMatrixGroups.add((*groups)["GroupName"].text(), id);
        }
        if (lbxMatrixGroups.count() > 0)
            lbxMatrixGroups.setListIndex(position);
        else
            grdMatrixCategs.bind(nullptr);
    });
}

void frmItemMatrix::loadCategories() {
    guarded({kOtherTag, "grdMatrixGroups_Click"}, [this] {
        grdMatrixCategs.bind(nullptr);
        categories_.reset(); // those of another group
        categories_ = openBroker("bsp_ItemCategorysLookup", CommandType::StoredProcedure, CursorType::Dynamic, LockType::Optimistic,
                                 {intParameter("GroupID", lbxMatrixGroups.itemData())});
        grdMatrixCategs.bind(categories_.get());
    });
}

// --- groups ---

void frmItemMatrix::cmdAddGroup_Click() {
    guarded({kOtherTag, "cmdAddGroup"}, [this] {
        if (groups_ == nullptr)
            return; // the groups could not be loaded
        groups_->addRow({Value(), std::string("Edit this Group Name")});
        grdMatrixGroups.setCurrent(grdMatrixGroups.dataRows(), kGroupName);
        grdMatrixGroups.showCurrent();
    });
}

void frmItemMatrix::cmdDeleteGroup_Click() {
    if (!grdMatrixGroups.selected())
        return;
    if (desk().message("Are you SURE you wish to delete this group? Please remember, all item assigned categories will be deleted as well!",
                       "Delete Matrix Group?", MessageIcon::Question, MessageButtons::OkCancel) != Answer::Ok)
        return;
    guarded({kTag, "cmdDeleteGroup"}, [this] {
        grdMatrixGroups.removeRow(grdMatrixGroups.row());
        loadGroups();
    });
}

void frmItemMatrix::grdMatrixGroups_AfterEdit(int row, int column) {
    guarded({kTag, "grdMatrixGroups_AfterEdit"}, [&] {
        if (!grdMatrixGroups.text(row, column).empty())
            return loadGroups();
        desk().message("Please enter a valid Group name.", kProduct, MessageIcon::Exclamation);
        grdMatrixGroups.setText(row, column, "Edit Group");
    });
}

void frmItemMatrix::grdMatrixGroups_Error() {
    desk().message("This action would invalidate your Matrix Groups! Please check your entry and try again.", kProduct,
                   MessageIcon::Exclamation);
    guarded({kTag, "grdMatrixGroups_Error"}, [this] { loadGroups(); });
}

// --- categories ---

void frmItemMatrix::cmdAddCategory_Click() {
    if (lbxMatrixGroups.listIndex() < 0)
        return desk().status("Add a group on the first page and choose it here.");
    guarded({kOtherTag, "cmdAddCategory"}, [this] {
        if (categories_ == nullptr)
            return; // the categories could not be loaded
        categories_->addRow({lbxMatrixGroups.itemData(), std::string("Edit this Category Name")});
        grdMatrixCategs.setCurrent(grdMatrixCategs.dataRows(), kCategoryName);
        grdMatrixCategs.showCurrent();
    });
}

void frmItemMatrix::cmdDeleteCategory_Click() {
    if (!grdMatrixCategs.selected())
        return;
    if (desk().message("Are you certain you wish to delete this category?", "Delete Matrix Category?", MessageIcon::Question,
                       MessageButtons::YesNo) != Answer::Yes)
        return;
    guarded({kTag, "cmdDeleteCategory"}, [this] { grdMatrixCategs.removeRow(grdMatrixCategs.row()); });
}

void frmItemMatrix::grdMatrixCategs_AfterEdit(int row, int column) {
    guarded({kTag, "grdMatrixCategs_AfterEdit"}, [&] {
        if (!grdMatrixCategs.text(row, column).empty())
            return;
        desk().message("Please enter a valid Category name.", kProduct, MessageIcon::Exclamation);
        grdMatrixCategs.setText(row, column, "Edit Category");
    });
}

void frmItemMatrix::grdMatrixCategs_Error() {
    desk().message("This action would invalidate your Matrix Categories! Please check your entry and try again.", kProduct,
                   MessageIcon::Exclamation);
    loadCategories();
}

void frmItemMatrix::Form_Unload(bool& /*cancel*/) {
    guarded({kTag, "Form_Unload"}, [this] {
        grdMatrixGroups.bind(nullptr);
        grdMatrixCategs.bind(nullptr);
        closeRows(groups_);
        closeRows(categories_);
    });
}

} // namespace merchantry::catalog
