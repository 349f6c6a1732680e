#include "app/frmMain.h"
#include "app/modMain.h"
#include "app/storefile.h"
#include "catalog/frmItems.h"
#include "programs/screens.h"
#include "tests/scratchfolder.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

// The windows of the display as the window manager stacks them, the lowest first.
QList<WId> stacked() {
    QProcess asked;
    asked.start(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("_NET_CLIENT_LIST_STACKING")});
    asked.waitForFinished(-1);
    static const QRegularExpression number(QStringLiteral("0x[0-9a-f]+"));
    QList<WId> windows;
    for (auto found = number.globalMatch(QString::fromLatin1(asked.readAllStandardOutput())); found.hasNext();)
        windows.append(found.next().captured().toULongLong(nullptr, 16));
    return windows;
}

class StackingTest : public testing::Test {
protected:
    StackingTest() {
        const auto file = folder_ / "item.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.desk = &desk;
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        session.DataBroker = std::make_shared<app::DataBroker>(*session.provider);
        session.Conn->Execute("bsp_NewItem 'A1', 'A1'");
        bindDoors(desk);
        session.doors.ShowItemList = {};
    }
    ~StackingTest() override { app::resetModMain(); }

    ScratchFolder folder_;
    ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
};

} // namespace

// An item that is looked at stays in sight while the main window is used; only the window manager can tell.
TEST_F(StackingTest, AnItemNeverHidesBehindTheMainWindow) {
    auto& main = desk.form<app::frmMain>();
    desk.enter([&] {
        desk.show(main);
        app::modMain().doors.CheckSKUs("A1|A1", false);
    });
    ui::FormWindow& below = *desk.window(main);
    ui::FormWindow& item = *desk.window(desk.form<catalog::frmItems>());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&item));
    below.showMaximized();
    below.raise();
    below.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&below));
    QTest::qWait(200); // for the window manager to restack
    const QList<WId> windows = stacked();
    ASSERT_TRUE(windows.contains(below.winId()) && windows.contains(item.winId()));
    EXPECT_GT(windows.indexOf(item.winId()), windows.indexOf(below.winId()));
}

} // namespace merchantry::programs
