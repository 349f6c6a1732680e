#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::app {

// The way from an empty store to its first sale, offered on the main window of a new store: each step opens its screen, and the store says
// how far it is. Put away, it is offered on no machine of the store any more; the Help menu brings it back for as long as the window is
// open. Owned by the main window, whose controls it makes.
class FirstRoad {
public:
    // `open` shows the screen of that name; for an empty name it asks for a new item's codes and opens it.
    FirstRoad(ui::Form& main, std::function<void(const std::string& form)> open);
    FirstRoad(const FirstRoad&) = delete;
    FirstRoad& operator=(const FirstRoad&) = delete;

    ui::Item layout();
    // Shows the steps when the store still offers them.
    void offer();
    // Shows them in any case.
    void bringBack();
    // Looks at the store again, while they are shown.
    void refresh();
    bool shown() const { return fraFirstRoad.visible(); }

    // Called after they were shown or put away.
    std::function<void()> changed;

private:
    void show(bool on);
    void attempt(const std::function<void()>& look);
    void tell(db::Recordset& row);
    void cmdStep_Click(std::size_t step);
    void cmdPutAway_Click();

    ui::Form& main_;
    std::function<void(const std::string& form)> open_;
    ui::Frame fraFirstRoad;
    ui::Label lblFirstRoad;
    std::vector<std::unique_ptr<ui::Button>> cmdStep;
    std::vector<std::unique_ptr<ui::Label>> lblState; // "Done", "To do", or "As supplied" for what works as every store has it
    std::vector<std::unique_ptr<ui::Label>> lblFound; // what the store has of it
    ui::Button cmdPutAway;
};

} // namespace merchantry::app
