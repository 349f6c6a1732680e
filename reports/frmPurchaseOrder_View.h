#pragma once

#include "reports/reportwindow.h"

#include <cstdint>
#include <string>

namespace merchantry::reports {

// An order on paper, or what became of it: the reports that the order screens open. Set ReportType first.
class frmPurchaseOrder_View : public ReportWindow {
public:
    explicit frmPurchaseOrder_View(ui::Desk& desk);

    // 0 the order, 1 its history, 2 items that no supplier serves, 3 one receipt, 4 one cancellation.
    std::int16_t ReportType = 0;
    // Loads the report and shows it modally. The number is the order's POID, of several joined by "," the first; the criteria are the
    // number of the receipt or of the cancellation. Says why when the file cannot be opened or the report cannot be run.
    void OpenReport(const std::string& number, const std::string& criteria);

private:
    void Form_Load() override;
    void Form_Activate() override;
};

} // namespace merchantry::reports
