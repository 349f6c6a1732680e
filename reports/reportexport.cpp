#include "reports/reportexport.h"

#include "app/aside.h"
#include "base/lettercase.h"
#include "base/newfile.h"
#include "base/text.h"
#include "reports/engine/exports.h"
#include "ui/longwork.h"

#include <stdexcept>

namespace merchantry::reports {
namespace {

using Writer = bool (*)(const Report& report, std::ostream& out, const KeepWriting& goOn);

bool writeRows(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file, Writer writer) {
    NewFile target(file);
    const bool ended = app::runAside(desk, "Writing " + file.filename().string() + " …", [&](app::AsideState& state) {
        const int all = std::max(1, report.rowCount());
        writer(report.report(), target.out, [&](int rows) {
            state.percent = static_cast<int>(100LL * rows / all);
            return !state.stop;
        });
    });
    if (ended)
        target.finish();
    return ended;
}

bool writePages(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file) {
    const auto pdf = desk.pdf(file, report.report().definition().title);
    if (pdf == nullptr)
        throw std::runtime_error("A PDF can only be written where pages can be drawn.");
    if (!putPages(desk, "Writing " + file.filename().string() + " …", report.pages(), 1, report.pages().count(), *pdf))
        return false;
    pdf->finish();
    return true;
}

bool writeCsvFile(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file) {
    return writeRows(desk, report, file, &writeCsv);
}

bool writeHtmlFile(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file) {
    return writeRows(desk, report, file, &writeHtml);
}

bool writeWorkbookFile(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file) {
    return app::runAside(desk, "Writing " + file.filename().string() + " …", [&](app::AsideState& state) {
        const int all = std::max(1, report.rowCount());
        writeWorkbook(report.report(), file, [&](int rows) {
            state.percent = static_cast<int>(100LL * rows / all);
            return !state.stop;
        });
    });
}

struct Kind {
    const char* ending;
    const char* words;
    bool (*write)(ui::Desk& desk, const ReportPages& report, const std::filesystem::path& file);
};

// One more kind of file is one more line.
constexpr Kind kKinds[] = {
    {".pdf", "PDF (*.pdf)", &writePages},
    {".xlsx", "Workbook (*.xlsx)", &writeWorkbookFile},
    {".csv", "Comma-separated values (*.csv)", &writeCsvFile},
    {".html", "Web page (*.html)", &writeHtmlFile},
};

} // namespace

std::string exportFilter() {
    std::vector<std::string> all;
    for (const Kind& kind : kKinds)
        all.push_back(std::string(kind.words) + "|*" + kind.ending);
    return joined(all, "|");
}

bool exportReport(ui::Desk& desk, const ReportPages& report, std::filesystem::path file) {
    if (file.extension().empty())
        file += kKinds[0].ending;
    const std::string ending = lowerCase(file.extension().string());
    std::vector<std::string> endings;
    for (const Kind& kind : kKinds) {
        if (ending == kind.ending)
            return kind.write(desk, report, file);
        endings.emplace_back(kind.ending);
    }
    throw std::runtime_error("A report is written to a file that ends in " + joined(endings, ", ") + "; \"" + ending +
                             "\" is none of them.");
}

bool putPages(ui::Desk& desk, const std::string& what, const ui::Pages& pages, int first, int last, ui::PageSink& sink) {
    int next = first;
    return ui::longWork(desk, what, [&] {
        if (next > last)
            return 100;
        sink.put(pages.page(next - 1));
        ++next;
        return next > last ? 100 : (next - first) * 100 / (last - first + 1);
    });
}

} // namespace merchantry::reports
