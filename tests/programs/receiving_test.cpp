#include "app/db/embedded/store.h"
#include "app/modMain.h"
#include "app/storefile.h"
#include "programs/screens.h"
#include "purchasing/frmPurchaseOrders_Recv.h"
#include "tests/scratchfolder.h"
#include "ui/button.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

// The receiving screen under real keys, on an order of two items: ten cups and four lamps.
class ReceivingTest : public testing::Test {
protected:
    ReceivingTest() {
        const auto file = folder_ / "orders.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.desk = &desk;
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        for (const db::Sql& statement : std::initializer_list<db::Sql>{
                 "INSERT INTO Suppliers (Supplier) VALUES ('Acme')", "bsp_NewItem 'CUP', 'CUP'", "bsp_NewItem 'LAMP', 'LAMP'",
                 "UPDATE Item SET Name = SKU", "sp_InsertPOHeader 1", "sp_InsertPOItem 1, 'CUP', 'CUP', 10, 2, 'A'",
                 "sp_InsertPOItem 1, 'LAMP', 'LAMP', 4, 20, 'B'", "sp_UpdatePONumber 1"})
            session.Conn->Execute(statement);
        session.doors.OrderReport = [this](std::int16_t, const std::string&, const std::string&) { ++posted; };
        form().PONumber = 1;
        desk.enter([this] { desk.show(form()); });
        QApplication::setActiveWindow(&window());
        QCoreApplication::processEvents();
    }
    ~ReceivingTest() override { app::resetModMain(); }

    purchasing::frmPurchaseOrders_Recv& form() { return desk.form<purchasing::frmPurchaseOrders_Recv>(); }
    ui::FormWindow& window() { return *desk.window(form()); }
    ui::Grid& lines() { return dynamic_cast<ui::Grid&>(*form().find("grdPOItems")); }
    // Keys to whatever has the keyboard; what they bring about is waited for.
    void type(const char* text) {
        for (const char* key = text; *key != '\0'; ++key)
            QTest::keyClick(window().focusWidget(), *key);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(window().focusWidget(), key, held);
        QCoreApplication::processEvents();
    }

    ScratchFolder folder_;
    ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
    int posted = 0;
};

} // namespace

TEST_F(ReceivingTest, AScannedCodeLeadsToTheQuantityAndPostsNothing) {
    type("lamp");
    key(Qt::Key_Return);
    EXPECT_EQ(lines().row(), 2);
    EXPECT_EQ(posted, 0);
    key(Qt::Key_Tab);
    type("3");
    key(Qt::Key_Return);
    EXPECT_EQ(lines().text(2, 5), "3");
    EXPECT_EQ(posted, 0);
}

TEST_F(ReceivingTest, WhatStandsInAnOpenCellIsPostedWhenOKIsPressedByItsLetter) {
    type("lamp");
    key(Qt::Key_Return);
    key(Qt::Key_Tab);
    type("1");
    key(Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return posted == 1; }));
    const auto received = app::openDirect("SELECT QtyRecvd FROM PurchaseOrderItem ORDER BY SKU");
    EXPECT_EQ(received->cell(1, 0).toInteger(), 1);
}

TEST_F(ReceivingTest, AQuantityThatIsNoneKeepsAnythingFromBeingPosted) {
    type("lamp");
    key(Qt::Key_Return);
    key(Qt::Key_Tab);
    type("x");
    int boxes = 0;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (QWidget* const box = QApplication::activeModalWidget()) {
            ++boxes;
            QTest::keyClick(box, Qt::Key_Return);
        }
    });
    closer.start(20);
    key(Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return boxes == 1; }));
    QTest::qWait(50);
    EXPECT_EQ(posted, 0);
    EXPECT_EQ(lines().text(2, 5), "4");
}

// A posting that another writer keeps waiting is given up at once: the screen stays, and posts when it is tried again.
TEST_F(ReceivingTest, GivingUpTheWaitPostsNothingAndKeepsTheScreen) {
    class NoPatience : public db::Waiter {
        bool goOn(std::chrono::milliseconds) override { return false; }
    } nobody;
    app::modMain().Conn->session().setWaiter(&nobody);
    const auto other = db::Store::open(folder_ / "orders.store")->session();
    db::NoResult none;
    other->execute("BEGIN TRAN UPDATE Stock SET Quantity = Quantity", none);
    std::string told;
    QTimer::singleShot(0, qApp, [&] {
        for (QWidget* box : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QDialog*>(box); dialog != nullptr && dialog->isVisible()) {
                for (const auto* text : dialog->findChildren<QLabel*>())
                    told += text->text().toStdString();
                dialog->accept();
            }
    });
    auto& ok = dynamic_cast<ui::Button&>(*form().find("cmdOK"));
    desk.enter([&] { ok.press(); });
    EXPECT_NE(told.find("Another program is saving to this store"), std::string::npos) << told;
    EXPECT_FALSE(desk.ending());
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(posted, 0);
    EXPECT_EQ(app::modMain().Conn->session().transactionDepth(), 0);
    other->execute("ROLLBACK", none);
    desk.enter([&] { ok.press(); });
    EXPECT_EQ(posted, 1);
}

} // namespace merchantry::programs
