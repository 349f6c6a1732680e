#pragma once

#include "ui/button.h"
#include "ui/choice.h"
#include "ui/desk.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/menu.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <stdexcept>

namespace merchantry::ui::sample {

// A small application of every kind of control, for the tests of plays.

// Asks for a name; closes itself, or hides itself so that its caller can read the answer.
class frmDialog : public Form {
public:
    explicit frmDialog(Desk& desk) : Form(desk, "frmDialog", "Dialog") {
        cmdOK.isDefault = true;
        cmdCancel.isCancel = true;
        cmdOK.click = [this] { unload(); };
        cmdCancel.click = [this] { hide(); };
        cmdAgain.click = [this] { this->desk().showModal(this->desk().newForm<frmDialog>()); };
        setLayout(row({at(txtAnswer), at(cmdOK), at(cmdCancel), at(cmdAgain)}));
    }
    TextBox txtAnswer{*this, "txtAnswer"};
    Button cmdOK{*this, "cmdOK", "&OK"};
    Button cmdCancel{*this, "cmdCancel", "Cancel"};
    Button cmdAgain{*this, "cmdAgain", "Again"};
};

class frmPanel : public Form {
public:
    explicit frmPanel(Desk& desk) : Form(desk, "frmPanel", "Search") { setLayout(row({at(txtText)})); }
    TextBox txtText{*this, "txtText"};
};

class frmShop : public Form {
public:
    explicit frmShop(Desk& desk) : Form(desk, "frmShop", "Shop") {
        listen();
        grdItems.setColumns({gridColumn("Code"), gridColumn("Name"), gridColumn("Price"), gridColumn("On"), gridColumn("Id")});
        grdItems.setHidden(4, true);
        grdItems.addRow({"A1", "Lamp", "12.5", "1", "7"});
        grdItems.addRow({"B2", "Candle", "3", "0", "8"});
        grdItems.addRow({"C3", "Bag", "-4", "0", "9"});
        grdItems.setCellColor(2, 0, Color::Yellow);
        for (const char* kind : {"Standard", "Parent", "Split"})
            lstKind.add(kind);
        cboColor.add("Red");
        cboColor.add("Blue");
        txtPhone.mask = "(###) ###-####";
        txtShort.maxLength = 3;
        txtSecret.password = true;
        cmdHeld.held = [this](bool down) { txtSecret.setRevealed(down); };
        txtLocked.setLocked(true);
        cmdOff.setEnabled(false);
        cmdGone.setVisible(false);
        lblTitle.setForeColor(Color::Red);
        setLayout(
            column({title(lblTitle),
                    fields({field("Name:", txtName), field("Phone:", txtPhone), field("Short:", txtShort), field("Locked:", txtLocked)}),
                    row({at(chkActive), at(optA), at(optB), at(lstKind), at(cboColor), at(lblLog), at(lblTicks), at(imgUp)}),
                    pages(tabPages, {at(cmdAsk), at(txtNotes)}), at(grdItems),
                    buttons({at(cmdOff), at(cmdGone), at(cmdBeep), at(cmdInput), at(cmdFile), at(cmdModal), at(cmdHelp), at(cmdPanel),
                             at(txtSecret), at(cmdHeld)})}));
    }
    ~frmShop() override { tmrTick.stop(); }

    Label lblTitle{*this, "lblTitle", "The shop"};
    TextBox txtName{*this, "txtName"};
    TextBox txtPhone{*this, "txtPhone"};
    TextBox txtShort{*this, "txtShort"};
    TextBox txtLocked{*this, "txtLocked"};
    TextBox txtSecret{*this, "txtSecret"};
    Button cmdHeld{*this, "cmdHeld", "Show"};
    CheckBox chkActive{*this, "chkActive", "&Active"};
    OptionButton optA{*this, "optA", "A", true};
    OptionButton optB{*this, "optB", "B"};
    ListBox lstKind{*this, "lstKind"};
    ComboBox cboColor{*this, "cboColor"};
    Label lblLog{*this, "lblLog"};
    Label lblTicks{*this, "lblTicks", "0"};
    Image imgUp{*this, "imgUp", "arrow-up", "One up"};
    TabSet tabPages{*this, "tabPages", {"&General", "Notes"}};
    Button cmdAsk{*this, "cmdAsk", "Ask"};
    TextBox txtNotes{*this, "txtNotes"};
    Grid grdItems{*this, "grdItems"};
    Button cmdOff{*this, "cmdOff", "Off"};
    Button cmdGone{*this, "cmdGone", "Gone"};
    Button cmdBeep{*this, "cmdBeep", "Beep"};
    Button cmdInput{*this, "cmdInput", "Input"};
    Button cmdFile{*this, "cmdFile", "File"};
    Button cmdModal{*this, "cmdModal", "Modal"};
    Button cmdHelp{*this, "cmdHelp", "Help"};
    Button cmdPanel{*this, "cmdPanel", "Panel"};
    Timer tmrTick{*this, "tmrTick", 250};

private:
    void Form_Load() override { tmrTick.start(); }
    static GridColumn gridColumn(const std::string& heading) {
        GridColumn made;
        made.heading = heading;
        made.format = heading == "Price" ? GridColumn::Format::Currency : GridColumn::Format::Plain;
        made.editor = heading == "On" ? GridColumn::Editor::Check : GridColumn::Editor::Text;
        return made;
    }
    void note(const std::string& what) { lblLog.setCaption(lblLog.caption() + what + ";"); }
    void listen() {
        txtName.gotFocus = [this] { note("in name"); };
        txtName.lostFocus = [this] { note("out name=" + txtName.text()); };
        txtName.change = [this] { note("change"); };
        txtPhone.validate = [this](bool& cancel) {
            cancel = txtPhone.text() == "(5";
            if (cancel)
                desk().message("Invalid phone", caption(), MessageIcon::Exclamation);
        };
        grdItems.beforeEdit = [](int, int column, bool& cancel) { cancel = column == 0; };
        grdItems.click = [this] {
            note("click " + std::to_string(grdItems.firstSelected()) + "-" + std::to_string(grdItems.lastSelected()));
        };
        grdItems.rowColChange = [this] { note("row " + std::to_string(grdItems.row())); };
        grdItems.dblClick = [this] { note("double"); };
        tabPages.change = [this](int) {
            if (txtName.text() == "stay")
                tabPages.setCurrent(0);
        };
        imgUp.click = [this] { note("up"); };
        lstKind.dblClick = [this] { note("double " + lstKind.text()); };
        tmrTick.fire = [this] { lblTicks.setCaption(std::to_string(++ticks_)); };
        listenToButtons();
    }
    void listenToButtons() {
        cmdAsk.click = [this] {
            const Answer answer = desk().message("Delete it?", "Sure?", MessageIcon::Question, MessageButtons::YesNo);
            note(answer == Answer::Yes ? "yes" : "no");
        };
        cmdBeep.click = [this] { desk().beep(); };
        cmdInput.click = [this] { note(desk().input({"How many?", "Count", ""}).value_or("cancelled")); };
        cmdFile.click = [this] { note(desk().file({"Open", "All|*.*", "", false}).value_or("cancelled").string()); };
        cmdHelp.click = [this] { desk().browse("help/items.html"); };
        cmdPanel.click = [this] { desk().showFloating(desk().form<frmPanel>()); };
        cmdModal.click = [this] {
            auto& dialog = desk().form<frmDialog>();
            desk().showModal(dialog);
            note("got " + dialog.txtAnswer.text());
            if (!dialog.closed())
                dialog.unload();
        };
    }
    int ticks_ = 0;
};

class frmMain : public Form {
public:
    explicit frmMain(Desk& desk) : Form(desk, "frmMain", "Main") {
        mnuShop.click = [this] { this->desk().show(this->desk().form<frmShop>()); };
        mnuDialog.click = [this] { this->desk().showModal(this->desk().form<frmDialog>()); };
        mnuCrash.click = [] { throw std::runtime_error("Object required"); };
        mnuExit.click = [this] { unload(); };
        mnuOff.setEnabled(false);
        Toolbar1.buttonClick = [this](const std::string& key) { setCaption("Main " + key); };
        offer("Double", [](const std::vector<std::string>& arguments) { return arguments.at(0) + arguments.at(0); });
        setLayout(row({at(Toolbar1)}));
    }
    MenuEntry mnuFile{*this, "mnuFile", "&File"};
    MenuEntry mnuShop{*this, "mnuShop", "&Shop", &mnuFile};
    MenuEntry mnuDialog{*this, "mnuDialog", "&Dialog", &mnuFile};
    MenuEntry mnuCrash{*this, "mnuCrash", "Crash", &mnuFile};
    MenuEntry mnuOff{*this, "mnuOff", "Off", &mnuFile};
    MenuEntry mnuExit{*this, "mnuExit", "E&xit", &mnuFile};
    Toolbar Toolbar1{*this, "Toolbar1", {{"Find", "&Find", "Find an item", "find"}}};

private:
    void Form_Unload(bool&) override { desk().end(); }
};

class frmLogin : public Form {
public:
    explicit frmLogin(Desk& desk) : Form(desk, "frmLogin", "Login") {
        login.click = [this] { check(); };
        leave.click = [this] { this->desk().end(); };
        setLayout(row({at(name), at(password), at(login), at(leave)}));
    }
    TextBox name{*this, "txtLogin(0)"};
    TextBox password{*this, "txtLogin(1)"};
    Button login{*this, "cmdLogin(0)", "&Login"};
    Button leave{*this, "cmdLogin(1)", "&Exit"};

private:
    void check() {
        if (name.text() != "manager") {
            desk().message("Invalid User Name or Password. Please try again.", "Login Failure", MessageIcon::Stop);
            return;
        }
        unload();
        desk().show(desk().form<frmMain>());
    }
};

} // namespace merchantry::ui::sample
