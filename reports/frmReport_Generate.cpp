#include "reports/frmReport_Generate.h"

#include "app/modMain.h"
#include "base/text.h"
#include "reports/reporttable.h"
#include "ui/desk.h"

namespace merchantry::reports {

using namespace app;
using namespace ui;

namespace {

// With no limit of time, which is put back however it ends.
void runTenderAnalysis(db::Connection& conn) {
    struct Timeout {
        db::Connection& conn;
        int before = conn.CommandTimeout;
        ~Timeout() { conn.CommandTimeout = before; }
    } const timeout{conn};
    conn.CommandTimeout = 0;
    conn.Execute("sp_RptDrawerTenderAnalysis");
}

} // namespace

frmReport_Generate::frmReport_Generate(Desk& desk) : ReportWindow(desk, "frmReport_Generate", "View Report") {
    // Key, sort field, "on" for ascending, then the conditions.
    offer("Generate", [this](const std::vector<std::string>& arguments) {
        const std::vector<std::string> conditions(arguments.begin() + 3, arguments.end());
        Generate(arguments.at(0), conditions, static_cast<int>(conditions.size()), arguments.at(2) == "on", arguments.at(1));
        this->desk().show(*this);
        return std::string();
    });
    offer("CustomGenerate", [this](const std::vector<std::string>& arguments) {
        CustomGenerate(arguments.at(0));
        this->desk().show(*this);
        return std::string();
    });
}

void frmReport_Generate::Generate(const std::string& key, const std::vector<std::string>& conditions, int count, bool ascending,
                                  const std::string& sortField) {
    std::filesystem::path path;
    try {
        Custom_ = false;
        const auto known = reportKey(key);
        ViewerTools = !known || known->viewerTools;
        FifthTool = known && known->fifthTool;
        path = reportFolder(desk()) / (known ? known->file : "");
        if (key == "TenderAnalysis")
            runTenderAnalysis(*modMain().Conn);
        report_ = std::make_shared<RptFile>(path);
        Where_.clear();
        if (count > 0) {
            Where_ = "WHERE ";
            for (std::size_t i = 0; i < conditions.size() && i <= static_cast<std::size_t>(count); ++i)
                Where_ += conditions[i];
        }
        report_->setParameter(1, Where_);
        const bool tax = key == "SalesTax";
        report_->setParameter(2, tax ? replaced(Where_.size() > 5 ? Where_.substr(5) : "", "'", "") : sortField);
        if (!tax && key != "ItemSales")
            report_->setParameter(3, ascending ? " ASC" : " DESC");
    } catch (const std::exception& error) {
        report_.reset();
        desk().message(openFailure(path, error), kProduct);
    }
}

void frmReport_Generate::GenerateFromRpt(RptFilePtr report) {
    report_ = std::move(report);
}

void frmReport_Generate::CustomGenerate(const std::string& fileName) {
    ViewerTools = true;
    Custom_ = true;
    CustomFile_ = fileName;
    report_ = openReport(desk(), fileName);
}

void frmReport_Generate::setCriteria(const std::string& words) {
    if (report_ != nullptr)
        report_->criteria = words;
}

void frmReport_Generate::Form_Load() {
    if (Custom_)
        setCaption(CustomFile_);
    loadReport();
}

void frmReport_Generate::Form_Activate() {
    if (failed_)
        unload();
}

} // namespace merchantry::reports
