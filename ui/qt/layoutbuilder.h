#pragma once

#include "ui/layout.h"

#include <Qt>

#include <vector>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QLayout;
class QWidget;

namespace merchantry::ui {

class Drawing;
class FormWindow;

// Turns a form's Item tree into widgets and layouts on the 4 px grid: 8 between related things, 16 between groups, 20 at the edge.
class LayoutBuilder {
public:
    explicit LayoutBuilder(FormWindow& window) : window_(window) {}
    // Fills an empty widget with the form's layout.
    void fill(QWidget& content, const Item& layout);
    // The command bar and the line that the layout ends with, in a widget of their own below what may scroll; null when it has neither.
    // Requires: the layout was filled in before.
    QWidget* foot(QWidget* parent, const Item& layout);

private:
    // A built item: a widget or a layout, and whether it takes the room that is left to the side and below.
    struct Piece {
        QWidget* widget = nullptr;
        QLayout* layout = nullptr;
        bool wide = false;
        bool tall = false;
    };

    Piece build(const Item& item);
    Piece control(const Item& item);
    Piece field(const Item& item);
    Piece row(const Item& item);
    Piece column(const Item& item);
    Piece fields(const Item& item);
    Piece group(const Item& item);
    Piece pages(const Item& item);
    Piece buttons(const Item& item);
    Piece figure(const Item& item);
    Piece note(const Item& item);

    // The content of a frame, a page or the window; whether it takes room that is left below.
    bool fillBody(QWidget& body, const Item& content, int margin);
    // The controls of a field without its caption, on one line.
    Piece fieldLine(const Item& item);
    Piece ledLine(const Item& item);
    Piece addOther(QGridLayout& grid, int line, const Item& item);
    Piece addFieldRow(QGridLayout& grid, int line, const Item& item);
    QLabel* caption(const std::string& text, Drawing* of);
    // The caption of a field: its text, or the screen's own label.
    QLabel* captionOf(const Item& field);
    static void keepApart(QBoxLayout& box, const Item& item, const Piece& piece, int distance);
    static void place(QBoxLayout& box, const Item& item, const Piece& piece, Qt::Alignment alignment, bool grows);
    template <class L> L* made();

    FormWindow& window_;
    QWidget* parent_ = nullptr;
    const Item* bar_ = nullptr; // the command bar that ends the layout
    int aboveBar_ = 0;          // the distance to what stands before it
};

} // namespace merchantry::ui
