#pragma once

#include "reports/reportwindow.h"

#include <string>

namespace merchantry::reports {

// A plain window for a report that its caller has prepared. Set both members, then show it modally. All five tools are on; what every
// report window has besides (turning pages, copying and printing) wants no switch.
class frmViewer : public ReportWindow {
public:
    explicit frmViewer(ui::Desk& desk);

    RptFilePtr Report;
    std::string Title;

private:
    void Form_Load() override;
    void Form_Activate() override;
};

} // namespace merchantry::reports
