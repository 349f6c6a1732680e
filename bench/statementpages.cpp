// The letters of a run of statements as one PDF and as a PDF each, beside a painter that draws the same texts.

#include "bench/barepdf.h"
#include "bench/chargeaccounts.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "customers/statements/statementrun.h"
#include "reports/engine/report.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <QGuiApplication>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kCustomers = 1'000;
constexpr int kRuns = 3;

std::unique_ptr<reports::Report> statements(const ItemStore& items, const std::filesystem::path& file) {
    const auto session = items.session();
    makeChargeAccounts(*session, kCustomers);
    const auto go = [](int) { return true; };
    const auto drawn = customers::drawUpStatements(*session, *Date::fromText("3/5/2026"), go);
    const std::int32_t run = customers::postStatements(*session, drawn, go);
    return reports::Report::run(*items.session(), reports::readDefinition(file), {std::to_string(run)});
}

void measure(const ItemStore& items, const reports::Report& report) {
    const ui::QtTextMeasure measure;
    reports::Layout all(report.outline(), measure, report.head());
    const double laidOut = msOf([&] { all.layOut(1'000'000); });
    const auto letters = all.letters();
    std::printf("%zu letters of %d pages laid out: %.0f ms\n", letters.size(), all.count(), laidOut);
    if (letters.size() != kCustomers)
        std::printf("DIFFERENT: %zu letters\n", letters.size());
    std::vector<ui::Page> drawn;
    for (int number = 0; number < all.count(); ++number)
        drawn.push_back(all.page(number));
    const std::span<const ui::Page> bare(drawn);
    const auto path = [&](const char* name) { return items.folder() / name; };
    ratio((std::to_string(all.count()) + " pages of statements as PDF").c_str(), kRuns,
          [&] { ui::writePdf(ui::toQt(path("ours.pdf").string()), QStringLiteral("Statements"), all, {}); },
          [&] { writeBarePdf(path("bare.pdf"), bare); });
    ratio(
        "a PDF a letter", kRuns,
        [&] {
            for (const reports::Letter& letter : letters) {
                const auto pdf = ui::pdfFile(ui::toQt(path("one.pdf").string()), QStringLiteral("Statement"));
                for (int page = letter.first; page <= letter.last; ++page)
                    pdf->put(all.page(page));
                pdf->finish();
            }
        },
        [&] {
            for (const reports::Letter& letter : letters)
                writeBarePdf(path("bareone.pdf"), bare.subspan(static_cast<std::size_t>(letter.first),
                                                               static_cast<std::size_t>(letter.last - letter.first + 1)));
        });
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::puts("Usage: bench_statementpages FOLDER_OF_REPORT_FILES");
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication application(count, arguments);
    const ItemStore items(kCustomers);
    const auto report = statements(items, std::filesystem::path(arguments[1]) / "CustomerStatement.rpt");
    measure(items, *report);
    return 0;
}
