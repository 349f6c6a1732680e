#include "tests/ui/qt/sampleforms.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/gridview.h"
#include "ui/qt/memory.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

using Events = std::vector<std::string>;

class GridTest : public testing::Test {
protected:
    void SetUp() override {
        desk.enter([this] { desk.show(form); });
        QApplication::setActiveWindow(desk.window(form));
        QCoreApplication::processEvents();
        form.events.clear();
    }
    GridView& view() { return *dynamic_cast<GridView*>(desk.window(form)->findChild<QTableView*>()); }
    QPoint at(int row, int column) { return view().visualRect(view().model()->index(row - 1, column)).center(); }
    void press(int row, int column) { QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, at(row, column)); }
    QColor ground(int row, int column) {
        const QRect cell = view().visualRect(view().model()->index(row - 1, column));
        return view().viewport()->grab().toImage().pixelColor((cell.topLeft() + QPoint(8, 7)) * view().devicePixelRatioF());
    }

    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};
    sample::OrderList& form = desk.form<sample::OrderList>();
};

} // namespace

TEST_F(GridTest, AClickSelectsBeforeItClicks) {
    press(2, 1);
    EXPECT_EQ(form.events, (Events{"row 2,1", "click"}));
    EXPECT_EQ(form.focused(), &form.grdOrders);
    QTest::keyClick(&view(), Qt::Key_Down);
    QTest::keyClick(&view(), Qt::Key_Right);
    EXPECT_EQ(form.grdOrders.row(), 3);
    EXPECT_EQ(form.grdOrders.col(), 2);
}

TEST_F(GridTest, ARowThatMayNotBeLeftStays) {
    press(1, 1);
    form.grdOrders.beforeRowColChange = [](int, int, bool& cancel) { cancel = true; };
    QTest::keyClick(&view(), Qt::Key_Down);
    press(4, 1);
    EXPECT_EQ(form.grdOrders.row(), 1);
}

TEST_F(GridTest, TheContextMenuCopiesAllRowsAsATable) {
    QTimer::singleShot(0, qApp, [] {
        auto* const menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* entry : menu->actions())
            if (entry->text() == QStringLiteral("Copy All Rows"))
                menu->setActiveAction(entry);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    emit view().customContextMenuRequested(at(3, 1));
    EXPECT_EQ(form.grdOrders.row(), 3);
    const QMimeData* const copied = QApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->text().count(QLatin1Char('\n')), form.grdOrders.dataRows());
    EXPECT_TRUE(copied->html().contains(QStringLiteral("<th>")));
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString::fromStdString(form.grdOrders.text(3, 1)));
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QApplication::clipboard()->text().count(QLatin1Char('\n')), form.grdOrders.dataRows());
}

TEST_F(GridTest, EditingInTheCellRunsEveryStep) {
    press(2, 1);
    form.events.clear();
    QTest::keyClick(&view(), Qt::Key_F2);
    auto* line = dynamic_cast<QLineEdit*>(view().editor());
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), "Trikes, Inc.");
    line->selectAll();
    QTest::keyClicks(line, "Tr");
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(form.events, (Events{"before 2,1", "typed T", "typed Tr", "validate Tr", "after Tr"}));
    EXPECT_EQ(form.grdOrders.text(2, 1), "Tr");
    EXPECT_EQ(view().editor(), nullptr);
    EXPECT_TRUE(view().hasFocus());
}

TEST_F(GridTest, ARefusedEditKeepsTheEditorAndTheWayOut) {
    press(2, 1);
    QTest::keyClicks(&view(), "b"); // typing begins the edit
    auto* line = dynamic_cast<QLineEdit*>(view().editor());
    ASSERT_NE(line, nullptr);
    QTest::keyClicks(line, "ad");
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(view().editor(), line);
    EXPECT_TRUE(form.grdOrders.editing());
    QTest::mouseClick(desk.window(form)->drawing(form.cmdReceive)->widget(), Qt::LeftButton);
    EXPECT_EQ(form.focused(), &form.grdOrders) << "the click elsewhere waits for a cell that is right";
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_EQ(view().editor(), nullptr);
    EXPECT_EQ(form.grdOrders.text(2, 1), "Trikes, Inc.");
    EXPECT_FALSE(form.closed()) << "Escape ended the edit only";
}

TEST_F(GridTest, LeavingTheGridTakesTheEditOver) {
    press(2, 1);
    QTest::keyClicks(&view(), "N");
    QTest::keyClicks(view().editor(), "ew");
    QTest::mouseClick(desk.window(form)->drawing(form.cmdReceive)->widget(), Qt::LeftButton);
    EXPECT_EQ(form.grdOrders.text(2, 1), "New");
    EXPECT_EQ(form.events.back(), "receive");
}

TEST_F(GridTest, ACellMayRefuseItsEdit) {
    press(2, 0);
    form.events.clear();
    QTest::keyClick(&view(), Qt::Key_F2);
    EXPECT_EQ(form.events, Events{"before 2,0"});
    EXPECT_EQ(view().editor(), nullptr);
}

TEST_F(GridTest, ChecksTurnAndCombosChoose) {
    press(2, 7);
    EXPECT_EQ(form.grdOrders.text(2, 7), "1");
    QTest::keyClick(&view(), Qt::Key_Space);
    EXPECT_EQ(form.grdOrders.text(2, 7), "0");
    press(3, 6);
    QTest::keyClick(&view(), Qt::Key_F2);
    auto* combo = dynamic_cast<QComboBox*>(view().editor());
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(combo->currentText(), "Closed");
    QTest::keyClick(combo, Qt::Key_Up);
    EXPECT_EQ(form.grdOrders.rawText(3, 6), "P");
    EXPECT_EQ(form.grdOrders.text(3, 6), "Partial");
}

TEST_F(GridTest, HeadingsAndDoubleClicksAreHeard) {
    const QHeaderView& heading = *view().horizontalHeader();
    QTest::mouseClick(heading.viewport(), Qt::LeftButton, {}, QPoint(heading.sectionViewportPosition(1) + 20, 10));
    EXPECT_EQ(form.events, (Events{"row 1,1", "click"}));
    form.grdOrders.dblClick = [this] { form.events.push_back("double"); };
    press(2, 1);
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, at(2, 1));
    EXPECT_EQ(form.events.back(), "double");
    form.events.clear();
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(form.events, Events{"double"});
}

// A click into the first row sorts some lists: its second half must not choose the row that came there.
TEST_F(GridTest, ADoubleClickChoosesTheRowOfItsFirstClickOrNone) {
    form.grdOrders.dblClick = [this] { form.events.push_back("double " + form.grdOrders.text(form.grdOrders.row(), 0)); };
    form.grdOrders.click = [this] {
        form.grdOrders.setText(1, 0, "1037");
        form.grdOrders.setText(6, 0, "1042");
    };
    const auto doubleClick = [this](int row) {
        form.events.clear();
        press(row, 1);
        QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, at(row, 1));
    };
    doubleClick(1);
    EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "double 1037"), 0);
    doubleClick(1); // sorted already
    EXPECT_EQ(form.events.back(), "double 1037");
}

TEST_F(GridTest, WordsGiveWayBeforeAColumnIsCutOff) {
    const auto width = [this] {
        int all = 0;
        for (int column = 0; column < view().model()->columnCount(); ++column)
            all += view().columnWidth(column);
        return all;
    };
    const int asked = view().wishedWidth();
    const auto resizeTo = [&](int viewport) {
        view().resize(view().width() - view().viewport()->width() + viewport, view().height());
        QCoreApplication::processEvents();
    };
    resizeTo(asked + 50);
    EXPECT_EQ(width(), asked + 50);
    resizeTo(asked - 30);
    EXPECT_EQ(width(), asked - 30);
    resizeTo(asked / 3);
    EXPECT_EQ(width(), asked) << "too little for all of them: nothing is squeezed in vain";
}

TEST_F(GridTest, ColoursSurviveTheSheetInBothTones) {
    for (const Tone tone : {Tone::Light, Tone::Dark}) {
        desk.setTone(tone);
        const Tokens tokens = desk.skin().tokens();
        EXPECT_EQ(ground(1, 6), tokens.open);
        EXPECT_EQ(ground(2, 6), tokens.partial);
        EXPECT_EQ(ground(3, 6), tokens.closed);
        EXPECT_EQ(ground(1, 1), tokens.panel);
        EXPECT_EQ(ground(2, 1), tokens.alternate);
    }
}

TEST_F(GridTest, ShiftSelectsRows) {
    press(2, 1);
    QTest::keyClick(&view(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&view(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(form.grdOrders.firstSelected(), 2);
    EXPECT_EQ(form.grdOrders.lastSelected(), 4);
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().count('\n'), 2);
}

TEST_F(GridTest, DraggedWidthsAreRememberedAndNoOthers) {
    form.grdOrders.setHidden(2, true);
    QCoreApplication::processEvents();
    EXPECT_EQ(rememberedWidths("frmOrderList", "grdOrders", 8), QList<int>());
    view().horizontalHeader()->resizeSection(1, 311);
    form.unload();
    auto& again = desk.form<sample::OrderList>();
    desk.show(again);
    QCoreApplication::processEvents();
    EXPECT_EQ(desk.window(again)->findChild<QTableView*>()->columnWidth(1), 311);
}

// The work of showing a list is that of the rows in sight, however many there are.
TEST_F(GridTest, AHundredThousandRowsAreReadInPlace) {
    sample::ManyRows few(100);
    sample::ManyRows many(100'000);
    form.grdOrders.colorOf = nullptr;
    const auto askedFor = [&](sample::ManyRows& rows) {
        form.grdOrders.bind(&rows);
        QCoreApplication::processEvents();
        view().viewport()->grab();
        return rows.asked;
    };
    const int asked = askedFor(few);
    EXPECT_GT(asked, 0);
    EXPECT_LE(askedFor(many), asked * 11 / 10);
    EXPECT_EQ(view().model()->rowCount(), 100'000);
    form.grdOrders.setCurrent(90'000, 1);
    form.grdOrders.showCurrent();
    EXPECT_TRUE(view().viewport()->rect().contains(at(90'000, 1)));
    QTest::keyClick(&view(), Qt::Key_F2);
    QTest::keyClicks(view().editor(), "x");
    QTest::keyClick(view().editor(), Qt::Key_Return);
    EXPECT_EQ(many.written, Events{"89999/1=x"});
    form.grdOrders.bind(nullptr);
}

TEST_F(GridTest, ABarShowsItsSharesAndToldWordsAreNotDrawnOverIt) {
    Grid& grid = form.grdOrders;
    grid.setColumn(1, {.heading = "Progress", .format = GridColumn::Format::Bar, .characters = 20});
    grid.barOf = [](int row, int) { return row == 1 ? GridBar{0.5, 0.25} : GridBar{2, 1}; };
    grid.setText(3, 1, "");
    QCoreApplication::processEvents();
    const QImage drawn = view().viewport()->grab().toImage();
    const auto colour = [&](int row, double share) {
        const QRect cell = view().visualRect(view().model()->index(row - 1, 1)).adjusted(10, 0, -10, -1);
        return drawn.pixelColor(QPointF(cell.left() + share * cell.width(), cell.center().y()).toPoint() * view().devicePixelRatioF());
    };
    const Tokens& t = desk.skin().tokens();
    EXPECT_EQ(colour(1, 0.1), t.fine);
    EXPECT_EQ(colour(1, 0.4), t.fine);
    EXPECT_EQ(colour(1, 0.6), t.danger);
    EXPECT_EQ(colour(1, 0.9), t.line);
    EXPECT_EQ(colour(2, 0.9), t.fine); // no more than all of it
    EXPECT_NE(colour(3, 0.5), t.line); // nothing told, nothing drawn
}

// A source that fails while its cells are drawn ends the run as any failure does, and never passes through the toolkit.
TEST_F(GridTest, AFailureWhileDrawingEndsTheRun) {
    form.grdOrders.colorOf = [](int, int) -> Color { throw std::runtime_error("The object is closed"); };
    view().viewport()->grab();
    EXPECT_TRUE(desk.ending());
    EXPECT_EQ(desk.endMessage(), "Run-time error: The object is closed");
}

TEST_F(GridTest, AnEmptyListSaysWhatToDo) {
    form.grdOrders.setDataRows(0);
    QCoreApplication::processEvents();
    const QImage drawn = view().viewport()->grab().toImage();
    bool inked = false;
    for (int x = 0; x < drawn.width(); ++x)
        for (int y = drawn.height() / 2 - 12; y < drawn.height() / 2 + 12; ++y)
            inked = inked || drawn.pixelColor(x, y) == desk.skin().tokens().dim;
    EXPECT_TRUE(inked);
}

} // namespace merchantry::ui
