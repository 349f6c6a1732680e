#include "app/modMain.h"
#include "app/storefile.h"
#include "catalog/frmItems.h"
#include "programs/screens.h"
#include "tests/scratchfolder.h"
#include "ui/gestures.h"
#include "ui/label.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/gridview.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

// The item screen under real keys, on a store with one item and two suppliers.
class ItemScreenTest : public testing::Test {
protected:
    ItemScreenTest() {
        const auto file = folder_ / "item.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.desk = &desk;
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        session.DataBroker = std::make_shared<app::DataBroker>(*session.provider);
        session.Conn->Execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('Bolt')");
        session.Conn->Execute("bsp_NewItem 'A1', 'A1'");
        session.Conn->Execute("UPDATE PriceMatrix SET Price = 5");
        session.Conn->Execute(
            "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority) VALUES ('A1', 'A1', 1, 2, 1), ('A1', "
            "'A1', 2, 3, 2)");
        bindDoors(desk);
        session.doors.ShowItemList = {};
        desk.enter([] { app::modMain().doors.CheckSKUs("A1|A1", false); });
        QApplication::setActiveWindow(&window());
    }
    ~ItemScreenTest() override { app::resetModMain(); }

    catalog::frmItems& form() { return desk.form<catalog::frmItems>(); }
    ui::FormWindow& window() { return *desk.window(form()); }
    ui::Grid& grid(const char* name) { return dynamic_cast<ui::Grid&>(*form().find(name)); }
    // Turns to the page, makes the cell current and gives the grid the keyboard.
    ui::GridView& stand(int page, const char* name, int row, int column) {
        desk.enter([&] {
            dynamic_cast<ui::TabSet&>(*form().find("tabItems")).setCurrent(page);
            ui::gestures::select(grid(name), row, column);
        });
        QCoreApplication::processEvents();
        return *dynamic_cast<ui::GridView*>(window().drawing(grid(name))->focusTarget());
    }
    // Keys to whatever has the keyboard; what they bring about is waited for.
    void keys(const char* text, Qt::Key last, Qt::KeyboardModifiers held = {}) {
        for (const char* key = text; *key != '\0'; ++key) // the first one opens the editor that gets the others
            QTest::keyClick(window().focusWidget(), *key);
        QTest::keyClick(window().focusWidget(), last, held);
        QCoreApplication::processEvents();
    }

    ScratchFolder folder_;
    ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
};

} // namespace

TEST_F(ItemScreenTest, FitsASmallScreenAndLeavesNoRoomForAHiddenPanel) {
    ui::Button& panel = dynamic_cast<ui::Button&>(*form().find("cmdPanel"));
    QWidget& tabs = *window().drawing(*form().find("tabItems"))->widget();
    const int margin = tabs.mapTo(&window(), QPoint(0, 0)).x();
    QCoreApplication::processEvents();
    EXPECT_LE(window().minimumSizeHint().width(), 800);
    EXPECT_LE(window().minimumSizeHint().height(), 600);
    EXPECT_EQ(window().width() - tabs.mapTo(&window(), QPoint(tabs.width(), 0)).x(), margin);
    const int width = window().width();
    desk.enter([&] { ui::gestures::press(panel); });
    QCoreApplication::processEvents();
    EXPECT_GT(window().width(), width);
    const QWidget& shown = *window().drawing(*form().find("fraPanel"))->widget();
    EXPECT_EQ(window().width() - shown.mapTo(&window(), QPoint(shown.width(), 0)).x(), margin);
    desk.enter([&] { ui::gestures::press(panel); });
    QCoreApplication::processEvents();
    EXPECT_EQ(window().width(), width);
}

TEST_F(ItemScreenTest, ALongSalesMessageStandsWhole) {
    auto& message = dynamic_cast<ui::Label&>(*form().find("lblSalesMsg"));
    desk.enter([&] {
        message.setCaption("Ask whether it is a gift, and offer to wrap it for free; returns are possible within thirty days with the "
                           "receipt, but not for opened cosmetics, food or earrings.");
        dynamic_cast<ui::TabSet&>(*form().find("tabItems")).setCurrent(6);
    });
    QCoreApplication::processEvents();
    const QWidget& shown = *window().drawing(message)->widget();
    EXPECT_GT(shown.width(), window().width() / 2);
    EXPECT_GE(shown.height(), shown.heightForWidth(shown.width()));
}

TEST_F(ItemScreenTest, ABreakIsTypedFromCellToCell) {
    ui::Grid& prices = grid("grdPriceMatrix");
    const ui::GridView& view = stand(2, "grdPriceMatrix", 1, 3);
    desk.enter([&] { ui::gestures::press(dynamic_cast<ui::Button&>(*form().find("cmdAddPriceMatrixItem"))); });
    QCoreApplication::processEvents();
    keys("12", Qt::Key_Tab); // reads the whole item again, and goes on in the same row
    EXPECT_EQ(prices.row(), 2);
    EXPECT_EQ(prices.col(), 4);
    EXPECT_EQ(view.editor(), nullptr);
    keys("4.50", Qt::Key_Return);
    EXPECT_EQ(prices.text(2, 3), "12");
    EXPECT_EQ(prices.text(2, 4), "$4.50");
    QTimer::singleShot(50, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
    keys("0", Qt::Key_Return); // refused by a box
    EXPECT_EQ(prices.text(2, 4), "$4.50");
    EXPECT_EQ(view.editor(), nullptr);
}

TEST_F(ItemScreenTest, SuppliersAreMovedAndSavedByKeyboardAlone) {
    ui::Grid& suppliers = grid("grdSuppliers");
    stand(1, "grdSuppliers", 2, 6);
    keys("", Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(suppliers.row(), 1);
    EXPECT_EQ(suppliers.text(1, 2), "Bolt");
    keys("B-1", Qt::Key_Up, Qt::AltModifier); // an edit under way is taken first
    EXPECT_EQ(suppliers.text(1, 6), "B-1");
    desk.enter([&] { ui::gestures::enter(*form().find("imgArrowDown")); });
    keys("", Qt::Key_Space);
    EXPECT_EQ(suppliers.text(2, 2), "Bolt");
    EXPECT_EQ(suppliers.row(), 2);
    window().close();
    EXPECT_EQ(desk.existing<catalog::frmItems>(), nullptr);
    const auto saved = app::modMain().Conn->Execute("SELECT SupID, PartNo FROM SupplierMatrixDetail ORDER BY Priority DESC");
    EXPECT_EQ((*saved)["SupID"].text(), "2");
    EXPECT_EQ((*saved)["PartNo"].text(), "B-1");
}

} // namespace merchantry::programs
