// Reports over a million lines of sales: from the command to the first page and to the last, their values to a file, and pages to PDF.

#include "bench/barepdf.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "reports/engine/exports.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <QGuiApplication>

#include <fstream>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kSoldItems = 5'000;
constexpr int kReceipts = 250'000; // of four lines each
constexpr int kRuns = 5;

// The items, and receipts over three years, hour by hour.
void sell(db::Session& session) {
    const std::string numbers = "(SELECT TOP 500 ROW_NUMBER() OVER (ORDER BY SKU) - 1 AS n FROM Item)";
    db::NoResult none;
    session.execute("INSERT INTO Stock (SKU, MatrixSKU, Quantity) SELECT SKU, MatrixSKU, 10 FROM Item", none);
    session.execute("INSERT INTO [Transaction] (RegisterID, CashierID, Time, TransType) SELECT 1 + (a.n + b.n) % 4, 5, "
                    "DATEADD(minute, (a.n * 500 + b.n) * 6, '1/1/2024'), 'Sale' FROM " +
                        numbers + " a CROSS JOIN " + numbers + " b",
                    none);
    session.execute(
        "INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, Quantity, FullPrice, Cost, Discount, Tax) "
        "SELECT t.TransactionNumber, i.SKU, i.MatrixSKU, 1 + (t.TransactionNumber + l.n) % 3, 9.95, 4.1234, 0.5, 0.7 FROM [Transaction] t "
        "CROSS JOIN (SELECT 0 AS n UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3) l "
        "INNER JOIN (SELECT SKU, MatrixSKU, ROW_NUMBER() OVER (ORDER BY SKU) - 1 AS n FROM Item) i ON i.n = (t.TransactionNumber * 7 + l.n "
        "* 13) % " +
            std::to_string(kSoldItems),
        none);
}

// What the same select gives, written to a file as a shell would: a line a row.
long writeBare(const BareStore& store, const std::string& select, const std::filesystem::path& file) {
    std::FILE* out = std::fopen(file.c_str(), "w");
    sqlite3_stmt* const statement = store.prepare(select);
    const int columns = sqlite3_column_count(statement);
    long rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows)
        for (int i = 0; i < columns; ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            std::fprintf(out, "%s%s", text == nullptr ? "" : text, i + 1 < columns ? "," : "\r\n");
        }
    sqlite3_finalize(statement);
    std::fclose(out);
    return rows;
}

const char* const kFrom =
    R"( FROM "Transaction" t JOIN TransactionEntry e ON e.TransactionNumber = t.TransactionNumber
JOIN Item i ON i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU AND substr(i.SKU, 1, 1) <> '$' LEFT JOIN Departments d ON d.DepartmentID = i.DepartmentID
LEFT JOIN Cashier c ON c.ID = t.CashierID LEFT JOIN Customer k ON k.ID = t.CustomerID )";

struct Case {
    const char* file;
    std::string bare;
};

std::vector<Case> cases() {
    const std::string from = kFrom;
    return {
        {"DailySales.rpt", "SELECT t.Time / 86400000 AS day, COUNT(DISTINCT t.TransactionNumber), SUM(e.Quantity), SUM(CASE WHEN "
                           "e.Quantity > 0 THEN e.Quantity * "
                           "e.FullPrice ELSE 0 END), SUM(CASE WHEN e.Quantity > 0 THEN 0 ELSE e.Quantity * e.FullPrice END), "
                           "-SUM(e.Discount), SUM(e.Quantity * "
                           "e.FullPrice - e.Discount), SUM(e.Tax), SUM(e.Quantity * e.FullPrice - e.Discount + e.Tax)" +
                               from + "GROUP BY day ORDER BY day"},
        {"SalesByItem.rpt",
         "SELECT i.MatrixSKU, i.Name, d.Department, SUM(e.Quantity), SUM(e.Discount), SUM(e.Quantity * e.FullPrice - e.Discount) AS sold, "
         "MAX(t.Time), MAX(s.Quantity)" +
             from +
             "LEFT JOIN Stock s ON s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU GROUP BY i.SKU, i.MatrixSKU, i.Name, d.Department ORDER BY "
             "sold DESC"},
        {"ProfitByDept.rpt",
         "SELECT d.Department, COUNT(DISTINCT i.SKU || '|' || i.MatrixSKU), SUM(e.Quantity), SUM(e.Quantity * e.FullPrice - e.Discount), "
         "SUM(e.Quantity * e.Cost), SUM(e.Quantity * e.FullPrice - e.Discount - e.Quantity * e.Cost) AS profit" +
             from + "GROUP BY d.Department ORDER BY profit DESC"}};
}

std::unique_ptr<reports::Report> run(const ItemStore& items, const reports::Definition& definition) {
    return reports::Report::run(*items.session(), definition, {"", "", " ASC"});
}

void pages(const ItemStore& items, const BareStore& bare, const std::filesystem::path& folder) {
    const ui::QtTextMeasure measure;
    const std::filesystem::path out = items.folder() / "bare.csv";
    for (const Case& test : cases()) {
        const reports::Definition definition = reports::readDefinition(folder / test.file);
        const auto first = [&] {
            const auto report = run(items, definition);
            reports::Layout layout(report->outline(), measure, report->head());
            layout.layOut(1);
            layout.page(0);
        };
        const auto last = [&] {
            const auto report = run(items, definition);
            const auto all = reports::allPages(*report, measure);
            all->page(all->count() - 1);
        };
        const auto work = [&] { writeBare(bare, test.bare, out); };
        ratio((std::string(test.file) + " to its first page").c_str(), kRuns, first, work);
        ratio((std::string(test.file) + " to its last page").c_str(), kRuns, last, work);
    }
}

void values(const ItemStore& items, const BareStore& bare) {
    const reports::Definition definition = reports::parseDefinition(R"(title = "Lines"
[query]
sql = "SELECT e.TransactionNumber, e.SKU, e.MatrixSKU, i.Name, e.Quantity, e.FullPrice FROM TransactionEntry e INNER JOIN Item i ON i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU {where} ORDER BY e.EntryID"
[[column]]
field = "TransactionNumber"
[[column]]
field = "SKU"
[[column]]
field = "MatrixSKU"
[[column]]
field = "Name"
[[column]]
field = "Quantity"
[[column]]
field = "FullPrice"
)",
                                                                    "lines.rpt");
    const std::filesystem::path out = items.folder() / "ours.csv";
    ratio(
        "a million rows as comma-separated values", 3,
        [&] {
            const auto report = run(items, definition);
            std::ofstream file(out, std::ios::binary);
            reports::writeCsv(*report, file);
        },
        [&] {
            writeBare(bare,
                      "SELECT e.TransactionNumber, e.SKU, e.MatrixSKU, i.Name, e.Quantity, e.FullPrice / 10000.0 FROM TransactionEntry e "
                      "JOIN Item i ON "
                      "i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU ORDER BY e.EntryID",
                      items.folder() / "bare.csv");
        });
}

void pdf(const ItemStore& items, const std::filesystem::path& folder) {
    const ui::QtTextMeasure measure;
    const auto report = run(items, reports::readDefinition(folder / "SalesByItem.rpt"));
    const auto all = reports::allPages(*report, measure);
    std::vector<ui::Page> drawn;
    for (int number = 0; number < all->count(); ++number)
        drawn.push_back(all->page(number));
    const QString ours = ui::toQt((items.folder() / "ours.pdf").string());
    ratio((std::to_string(drawn.size()) + " pages as PDF").c_str(), 3, [&] { ui::writePdf(ours, QStringLiteral("Pages"), *all, {}); },
          [&] { writeBarePdf(items.folder() / "bare.pdf", drawn); });
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::puts("Usage: bench_report FOLDER_OF_REPORT_FILES [pages|values|pdf]");
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication application(count, arguments);
    const ItemStore items(kSoldItems);
    sell(*items.session());
    const BareStore bare(items.file());
    const std::string only = count > 2 ? arguments[2] : "";
    if (only.empty() || only == "pages")
        pages(items, bare, arguments[1]);
    if (only.empty() || only == "values")
        values(items, bare);
    if (only.empty() || only == "pdf")
        pdf(items, arguments[1]);
    return 0;
}
