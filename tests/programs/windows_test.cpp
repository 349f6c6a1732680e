#include "programs/screens.h"
#include "tests/programs/formstage.h"
#include "ui/qt/inspect.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace merchantry::programs {
namespace {

// The screens that need more than 800 by 600; frmItems for its side panel.
const std::set<std::string_view> kLarge{"frmDbConfig", "frmItems", "frmMain"};

// Inspects each form at its smallest, at its own size, and large.
class InspectingStage : public FormStage {
    void look(ui::FormWindow& window, ui::Form& form, const std::string& name) override {
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
