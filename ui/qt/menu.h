#pragma once

#include <map>
#include <memory>

class QAction;
class QMenu;
class QMenuBar;

namespace merchantry::ui {

class Control;
class FormWindow;
class MenuEntry;

// The menu bar of a form that has menu entries.
class MenuDrawing {
public:
    // Null for a form without menu entries.
    static std::unique_ptr<MenuDrawing> of(FormWindow& host);
    QMenuBar* bar() const { return bar_; }
    // Takes over whether an entry can be seen and used.
    void refresh(Control& entry);

private:
    explicit MenuDrawing(FormWindow& host);
    void add(QMenu* menu, MenuEntry& entry);

    FormWindow& host_;
    QMenuBar* bar_;
    std::map<const Control*, QAction*> actions_;
};

} // namespace merchantry::ui
