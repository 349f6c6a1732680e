#include "tests/ui/qt/sampleforms.h"
#include "ui/longwork.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/memory.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

class DeskTest : public testing::Test {
protected:
    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};

    // Does this in the loop that runs by then.
    static void soon(std::function<void()> act) { QTimer::singleShot(0, qApp, std::move(act)); }
    static QDialog* box() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = dynamic_cast<QDialog*>(widget); dialog != nullptr && dialog->isVisible())
                return dialog;
        return nullptr;
    }
    static void pressInBox(const QString& caption) {
        for (auto* button : box()->findChildren<QPushButton*>())
            if (button->text() == caption)
                button->click();
    }
};

} // namespace

TEST_F(DeskTest, AModalShowReadsTopToBottom) {
    std::vector<std::string> order;
    auto& dialog = desk.form<sample::SmallDialog>();
    soon([&] {
        order.push_back("shown");
        EXPECT_EQ(desk.top(), &dialog);
        EXPECT_TRUE(desk.window(dialog)->isModal());
        dynamic_cast<QPushButton*>(desk.window(dialog)->drawing(dialog.cmdOK)->widget())->click();
    });
    desk.enter([&] {
        desk.showModal(dialog);
        order.push_back("back");
    });
    EXPECT_EQ(order, (std::vector<std::string>{"shown", "back"}));
    EXPECT_TRUE(dialog.closed());
    EXPECT_EQ(desk.window(dialog), nullptr);
}

TEST_F(DeskTest, BoxesAnswerByButtonKeyAndCloseBox) {
    const auto asked = [&](MessageButtons buttons, std::function<void()> act) {
        soon(std::move(act));
        return desk.message("Delete?", "Items", MessageIcon::Question, buttons);
    };
    EXPECT_EQ(asked(MessageButtons::YesNo, [] { pressInBox("&No"); }), Answer::No);
    EXPECT_EQ(asked(MessageButtons::YesNo, [] { QTest::keyClick(box(), Qt::Key_Return); }), Answer::Yes);
    EXPECT_EQ(asked(MessageButtons::YesNo, [] { QTest::keyClick(box(), Qt::Key_Escape); }), Answer::No);
    EXPECT_EQ(asked(MessageButtons::YesNoCancel, [] { box()->close(); }), Answer::Cancel);
    EXPECT_EQ(asked(MessageButtons::OkCancel, [] { QTest::keyClick(box(), Qt::Key_Escape); }), Answer::Cancel);
    EXPECT_EQ(asked(MessageButtons::Ok, [] { QTest::keyClick(box(), Qt::Key_Escape); }), Answer::Ok);
}

TEST_F(DeskTest, AnInputBoxGivesTheTextOrNothing) {
    soon([] {
        box()->findChild<QLineEdit*>()->setText("85123A");
        pressInBox("OK");
    });
    EXPECT_EQ(desk.input({"Enter SKU", "Item", "1"}), "85123A");
    soon([] { pressInBox("Cancel"); });
    EXPECT_EQ(desk.input({"Enter SKU", "Item", "1"}), std::nullopt);
}

// The name typed has a dot and no ending; the type chosen gives it, and a file that is there is not written over without a question.
TEST_F(DeskTest, AFileToSaveGetsTheEndingOfTheTypeChosen) {
    const QTemporaryDir folder;
    const FileDialog wish{"Export Report", "PDF (*.pdf)|*.pdf|Values (*.csv)|*.csv", folder.path().toStdString(), true, "Sales"};
    const auto chooseValues = [] {
        auto* const types = box()->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        types->setCurrentIndex(1);
        emit types->activated(1);
        auto* const name = box()->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        EXPECT_TRUE(name->text().startsWith("Sales")) << name->text().toStdString();
        name->setText(QStringLiteral("Sales 3.4"));
        box()->accept();
    };
    soon(chooseValues);
    EXPECT_EQ(desk.file(wish), folder.filePath("Sales 3.4.csv").toStdString());

    QFile there(folder.filePath("Sales 3.4.csv"));
    ASSERT_TRUE(there.open(QIODevice::WriteOnly));
    int asked = 0;
    soon([&] {
        soon([&] {
            ++asked;
            soon([] { box()->reject(); }); // the file dialogue, which comes again
            pressInBox("&No");
        });
        chooseValues();
    });
    EXPECT_EQ(desk.file(wish), std::nullopt);
    EXPECT_EQ(asked, 1);
}

// A procedure deep inside two windows ends the process: every waiting one is unwound, none goes on.
TEST_F(DeskTest, AnEndLeavesEveryNestedLoop) {
    std::vector<std::string> went;
    auto& outer = desk.form<sample::ItemSheet>();
    auto& inner = desk.form<sample::SmallDialog>();
    outer.cmdAdjust.click = [&] {
        soon([&] { dynamic_cast<QPushButton*>(desk.window(inner)->drawing(inner.cmdOK)->widget())->click(); });
        desk.showModal(inner);
        went.push_back("after the inner window");
    };
    inner.cmdOK.click = [&] { desk.end(); };
    const int code = desk.run([&] {
        soon([&] { dynamic_cast<QPushButton*>(desk.window(outer)->drawing(outer.cmdAdjust)->widget())->click(); });
        desk.showModal(outer);
        went.push_back("after the outer window");
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(went, std::vector<std::string>{});
}

TEST_F(DeskTest, AFailureEndsTheRunWithItsMessage) {
    auto& form = desk.form<sample::ItemSheet>();
    form.cmdAdjust.click = [] { throw std::runtime_error("Object required"); };
    QString said;
    const int code = desk.run([&] {
        desk.show(form);
        soon([&] {
            soon([&] {
                said = box()->findChild<QLabel*>(QStringLiteral("text"))->text();
                pressInBox("OK");
            });
            dynamic_cast<QPushButton*>(desk.window(form)->drawing(form.cmdAdjust)->widget())->click();
        });
    });
    EXPECT_EQ(code, 1);
    EXPECT_EQ(said, "Run-time error: Object required");
}

TEST_F(DeskTest, TheRunEndsWithTheLastWindow) {
    const int code = desk.run([&] {
        auto& first = desk.form<sample::ItemSheet>();
        desk.show(first);
        soon([&] {
            desk.enter([&] {
                desk.show(desk.form<sample::Shell>());
                first.unload();
            });
            soon([&] { desk.window(*desk.existing<sample::Shell>())->close(); });
        });
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(desk.existing<sample::Shell>(), nullptr);
}

TEST_F(DeskTest, WindowSizesAreRemembered) {
    auto& form = desk.form<sample::OrderList>();
    desk.show(form);
    desk.window(form)->resize(730, 610);
    form.unload();
    auto& again = desk.form<sample::OrderList>();
    desk.show(again);
    EXPECT_EQ(desk.window(again)->size(), QSize(730, 610));
    EXPECT_EQ(again.width(), 730 * kTwipsPerPixel);
}

// A screen that opens with less on it, in another mode, must not leave that size to the one with more.
TEST_F(DeskTest, ASizeThatNobodyChoseIsNotRemembered) {
    auto& form = desk.form<sample::OrderList>();
    desk.show(form);
    form.unload();
    EXPECT_EQ(rememberedSize("frmOrderList", QSize()), QSize());
}

// A day at a small screen made every window small on the large one, too.
TEST_F(DeskTest, ASmallScreenDoesNotMakeALargeWindowSmallForEver) {
    rememberSizeOf("frmOrderList", QSize(9000, 610));
    auto& form = desk.form<sample::OrderList>();
    desk.show(form);
    EXPECT_LT(desk.window(form)->width(), 9000);
    form.unload();
    EXPECT_EQ(rememberedSize("frmOrderList", QSize()), QSize(9000, 610));
    auto& again = desk.form<sample::OrderList>();
    desk.show(again);
    desk.window(again)->resize(730, 610); // by its user
    again.unload();
    EXPECT_EQ(rememberedSize("frmOrderList", QSize()), QSize(730, 610));
}

TEST_F(DeskTest, AFloatingPanelStandsInItsOwnersWindow) {
    auto& list = desk.form<sample::OrderList>();
    desk.enter([&] { desk.show(list); });
    auto& panel = desk.form<sample::SearchPanel>();
    desk.enter([&] { desk.showFloating(panel); });
    QApplication::setActiveWindow(desk.window(list));
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.top(), &list);
    EXPECT_EQ(desk.window(panel)->window(), desk.window(list));
    auto* line = dynamic_cast<QLineEdit*>(desk.window(panel)->drawing(panel.txtText)->widget());
    QTest::mouseClick(line, Qt::LeftButton);
    QTest::keyClicks(line, "bike");
    EXPECT_EQ(panel.txtText.text(), "bike");
    EXPECT_EQ(panel.focused(), &panel.txtText);
    QTest::keyClick(line, Qt::Key_Down);
    QTest::keyClick(line, Qt::Key_Down);
    EXPECT_EQ(list.grdOrders.row(), 2);
    EXPECT_EQ(panel.txtText.text(), "bike");
    list.grdOrders.editable = false;
    QTest::keyClicks(desk.window(list)->focusWidget(), "s");
    EXPECT_EQ(panel.txtText.text(), "bikes");
    EXPECT_TRUE(line->hasFocus());
    desk.enter([&] { list.cmdView.setFocus(); });
    QTest::keyClicks(desk.window(list)->focusWidget(), "!");
    EXPECT_EQ(panel.txtText.text(), "bikes!");
    list.unload();
    panel.unload();
    EXPECT_EQ(desk.window(panel), nullptr);
}

TEST_F(DeskTest, TimersFireUntilTheyAreStopped) {
    auto& form = desk.form<sample::ItemSheet>();
    int fired = 0;
    form.tmrDelay.fire = [&] {
        if (++fired == 2)
            form.tmrDelay.stop();
    };
    desk.show(form);
    form.tmrDelay.start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return fired == 2; }));
    EXPECT_FALSE(form.tmrDelay.running());
}

// The window of a long work paints and takes clicks while the work goes on; its Stop ends it, and nothing below can be used meanwhile.
TEST_F(DeskTest, ALongWorkCanBeStopped) {
    int steps = 0;
    bool finished = true;
    QTimer::singleShot(300, qApp, [&] {
        Form* const progress = desk.top();
        ASSERT_NE(progress, nullptr);
        ASSERT_EQ(progress->name(), "frmProgress");
        EXPECT_TRUE(desk.window(*progress)->isModal());
        for (auto* button : desk.window(*progress)->findChildren<QPushButton*>())
            button->click();
    });
    desk.enter([&] {
        finished = longWork(desk, "Working", [&] {
            QThread::msleep(10);
            return ++steps / 1000;
        });
    });
    EXPECT_FALSE(finished);
    EXPECT_GT(steps, 10);
    EXPECT_LT(steps, 5000);
    EXPECT_EQ(desk.top(), nullptr);
}

// While a statement waits for another program there is an hourglass, then a box that gives up; nothing of a screen runs meanwhile.
TEST_F(DeskTest, AWaitForTheStoreCanBeGivenUp) {
    using namespace std::chrono_literals;
    EXPECT_TRUE(desk.waitForStore(10ms));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(desk.waitForStore(500ms));
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(box(), nullptr);
    EXPECT_FALSE(desk.enter([] { ADD_FAILURE() << "a screen's procedure ran within a statement"; }));
    EXPECT_TRUE(desk.waitForStore(3s));
    ASSERT_NE(box(), nullptr);
    EXPECT_EQ(box()->windowModality(), Qt::ApplicationModal);
    pressInBox("&Give up");
    EXPECT_FALSE(desk.waitForStore(3100ms));
    desk.storeIsFree();
    EXPECT_EQ(box(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    bool ran = false;
    desk.enter([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(DeskTest, WaitCursorsNest) {
    desk.waitCursor(true);
    desk.waitCursor(true);
    desk.waitCursor(false);
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    desk.waitCursor(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

} // namespace merchantry::ui
