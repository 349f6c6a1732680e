#include "programs/screens.h"
#include "tests/programs/formstage.h"
#include "ui/button.h"
#include "ui/layout.h"
#include "ui/qt/inspect.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace merchantry::programs {
namespace {

// The screens that need more than 800 by 600; frmItems for its side panel.
const std::set<std::string_view> kLarge{"frmDbConfig", "frmItems", "frmMain"};

// What is wrong with the place and colour of the deleting buttons in a layout, in its order, which is that of the tab key.
class DeletingButtons {
public:
    explicit DeletingButtons(const ui::Item& layout) { walk(layout); }
    std::string complaints;

private:
    void walk(const ui::Item& item) {
        if (item.control() != nullptr)
            look(*item.control());
        const auto& children = item.children();
        for (std::size_t i = 0; i < children.size(); ++i) {
            apart_ = (i == 0 || isRoom(children[i - 1])) && (i + 1 == children.size() || isRoom(children[i + 1]));
            walk(children[i]);
        }
    }
    void look(ui::Control& control) {
        const auto* const button = dynamic_cast<const ui::Button*>(&control);
        if (button != nullptr && deletes(*button)) {
            if (!button->isDanger)
                complaints += control.name() + " is not red\n";
            if (!apart_)
                complaints += control.name() + " stands close to another\n";
            if (behindList_)
                complaints += control.name() + " is the first one after a list\n";
        }
        if (control.takesFocus())
            behindList_ = control.role() == ui::Role::Grid || control.role() == ui::Role::ListBox;
    }
    static bool isRoom(const ui::Item& item) { return item.kind() == ui::Item::Kind::Gap || item.kind() == ui::Item::Kind::Stretch; }
    static bool deletes(const ui::Button& button) {
        std::string caption = button.caption();
        std::erase(caption, '&');
        return button.isDanger || caption.starts_with("Delete") || caption.starts_with("Remove") || caption.starts_with("Forget");
    }

    bool apart_ = true;
    bool behindList_ = false;
};

// Inspects each form at its smallest, at its own size, and large.
class InspectingStage : public FormStage {
    void look(ui::FormWindow& window, ui::Form& form, const std::string& name) override {
        EXPECT_EQ(DeletingButtons(form.layout()).complaints, "") << name;
        const QSize own = window.size();
        const QSize least = window.minimumSizeHint();
        const bool fits = least.width() <= 800 && least.height() <= 600;
        EXPECT_TRUE(fits || !window.isWindow() || kLarge.contains(form.name()))
            << name << " needs " << least.width() << " by " << least.height();
        for (const QSize size : {least, own * 1.5, own}) {
            if (window.isWindow() && form.sizeable())
                window.resize(size);
            EXPECT_EQ(toText(ui::inspect(window)), "") << name << " at " << window.width() << " by " << window.height();
        }
    }
};

} // namespace

TEST(Windows, EveryFormStandsWellAtEverySize) {
    InspectingStage stage;
    EXPECT_EQ(playEveryForm(stage), "");
}

TEST(Windows, EveryFormHasItsPageOfHelp) {
    for (const Screen& screen : screens())
        EXPECT_TRUE(std::filesystem::exists("help/" + std::string(screen.name) + ".htm")) << screen.name;
}

} // namespace merchantry::programs
