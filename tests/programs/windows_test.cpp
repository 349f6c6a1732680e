#include "app/storefile.h"
#include "programs/screens.h"
#include "programs/storehost.h"
#include "ui/play/player.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/inspect.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

namespace merchantry::programs {
namespace {

using ui::Form;
using ui::FormWindow;

// The screens that need more than 800 by 600; frmItems for its side panel.
const std::set<std::string_view> kLarge{"frmDbConfig", "frmItems", "frmMain"};

// Draws the forms of a script and inspects each that it wants a picture of: at its smallest, at its own size, and large.
class InspectingStage : public ui::play::Stage {
public:
    void prepared(Form& form) override { windows_[&form] = new FormWindow(painter_, form); }
    void opened(Form& form) override {
        FormWindow* const window = windows_.at(&form);
        FormWindow* const over = windowOf(form.desk().top());
        if (form.desk().floating(form) && over != nullptr)
            over->embed(*window);
        else
            window->open(nullptr);
    }
    void vanished(Form& form) override {
        if (FormWindow* const window = windowOf(&form))
            window->retire();
        windows_.erase(&form);
    }
    void settle() override { QCoreApplication::processEvents(); }
    const ui::TextMeasure* textMeasure() const override { return &painter_.textMeasure(); }
    void picture(Form& form, const std::string& name) override {
        FormWindow* const window = windowOf(&form);
        ASSERT_NE(window, nullptr) << name;
        QCoreApplication::processEvents();
        const QSize own = window->size();
        const QSize least = window->minimumSizeHint();
        const bool fits = least.width() <= 800 && least.height() <= 600;
        EXPECT_TRUE(fits || !window->isWindow() || kLarge.contains(form.name()))
            << name << " needs " << least.width() << " by " << least.height();
        for (const QSize size : {least, own * 1.5, own}) {
            if (window->isWindow() && form.sizeable())
                window->resize(size);
            EXPECT_EQ(toText(ui::inspect(*window)), "") << name << " at " << window->width() << " by " << window->height();
        }
        seen.insert(form.name());
    }

    std::set<std::string> seen;

private:
    FormWindow* windowOf(const Form* form) const {
        const auto found = windows_.find(form);
        return found == windows_.end() ? nullptr : found->second;
    }

    ui::QtDesk painter_{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
    std::map<const Form*, FormWindow*> windows_;
};

} // namespace

TEST(Windows, EveryFormStandsWellAtEverySize) {
    const QTemporaryDir folder;
    const std::filesystem::path store = folder.filePath(QStringLiteral("empty.store")).toStdString();
    app::createStoreFile(store, {}, [](int) {});
    InspectingStage stage;
    ui::play::PlayOptions options;
    options.scripts = {"tests/programs/windows.play"};
    options.stage = &stage;
    std::ostringstream transcript;
    const int code = ui::play::runPlays(
        options, [&](const std::filesystem::path&) { return std::make_unique<StoreHost>(store, true); }, transcript);
    EXPECT_EQ(code, 0) << transcript.str();
    for (const Screen& screen : screens())
        EXPECT_TRUE(stage.seen.contains(screen.name)) << screen.name << " is not opened by the script";
}

} // namespace merchantry::programs
