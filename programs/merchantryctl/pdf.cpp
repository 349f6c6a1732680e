#include "programs/merchantryctl/pdf.h"

#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <QGuiApplication>

#include <stdexcept>

namespace merchantry::programs {

void writeReportPdf(const reports::Report& report, const std::filesystem::path& file) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // no window comes up, whatever the display
    int count = 0;
    QGuiApplication application(count, nullptr);
    const ui::QtTextMeasure measure;
    const std::unique_ptr<ui::Pages> pages = reports::allPages(report, measure);
    const QString problem = ui::writePdf(ui::toQt(file.string()), ui::toQt(report.definition().title), *pages, {});
    if (!problem.isEmpty())
        throw std::runtime_error(ui::fromQt(problem));
}

} // namespace merchantry::programs
