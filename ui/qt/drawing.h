#pragma once

#include "ui/control.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class QLayout;

namespace merchantry::ui {

class FormWindow;
class Skin;

// How one control stands on a window: its widget, and the way from the control's state to it. What the user does to the widget goes
// to the control through FormWindow::act and the gestures. The widget belongs to its parent widget; the drawing goes with the window.
class Drawing {
public:
    Drawing(FormWindow& host, Control& control, QWidget* widget) : host_(host), control_(control), widget_(widget) {}
    virtual ~Drawing() = default;
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

    Control& control() const { return control_; }
    QWidget* widget() const { return widget_; }
    // Where the toolkit's focus goes.
    virtual QWidget* focusTarget() const { return widget_; }
    // Takes the state over from the control.
    virtual void refresh(Aspect aspect) = 0;
    // The skin changed.
    virtual void restyle() {}
    // The control is about to go while the widget still stands: nothing may ask it any more.
    virtual void forget() {}
    // Wished width in characters and height in lines, 0 for its own.
    virtual void wish(int characters, int lines);
    // Where the content of a frame (page 0) or of a page goes; null when there is none.
    virtual QWidget* body(int /*page*/) { return nullptr; }
    // Whether it takes room that is left, to the side and below.
    virtual bool wide() const { return false; }
    virtual bool tall() const { return false; }
    // An edit that is under way inside: takes it over or, when it is refused, keeps it. False when refused.
    virtual bool finishEdit() { return true; }
    // Enabled, visible, tool tip.
    void refreshCommon();

    // A caption beside the control that shows and hides with it.
    void setCompanion(QWidget* caption) { companion_ = caption; }
    QWidget* companion() const { return companion_; }

protected:
    FormWindow& host_;
    Control& control_;
    QWidget* widget_;

private:
    QPointer<QWidget> companion_;
};

// The drawing for the control's role; null for roles that have none on the window (menus, timers).
std::unique_ptr<Drawing> draw(FormWindow& host, Control& control, QWidget* parent);

} // namespace merchantry::ui
