#include "app/reportlistings.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "reports/engine/labels.h"
#include "reports/engine/querytext.h"
#include "reports/reporttable.h"
#include "tests/reports/files/filesstore.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace merchantry::reports {
namespace {

using registersim::query;

std::string fileOf(const std::string& key) {
    const auto known = reportKey(key);
    return known ? known->file : "";
}

std::unique_ptr<Report> runFile(db::Session& session, const std::string& file, const ParameterTexts& parameters) {
    return Report::run(session, readDefinition(kReportFiles / file), parameters);
}

std::vector<std::string> allFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(kReportFiles))
        if (entry.path().extension() == ".rpt")
            files.push_back(entry.path().filename().string());
    std::sort(files.begin(), files.end());
    return files;
}

// A condition as the criteria screen writes it, true for most rows.
std::string conditionOn(const std::string& field, bool date) {
    return date ? "(" + field + " >= '9/1/2026 12:00:00 AM')" : "(" + field + " <> '0')";
}

// ------------------------------------------------------------------ every file

TEST(ReportFiles, RunAndLayOutEveryPage) {
    const auto session = filesStore().session();
    const ui::FixedMeasure measure;
    for (const std::string& file : allFiles()) {
        SCOPED_TRACE(file);
        try {
            const auto report = runFile(*session, file, parametersFor(file, *session));
            EXPECT_GT(report->outline().rows().rowCount(), 0);
            const auto pages = allPages(*report, measure);
            for (const int number : {0, pages->count() / 2, pages->count() - 1})
                EXPECT_FALSE(pages->page(number).items.empty()) << number;
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
    }
}

// A statement's rows as they come.
std::string rowsAsTheyCome(db::Session& session, const std::string& text) {
    class Texts : public db::ResultSink {
    public:
        void beginSet(const std::vector<db::Column>& columns) override { width_ = static_cast<int>(columns.size()); }
        void row(const db::RowView& row) override {
            for (int i = 0; i < width_; ++i)
                text += row.value(i).toText() + (i + 1 < width_ ? "|" : "\n");
        }
        std::string text;

    private:
        int width_ = 0;
    } texts;
    session.execute(text, texts);
    return texts.text;
}

// Behind an order that tells all rows apart, chance decides nothing.
TEST(ReportFiles, HaveOneOrderOnly) {
    const auto session = filesStore().session();
    for (const std::string& file : allFiles()) {
        SCOPED_TRACE(file);
        const std::string text = queryText(readDefinition(kReportFiles / file), parametersFor(file, *session));
        if (lowerCase(trimmed(text)).starts_with("exec")) // orders its rows itself
            continue;
        EXPECT_TRUE(rowsAsTheyCome(*session, text) == rowsAsTheyCome(*session, text + ", NEWID()"));
    }
}

// ISNULL gives its second argument the width of the first, here that of "Cancelled".
TEST(ReportFiles, AHistoryOfNothingSaysSoInFull) {
    const auto session = filesStore().session();
    const std::string open = query(*session, "SELECT MIN(POID) FROM PurchaseOrder WHERE Status = 'O'").at(0)[0].toText();
    const std::string rows = rowsAsTheyCome(*session, queryText(readDefinition(kReportFiles / "POHistory.rpt"), {open, "0"}));
    EXPECT_NE(rows.find("|Nothing yet|"), std::string::npos) << rows;
}

TEST(ReportFiles, EveryKeyHasAFileAndCriteria) {
    const auto session = filesStore().session();
    const auto keys = query(*session, "SELECT DISTINCT reportname FROM reportfieldsmapping");
    EXPECT_EQ(keys.size(), app::reportListings().size());
    for (const auto& key : keys)
        EXPECT_TRUE(std::filesystem::is_regular_file(kReportFiles / fileOf(key[0].toText()))) << key[0].toText();
}

// With none, one and three criteria from the list that the screen offers, and sorted by every column in both directions.
class KeyedReports : public testing::TestWithParam<std::string> {};

TEST_P(KeyedReports, RunWithTheirCriteria) {
    const auto session = filesStore().session();
    const std::string file = fileOf(GetParam());
    const Definition definition = readDefinition(kReportFiles / file);
    EXPECT_TRUE(definition.query.takes(ParameterKind::Where)) << "criteria would change nothing";
    const int all = Report::run(*session, definition, {"", "", " ASC"})->outline().rows().rowCount();
    std::string three;
    int joined = 0;
    for (const auto& field : query(*session, "bsp_GetReportFieldsMapping '" + GetParam() + "'")) {
        const std::string name = field[0].toText();
        const bool date = field[2].toInteger() != 0;
        SCOPED_TRACE(name);
        try {
            if (joined++ < 3)
                three += (three.empty() ? "WHERE " : "AND ") + conditionOn(name, date);
            EXPECT_LE(Report::run(*session, definition, {"WHERE " + conditionOn(name, date)})->outline().rows().rowCount(), all);
            for (const char* direction : {" ASC", " DESC"})
                EXPECT_EQ(Report::run(*session, definition, {"", name, direction})->outline().rows().rowCount(), all) << direction;
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
    }
    try {
        EXPECT_LE(Report::run(*session, definition, {three, "", " DESC"})->outline().rows().rowCount(), all);
    } catch (const std::exception& error) {
        ADD_FAILURE() << three << ": " << error.what();
    }
}

std::vector<std::string> offeredKeys() {
    std::vector<std::string> keys;
    for (const app::ReportListing& listing : app::reportListings())
        keys.emplace_back(listing.key);
    return keys;
}
INSTANTIATE_TEST_SUITE_P(All, KeyedReports, testing::ValuesIn(offeredKeys()), [](const auto& key) { return key.param; });

// ------------------------------------------------------------------ right figures

// A total of a report beside the same sum computed in another way.
struct Control {
    const char* file;
    const char* column; // its title, in one line
    const char* select;
};

const char* const kSold = "SELECT SUM(SubTotal) FROM [Transaction] WHERE TransType IN ('Sale', 'Return')";
const char* const kCost = "SELECT -SUM(Qty * Cost_ea) FROM InventoryLedger WHERE Type IN ('Sale', 'Return')";
const char* const kProfit =
    "SELECT (SELECT SUM(SubTotal) FROM [Transaction] WHERE TransType IN ('Sale', 'Return')) + (SELECT SUM(Qty * Cost_ea) FROM "
    "InventoryLedger WHERE Type IN ('Sale', 'Return'))";
const char* const kPieces = "SELECT -SUM(Qty) FROM InventoryLedger WHERE Type IN ('Sale', 'Return')";
const char* const kReceipts = "SELECT COUNT(*) FROM [Transaction] WHERE TransType IN ('Sale', 'Return')";
const char* const kTax = "SELECT SUM(Amount) FROM TransactionTax";
const char* const kBought = "SELECT SUM(Quantity * Cost + OtherCost) FROM PurchaseOrderReceipt";
const char* const kAdjusted = "SELECT SUM(Qty) FROM InventoryLedger WHERE Type IN ('Damaged', 'Stock Count', 'Adjustment')";
const char* const kAdjustedValue =
    "SELECT SUM(CASE WHEN Type = 'Damaged' THEN Qty ELSE 0 END * Cost_ea) + SUM(CASE WHEN Type = 'Stock Count' THEN Qty ELSE 0 "
    "END * Cost_ea) FROM InventoryLedger";

const Control kControls[] = {
    {"DailySales.rpt", "Net sales", kSold},
    {"DailySales.rpt", "Receipts", kReceipts},
    {"DailySales.rpt", "Tax", kTax},
    {"DailySales.rpt", "With tax", "SELECT SUM(Total) FROM [Transaction] WHERE TransType IN ('Sale', 'Return')"},
    {"DailySales.rpt", "Units", kPieces},
    {"DailySales.rpt", "Returns", "SELECT SUM(FullPrice * Quantity) FROM TransactionEntry WHERE Quantity < 0 AND SKU <> '$Payout'"},
    {"DailySales.rpt", "Discounts", "SELECT -SUM(Discount) FROM TransactionEntry"},
    {"DailyProfit.rpt", "Net sales", kSold},
    {"DailyProfit.rpt", "Cost", kCost},
    {"DailyProfit.rpt", "Profit", kProfit},
    {"SalesByItem.rpt", "Net sales", kSold},
    {"SalesByItem.rpt", "Sold", kPieces},
    {"ProfitByItem.rpt", "Profit", kProfit},
    {"ProfitByItem.rpt", "Cost", kCost},
    {"SalesByDept.rpt", "Net sales", kSold},
    {"SalesByDept.rpt", "Cost", kCost},
    {"ProfitByDept.rpt", "Profit", kProfit},
    {"ProfitByDept.rpt", "Net sales", kSold},
    {"SalesByCust.rpt", "Net sales", kSold},
    {"SalesByCust.rpt", "Receipts", kReceipts},
    {"ProfitByCust.rpt", "Profit", kProfit},
    {"CustSalesHist.rpt", "Amount",
     "SELECT TotalSales FROM Customer WHERE ID = (SELECT TOP 1 CustomerID FROM [Transaction] WHERE CustomerID IS NOT NULL GROUP BY "
     "CustomerID ORDER BY "
     "COUNT(*) DESC)"},
    {"CreditViewDetail.rpt", "With tax",
     "SELECT Total FROM [Transaction] WHERE TransactionNumber = (SELECT TOP 1 TransactionNumber FROM TransactionEntry GROUP BY "
     "TransactionNumber ORDER BY "
     "COUNT(*) DESC, TransactionNumber)"},
    {"DailyTaxes.rpt", "Tax", "SELECT SUM(Tax) FROM TransactionEntry"},
    {"DailyTaxes.rpt", "Sales", kSold},
    {"DailyTaxESales.rpt", "Exempt sales",
     "SELECT SUM(e.Quantity * e.FullPrice - e.Discount) FROM TransactionEntry e WHERE e.TransactionNumber IN (SELECT TransactionNumber "
     "FROM [Transaction] WHERE "
     "TaxExempt = 1)"},
    {"RegAnalysis.rpt", "Net sales", kSold},
    {"RegAnalysis.rpt", "Tax", kTax},
    {"RegAnalysis.rpt", "Receipts", kReceipts},
    {"RegAnalysis.rpt", "Returns", "SELECT COUNT(*) FROM [Transaction] WHERE TransType = 'Return'"},
    {"TenderAnalysis.rpt", "Net", "SELECT SUM(Total) FROM [Transaction] WHERE TransType IN ('Sale', 'Return')"},
    {"TenderAnalysis.rpt", "Counted", "SELECT SUM(Amount) FROM DrawerEvent WHERE EventType = 'Closing'"},
    {"TenderAnalysis.rpt", "In drawer",
     "SELECT (SELECT SUM(Amount) FROM TransactionTender WHERE TenderType = 'Cash') + (SELECT SUM(Amount) FROM DrawerEvent WHERE EventType "
     "<> 'Closing')"},
    {"CustomerList.rpt", "Total sales", "SELECT SUM(SubTotal) FROM [Transaction] WHERE CustomerID IS NOT NULL"},
    {"CustomerList.rpt", "Balance", "SELECT SUM(OutstandingBalance) FROM CreditTransaction"},
    {"CustomerStatement.rpt", "Amount", "SELECT SUM(Balance) FROM Statement WHERE RunID = 2"},
    {"CreditAging.rpt", "Balance", "SELECT SUM(Balance) FROM Customer"},
    {"CreditAging.rpt", "Credits", "SELECT SUM(OutstandingBalance) FROM CreditTransaction WHERE Total < 0"},
    {"CreditbyCustomer.rpt", "Still open", "SELECT SUM(Balance) FROM Customer"},
    {"CreditbyCustomer.rpt", "Charged",
     "SELECT (SELECT SUM(Amount) FROM TransactionTender WHERE TenderType = 'Charge Account' AND Amount > 0) + (SELECT SUM(FinanceCharge) "
     "FROM Statement)"},
    {"CreditAdjustmentType.rpt", "Amount", "SELECT SUM(Total) FROM CreditTransaction"},
    {"layawaybycustomer.rpt", "To pay", "SELECT (SELECT SUM(Quantity * Price) FROM LayawayEntry) - (SELECT SUM(Paid) FROM Layaway)"},
    {"layawayexpiration.rpt", "Total", "SELECT SUM(Quantity * Price) FROM LayawayEntry"},
    {"GiftVouchers.rpt", "Left", "SELECT SUM(Balance) FROM GiftVoucher"},
    {"GiftVouchers.rpt", "Used", "SELECT SUM(Amount) - SUM(Balance) FROM GiftVoucher"},
    {"InvAdjustment.rpt", "Change", kAdjusted},
    {"InvAdjustment.rpt", "Value", kAdjustedValue},
    {"InvAdjustmentType.rpt", "Change", kAdjusted},
    {"InvAdjustmentType.rpt", "Value", kAdjustedValue},
    {"InvValuation.rpt", "On hand", "SELECT SUM(Qty) FROM InventoryLedger"},
    {"InvValuation.rpt", "Value at cost",
     "SELECT SUM(s.Quantity * l.Cost_wt) FROM Stock s INNER JOIN InventoryLedger l ON l.SKU = s.SKU AND l.MatrixSKU = s.MatrixSKU AND "
     "l.LedgerID = (SELECT "
     "MAX(m.LedgerID) FROM InventoryLedger m WHERE m.SKU = s.SKU AND m.MatrixSKU = s.MatrixSKU)"},
    {"InvValuation.rpt", "Retail value",
     "SELECT SUM(s.Quantity * p.Price) FROM Stock s INNER JOIN PriceMatrix p ON p.SKU = s.SKU AND p.MatrixSKU = s.MatrixSKU AND p.Tier = 1 "
     "AND p.Quantity = 1"},
    {"ItemMatrixGroup.rpt", "On hand",
     "SELECT SUM(s.Quantity * m.N) FROM Stock s INNER JOIN (SELECT SKU, MatrixSKU, COUNT(*) AS N FROM ItemMatrix GROUP BY SKU, MatrixSKU) "
     "m ON m.SKU = "
     "s.SKU AND m.MatrixSKU = s.MatrixSKU"},
    {"ItemMatrixParent.rpt", "On hand",
     "SELECT SUM(l.Qty) FROM InventoryLedger l INNER JOIN Item i ON i.SKU = l.SKU AND i.MatrixSKU = l.MatrixSKU WHERE i.TypeID = 2"},
    {"ItemDetailList.rpt", "Item", "SELECT COUNT(*) FROM Item WHERE LEFT(SKU, 1) <> '$'"},
    {"ItemDetailList.rpt", "On hand", "SELECT SUM(Qty) FROM InventoryLedger"},
    {"ItemsByDept.rpt", "On hand", "SELECT SUM(Quantity) FROM Stock"},
    {"ItemsByDept.rpt", "Retail value",
     "SELECT SUM(s.Quantity * p.Price) FROM Stock s INNER JOIN PriceMatrix p ON p.SKU = s.SKU AND p.MatrixSKU = s.MatrixSKU AND p.Tier = 1 "
     "AND p.Quantity = 1"},
    {"CommittedInventory.rpt", "Committed", "SELECT SUM(Quantity) FROM LayawayEntry"},
    {"CommittedInventory.rpt", "On layaway", "SELECT SUM(QtyCommitt) FROM Stock"},
    {"InvBelowReorder.rpt", "To order",
     "SELECT SUM(CASE WHEN x.Wanted <= 0 THEN 0 WHEN x.Least >= x.Wanted AND x.Least >= x.Missing THEN x.Least WHEN x.Missing > x.Wanted "
     "THEN x.Missing ELSE x.Wanted END) FROM (SELECT CAST(i.Restock AS int) + 1 - s.Quantity - ISNULL(o.Coming, 0) AS Missing, "
     "CAST(i.Reorder AS int) - ISNULL(o.Coming, 0) AS Wanted, ISNULL((SELECT TOP 1 d.MinOrder FROM SupplierMatrixDetail d "
     "WHERE d.SKU = i.SKU AND d.MatrixSKU = i.MatrixSKU ORDER BY d.Priority, d.Cost, d.SupID), 0) AS Least FROM Stock s INNER "
     "JOIN Item i ON i.SKU = s.SKU AND i.MatrixSKU = s.MatrixSKU LEFT JOIN (SELECT SKU, MatrixSKU, SUM(Qty - QtyRecvd - QtyCanceled) AS "
     "Coming FROM PurchaseOrderItem WHERE POID IN "
     "(SELECT POID FROM PurchaseOrder WHERE Status IN ('O', 'P')) GROUP BY SKU, MatrixSKU) o ON o.SKU = s.SKU AND o.MatrixSKU = "
     "s.MatrixSKU WHERE s.Quantity <= i.Restock AND i.Reorder > 0 AND i.Active = 1 AND "
     "i.TypeID <> 4) x"},
    {"InvBelowReorder.rpt", "On order",
     "SELECT SUM(l.Qty - l.QtyRecvd - l.QtyCanceled) FROM PurchaseOrderItem l INNER JOIN Stock s ON s.SKU = l.SKU AND s.MatrixSKU = "
     "l.MatrixSKU INNER JOIN Item i "
     "ON i.SKU = l.SKU AND i.MatrixSKU = l.MatrixSKU AND s.Quantity <= i.Restock AND i.Active = 1 AND i.Reorder > 0 WHERE l.POID IN "
     "(SELECT POID FROM "
     "PurchaseOrder WHERE "
     "Status IN ('O', 'P'))"},
    {"ItemWithNoCost.rpt", "On hand",
     "SELECT SUM(s.Quantity) FROM Stock s WHERE NOT EXISTS (SELECT * FROM InventoryLedger l WHERE l.SKU = s.SKU AND l.MatrixSKU = "
     "s.MatrixSKU AND l.Cost_wt > 0)"},
    {"InvWithNoSupplier.rpt", "Item",
     "SELECT COUNT(*) - (SELECT COUNT(DISTINCT SKU + '|' + MatrixSKU) FROM SupplierMatrixDetail) FROM Item WHERE TypeID <> 4 AND LEFT(SKU, "
     "1) <> '$'"},
    {"SerialRecon.rpt", "Difference", "SELECT COUNT(*) FROM StockSerials WHERE SerialNo = 'TOO-MANY'"},
    {"SerialList.rpt", "State", "SELECT (SELECT COUNT(*) FROM StockSerials) + (SELECT COUNT(*) FROM TransactionEntry WHERE SerialNo > '')"},
    {"SupplierList.rpt", "Supplier", "SELECT COUNT(*) - 1 FROM Suppliers"},
    {"PurchaseOrderStatus.rpt", "Amount", "SELECT SUM(Qty * Cost) FROM PurchaseOrderItem"},
    {"PurchaseOrderStatus.rpt", "Received", "SELECT SUM(Quantity) FROM PurchaseOrderReceipt"},
    {"PurchaseOrderStatus.rpt", "Cancelled", "SELECT SUM(Quantity) FROM PurchaseOrderCancel"},
    {"PurchaseOrderStatus.rpt", "Still open",
     "SELECT SUM(i.Qty * i.Cost) - SUM(i.QtyRecvd * i.Cost) - SUM(i.QtyCanceled * i.Cost) FROM PurchaseOrderItem i"},
    {"PurchasesbyDept.rpt", "Total", kBought},
    {"PurchasesbyItem.rpt", "Total", kBought},
    {"PurchasesbyItem.rpt", "Other costs", "SELECT SUM(OtherCost) FROM PurchaseOrderReceipt"},
    {"PurchasesbySupplier.rpt", "Total", kBought},
    {"PurchasesbySupplier.rpt", "Received", "SELECT SUM(QtyRecvd) FROM PurchaseOrderItem"},
    {"PurchaseOrder.rpt", "Amount",
     "SELECT SUM(Cost * Qty) - SUM(Cost * QtyCanceled) FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)"},
    {"POHistory.rpt", "Received", "SELECT SUM(QtyRecvd) FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)"},
    {"POHistory.rpt", "Cancelled", "SELECT SUM(QtyCanceled) FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)"},
    {"POReceipt.rpt", "Amount",
     "SELECT SUM(Cost * QtyRecvd) + 1.5 FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)"},
    {"POCancel.rpt", "Amount", "SELECT SUM(Cost * QtyCanceled) FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)"},
};

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// The grand total below the column of that title, as it is printed.
std::string totalOf(const Report& report, const std::string& title) {
    const Outline& outline = report.outline();
    for (std::size_t i = 0; i < outline.columns().size(); ++i)
        if (oneLine(outline.columns()[i].definition->title) == title)
            return outline.totals(outline.grand(), outline.grand())[i];
    return "no column " + title;
}

// A number as the column prints it.
std::string shown(const Report& report, const std::string& title, const Value& value) {
    for (const Outline::ShownColumn& column : report.outline().columns())
        if (oneLine(column.definition->title) == title)
            return figureText(Figure::of(value).value_or(Figure()),
                              column.definition->total == Total::Count ? Format::Integer : column.kind.format);
    return "";
}

TEST(ReportFiles, TotalsAreTheSumsComputedAnotherWay) {
    const auto session = filesStore().session();
    std::map<std::string, std::unique_ptr<Report>> reports;
    for (const Control& control : kControls) {
        SCOPED_TRACE(std::string(control.file) + " " + control.column);
        auto& report = reports[control.file];
        if (report == nullptr)
            report = runFile(*session, control.file, parametersFor(control.file, *session));
        const Value expected = cellOf(*session, control.select);
        ASSERT_FALSE(expected.isNull());
        EXPECT_EQ(totalOf(*report, control.column), shown(*report, control.column, expected));
        EXPECT_NE(expected.toText(), "0");
    }
    for (const std::string& file : allFiles()) { // none is left out
        const Definition definition = readDefinition(kReportFiles / file);
        const bool adds = std::any_of(definition.columns.begin(), definition.columns.end(),
                                      [](const ColumnDefinition& column) { return column.total == Total::Sum; });
        EXPECT_TRUE(!adds || reports.count(file) == 1) << file << " adds up a column: reckon one of its totals otherwise, in kControls";
    }
}

TEST(ReportFiles, ACriterionNarrowsTheTotals) {
    const auto session = filesStore().session();
    const auto bikes = runFile(*session, "SalesByDept.rpt",
                               {"WHERE (Departments.Department = 'Bikes')AND ([Transaction].Time >= '10/1/2026') AND ([Transaction].Time "
                                "<= '10/31/2026 11:59:59 PM')",
                                "Item.Name", " DESC"});
    const Value expected = cellOf(
        *session,
        "SELECT SUM(e.Quantity * e.FullPrice - e.Discount) FROM TransactionEntry e INNER JOIN [Transaction] t ON t.TransactionNumber = "
        "e.TransactionNumber WHERE YEAR(t.Time) = 2026 AND MONTH(t.Time) = 10 AND e.DepartmentID = (SELECT DepartmentID FROM Departments "
        "WHERE "
        "Department = 'Bikes')");
    EXPECT_EQ(totalOf(*bikes, "Net sales"), shown(*bikes, "Net sales", expected));
    EXPECT_GT(expected.toCurrency(), Currency());
    const db::RowStore& rows = bikes->outline().rows();
    for (int row = 0; row < rows.rowCount(); ++row)
        EXPECT_EQ(rows.value(row, rows.columnOf("Department")).toText(), "Bikes");
}

TEST(ReportFiles, TheStockIsValuedAsAtAnyMoment) {
    const auto session = filesStore().session();
    for (const char* moment : {"9/15/2026 11:59:59 PM", "10/31/2026 11:59:59 PM", "11/20/2026 1:30:00 PM"}) {
        SCOPED_TRACE(moment);
        const std::string until = std::string("InventoryLedger.PostDate <= '") + moment + "'";
        const auto report = runFile(*session, "InvValuation.rpt", {"WHERE (" + until + ")"});
        EXPECT_EQ(totalOf(*report, "On hand"),
                  shown(*report, "On hand", cellOf(*session, "SELECT SUM(Qty) FROM InventoryLedger WHERE " + until)));
        // The same movement by movement: the average cost after the last one, times the sum of all.
        Figure value;
        for (const auto& row :
             query(*session, "SELECT l.Cost_wt * (SELECT SUM(m.Qty) FROM InventoryLedger m WHERE m.SKU = l.SKU AND m.MatrixSKU = "
                             "l.MatrixSKU AND m.LedgerID <= "
                             "l.LedgerID) FROM InventoryLedger l INNER JOIN (SELECT MAX(LedgerID) AS Last FROM InventoryLedger WHERE " +
                                 until + " GROUP BY SKU, MatrixSKU) newest ON newest.Last = l.LedgerID"))
            value = value + *Figure::of(row[0]);
        EXPECT_EQ(totalOf(*report, "Value at cost"), figureText(value, Format::Money));
    }
    EXPECT_NE(totalOf(*runFile(*session, "InvValuation.rpt", {"WHERE (InventoryLedger.PostDate <= '9/15/2026')"}), "Value at cost"),
              totalOf(*runFile(*session, "InvValuation.rpt", {}), "Value at cost"));
}

TEST(ReportFiles, ItemsWithoutASupplierTakeTheStoresOwnCondition) {
    const auto session = filesStore().session();
    const int all = runFile(*session, "InvWithNoSupplier.rpt", {})->outline().rows().rowCount();
    EXPECT_EQ(runFile(*session, "InvWithNoSupplier.rpt", {"where StoreOptions.Name>'a'", "StoreOptions.Name", "asc"})
                  ->outline()
                  .rows()
                  .rowCount(),
              all);
    const auto sorted = runFile(*session, "InvWithNoSupplier.rpt", {"", "Item.SKU", "ASC"});
    EXPECT_EQ(sorted->outline().rows().rowCount(), all);
}

// ------------------------------------------------------------------ labels

TEST(LabelFiles, PrintAsManyAsTheRuleSays) {
    const auto session = filesStore().session();
    const ui::FixedMeasure measure;
    const auto labels = [&](const std::string& file, const ParameterTexts& parameters) {
        const auto report = runFile(*session, file, parameters);
        return Labels(report->outline(), measure).labelCount();
    };
    const auto one = [&](const std::string& select) { return cellOf(*session, select).toInteger(); };
    const auto printers = query(*session, "sp_GetLabelPrinters");
    ASSERT_EQ(printers.size(), 5U);
    for (const auto& printer : printers) {
        SCOPED_TRACE(printer[0].toText());
        const auto file = [&](const std::string& rule) {
            return cellOf(*session, "sp_GetLabelRpt '" + printer[0].toText() + "', '" + rule + "'").toText();
        };
        EXPECT_EQ(labels(file("Stock"), {"WHERE (Stock.Quantity < '5')"}),
                  one("SELECT SUM(Quantity) FROM Stock WHERE Quantity < 5 AND Quantity > 0"));
        EXPECT_EQ(
            labels(file("Specific Quantity"), {"3", "WHERE (Departments.Department = 'Bikes')"}),
            3 * one("SELECT COUNT(*) FROM Item i INNER JOIN Stock s ON s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU INNER JOIN "
                    "Departments d ON d.DepartmentID = i.DepartmentID WHERE d.Department = 'Bikes' AND i.TypeID <> 4")); // nobody buys a
                                                                                                                         // parent
        EXPECT_EQ(labels(file("PO #"), {"WHERE (Item.Active = '1') AND purchaseorder_items.poid = 30001"}),
                  one("SELECT SUM(6 * i.Active) FROM Item i INNER JOIN PurchaseOrderItem l ON l.SKU = i.SKU AND l.MatrixSKU = i.MatrixSKU "
                      "WHERE l.POID = (SELECT MAX(POID) FROM PurchaseOrder)"));
        EXPECT_EQ(labels(cellOf(*session, "sp_GetRcptReport '" + printer[0].toText() + "'").toText(), {"30001"}), 18);
    }
    std::string rules;
    for (const auto& rule : query(*session, "sp_GetLabelQty"))
        rules += rule[0].toText() + ";";
    EXPECT_EQ(rules, "Stock;Specific Quantity;PO #;");
    EXPECT_EQ(one("sp_GetPO 30001"), one("SELECT MAX(POID) FROM PurchaseOrder"));
    EXPECT_TRUE(query(*session, "sp_GetPO 29999").empty());
    EXPECT_EQ(labels("CustLabels.rpt", {}), one("SELECT COUNT(*) FROM Customer WHERE Address > ''"));
}

TEST(DrawerAnalysis, ExpectsWhatWasCounted) {
    const auto session = filesStore().session();
    Currency expected;
    Currency counted;
    for (const auto& row : query(*session, "sp_RptDrawerTenderAnalysis")) {
        expected += row[5].toCurrency();
        counted += row[6].toCurrency();
        EXPECT_EQ(row[7].toCurrency(), Currency()) << row[1].toText();
    }
    EXPECT_EQ(expected, counted);
    EXPECT_GT(counted, Currency());
}

// ------------------------------------------------------------------ the examples of docs/reports.md

TEST(ReportExamples, RunAsTheyStand) {
    const auto session = filesStore().session();
    std::ifstream file("docs/reports.md");
    std::stringstream text;
    text << file.rdbuf();
    const std::string page = text.str();
    int examples = 0;
    for (std::size_t at = page.find("```toml\n"); at != std::string::npos; at = page.find("```toml\n", at + 8)) {
        const std::string block = page.substr(at + 8, page.find("```\n", at + 8) - at - 8);
        if (block.find("[query]") == std::string::npos)
            continue;
        ++examples;
        try {
            const auto report = Report::run(*session, parseDefinition(block, "example.rpt"), {"WHERE Item.Active = '1'"});
            EXPECT_GT(report->outline().rows().rowCount(), 0) << block;
            const ui::FixedMeasure measure;
            EXPECT_FALSE(allPages(*report, measure)->page(0).items.empty());
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what() << "\n" << block;
        }
    }
    EXPECT_GE(examples, 3);
}

} // namespace
} // namespace merchantry::reports
