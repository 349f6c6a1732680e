#include "app/modMain.h"
#include "app/storefile.h"
#include "catalog/itemlistform.h"
#include "catalog/itemwizardform.h"
#include "programs/screens.h"
#include "tests/scratchfolder.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

using namespace catalog;
using ui::gestures::clickHeading;

// The lookups as the desktop shows them, on a store with two matrix items.
class LookupsTest : public testing::Test {
protected:
    LookupsTest() {
        const auto file = folder_ / "lookups.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        session.Conn->Execute("INSERT INTO Item (SKU, MatrixSKU, Name, TypeID) VALUES ('SHIRT', '4006381333931', 'White', 2), "
                              "('SHIRT', '4006381333948', 'Black', 2)");
    }
    ~LookupsTest() override { app::resetModMain(); }

    // One run of the program.
    struct Run {
        Run() {
            app::modMain().desk = &desk;
            bindDoors(desk);
        }
        ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
        frmItemMatrixLookupWiz& lookup() {
            auto& form = desk.form<frmItemMatrixLookupWiz>();
            desk.enter([&] {
                form.CustomizeForm("Item Matrix Lookup", true, true, "Matrix");
                desk.show(form);
            });
            return form;
        }
    };
    static ui::Grid& grid(const ui::Form& form) { return dynamic_cast<ui::Grid&>(*form.find("grdItems")); }

    ScratchFolder folder_;
};

} // namespace

TEST_F(LookupsTest, NoKeyOfAScannerIsLostWhileASearchRuns) {
    Run run;
    auto& form = run.lookup();
    ui::FormWindow* const window = run.desk.window(form);
    QApplication::setActiveWindow(window);
    auto* const box = window->findChild<QLineEdit*>(QStringLiteral("txtSearchCriteria"));
    ASSERT_NE(box, nullptr);
    // A code and Enter, as fast as a scanner sends them; the search that they start runs between the keys of the next code.
    QTest::keyClicks(box, QStringLiteral("4006381333931"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(box->selectedText(), QStringLiteral("4006381333931"));
    QTest::qWait(700);
    EXPECT_EQ(grid(form).row(), 1);
    int keys = 0;
    for (const char* key = "4006381333948"; *key != '\0'; ++key, ++keys)
        QTest::keyClick(box, *key, Qt::NoModifier, keys < 6 ? 25 : 5);
    EXPECT_EQ(box->text(), QStringLiteral("4006381333948"));
    EXPECT_TRUE(box->hasFocus());
    EXPECT_TRUE(QTest::qWaitFor([&] { return grid(form).row() == 2; }, 2000));
    run.desk.enter([&] { form.unload(); });
}

TEST_F(LookupsTest, TheSortIsRememberedFromOneRunToTheNext) {
    {
        Run run;
        auto& form = run.lookup();
        EXPECT_EQ(grid(form).text(1, 2), "White");
        run.desk.enter([&] { clickHeading(grid(form), 2); });
        EXPECT_EQ(grid(form).text(1, 2), "Black");
        run.desk.enter([&] { form.unload(); });
        auto& list = run.desk.form<frmItemList>();
        run.desk.enter([&] { list.ShowFormAddNewVisible(); });
        EXPECT_EQ(grid(list).text(1, 2), "White");
        run.desk.enter([&] { clickHeading(grid(list), 2); });
        run.desk.enter([&] { list.unload(); });
    }
    Run run;
    auto& form = run.lookup();
    EXPECT_EQ(grid(form).text(1, 2), "Black");
    run.desk.enter([&] { form.unload(); });
    auto& list = run.desk.form<frmItemList>();
    run.desk.enter([&] { list.ShowFormAddNewVisible(); });
    EXPECT_EQ(grid(list).text(1, 2), "Black");
    run.desk.enter([&] { list.unload(); });
}

} // namespace merchantry::programs
