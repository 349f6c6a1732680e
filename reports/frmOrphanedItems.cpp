#include "reports/frmOrphanedItems.h"

#include "ui/desk.h"

namespace merchantry::reports {

frmOrphanedItems::frmOrphanedItems(ui::Desk& desk) : ReportWindow(desk, "frmOrphanedItems", "Orphaned Items") {
    ViewerTools = true;
    offer("Generate", [this](const std::vector<std::string>&) {
        Generate();
        return std::string();
    });
}

void frmOrphanedItems::Generate() {
    desk().waitCursor(true);
    report_ = openReport(desk(), reportFolder(desk()) / "InvWithNoSupplier.rpt");
    desk().waitCursor(false);
    if (report_ == nullptr)
        return;
    report_->setParameter(1, "");
    report_->setParameter(2, "Item.SKU");
    report_->setParameter(3, "ASC");
    desk().showModal(*this);
}

void frmOrphanedItems::Form_Load() {
    loadReport();
}

void frmOrphanedItems::Form_Activate() {
    if (!failed_)
        return;
    tellFailure();
    unload();
}

} // namespace merchantry::reports
