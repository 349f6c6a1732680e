#pragma once

#include "ui/form.h"
#include "ui/qt/drawing.h"
#include "ui/qt/qtdesk.h"

#include <QHash>
#include <QLayout>
#include <QWidget>

#include <map>
#include <memory>
#include <string>
#include <vector>

class QLabel;
class QMenuBar;
class QVBoxLayout;

namespace merchantry::ui {

class MenuDrawing;
class ScrollRoom;

// The window of one form. Made with the form's layout before the form loads, shown by the desk, retired when the form is closed. From
// then on it knows no form, and nothing that its widgets still tell reaches a screen.
class FormWindow : public QWidget, public FormView {
public:
    FormWindow(QtDesk& desk, Form& form);
    ~FormWindow() override;

    // Shows it over another window, of the size it had when it was last closed.
    void open(FormWindow* over);
    // Takes a floating panel in, above the content.
    void embed(FormWindow& panel);
    // The form goes: hides and forgets it, and dies when the toolkit is done with it.
    void retire();
    // Lets go of the form at once; only for windows about to be deleted.
    void forget();
    void restyle();
    void showStatus(const std::string& text);

    Form* form() const { return form_; }
    QtDesk& desk() const { return desk_; }
    const Skin& skin() const { return desk_.skin(); }
    // Runs what a user's act brings. Nothing happens when the form is gone or is moved by another desk, that of a script.
    bool act(const std::function<void()>& procedure);
    // Asks the form for what it shows, which may run a procedure of it; a failure ends the run as any other.
    bool read(const std::function<void()>& procedure);
    // The drawing of a control of this form; null when it is not on the window.
    Drawing* drawing(const Control& control) const;
    const std::vector<std::unique_ptr<Drawing>>& drawings() const { return drawings_; }
    Drawing& addDrawing(Control& control, QWidget* parent);
    // The user reaches the control through this widget: clicks, keys and focus of it are the control's.
    void watch(QWidget& widget, Control& control);
    // Finishes an edit inside a grid before the user goes elsewhere; false when it was refused.
    bool finishEdit();
    // Takes the edit under way and gives the control the focus, as a mnemonic must before it acts; false when either was refused or brought
    // up a window or a box.
    bool entered(Control& control);
    // The layouts that the form's Item tree asked for; they rest when the screen moves its controls itself.
    void noteLayout(QLayout* layout) { layouts_.push_back(layout); }
    // Typing in a list that takes no text goes on in the panel that floats over it; false when there is none.
    bool typeIntoPanel(const QString& text);
    // Whether the screen has moved a control itself.
    bool freed() const { return freed_; }
    QWidget* content() const { return content_; }
    // Scrolls the content, where it scrolls, so that the widget can be seen.
    void reveal(const QWidget& widget);
    QMenuBar* menuBar() const;

    void controlChanged(Control& control, Aspect aspect) override;
    void formChanged() override;
    void focusChanged() override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Standing {
        QPointer<QWidget> widget;
        QRect where;
    };

    void build();
    void buildBars();
    void takeWishedSize();
    void takeRememberedSize();
    void recordPlaces();
    void fitOnScreen();
    void lookAgain();
    void setFree();
    void moved(Control& control);
    bool pressed(Control& control);
    bool keyed(Control* control, QKeyEvent& event);
    void arrived(Control& control);
    void focusLater();
    void reportSize();
    void rememberSize();
    template <class D> D* first() const;
    bool passedToOwner(QKeyEvent& event, const std::string& name);

    QtDesk& desk_;
    Form* form_;
    QVBoxLayout* outer_ = nullptr;
    QWidget* content_ = nullptr;
    ScrollRoom* room_ = nullptr; // around the content
    QLabel* status_ = nullptr;
    std::unique_ptr<MenuDrawing> menu_;
    std::vector<std::unique_ptr<Drawing>> drawings_;
    QHash<const Control*, Drawing*> byControl_;
    QHash<QObject*, Control*> watched_;
    std::vector<QPointer<QLayout>> layouts_;
    std::vector<Standing> standing_;
    std::map<const Control*, Place> placed_;
    std::vector<QPointer<FormWindow>> panels_;
    QPointer<FormWindow> embeddedIn_;
    int looks_ = 0; // still to come at where the window stands, see fitOnScreen
    bool settled_ = false;
    QSize openedAt_; // before its user made it another
    QSize wished_;   // what the window would have on a screen of any size
    bool opened_ = false;
    bool freed_ = false;
    bool placing_ = false;
    bool focusing_ = false;
    bool byKeyboard_ = false;
};

} // namespace merchantry::ui
