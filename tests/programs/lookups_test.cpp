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

TEST_F(LookupsTest, TheGridTakesTheRoomAndTheWindowKeepsItsDesignSize) {
    Run run;
    auto& form = run.lookup();
    ui::FormWindow* const window = run.desk.window(form);
    QCoreApplication::processEvents();
    const QSize design = window->size();
    auto* const drawn = window->drawing(grid(form))->widget();
    auto* const edit = window->drawing(*form.find("cmdEdit"))->widget();
    auto* const add = window->drawing(*form.find("cmdAddNewItem"))->widget();
    const QRect gridThen = drawn->geometry();
    const QPoint editThen = edit->pos();
    const QPoint addThen = add->pos();
    for (const QSize more : {QSize(150, 90), QSize(40, 10)}) {
        window->resize(design + more);
        QCoreApplication::processEvents();
        EXPECT_EQ(drawn->geometry(), QRect(gridThen.topLeft(), gridThen.size() + more));
        EXPECT_EQ(edit->pos(), editThen + QPoint(more.width(), more.height()));
        EXPECT_EQ(add->pos(), addThen + QPoint(0, more.height()));
    }
    window->resize(design - QSize(100, 100));
    QCoreApplication::processEvents();
    EXPECT_EQ(window->size(), design);
    EXPECT_EQ(drawn->geometry(), gridThen);
    window->resize(design + QSize(150, 90));
    QCoreApplication::processEvents();
    run.desk.enter([&] { form.unload(); });
    // The size is remembered; the design size stays the least.
    auto& again = run.lookup();
    QCoreApplication::processEvents();
    EXPECT_EQ(run.desk.window(again)->size(), design + QSize(150, 90));
    EXPECT_EQ(run.desk.window(again)->drawing(grid(again))->widget()->size(), gridThen.size() + QSize(150, 90));
    run.desk.window(again)->resize(design);
    QCoreApplication::processEvents();
    EXPECT_EQ(run.desk.window(again)->size(), design);
    run.desk.enter([&] { again.unload(); });
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
