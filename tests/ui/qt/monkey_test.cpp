#include "tests/ui/qt/sampleforms.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/gridview.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTest>
#include <gtest/gtest.h>

#include <random>

namespace merchantry::ui {
namespace {

// Clicks and types at random, and after every act holds the window against the form: what is shown is what the form says.
class Monkey : public testing::TestWithParam<unsigned> {
protected:
    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};
    std::mt19937 random{GetParam()};

    int upTo(int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); }

    void act(FormWindow& window) {
        std::vector<QWidget*> targets;
        for (const auto& drawing : window.drawings())
            if (QWidget* widget = drawing->focusTarget(); widget->isVisible() && widget->isEnabled())
                targets.push_back(widget);
        QWidget* const target = targets[static_cast<std::size_t>(upTo(static_cast<int>(targets.size())))];
        if (upTo(3) == 0)
            click(*target);
        else
            press(window);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void click(QWidget& target) {
        auto* table = dynamic_cast<GridView*>(&target);
        QWidget& surface = table == nullptr ? target : *table->viewport();
        const QPoint where(upTo(std::max(1, surface.width())), upTo(std::max(1, surface.height())));
        if (dynamic_cast<QComboBox*>(&target) != nullptr)
            QTest::keyClick(&target, upTo(2) == 0 ? Qt::Key_Down : Qt::Key_Up); // its list would wait for a choice
        else if (table != nullptr && upTo(4) == 0)
            QTest::mouseDClick(&surface, Qt::LeftButton, {}, where);
        else
            QTest::mouseClick(&surface, Qt::LeftButton, {}, where);
    }
    void press(FormWindow& window) {
        static const int kKeys[] = {Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Down,  Qt::Key_Up, Qt::Key_Left,
                                    Qt::Key_Right,  Qt::Key_Home,    Qt::Key_Space, Qt::Key_F2, Qt::Key_A,
                                    Qt::Key_Delete, Qt::Key_Escape,  Qt::Key_Return};
        QWidget* const focus = window.focusWidget() == nullptr ? &window : window.focusWidget();
        QTest::keyClick(focus, static_cast<Qt::Key>(kKeys[upTo(std::size(kKeys))]));
    }

    static void expectShown(const Drawing& drawing) {
        const Control& control = drawing.control();
        QWidget& widget = *drawing.widget();
        if (const auto* box = dynamic_cast<const TextBox*>(&control); box != nullptr && box->multiline) {
            EXPECT_EQ(dynamic_cast<QPlainTextEdit&>(widget).toPlainText().toStdString(), box->text());
        } else if (box != nullptr) {
            EXPECT_EQ(dynamic_cast<QLineEdit&>(widget).text().toStdString(), box->shownText());
        }
        if (const auto* check = dynamic_cast<const CheckBox*>(&control)) {
            EXPECT_EQ(dynamic_cast<QAbstractButton&>(widget).isChecked(), check->value());
        }
        if (const auto* option = dynamic_cast<const OptionButton*>(&control)) {
            EXPECT_EQ(dynamic_cast<QAbstractButton&>(widget).isChecked(), option->value());
        }
        if (const auto* list = dynamic_cast<const ListBox*>(&control); list != nullptr && list->dropDown) {
            EXPECT_EQ(dynamic_cast<QComboBox&>(widget).currentIndex(), list->listIndex());
        }
        if (const auto* tabs = dynamic_cast<const TabSet*>(&control)) {
            EXPECT_EQ(dynamic_cast<QTabBar&>(*drawing.focusTarget()).currentIndex(), tabs->current());
        }
        if (const auto* grid = dynamic_cast<const Grid*>(&control)) {
            EXPECT_EQ(dynamic_cast<GridView*>(widget.findChild<QTableView*>())->editor() != nullptr, grid->editing());
        }
    }
    static void expectShown(FormWindow& window) {
        const Control* const focused = window.form()->focused();
        if (focused != nullptr && focused->obstacle().empty()) {
            const QWidget* const target = window.drawing(*focused)->focusTarget();
            EXPECT_TRUE(target == window.focusWidget() || target->isAncestorOf(window.focusWidget())) << focused->name();
        }
        for (const auto& drawing : window.drawings())
            expectShown(*drawing);
    }
    template <class F> void play(int acts) {
        for (int i = 0; i < acts && !HasFailure(); ++i) {
            F& form = desk.form<F>();
            if (desk.window(form) == nullptr || !desk.window(form)->isVisible()) {
                desk.enter([&] { desk.show(form); });
                QApplication::setActiveWindow(desk.window(form));
                QCoreApplication::processEvents();
            }
            act(*desk.window(form));
            ASSERT_FALSE(desk.ending()) << desk.endMessage();
            if (F* const open = desk.existing<F>()) // it may be closed, and gone
                expectShown(*desk.window(*open));
        }
    }
};

} // namespace

TEST_P(Monkey, WhatIsShownIsWhatTheFormSays) {
    play<sample::ItemSheet>(300);
    play<sample::OrderList>(300);
    play<sample::SmallDialog>(60);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Monkey, testing::Values(1U, 2U));

} // namespace merchantry::ui
