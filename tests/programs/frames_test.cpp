#include "tests/programs/formstage.h"
#include "ui/qt/inspect.h"
#include "ui/qt/screenroom.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace merchantry::programs {
namespace {

constexpr int kStill = 150; // looks, 20 ms apart, after which a window is taken to stand where it stays

// Frames come from a window manager: this test runs under one, on screens of the size that its name tells.
class FramesStage : public FormStage {
    void look(ui::FormWindow& window, ui::Form& form, const std::string& name) override {
        if (!window.isWindow())
            return;
        const QRect frame = settled(window);
        const QWindow& handle = *window.windowHandle();
        EXPECT_TRUE(standsInside(window, frame))
            << name << ": frame from " << frame.left() << "," << frame.top() << " to " << frame.right() << "," << frame.bottom()
            << ", title bar " << handle.frameMargins().top() << (handle.isExposed() ? "" : ", not exposed")
            << (handle.isVisible() ? "" : ", hidden") << ", least height " << window.minimumHeight();
        ui::onEveryPage(window, [&] { pressable(window, name); });
        if (form.name() == "frmCustomer")
            accountShown(window, form);
    }

    // Beside the fields where both have room, with all ages; else instead of them.
    static void accountShown(ui::FormWindow& window, ui::Form& form) {
        form.pressKey("F9");
        // A play's desk is not told how large a window became.
        form.setSize(std::min(form.width(), ui::roomOnScreen(window).width() * ui::kTwipsPerPixel), form.height());
        settled(window);
        const bool both = window.screen()->availableGeometry().width() > 1200;
        for (int look = 0; look < kStill && form.find("fraCustomer")->visible() != both; ++look)
            QTest::qWait(20);
        EXPECT_EQ(form.find("fraCustomer")->visible(), both)
            << "in a width of " << form.width() / ui::kTwipsPerPixel << ", drawn in " << window.width();
        const auto* ages = window.drawing(*form.find("grdAges"))->widget()->findChild<QAbstractItemView*>();
        EXPECT_TRUE(ages->isVisible());
        if (both) {
            EXPECT_EQ(ages->verticalScrollBar()->maximum(), 0) << "not all ages are seen";
        }
        form.pressKey("F9");
        settled(window);
        EXPECT_TRUE(form.find("fraCustomer")->visible());
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
            // A window that was just opened may get its last size late, on a machine that is busy.
            const bool whole = QTest::qWaitFor([&] {
                window.reveal(*button);
                return button->visibleRegion().boundingRect() == button->rect();
            });
            EXPECT_TRUE(whole) << button->visibleRegion().boundingRect().height() << " of " << button->height() << " pixels: " << name
                               << ": " << drawing->control().name();
        }
    }
};

} // namespace

TEST(Frames, EveryFormStandsInsideTheScreenWithItsFrame) {
    FramesStage stage;
    EXPECT_EQ(playEveryForm(stage), "");
}

} // namespace merchantry::programs
