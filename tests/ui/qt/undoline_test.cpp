#include "ui/undoline.h"

#include "ui/form.h"
#include "ui/grid.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

// A screen higher than its window, with a line at its foot.
class frmTall : public Form {
public:
    explicit frmTall(Desk& desk) : Form(desk, "frmTall", "Tall") {
        setLayout(column({at(grdRows).high(20).stretched(), buttons({at(cmdDelete), stretch()}), undoLine.item()}));
    }
    Grid grdRows{*this, "grdRows"};
    Button cmdDelete{*this, "cmdDelete", "Delete"};
    UndoLine undoLine{*this};
};

class UndoLineTest : public testing::Test {
protected:
    QRect placeOf(const char* name) {
        const QWidget* const shown = desk.window(form)->drawing(*form.find(name))->widget();
        return {shown->mapTo(desk.window(form), QPoint(0, 0)), shown->size()};
    }

    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};
    frmTall& form = desk.form<frmTall>();
};

TEST_F(UndoLineTest, ComesAndGoesWithoutMovingAnythingAndIsSeenWhereTheContentScrolls) {
    desk.show(form);
    FormWindow& window = *desk.window(form);
    for (const QSize size : {QSize(900, 700), QSize(500, 240)}) {
        window.resize(size);
        QCoreApplication::processEvents();
        const QRect grid = placeOf("grdRows");
        const QRect button = placeOf("cmdDelete");
        const std::string sentence = "Price of Retail from 12 on changed from $1.50 to $1.40, which is a longer line than fits.";
        form.undoLine.offer(sentence, [] { return std::string(); });
        QCoreApplication::processEvents();
        EXPECT_EQ(placeOf("grdRows"), grid);
        EXPECT_EQ(placeOf("cmdDelete"), button);
        EXPECT_TRUE(window.rect().contains(placeOf("cmdUndoLine")));
        EXPECT_TRUE(window.drawing(*form.find("cmdUndoLine"))->widget()->isVisible());
        EXPECT_EQ(window.drawing(*form.find("lblUndoLine"))->widget()->toolTip().toStdString(), sentence);
        form.undoLine.dismiss();
        QCoreApplication::processEvents();
        EXPECT_EQ(placeOf("grdRows"), grid);
        EXPECT_EQ(window.size(), size);
    }
}

// What is put back may itself write and so offer again: the second offer stays.
TEST_F(UndoLineTest, AnUndoThatOffersAgainIsNotTakenAway) {
    int undone = 0;
    form.undoLine.offer("First.", [&] {
        ++undone;
        form.undoLine.offer("Second.", [&] {
            ++undone;
            return std::string();
        });
        return std::string();
    });
    dynamic_cast<Button*>(form.find("cmdUndoLine"))->press();
    EXPECT_TRUE(form.undoLine.offered());
    dynamic_cast<Button*>(form.find("cmdUndoLine"))->press();
    EXPECT_FALSE(form.undoLine.offered());
    dynamic_cast<Button*>(form.find("cmdUndoLine"))->press();
    EXPECT_EQ(undone, 2);
}

} // namespace
} // namespace merchantry::ui
