#include "tests/ui/qt/sampleforms.h"
#include "ui/qt/pictures.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QImage>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

template <class F> void picture(QtDesk& desk, const std::filesystem::path& folder, const char* name) {
    F& form = desk.form<F>();
    desk.show(form);
    for (const Tone tone : {Tone::Light, Tone::Dark}) {
        desk.setTone(tone);
        savePicture(desk, form, folder / (std::string(name) + (tone == Tone::Light ? "-light.png" : "-dark.png")));
    }
    form.unload();
}

} // namespace

// Pictures stay for whoever asks by MERCHANTRY_PICTURES; otherwise they go to a scratch folder.
TEST(Pictures, EveryFormIsDrawnInBothTones) {
    QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), Tone::Light);
    const char* const kept = std::getenv("MERCHANTRY_PICTURES");
    const std::filesystem::path folder = kept != nullptr ? kept : std::filesystem::temp_directory_path() / "merchantry-pictures-test";
    std::filesystem::create_directories(folder);
    desk.status("Demo store · Register 1");
    picture<sample::Shell>(desk, folder, "shell");
    picture<sample::ItemSheet>(desk, folder, "item");
    picture<sample::OrderList>(desk, folder, "orders");
    picture<sample::SmallDialog>(desk, folder, "dialog");
    const QImage light((folder / "item-light.png").c_str());
    const QImage dark((folder / "item-dark.png").c_str());
    ASSERT_FALSE(light.isNull());
    EXPECT_EQ(light.size(), dark.size());
    EXPECT_EQ(light.pixelColor(2, 2), lightTokens().paper);
    EXPECT_EQ(dark.pixelColor(2, 2), darkTokens().paper);
    if (kept == nullptr)
        std::filesystem::remove_all(folder);
}

} // namespace merchantry::ui
