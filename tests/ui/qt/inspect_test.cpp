#include "tests/ui/qt/sampleforms.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/inspect.h"

#include <QApplication>
#include <QTableView>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

class Inspect : public testing::Test {
protected:
    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};

    template <class F> void expectWell() {
        F& form = desk.form<F>();
        desk.show(form);
        FormWindow& window = *desk.window(form);
        QCoreApplication::processEvents();
        const QSize own = window.size();
        for (const QSize size : {window.minimumSizeHint(), own, own * 1.4}) {
            if (form.sizeable())
                window.resize(size);
            EXPECT_EQ(toText(inspect(desk, form)), "") << form.name() << " at " << window.width() << " by " << window.height();
        }
        form.unload();
    }
};

// Everything that an inspection is to find, on one window.
class Faulty : public Form {
public:
    explicit Faulty(Desk& owner) : Form(owner, "frmFaulty", "Faulty") {
        grdList.setColumns({GridColumn{.heading = "A heading that is long"}});
        setLayout(column({field("&Name:", txtName), field("&Number:", txtNumber), at(lblLong), row({at(cmdA), at(cmdB)}), at(grdList)}));
    }
    TextBox txtName{*this, "txtName"};
    TextBox txtNumber{*this, "txtNumber"};
    TextBox txtForgotten{*this, "txtForgotten"};
    Label lblLong{*this, "lblLong", "A text of some length"};
    Button cmdA{*this, "cmdA", "First"};
    Button cmdB{*this, "cmdB", "Second"};
    Grid grdList{*this, "grdList"};
};

bool found(const std::vector<Finding>& findings, const std::string& what) {
    return toText(findings).find(what) != std::string::npos;
}

} // namespace

TEST_F(Inspect, SampleFormsStandWellAtEverySize) {
    expectWell<sample::Shell>();
    expectWell<sample::ItemSheet>();
    expectWell<sample::OrderList>();
    expectWell<sample::SmallDialog>();
}

TEST_F(Inspect, FindsEveryKindOfFault) {
    Faulty& form = desk.form<Faulty>();
    EXPECT_TRUE(found(inspect(desk, form), "has no window"));
    desk.show(form);
    const auto before = inspect(desk, form);
    EXPECT_TRUE(found(before, "shares Alt+N with")) << toText(before);
    EXPECT_TRUE(found(before, "txtForgotten is not on the window")) << toText(before);
    EXPECT_FALSE(found(before, "overlaps")) << toText(before);
    EXPECT_FALSE(found(before, "clipped")) << toText(before);
    form.cmdB.setPlace(form.cmdA.place());
    Place narrow = form.lblLong.place();
    narrow.width = 30 * kTwipsPerPixel;
    form.lblLong.setPlace(narrow);
    Place outside = form.txtName.place();
    outside.left = form.width();
    form.txtName.setPlace(outside);
    desk.window(form)->findChild<QTableView*>()->setColumnWidth(0, 40);
    const auto after = inspect(desk, form);
    EXPECT_TRUE(found(after, "cmdA overlaps cmdB")) << toText(after);
    EXPECT_TRUE(found(after, "lblLong text is clipped")) << toText(after);
    EXPECT_TRUE(found(after, "txtName sticks out")) << toText(after);
    EXPECT_TRUE(found(after, "heading is clipped")) << toText(after);
}

} // namespace merchantry::ui
