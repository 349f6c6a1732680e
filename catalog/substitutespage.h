#pragma once

#include "app/db/ado/recordset.h"
#include "catalog/itempage.h"

namespace merchantry::catalog {

// The Substitutes page of frmItems: what may be sold in the item's place, in the order of preference. Each change is saved at once.
class SubstitutesPage : public ItemPage {
public:
    explicit SubstitutesPage(ItemScreen& screen);

    ui::Item item() override;
    void populate() override;
    void release() override;
    void pressArrow(bool up) override;

private:
    void reloadSubstitutes();
    void showSubstituteCount();
    void cmdSubsAddNew_Click();
    void cmdSubsDelete_Click();
    void grdSubs_ChangePriority(bool Up);
    void grdSubs_Error();

    ui::Grid grdSubs;
    ui::Button cmdSubsAddNew;
    ui::Button cmdSubsDelete;
    ui::Image imgSubUp;
    ui::Image imgSubDown;

    db::RecordsetPtr subsRows_;
};

} // namespace merchantry::catalog
