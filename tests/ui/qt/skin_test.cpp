#include "ui/qt/skin.h"

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <gtest/gtest.h>

namespace merchantry::ui {

// Text on every ground that it is drawn on.
TEST(Skin, TextStandsOutOnItsGround) {
    for (const Tokens& t : {lightTokens(), darkTokens()}) {
        for (const QColor& ground : {t.paper, t.panel, t.head, t.alternate, t.soft, t.open, t.partial, t.closed, t.chosen})
            EXPECT_GE(contrast(t.ink, ground), 4.5) << ground.name().toStdString();
        for (const QColor& ground : {t.paper, t.panel, t.head, t.alternate, t.soft})
            EXPECT_GE(contrast(t.dim, ground), 4.5) << ground.name().toStdString();
        for (const QColor& ink : {t.danger, t.caution, t.fine})
            EXPECT_GE(std::min(contrast(ink, t.panel), contrast(ink, t.paper)), 4.5) << ink.name().toStdString();
        for (const QColor& accent : {t.accent, t.accentOver})
            EXPECT_GE(contrast(t.accentInk, accent), 4.5) << accent.name().toStdString();
        EXPECT_GE(contrast(t.accent, t.paper), 4.5);
        EXPECT_GE(contrast(t.strongLine, t.panel), 3.0); // the edge of a box that can be ticked
    }
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
}

TEST(Skin, EveryIconThatFormsNameIsDrawn) {
    const Skin skin(Tone::Light);
    for (const char* name :
         {"store",   "item",   "items",  "login",      "search",   "about",      "database", "customers", "import",      "backup",
          "options", "labels", "addnow", "quickbooks", "arrow-up", "arrow-down", "stop",     "question",  "exclamation", "information"}) {
        const QImage drawn = skin.icon(QString::fromLatin1(name), Qt::red).pixmap(32, 32).toImage();
        bool inked = false;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                inked = inked || drawn.pixelColor(x, y).red() > 200;
        EXPECT_TRUE(inked) << name;
        EXPECT_FALSE(skin.windowIcon(QString::fromLatin1(name)).isNull()) << name;
    }
    EXPECT_TRUE(skin.icon(QStringLiteral("no-such-icon")).isNull());
}

TEST(Skin, FiguresStandUnderEachOther) {
    const QFontMetrics metrics(Skin(Tone::Light).text());
    EXPECT_EQ(Skin::figuresWidth(metrics, QStringLiteral("1,111.11")), Skin::figuresWidth(metrics, QStringLiteral("4,000.00")));
}

} // namespace merchantry::ui
