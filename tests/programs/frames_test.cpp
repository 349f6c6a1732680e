#include "tests/programs/formstage.h"
#include "ui/qt/inspect.h"

#include <QAbstractButton>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include <utility>

namespace merchantry::programs {
namespace {

constexpr int kStill = 150; // looks, 20 ms apart, after which a window is taken to stand where it stays

// Frames come from a window manager: this test runs under one, on screens of the size that its name tells.
class FramesStage : public FormStage {
    void look(ui::FormWindow& window, ui::Form&, const std::string& name) override {
        if (!window.isWindow())
            return;
        const QRect frame = settled(window);
        const QWindow& handle = *window.windowHandle();
        EXPECT_TRUE(standsInside(window, frame))
            << name << ": frame from " << frame.left() << "," << frame.top() << " to " << frame.right() << "," << frame.bottom()
            << ", title bar " << handle.frameMargins().top() << (handle.isExposed() ? "" : ", not exposed")
            << (handle.isVisible() ? "" : ", hidden") << ", least height " << window.minimumHeight();
        ui::onEveryPage(window, [&] { pressable(window, name); });
    }

    static bool standsInside(const ui::FormWindow& window, const QRect& frame) {
        return window.windowHandle()->isExposed() && !window.windowHandle()->frameMargins().isNull() &&
               window.screen()->availableGeometry().contains(frame);
    }

    // The frame once it stands inside the screen, or once nothing moves any more.
    static QRect settled(const ui::FormWindow& window) {
        QRect frame = window.windowHandle()->frameGeometry();
        for (int still = 0; still < kStill && !standsInside(window, frame); ++still) {
            QTest::qWait(20);
            if (std::exchange(frame, window.windowHandle()->frameGeometry()) != frame)
                still = 0;
        }
        return frame;
    }

    // Every button can be seen whole, if need be after the content was scrolled.
    static void pressable(ui::FormWindow& window, const std::string& name) {
        for (const auto& drawing : window.drawings()) {
            QWidget* const button = drawing->widget();
            if (dynamic_cast<QAbstractButton*>(button) == nullptr || !button->isVisible())
                continue;
            window.reveal(*button);
            EXPECT_EQ(button->visibleRegion().boundingRect(), button->rect()) << name << ": " << drawing->control().name();
        }
    }
};

} // namespace

TEST(Frames, EveryFormStandsInsideTheScreenWithItsFrame) {
    FramesStage stage;
    EXPECT_EQ(playEveryForm(stage), "");
}

} // namespace merchantry::programs
