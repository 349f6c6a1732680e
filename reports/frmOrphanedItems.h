#pragma once

#include "reports/reportwindow.h"

namespace merchantry::reports {

// The items without a supplier, as a report of their own. No command opens it.
class frmOrphanedItems : public ReportWindow {
public:
    explicit frmOrphanedItems(ui::Desk& desk);
    // Loads the report and shows the window modally; says why when the report cannot be opened.
    void Generate();

private:
    void Form_Load() override;
    void Form_Activate() override;
};

} // namespace merchantry::reports
