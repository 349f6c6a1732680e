#include "ui/reportview.h"

#include "ui/form.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/pagesview.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

#include <set>

namespace merchantry::ui {
namespace {

// Thousands of pages, each with a heading and two lines of two cells; knows which of them were made.
class ManyPages : public Pages {
public:
    explicit ManyPages(int count) : count_(count) {}
    int count() const override { return count_; }
    bool complete() const override { return true; }
    Page page(int number) const override {
        made.insert(number);
        Page page;
        const std::string n = std::to_string(number + 1);
        page.items = {text(720, 720, "Heading " + n), text(4000, 1440, "right " + n), text(720, 1440, "left " + n),
                      text(720, 2000, "second " + n), text(4000, 2010, "line " + n)};
        return page;
    }
    mutable std::set<int> made;

private:
    static PageItem text(int x, int y, std::string words) {
        PageItem item;
        item.x = x;
        item.y = y;
        item.width = 2600;
        item.height = 240;
        item.text = std::move(words);
        return item;
    }
    int count_;
};

class frmPages : public Form {
public:
    explicit frmPages(Desk& desk) : Form(desk, "frmPages", "Pages") {
        setSize(900 * kTwipsPerPixel, 700 * kTwipsPerPixel);
        setLayout(column({at(view).stretched()}));
    }
    ReportView view{*this, "view"};
};

class ReportViewTest : public testing::Test {
protected:
    void SetUp() override {
        desk.enter([this] { desk.show(form); });
        QApplication::setActiveWindow(desk.window(form));
        desk.enter([this] { view().show(&pages, &tree); });
        settle();
    }
    static void settle() { QCoreApplication::processEvents(); }
    ReportView& view() { return form.view; }
    PagesView& shown() { return *dynamic_cast<PagesView*>(desk.window(form)->drawing(form.view)->focusTarget()); }
    // The pixel where a text of a page stands.
    QPoint at(int page, int x, int y) {
        const QRectF where = shown().pageRect(page);
        return QPointF(where.left() + x * shown().scale(), where.top() + y * shown().scale()).toPoint();
    }

    ManyPages pages{5000};
    std::vector<PageBranch> tree{{"Garden", 0, 0}, {"Chairs", 1, 0}, {"Tables", 1, 40}, {"Kitchen", 0, 3000}};
    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};
    frmPages& form = desk.form<frmPages>();
};

} // namespace

TEST_F(ReportViewTest, OnlyPagesInSightAreMade) {
    EXPECT_LE(pages.made.size(), 4u);
    QTest::keyClick(&shown(), Qt::Key_End);
    settle();
    EXPECT_EQ(view().page(), 5000);
    EXPECT_LE(pages.made.size(), 8u);
    QTest::keyClick(&shown(), Qt::Key_PageUp);
    EXPECT_EQ(view().page(), 4999);
    QTest::keyClick(&shown(), Qt::Key_Home);
    EXPECT_EQ(view().page(), 1);
    desk.enter([this] { view().turnTo(77); });
    settle();
    EXPECT_NEAR(shown().pageRect(76).top(), 20, 2); // the page turned to stands at the top
    shown().verticalScrollBar()->setValue(0);
    EXPECT_EQ(view().page(), 1); // scrolling by hand is noticed
}

TEST_F(ReportViewTest, ZoomKeepsThePage) {
    desk.enter([this] { view().turnTo(40); });
    const double fitted = shown().scale();
    for (const auto& [fit, percent] : {std::pair{ReportView::Fit::Percent, 400},
                                       {ReportView::Fit::Percent, 25},
                                       {ReportView::Fit::Page, 100},
                                       {ReportView::Fit::Width, 100}}) {
        desk.enter([this, how = fit, size = percent] { view().zoom(how, size); });
        settle();
        EXPECT_EQ(view().page(), 40);
        EXPECT_NEAR(shown().pageRect(39).top(), 20, 2);
    }
    EXPECT_DOUBLE_EQ(shown().scale(), fitted);
    desk.enter([this] { view().zoom(ReportView::Fit::Percent, 10); });
    EXPECT_EQ(view().percent(), 25);
    EXPECT_NEAR(shown().pageRect(0).width(), 8.5 * shown().logicalDpiX() / 4, 1);
    desk.enter([this] { view().zoomBy(100); });
    EXPECT_EQ(view().percent(), 400);
    view().zoomable = false;
    desk.enter([this] { view().zoomBy(-1); });
    EXPECT_EQ(view().percent(), 400);
}

TEST_F(ReportViewTest, TextIsSelectedAndCopied) {
    QTest::mousePress(shown().viewport(), Qt::LeftButton, {}, at(0, 800, 1500));
    QTest::mouseMove(shown().viewport(), at(0, 4100, 2100));
    QTest::mouseRelease(shown().viewport(), Qt::LeftButton, {}, at(0, 4100, 2100));
    EXPECT_EQ(view().selectedText(), "left 1\tright 1\nsecond 1\tline 1");
    QTest::keyClick(&shown(), Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(&shown(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "left 1\tright 1\nsecond 1");
    QTest::keyClick(&shown(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view().selectedText(), "Heading 1\nleft 1\tright 1\nsecond 1\tline 1");
    QTest::keyClick(&shown(), Qt::Key_Right, Qt::ShiftModifier); // on to the next page
    EXPECT_TRUE(view().selectedText().ends_with("line 1\nHeading 2"));
    QTest::mouseClick(shown().viewport(), Qt::LeftButton, {}, at(0, 800, 1500));
    EXPECT_FALSE(view().selection());
}

TEST_F(ReportViewTest, WordsAreFoundOnceAround) {
    const auto search = [this](const char* words, bool backwards) {
        ReportSearch one(view(), words, backwards);
        desk.enter([&] {
            while (one.step() < 100) {
            }
        });
        settle();
        return one.found();
    };
    EXPECT_TRUE(search("SECOND 123", false));
    EXPECT_EQ(view().page(), 123);
    EXPECT_EQ(view().selectedText(), "second 123");
    EXPECT_TRUE(search("second 123", false)); // 1230
    EXPECT_EQ(view().page(), 1230);
    EXPECT_TRUE(search("second 123", true));
    EXPECT_EQ(view().page(), 123);
    EXPECT_TRUE(search("second 123", true)); // around the beginning: 1239
    EXPECT_EQ(view().page(), 1239);
    EXPECT_TRUE(search("heading 1239", true));  // before the selection on the same page
    EXPECT_TRUE(search("heading 1239", false)); // the only one: found again
    EXPECT_FALSE(search("nowhere", false));
    EXPECT_EQ(view().page(), 1239);
    const QRectF where = shown().pageRect(1238);
    EXPECT_TRUE(where.intersects(shown().viewport()->rect()));
}

TEST_F(ReportViewTest, TheTreeTurnsPages) {
    auto& groups = *desk.window(form)->findChild<QTreeView*>();
    ASSERT_TRUE(groups.isVisible());
    EXPECT_EQ(groups.model()->rowCount(), 2);
    const QModelIndex garden = groups.model()->index(0, 0);
    groups.setCurrentIndex(groups.model()->index(1, 0, garden));
    EXPECT_EQ(view().page(), 41);
    desk.enter([this] { view().turnTo(3500); });
    EXPECT_EQ(groups.currentIndex().data().toString(), QStringLiteral("Kitchen"));
    EXPECT_EQ(view().page(), 3500); // following the page does not turn it
    QTest::keyClick(&shown(), Qt::Key_F6);
    EXPECT_TRUE(groups.hasFocus());
    QTest::keyClick(&groups, Qt::Key_Up);
    EXPECT_EQ(view().page(), 41);
    QTest::keyClick(&groups, Qt::Key_F6);
    EXPECT_TRUE(shown().hasFocus());
    tree.push_back({"Bowls", 1, 4000});
    desk.enter([this] { view().grown(); });
    EXPECT_EQ(groups.model()->rowCount(groups.model()->index(1, 0)), 1);
    desk.enter([this] { view().setTreeShown(false); });
    EXPECT_FALSE(groups.isVisible());
}

} // namespace merchantry::ui
