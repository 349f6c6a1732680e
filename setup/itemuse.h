#pragma once

#include "app/modMain.h"
#include "ui/button.h"
#include "ui/label.h"

#include <string>

namespace merchantry::setup {

// Says beside a list of departments or tax classes how many items the current one has, and opens their list. Borrows the label and the
// button; wires the button.
class ItemUse {
public:
    ItemUse(app::FailurePlace place, app::ItemGroup group, ui::Label& label, ui::Button& button);
    ItemUse(const ItemUse&) = delete;
    ItemUse& operator=(const ItemUse&) = delete;

    // For the department or class with this key; nothing is said for a negative one.
    void show(std::int64_t id, const std::string& name);

private:
    void cmdShowItems_Click();
    std::int64_t count() const;

    app::FailurePlace place_;
    app::ItemGroup group_;
    ui::Label& label_;
    ui::Button& button_;
    std::int64_t id_ = -1;
    std::string name_;
};

} // namespace merchantry::setup
