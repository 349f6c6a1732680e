#pragma once

#include "ui/control.h"

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QString>

class QApplication;
class QPainter;
class QRect;

namespace merchantry::ui {

// Which of the two looks; System follows the palette that the program was started with.
enum class Tone { System, Light, Dark };

// Measures of the 4 px grid, in logical pixels.
namespace measure {
constexpr int kHair = 4;
constexpr int kRelated = 8;
constexpr int kGroups = 16;
constexpr int kEdge = 20;
constexpr int kField = 32; // height of one-line fields and of buttons
constexpr int kQuiet = 22; // height of a button on a line of text
constexpr int kRow = 30;   // of a grid
constexpr int kRadius = 6;
constexpr int kPanelRadius = 8;
constexpr int kIcon = 18;
} // namespace measure

// The colours of one look. Every pair of text and ground that is used together has a contrast of 4.5 to 1 or more.
struct Tokens {
    QColor paper;      // windows
    QColor panel;      // fields, grids, pages, bars
    QColor ink;        // text
    QColor dim;        // captions, hints
    QColor line;       // borders
    QColor strongLine; // borders of boxes that can be ticked
    QColor accent;
    QColor accentInk; // text on the accent
    QColor accentOver;
    QColor soft; // selection, hover
    QColor head; // header rows, locked fields
    QColor alternate;
    QColor open; // status cells
    QColor partial;
    QColor closed;
    QColor chosen; // ground that a screen wants blue
    QColor danger;
    QColor caution; // text that a screen wants yellow
    QColor fine;    // text that a screen wants green
};

Tokens lightTokens();
Tokens darkTokens();

// The look of every window: colours, typefaces, the style sheet, line icons. The only place that knows them.
class Skin {
public:
    // System is dark when the flag says so.
    explicit Skin(Tone tone, bool systemDark = false);
    // Whether the palette that the program was started with is dark; asked before a skin is applied.
    static bool systemIsDark();

    bool dark() const { return dark_; }
    const Tokens& tokens() const { return tokens_; }
    // Gives the application palette, typeface and style sheet.
    void apply(QApplication& application) const;

    QFont text() const;
    QFont strong() const;
    QFont code() const;
    QFont title() const;
    QFont figure() const;
    QFont small() const;

    // The line icon of that name in a colour; a null icon when there is none of that name.
    QIcon icon(const QString& name, const QColor& color) const;
    QIcon icon(const QString& name) const { return icon(name, tokens_.dim); }
    // The program's icon of a window, on a tile of the accent.
    QIcon windowIcon(const QString& name) const;

    // What a screen's colour means as a ground and as an ink.
    QColor ground(Color color) const;
    QColor ink(Color color) const;

    // Text with every digit as wide as the widest one, so that figures stand under each other.
    static void drawFigures(QPainter& painter, const QRect& where, const QString& text, Qt::Alignment alignment);
    static int figuresWidth(const QFontMetrics& metrics, const QString& text);
    // The box of a check cell or a check box, its tick and its focus ring.
    void drawTick(QPainter& painter, const QRect& box, bool on, bool enabled, bool hover) const;

private:
    QPalette palette() const;
    QString sheet() const;

    bool dark_;
    Tokens tokens_;
};

// Contrast of two opaque colours, from 1 to 21.
double contrast(const QColor& one, const QColor& other);

} // namespace merchantry::ui
