#include "reports/frmPurchaseOrder_View.h"

#include "base/numbers.h"

namespace merchantry::reports {
namespace {

struct OrderReport {
    const char* file;
    std::vector<std::string> parameters;
};

OrderReport reportOf(std::int16_t type, const std::string& number, const std::string& criteria) {
    switch (type) {
    case 0:
        return {"PurchaseOrder.rpt", {number, "", ""}};
    case 1:
        return {"POHistory.rpt", {number, "0"}};
    case 2:
        return {"invwithnosupplier.rpt", {"where StoreOptions.Name>'a'", "StoreOptions.Name", "asc"}};
    case 3:
        return {"POReceipt.rpt", {number, criteria}};
    case 4:
        return {"POCancel.rpt", {number, criteria}};
    default:
        return {"", {}};
    }
}

} // namespace

frmPurchaseOrder_View::frmPurchaseOrder_View(ui::Desk& desk) : ReportWindow(desk, "frmPurchaseOrder_View", "Purchase Order") {
    ViewerTools = true;
    FifthTool = true;
    // Type, number, criteria.
    offer("OpenReport", [this](const std::vector<std::string>& arguments) {
        const auto argument = [&](std::size_t at) { return at < arguments.size() ? arguments[at] : std::string(); };
        ReportType = toInt16(numericPrefix(argument(0)));
        OpenReport(argument(1), argument(2));
        return std::string();
    });
}

void frmPurchaseOrder_View::OpenReport(const std::string& number, const std::string& criteria) {
    std::string file;
    try {
        const OrderReport wanted = reportOf(ReportType, std::to_string(toInt32(numericPrefix(number))), criteria);
        file = wanted.file;
        report_ = std::make_shared<RptFile>(reportFolder(desk()) / file);
        for (std::size_t i = 0; i < wanted.parameters.size(); ++i)
            report_->setParameter(i + 1, wanted.parameters[i]);
    } catch (const std::exception& error) {
        report_.reset();
        desk().message(openFailure(file, error), kProduct);
        return;
    }
    desk().showModal(*this);
}

void frmPurchaseOrder_View::Form_Load() {
    loadReport();
}

void frmPurchaseOrder_View::Form_Activate() {
    if (!failed_)
        return;
    tellFailure();
    unload();
}

} // namespace merchantry::reports
