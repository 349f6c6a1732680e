#include "reports/frmViewer.h"

#include "ui/desk.h"

namespace merchantry::reports {

frmViewer::frmViewer(ui::Desk& desk) : ReportWindow(desk, "frmViewer", "") {
    ViewerTools = true;
    FifthTool = true;
    // A file of the report folder, the title, then the parameters.
    offer("Show", [this](const std::vector<std::string>& arguments) {
        Report = openReport(this->desk(), reportFolder(this->desk()) / arguments.at(0));
        Title = arguments.at(1);
        for (std::size_t i = 2; Report != nullptr && i < arguments.size(); ++i)
            Report->setParameter(i - 1, arguments[i]);
        this->desk().showModal(*this);
        return std::string();
    });
}

void frmViewer::Form_Load() {
    setCaption(Title);
    report_ = std::move(Report);
    loadReport();
}

void frmViewer::Form_Activate() {
    if (failed_)
        unload();
}

} // namespace merchantry::reports
