#include "base/lettercase.h"
#include "tests/ui/qt/sampleforms.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/gridview.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

using Events = std::vector<std::string>;

// Hands and keys on real widgets; what the screen hears must be what the gestures bring.
class EventsTest : public testing::Test {
protected:
    QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), Tone::Light};

    template <class F> F& shown() {
        F& form = desk.form<F>();
        desk.enter([&] { desk.show(form); });
        QApplication::setActiveWindow(desk.window(form));
        QCoreApplication::processEvents();
        return form;
    }
    template <class W> W& widget(const Control& control) {
        return *dynamic_cast<W*>(desk.window(control.form())->drawing(control)->widget());
    }
    template <class W> void click(const Control& control) { QTest::mouseClick(&widget<W>(control), Qt::LeftButton, {}, QPoint(10, 10)); }
};

} // namespace

// A search that fails at its first apostrophe told so in the middle of a word, and the rest of the word went to the message's button.
TEST_F(EventsTest, AMessageDoesNotSwallowWhatIsTypedOn) {
    auto& form = shown<sample::SearchPanel>();
    auto& line = widget<QLineEdit>(form.txtText);
    line.setFocus();
    int told = 0;
    form.txtText.change = [&] {
        if (form.txtText.text() == "O'") {
            ++told;
            desk.message("That cannot be searched for.", "Items");
        }
    };
    QTimer::singleShot(0, qApp, [] {
        QTimer::singleShot(50, qApp, [] {
            QWidget* const button = QApplication::activeModalWidget()->findChild<QPushButton*>();
            QTest::keyClicks(button, QStringLiteral("Brien & Co"));
            QTest::keyClick(button, Qt::Key_Return);
        });
    });
    QTest::keyClicks(&line, QStringLiteral("O'"));
    EXPECT_EQ(told, 1);
    EXPECT_EQ(line.text(), QStringLiteral("O'Brien & Co"));
    EXPECT_EQ(form.txtText.text(), "O'Brien & Co");
}

// Whoever holds the button sees the password, by the mouse or by the space bar, and nobody else.
TEST_F(EventsTest, APasswordIsDotsUnlessItsButtonIsHeld) {
    class Sheet : public Form {
    public:
        explicit Sheet(Desk& desk) : Form(desk, "Sheet", "Sheet") {
            txtSecret.password = true;
            txtSecret.setText("s3cret");
            cmdShow.held = [this](bool down) { txtSecret.setRevealed(down); };
            setLayout(row({at(txtSecret), at(cmdShow)}));
        }
        TextBox txtSecret{*this, "txtSecret"};
        Button cmdShow{*this, "cmdShow", "Show"};
    };
    auto& form = shown<Sheet>();
    auto& line = widget<QLineEdit>(form.txtSecret);
    auto& button = widget<QPushButton>(form.cmdShow);
    EXPECT_EQ(line.displayText(), QString(6, line.displayText().at(0)));
    EXPECT_EQ(line.echoMode(), QLineEdit::Password);
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(line.displayText(), "s3cret");
    QTest::mouseRelease(&button, Qt::LeftButton);
    EXPECT_EQ(line.echoMode(), QLineEdit::Password);
    QTest::keyPress(&button, Qt::Key_Space);
    EXPECT_EQ(line.displayText(), "s3cret");
    QTest::keyRelease(&button, Qt::Key_Space);
    EXPECT_EQ(line.echoMode(), QLineEdit::Password);
}

// A caption that a screen colours is the screen's label and still leads to its field.
TEST_F(EventsTest, ACaptionOfItsOwnIsColouredAndLeadsToItsField) {
    class Sheet : public Form {
    public:
        explicit Sheet(Desk& desk) : Form(desk, "Sheet", "Sheet") { setLayout(fields({field(lblCity, txtCity), field("&Zip:", txtZip)})); }
        Label lblCity{*this, "lblCity", "&City:"};
        TextBox txtCity{*this, "txtCity"};
        TextBox txtZip{*this, "txtZip"};
    };
    auto& form = shown<Sheet>();
    desk.enter([&] { form.lblCity.setForeColor(Color::Red); });
    auto& label = widget<QLabel>(form.lblCity);
    EXPECT_TRUE(label.styleSheet().contains(desk.skin().ink(Color::Red).name()));
    EXPECT_EQ(label.buddy(), &widget<QLineEdit>(form.txtCity));
    EXPECT_EQ(widget<QLineEdit>(form.txtCity).accessibleName(), "City");
    EXPECT_EQ(form.tabOrder().size(), 3U);
    EXPECT_LT(label.x(), widget<QLineEdit>(form.txtCity).x());
}

TEST_F(EventsTest, AMoneyFieldShowsItsFormUntilItHasTheFocus) {
    auto& form = shown<sample::ItemSheet>();
    auto& price = widget<QLineEdit>(form.txtPrice);
    form.txtPrice.gotFocus = [&form] { form.txtPrice.selectAll(); };
    click<QLineEdit>(form.txtName);
    EXPECT_EQ(price.text(), "$2.55");
    for (const auto& [typed, shows] : {std::pair{"1234.5", "$1,234.50"}, {"-4", "($4.00)"}, {"abc", "abc"}, {"", ""}, {"1e30", "1e30"}}) {
        desk.enter([&] { gestures::enter(form.txtPrice); });
        EXPECT_EQ(price.text(), QString::fromStdString(form.txtPrice.text()));
        EXPECT_EQ(price.selectedText(), price.text());
        desk.enter([&] { gestures::type(form.txtPrice, typed); });
        EXPECT_EQ(price.text(), typed);
        QTest::keyClick(&price, Qt::Key_Tab);
        EXPECT_EQ(price.text(), shows);
        EXPECT_EQ(form.txtPrice.text(), typed);
    }
    form.txtPrice.setText("7");
    EXPECT_EQ(price.text(), "$7.00");
}

TEST_F(EventsTest, AnArrowIsClickedByKeyboard) {
    auto& form = shown<sample::ItemSheet>();
    desk.enter([&] {
        form.tabItems.setCurrent(1);
        gestures::enter(form.imgUp);
    });
    form.events.clear();
    QTest::keyClick(desk.window(form)->focusWidget(), Qt::Key_Space);
    QTest::keyClick(desk.window(form)->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(form.events, (Events{"imgUp click", "imgUp click"}));
}

TEST_F(EventsTest, ClickingAndTypingBringTheEventsOfTheGestures) {
    auto& form = shown<sample::ItemSheet>();
    form.events.clear();
    click<QLineEdit>(form.txtName);
    QTest::keyClick(&widget<QLineEdit>(form.txtName), Qt::Key_End);
    QTest::keyClicks(&widget<QLineEdit>(form.txtName), "s");
    click<QPushButton>(form.cmdAdjust);
    click<QCheckBox>(form.chkActive);
    QTest::keyClick(&widget<QCheckBox>(form.chkActive), Qt::Key_Tab);
    const Events byHand = form.events;
    form.unload();

    auto& same = desk.form<sample::ItemSheet>();
    desk.show(same);
    same.events.clear();
    gestures::type(same.txtName, "White hanging heart t-light holders");
    gestures::press(same.cmdAdjust);
    gestures::check(same.chkActive, false);
    gestures::key(same, "Tab");
    EXPECT_EQ(byHand, same.events);
    EXPECT_EQ(same.events, (Events{"txtName=White hanging heart t-light holders", "txtName validate", "txtName lost", "cmdAdjust got",
                                   "cmdAdjust click", "cmdAdjust validate", "cmdAdjust lost", "chkActive got", "chkActive off",
                                   "chkActive validate", "chkActive lost", "chkSerial got"}));
}

TEST_F(EventsTest, ARefusedLeaveKeepsFocusAndSwallowsTheClick) {
    auto& form = shown<sample::ItemSheet>();
    click<QLineEdit>(form.txtName);
    int asked = 0;
    form.txtName.validate = [&](bool& cancel) {
        cancel = true;
        ++asked;
    };
    form.events.clear();
    click<QPushButton>(form.cmdAdjust);
    EXPECT_EQ(asked, 1);
    QTest::keyClick(&widget<QLineEdit>(form.txtName), Qt::Key_Tab);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(form.events, Events{});
    EXPECT_EQ(form.focused(), &form.txtName);
    EXPECT_TRUE(widget<QLineEdit>(form.txtName).hasFocus());
}

TEST_F(EventsTest, WhatTheScreenSetsIsShownAndBringsNoEventOfItsOwn) {
    auto& form = shown<sample::ItemSheet>();
    form.events.clear();
    form.txtName.setText("Lamp");
    form.lbxType.setListIndex(2);
    form.chkSerial.setValue(true);
    form.optAverage.setValue(true);
    form.tabItems.setCurrent(1);
    form.cmdAdjust.setCaption("Co&unt");
    form.txtPrice.setLocked(true);
    form.cmdExit.setEnabled(false);
    form.imgUp.setVisible(false);
    form.lblWarning.setForeColor(Color::Green);
    QCoreApplication::processEvents();
    EXPECT_EQ(form.events, (Events{"txtName=Lamp", "lbxType Serialized", "tabItems left 0"}));
    EXPECT_EQ(widget<QLineEdit>(form.txtName).text(), "Lamp");
    EXPECT_EQ(widget<QComboBox>(form.lbxType).currentText(), "Serialized");
    EXPECT_TRUE(widget<QCheckBox>(form.chkSerial).isChecked());
    EXPECT_TRUE(widget<QRadioButton>(form.optAverage).isChecked());
    EXPECT_FALSE(widget<QRadioButton>(form.optLast).isChecked());
    EXPECT_TRUE(widget<QRadioButton>(form.optLast).isVisible());
    EXPECT_EQ(widget<QPushButton>(form.cmdAdjust).text(), "Co&unt");
    EXPECT_TRUE(widget<QLineEdit>(form.txtPrice).isReadOnly());
    EXPECT_FALSE(widget<QPushButton>(form.cmdExit).isEnabled());
    EXPECT_FALSE(desk.window(form)->drawing(form.imgUp)->widget()->isVisible());
}

// As a screen sends its user to a list with nothing chosen.
TEST_F(EventsTest, AListThatIsDroppedDownOpensWhereTheFocusIs) {
    auto& form = shown<sample::ItemSheet>();
    const QComboBox& combo = widget<QComboBox>(form.cboDepartment);
    form.cboDepartment.setEnabled(false);
    form.chkSerial.click = [&form] {
        form.cboDepartment.setEnabled(true);
        form.cboDepartment.setFocus();
        form.cboDepartment.dropDown();
    };
    click<QCheckBox>(form.chkSerial);
    QCoreApplication::processEvents();
    EXPECT_TRUE(combo.view()->isVisible());
    desk.enter([&] { gestures::pick(form.cboDepartment, 1); });
    QTest::keyClick(combo.view(), Qt::Key_Escape);
    EXPECT_FALSE(combo.view()->isVisible());
    form.cboDepartment.setListIndex(0); // another choice opens nothing
    QCoreApplication::processEvents();
    EXPECT_FALSE(combo.view()->isVisible());
}

TEST_F(EventsTest, AMaskTakesOnlyWhatFitsAndAChangeProcedureHasTheLastWord) {
    auto& form = shown<sample::ItemSheet>();
    auto& phone = widget<QLineEdit>(form.txtPhone);
    click<QLineEdit>(form.txtPhone);
    QTest::keyClicks(&phone, "555x123 45678");
    EXPECT_EQ(form.txtPhone.text(), "(555) 123-4567");
    EXPECT_EQ(phone.text(), "(555) 123-4567");
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(&phone, Qt::Key_Backspace);
    EXPECT_EQ(form.txtPhone.text(), "(555) 12");

    form.txtName.change = [&] {
        if (form.txtName.text().size() > 3)
            form.txtName.setText("abc");
    };
    auto& name = widget<QLineEdit>(form.txtName);
    click<QLineEdit>(form.txtName);
    name.selectAll();
    QTest::keyClicks(&name, "abcd");
    EXPECT_EQ(name.text(), "abc");

    form.txtName.change = [&] { form.txtName.setText(upperCase(form.txtName.text())); };
    name.selectAll();
    QTest::keyClicks(&name, "lamp");
    EXPECT_EQ(name.text(), "LAMP") << "the caret stays behind what was typed";
}

TEST_F(EventsTest, SelectionGoesBothWays) {
    auto& form = shown<sample::ItemSheet>();
    click<QLineEdit>(form.txtName);
    form.txtName.select(2, 5);
    EXPECT_EQ(widget<QLineEdit>(form.txtName).selectedText(), "ite h");
    widget<QLineEdit>(form.txtName).setSelection(0, 5);
    EXPECT_EQ(form.txtName.selectedText(), "White");
}

TEST_F(EventsTest, KeysReachTheScreenBeforeTheyAct) {
    auto& form = shown<sample::ItemSheet>();
    Events keys;
    form.txtName.keyDown = [&](const std::string& key, bool& swallow) {
        keys.push_back(key);
        swallow = key == "Escape" || key == "x";
    };
    click<QLineEdit>(form.txtName);
    form.txtName.setText("");
    QTest::keyClicks(&widget<QLineEdit>(form.txtName), "axb");
    QTest::keyClick(&widget<QLineEdit>(form.txtName), Qt::Key_F1);
    QTest::keyClick(&widget<QLineEdit>(form.txtName), Qt::Key_Escape);
    EXPECT_EQ(keys, (Events{"a", "x", "b", "F1", "Escape"}));
    EXPECT_EQ(form.txtName.text(), "ab");
    EXPECT_FALSE(form.closed());
    click<QLineEdit>(form.txtPrice);
    QTest::keyClick(&widget<QLineEdit>(form.txtPrice), Qt::Key_Escape); // another field: the cancel button
    EXPECT_TRUE(form.closed());
}

TEST_F(EventsTest, MnemonicsOfCaptionsAndButtonsWork) {
    auto& form = shown<sample::ItemSheet>();
    QTest::keyClick(desk.window(form), Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(form.focused(), &form.txtPrice);
    form.events.clear();
    QTest::keyClick(desk.window(form), Qt::Key_A, Qt::AltModifier);
    // A button pressed by its letter stays down for a moment.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !form.events.empty() && form.events.back() == "cmdAdjust click"; }));
}

TEST_F(EventsTest, ArrowsChooseAmongOptions) {
    auto& form = shown<sample::ItemSheet>();
    form.tabItems.setCurrent(1);
    click<QRadioButton>(form.optLast);
    QTest::keyClick(&widget<QRadioButton>(form.optLast), Qt::Key_Down);
    EXPECT_TRUE(form.optAverage.value());
    EXPECT_FALSE(form.optLast.value());
    EXPECT_EQ(form.focused(), &form.optAverage);
    QTest::keyClick(&widget<QRadioButton>(form.optAverage), Qt::Key_Down);
    EXPECT_TRUE(form.optLast.value()) << "round about";
}

TEST_F(EventsTest, DisablingTheFocusedControlMovesNoFocus) {
    auto& form = shown<sample::ItemSheet>();
    click<QLineEdit>(form.txtName);
    form.events.clear();
    form.txtName.setEnabled(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(form.events, Events{});
    form.txtName.setEnabled(true);
    QCoreApplication::processEvents();
    EXPECT_TRUE(widget<QLineEdit>(form.txtName).hasFocus());
}

TEST_F(EventsTest, AScreenThatMovesItsControlsIsFollowed) {
    auto& form = shown<sample::SmallDialog>();
    EXPECT_GT(form.width(), 0);
    EXPECT_GT(form.cmdOK.place().width, 0);
    const QRect other = widget<QPushButton>(form.cmdCancel).geometry();
    Place place = form.cmdOK.place();
    place.left -= 40 * kTwipsPerPixel;
    form.cmdOK.setPlace(place);
    QCoreApplication::processEvents();
    EXPECT_EQ(widget<QPushButton>(form.cmdOK).geometry().left(), place.left / kTwipsPerPixel);
    EXPECT_EQ(widget<QPushButton>(form.cmdCancel).geometry(), other);
}

namespace {

// Moves its button and widens its field as it is resized, as forms with tags do.
class Moving : public Form {
public:
    explicit Moving(Desk& owner) : Form(owner, "frmMoving", "Moving") {
        setLayout(column({field("&Name:", txtName), row({at(cmdLeft), stretch(), at(cmdRight)})}));
    }
    TextBox txtName{*this, "txtName"};
    Button cmdLeft{*this, "cmdLeft", "Left"};
    Button cmdRight{*this, "cmdRight", "Right"};

private:
    void Form_Load() override { base_ = width(); }
    void Form_Resize() override {
        const Twips more = width() - base_;
        base_ = width();
        Place place = cmdRight.place();
        place.left += more;
        cmdRight.setPlace(place);
        place = txtName.place();
        place.width += more;
        txtName.setPlace(place);
    }
    Twips base_ = 0;
};

} // namespace

TEST_F(EventsTest, ControlsThatTheScreenMovesKeepTheirDistanceToTheEdge) {
    auto& form = shown<Moving>();
    FormWindow& window = *desk.window(form);
    const int edge = window.width() - widget<QPushButton>(form.cmdRight).geometry().right();
    const QRect left = widget<QPushButton>(form.cmdLeft).geometry();
    const int gap = window.width() - widget<QLineEdit>(form.txtName).geometry().right();
    for (const int width : {700, 520, 901}) {
        window.resize(width, 400);
        QCoreApplication::processEvents();
        EXPECT_EQ(form.width(), width * kTwipsPerPixel);
        EXPECT_EQ(width - widget<QPushButton>(form.cmdRight).geometry().right(), edge);
        EXPECT_EQ(width - widget<QLineEdit>(form.txtName).geometry().right(), gap);
        EXPECT_EQ(widget<QPushButton>(form.cmdLeft).geometry(), left);
    }
    EXPECT_TRUE(window.freed());
}

TEST_F(EventsTest, MenusAndToolbarsGiveTheirCommands) {
    auto& form = shown<sample::Shell>();
    QList<QAction*> actions = desk.window(form)->menuBar()->findChildren<QAction*>(QStringLiteral("mnuDepartments"));
    for (QAction* action : desk.window(form)->findChildren<QAction*>(QStringLiteral("mnuDepartments")))
        action->trigger();
    form.Toolbar1.press("Labels");
    EXPECT_EQ(form.pressed, (Events{"mnuDepartments", "Labels"}));
    form.mnuDepartments.setEnabled(false);
    EXPECT_FALSE(desk.window(form)->findChild<QAction*>(QStringLiteral("mnuDepartments"))->isEnabled());
}

} // namespace merchantry::ui
