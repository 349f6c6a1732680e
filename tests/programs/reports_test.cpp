#include "app/modMain.h"
#include "app/storefile.h"
#include "programs/screens.h"
#include "reports/frmReport_Generate.h"
#include "reports/reportexport.h"
#include "tests/scratchfolder.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <fstream>

namespace merchantry::programs {
namespace {

// Reports under the real loop, on a store with enough items to make a query that takes minutes.
class ReportsTest : public testing::Test {
protected:
    ReportsTest() {
        const auto file = folder_ / "reports.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.desk = &desk;
        session.configFile = folder_ / "databases.toml";
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        session.DataBroker = std::make_shared<app::DataBroker>(*session.provider);
        session.Conn->Execute("DECLARE @n int SET @n = 1 WHILE @n <= 700 BEGIN INSERT INTO Item (SKU, MatrixSKU, Name, TypeID) VALUES "
                              "('A' + CAST(@n AS varchar(10)), 'A', 'Article ' + CAST(@n AS varchar(10)), 6) SET @n = @n + 1 END");
        bindDoors(desk);
    }
    ~ReportsTest() override { app::resetModMain(); }

    std::string report(const std::string& sql) {
        const auto file = folder_ / "own.rpt";
        std::ofstream(file) << "title = \"Own\"\n[query]\nsql = \"\"\"" << sql << "\"\"\"\n[[column]]\nfield = \"Name\"\nwrap = true\n";
        return file.string();
    }
    ui::Form* openForm(const std::string& name) {
        for (ui::Form* form : desk.openForms())
            if (form->name() == name)
                return form;
        return nullptr;
    }

    ScratchFolder folder_;
    ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
};

} // namespace

TEST_F(ReportsTest, ALongQueryIsStoppedAndBlocksNothing) {
    const std::string file = report("SELECT a.Name FROM Item a CROSS JOIN Item b CROSS JOIN Item c WHERE a.Name + b.Name + c.Name = 'x'");
    int beats = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] {
        ++beats;
        ui::Form* progress = openForm("frmProgress");
        if (beats >= 10 && progress != nullptr)
            desk.enter([progress] { ui::gestures::press(dynamic_cast<ui::Button&>(*progress->find("cmdStop"))); });
    });
    beat.start(20);
    desk.enter([&] { app::modMain().doors.CustomReport(file); });
    EXPECT_GE(beats, 10); // the loop went on while the store was at work
    EXPECT_EQ(openForm("frmReport_Generate"), nullptr);
    EXPECT_EQ(desk.statusText(), "The report was stopped.");
    EXPECT_FALSE(desk.ending());
    // The store goes on as if nothing had been.
    EXPECT_EQ(app::modMain().Conn->Execute("SELECT COUNT(*) AS n FROM Item")->cell(0, 0).toInteger() >= 700, true);
}

TEST_F(ReportsTest, TheFirstPageShowsWhileOthersAreLaidOut) {
    const std::string file = report("SELECT TOP 200000 a.Name FROM Item a CROSS JOIN Item b");
    desk.enter([&] { app::modMain().doors.CustomReport(file); });
    ui::Form* form = openForm("frmReport_Generate");
    ASSERT_NE(form, nullptr);
    auto& view = dynamic_cast<ui::ReportView&>(*form->find("CRViewer1"));
    const int first = view.pageCount();
    EXPECT_GE(first, 1);
    EXPECT_FALSE(view.pages()->complete());
    QTest::keyClick(desk.window(*form)->focusWidget(), Qt::Key_PageDown);
    EXPECT_EQ(view.page(), 2); // turned while more were to come
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.pages()->complete(); }, 60000));
    EXPECT_GT(view.pageCount(), first);
    EXPECT_EQ(view.page(), 2);
    QTest::keyClick(desk.window(*form)->focusWidget(), Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view.page(), view.pageCount());
    desk.enter([form] { form->unload(); });
}

TEST_F(ReportsTest, CriteriaFitASmallScreen) {
    for (const char* key : {"DailySales", "ItemLabels"}) {
        desk.enter([key] { app::modMain().doors.ReportCriteria(key); });
        QCoreApplication::processEvents();
        const ui::FormWindow& window = *desk.window(*openForm("frmReportCriteria"));
        EXPECT_LE(window.minimumSizeHint().width(), 800) << key;
        EXPECT_LE(window.minimumSizeHint().height(), 600) << key;
    }
}

TEST_F(ReportsTest, APdfComesWholeOrNotAtAll) {
    const reports::RptFile file(report("SELECT Name FROM Item {where}"));
    auto run = file.run(desk);
    ASSERT_NE(run, nullptr);
    reports::ReportPages pages(std::move(run), desk.textMeasure());
    while (!pages.layOut(std::chrono::milliseconds(50))) {
    }
    const auto target = folder_ / "items.pdf";
    std::ofstream(target) << "what stood there";
    {
        const auto begun = desk.pdf(target, "Items");
        begun->put(pages.pages().page(0)); // and not finished
    }
    std::string content;
    std::getline(std::ifstream(target), content);
    EXPECT_EQ(content, "what stood there");
    desk.enter([&] { EXPECT_TRUE(reports::exportReport(desk, pages, folder_ / "items")); }); // a PDF without an ending
    std::getline(std::ifstream(target), content);
    EXPECT_TRUE(content.starts_with("%PDF-"));
    EXPECT_THROW(reports::exportReport(desk, pages, folder_ / "none" / "items.pdf"), std::runtime_error);
    EXPECT_THROW(reports::exportReport(desk, pages, folder_ / "none" / "items.csv"), std::runtime_error);
}

} // namespace merchantry::programs
