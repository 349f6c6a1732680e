#include "tests/reports/files/filesstore.h"
#include "tests/scratchfolder.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <QGuiApplication>
#include <QProcess>
#include <gtest/gtest.h>

#include <algorithm>

namespace merchantry::reports {
namespace {

// What another program reads from our pages: the text of a PDF, the barcodes of a page made into pixels.
class Printed : public testing::Test {
protected:
    void print(const std::string& file, const ParameterTexts& parameters) {
        session = filesStore().session();
        report = Report::run(*session, readDefinition(kReportFiles / file), parameters);
        pages = allPages(*report, measure);
        ASSERT_EQ(ui::writePdf(ui::toQt(pdf), ui::toQt(file), *pages, {}), QString());
    }
    // What the program says, its lines.
    static QStringList linesOf(const QString& program, const QStringList& arguments) {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000)) << program.toStdString() << " is not installed (packages.txt)";
        return QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    // The codes of one page, sorted; an EAN-13 that begins with 0 is a UPC-A.
    std::vector<std::string> codesOn(int page) {
        const QString picture = ui::toQt((folder / "page").string());
        const QString number = QString::number(page + 1);
        linesOf(QStringLiteral("pdftoppm"),
                {QStringLiteral("-r"), QStringLiteral("300"), QStringLiteral("-gray"), QStringLiteral("-png"),
                 QStringLiteral("-singlefile"), QStringLiteral("-f"), number, QStringLiteral("-l"), number, ui::toQt(pdf), picture});
        std::vector<std::string> codes;
        for (const QString& line :
             linesOf(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"), picture + QStringLiteral(".png")}))
            codes.push_back(withoutZero(line.toStdString()));
        std::sort(codes.begin(), codes.end());
        return codes;
    }
    static std::string withoutZero(const std::string& code) { return code.size() == 13 && code.front() == '0' ? code.substr(1) : code; }
    // The codes that the labels of a page should carry, each once a label.
    std::vector<std::string> wantedOn(int page) const {
        const LabelDefinition& label = *report->definition().label;
        const int aPage = label.columns * label.rows;
        const db::RowStore& rows = report->outline().rows();
        std::vector<std::string> all;
        for (int row = 0; row < rows.rowCount(); ++row)
            for (int copy = 0; copy < rows.value(row, rows.columnOf("Copies")).toInteger(); ++copy)
                all.push_back(withoutZero(rows.value(row, rows.columnOf("Code")).toText()));
        const auto first = all.begin() + std::min<std::ptrdiff_t>(page * aPage, static_cast<std::ptrdiff_t>(all.size()));
        const auto last = all.begin() + std::min<std::ptrdiff_t>((page + 1) * aPage, static_cast<std::ptrdiff_t>(all.size()));
        std::vector<std::string> codes(first, last);
        std::sort(codes.begin(), codes.end());
        return codes;
    }

    ScratchFolder folder;
    std::string pdf = (folder / "report.pdf").string();
    ui::QtTextMeasure measure;
    std::unique_ptr<db::Session> session;
    std::unique_ptr<Report> report;
    std::unique_ptr<ui::Pages> pages;
};

TEST_F(Printed, BarcodesScanOnEverySizeOfLabel) {
    // Bikes have codes of letters and digits, the others those of their makers.
    for (const char* file :
         {"ItemLabels30Qty.rpt", "ItemLabels80Qty.rpt", "ItemLabelsA4Qty.rpt", "ItemRollLargeQty.rpt", "ItemRollSmallQty.rpt"})
        for (const char* department : {"Bikes", "Garden"}) {
            SCOPED_TRACE(std::string(file) + " " + department);
            print(file, {"1", std::string("WHERE Departments.Department = '") + department + "'"});
            const auto wanted = wantedOn(0);
            EXPECT_FALSE(wanted.empty());
            EXPECT_EQ(codesOn(0), wanted);
        }
}

TEST_F(Printed, ThePdfHoldsTheTextOfEveryLine) {
    for (const char* file : {"PurchaseOrder.rpt", "SalesByDept.rpt", "TenderAnalysis.rpt", "CustLabels.rpt"}) {
        SCOPED_TRACE(file);
        print(file, parametersFor(file, *filesStore().session()));
        for (const int number : {0, pages->count() - 1}) {
            const QString page = QString::number(number + 1);
            QString text = linesOf(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), QStringLiteral("-f"), page,
                                                                 QStringLiteral("-l"), page, ui::toQt(pdf), QStringLiteral("-")})
                               .join(QLatin1Char(' '));
            text = text.simplified();
            for (const ui::PageItem& item : pages->page(number).items)
                EXPECT_TRUE(item.kind != ui::PageItem::Kind::Text || text.contains(ui::toQt(item.text).simplified())) << item.text << "\n"
                                                                                                                      << text.toStdString();
        }
    }
}

} // namespace
} // namespace merchantry::reports

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
