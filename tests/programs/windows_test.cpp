#include "programs/screens.h"
#include "tests/programs/formstage.h"
#include "ui/button.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/layout.h"
#include "ui/list.h"
#include "ui/qt/inspect.h"
#include "ui/qt/screenroom.h"

#include <QLayout>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

namespace merchantry::programs {
namespace {

// The screens that need more than 800 by 600; frmItems for its side panel.
const std::set<std::string_view> kLarge{"frmDbConfig", "frmItems", "frmMain"};

std::string wordsOf(const ui::Button& button) {
    std::string caption = button.caption();
    std::erase(caption, '&');
    return caption;
}

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
        const std::string caption = wordsOf(button);
        return button.isDanger || caption.starts_with("Delete") || caption.starts_with("Remove") || caption.starts_with("Forget");
    }

    bool apart_ = true;
    bool behindList_ = false;
};

// What is wrong with the buttons that end a screen. Escape leaves every screen, by the one button that does; on the bar at the foot those
// that leave stand at the right, the one of Escape last or before the screen's own action, and the one of Enter last. What is captioned OK
// or Cancel is that.
class EndingButtons {
public:
    explicit EndingButtons(const ui::Form& form) : form_(form) {
        const std::size_t cancels = count([](const ui::Button& button) { return button.isCancel; });
        if (cancels != (kWithoutEscape.contains(form.name()) ? 0U : 1U))
            complaints += "has " + std::to_string(cancels) + " buttons for Escape\n";
        if (count([](const ui::Button& button) { return button.isDefault; }) > 1)
            complaints += "has several buttons for Enter\n";
        for (const ui::Control* control : form.controls())
            if (const auto* button = dynamic_cast<const ui::Button*>(control))
                lookAtCaption(*button);
        walk(form.layout());
    }
    std::string complaints;

private:
    // The main window and a panel in a list are left otherwise, and a bare table by its frame; an item has a field under the keyboard that
    // Escape must not write.
    inline static const std::set<std::string_view> kWithoutEscape{"frmMain", "frmFieldSearch", "frmItems", "frmTaxTable"};
    // The Enter that a scanner sends must not post a receipt, and a cancellation cancels everything as it opens.
    inline static const std::set<std::string_view> kWithoutEnter{"frmPurchaseOrders_Recv", "frmPOCancel"};

    template <class Wanted> std::size_t count(Wanted wanted) const {
        return static_cast<std::size_t>(std::count_if(form_.controls().begin(), form_.controls().end(), [&](const ui::Control* control) {
            const auto* const button = dynamic_cast<const ui::Button*>(control);
            return button != nullptr && wanted(*button);
        }));
    }
    void lookAtCaption(const ui::Button& button) {
        if (wordsOf(button) == "OK" && button.isDefault == kWithoutEnter.contains(form_.name()))
            complaints += button.name() + " is OK, and Enter does not press it\n";
        if (wordsOf(button) == "Cancel" && !button.isCancel)
            complaints += button.name() + " is Cancel, and Escape does not press it\n";
    }
    void walk(const ui::Item& item) {
        if (item.kind() == ui::Item::Kind::Buttons)
            lookAtBar(item.children());
        for (const ui::Item& child : item.children())
            walk(child);
    }
    void lookAtBar(const std::vector<ui::Item>& bar) {
        std::size_t behind = bar.size(); // how many buttons stand further to the right
        for (const ui::Item& item : bar)
            if (dynamic_cast<const ui::Button*>(item.control()) == nullptr)
                --behind;
        bool right = std::none_of(bar.begin(), bar.end(), [](const ui::Item& item) { return item.stretch() > 0; });
        for (const ui::Item& item : bar) {
            right = right || item.stretch() > 0;
            const auto* const button = dynamic_cast<const ui::Button*>(item.control());
            if (button == nullptr)
                continue;
            --behind;
            const std::string words = wordsOf(*button);
            if (!right && (button->isCancel || button->isDefault || words == "Exit" || words == "Close"))
                complaints += button->name() + " ends the screen at the left\n";
            if ((button->isCancel && behind > 1) || (button->isDefault && behind > 0))
                complaints += button->name() + " does not stand at the end of the bar\n";
        }
    }

    const ui::Form& form_;
};

// What a form shows of money and percentages in another form than that of base/shown.h.
class ShownFigures {
public:
    explicit ShownFigures(const ui::Form& form) {
        for (const ui::Control* control : form.controls()) {
            if (const auto* label = dynamic_cast<const ui::Label*>(control); label != nullptr && !kAsTheyStand.contains(label->name()))
                look(label->name(), label->caption());
            if (const auto* list = dynamic_cast<const ui::ListBox*>(control))
                for (const ui::ListEntry& entry : list->entries())
                    look(list->name(), entry.text);
            if (const auto* grid = dynamic_cast<const ui::Grid*>(control))
                look(*grid);
        }
    }
    std::string complaints;

private:
    // Labels that are told to show "$" and a column's text, and the sentence of a statement's reckoning.
    inline static const std::set<std::string_view> kAsTheyStand{"lblCostAmt",        "lblPriceCostAmt", "lblRetailUnitPriceAmt",
                                                                "lblSupRetailPrice", "lblPriceSaleAmt", "lblReckoning"};

    void look(const ui::Grid& grid) {
        static const std::regex money(R"(\b(Costs?|Price|New Price|Amount|Ext\.|Average|SalePrice)\b)");
        static const std::regex number(R"(\(?-?[\d,]*\.\d+\)?)");
        for (int column = 0; column < grid.columnCount(); ++column) {
            const bool amounts = std::regex_search(grid.text(0, column), money);
            for (int row = 1; row <= std::min(grid.dataRows(), 20); ++row) {
                const std::string shown = grid.text(row, column);
                look(grid.name(), shown);
                if (amounts && std::regex_match(shown, number))
                    complain(grid.name(), shown);
            }
        }
    }
    void look(const std::string& where, const std::string& shown) {
        static const std::regex percent(R"(\d\s+%)");
        static const std::regex amount(R"(\$-?[\d,.]*\d)");
        static const std::regex good(R"(\$\d{1,3}(,\d{3})*\.\d{2}(\d{2})?)");
        if (std::regex_search(shown, percent))
            complain(where, shown);
        for (std::sregex_iterator found(shown.begin(), shown.end(), amount), end; found != end; ++found)
            if (!std::regex_match(found->str(), good))
                complain(where, shown);
    }
    void complain(const std::string& where, const std::string& shown) { complaints += where + " shows " + shown + "\n"; }
};

// Whether the content scrolls although all of it would find room.
bool scrollsInVain(const ui::FormWindow& window) {
    const auto* const room = window.findChild<ui::ScrollRoom*>();
    if (room == nullptr || !room->verticalScrollBar()->isVisible())
        return false;
    const QSize seen = room->maximumViewportSize();
    return room->widget()->minimumSizeHint().width() <= seen.width() &&
           room->widget()->layout()->totalMinimumHeightForWidth(seen.width()) <= seen.height() &&
           room->widget()->minimumSizeHint().height() <= seen.height();
}

// Inspects each form at its smallest, at its own size, and large.
class InspectingStage : public FormStage {
    void look(ui::FormWindow& window, ui::Form& form, const std::string& name) override {
        EXPECT_EQ(DeletingButtons(form.layout()).complaints, "") << name;
        EXPECT_EQ(EndingButtons(form).complaints, "") << name;
        EXPECT_EQ(ShownFigures(form).complaints, "") << name;
        const QSize own = window.size();
        const QSize least = window.minimumSizeHint();
        const bool fits = least.width() <= 800 && least.height() <= 600;
        EXPECT_TRUE(fits || !window.isWindow() || kLarge.contains(form.name()))
            << name << " needs " << least.width() << " by " << least.height();
        for (const QSize size : {least, own * 1.5, own}) {
            if (window.isWindow() && form.sizeable())
                window.resize(size);
            EXPECT_EQ(toText(ui::inspect(window)), "") << name << " at " << window.width() << " by " << window.height();
            EXPECT_TRUE(size == least || !scrollsInVain(window)) << name << " at " << window.width() << " by " << window.height();
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
