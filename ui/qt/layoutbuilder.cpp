#include "ui/qt/layoutbuilder.h"

#include "ui/frame.h"
#include "ui/label.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/skin.h"
#include "ui/qt/texts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace merchantry::ui {
namespace {

using Kind = Item::Kind;

constexpr std::size_t kLongNote = 80; // characters from which a note may take several lines

bool isSpace(const Item& item) {
    return item.kind() == Kind::Stretch || item.kind() == Kind::Gap || item.kind() == Kind::Foot || item.kind() == Kind::Empty;
}

// Things that are a group in themselves and want 16 around them.
bool isBlock(const Item& item) {
    switch (item.kind()) {
    case Kind::Column:
    case Kind::Fields:
    case Kind::Group:
    case Kind::Pages:
    case Kind::Buttons:
    case Kind::Title:
        return true;
    case Kind::Row:
        return std::any_of(item.children().begin(), item.children().end(), isBlock);
    default:
        return false;
    }
}

bool isChoice(const Item& item) {
    return item.kind() == Kind::Control && (item.control()->role() == Role::CheckBox || item.control()->role() == Role::OptionButton);
}

int below(const Item& upper, const Item& lower) {
    if (upper.kind() == Kind::Title)
        return measure::kHair;
    return isBlock(upper) || isBlock(lower) ? measure::kGroups : measure::kRelated;
}

int beside(const Item& left, const Item& right) {
    if (left.kind() == Kind::Figure && right.kind() == Kind::Figure)
        return 2 * measure::kGroups;
    return isBlock(left) || isBlock(right) || (isChoice(left) && isChoice(right)) ? measure::kGroups : measure::kRelated;
}

// The line below everything else, which ends the layout; null when there is none.
const Item* footOf(const Item& layout) {
    return layout.children().empty() || layout.children().back().kind() != Kind::Foot ? nullptr : &layout.children().back();
}

// The last of its children that stands inside it.
const Item* lastOf(const Item& item) {
    const std::size_t count = item.children().size() - (footOf(item) == nullptr ? 0 : 1);
    return count == 0 ? nullptr : &item.children()[count - 1];
}

bool onlyButtons(const Item& column) {
    return std::all_of(column.children().begin(), column.children().end(), [](const Item& item) {
        return isSpace(item) || (item.control() != nullptr && item.control()->role() == Role::Button);
    });
}

// Whether a control in a column keeps its own width.
bool keepsWidth(const Item& item) {
    if (item.kind() != Kind::Control)
        return false;
    switch (item.control()->role()) {
    case Role::Button:
    case Role::CheckBox:
    case Role::OptionButton:
    case Role::Image:
        return true;
    case Role::Label:
        return item.control()->takesFocus() || item.characters() > 0;
    case Role::Grid:
        return false; // its width is a wish
    default:
        return item.characters() > 0 && item.stretch() == 0;
    }
}

bool hasOwnCaption(const Item& field) {
    return !field.children().empty() && field.children().front().kind() == Kind::Caption;
}

// The caption's mnemonic leads to the field, and its words name the field to those who do not see it.
void leadTo(QLabel& caption, Drawing* field) {
    if (field == nullptr)
        return;
    caption.setBuddy(field->focusTarget());
    field->focusTarget()->setAccessibleName(caption.text().remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

} // namespace

template <class L> L* LayoutBuilder::made() {
    auto* layout = new L;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    window_.noteLayout(layout);
    return layout;
}

void LayoutBuilder::fill(QWidget& content, const Item& layout) {
    const Item* const last = lastOf(layout);
    if (layout.kind() == Kind::Column && last != nullptr && last->kind() == Kind::Buttons)
        bar_ = last;
    if (layout.kind() != Kind::Empty)
        fillBody(content, layout, measure::kEdge);
}

QWidget* LayoutBuilder::foot(QWidget* parent, const Item& layout) {
    const Item* const line = footOf(layout);
    if (line == nullptr && bar_ == nullptr)
        return nullptr;
    auto* widget = new QWidget(parent);
    QWidget* const outside = std::exchange(parent_, widget);
    auto* box = made<QVBoxLayout>();
    if (bar_ != nullptr) {
        const Piece piece = buttons(*bar_);
        piece.layout->setContentsMargins(measure::kEdge, aboveBar_, measure::kEdge, line == nullptr ? measure::kEdge : 0);
        box->addLayout(piece.layout);
    }
    if (line != nullptr) {
        const Piece piece = buttons(*line);
        piece.layout->setContentsMargins(measure::kEdge, measure::kHair, measure::kEdge, measure::kHair / 2);
        box->addLayout(piece.layout);
    }
    parent_ = outside;
    widget->setLayout(box);
    return widget;
}

bool LayoutBuilder::fillBody(QWidget& body, const Item& content, int margin) {
    QWidget* const outside = std::exchange(parent_, &body);
    auto* box = made<QVBoxLayout>();
    const bool footed = footOf(content) != nullptr;                           // its line takes the place of an edge
    const bool open = footed || (bar_ != nullptr && bar_ == lastOf(content)); // what stands below has the edge
    box->setContentsMargins(margin, footed ? margin - measure::kHair : margin, margin, open ? 0 : margin);
    const Piece piece = build(content);
    place(*box, content, piece, keepsWidth(content) ? Qt::AlignLeft : Qt::Alignment(), piece.tall);
    if (!piece.tall)
        box->addStretch(1);
    body.setLayout(box);
    parent_ = outside;
    return piece.tall;
}

LayoutBuilder::Piece LayoutBuilder::build(const Item& item) {
    switch (item.kind()) {
    case Kind::Control:
    case Kind::Title:
        return control(item);
    case Kind::Field:
        return field(item);
    case Kind::Row:
        return row(item);
    case Kind::Column:
        return column(item);
    case Kind::Fields:
        return fields(item);
    case Kind::Group:
        return group(item);
    case Kind::Pages:
        return pages(item);
    case Kind::Buttons:
        return buttons(item);
    case Kind::Figure:
        return figure(item);
    case Kind::Note:
        return note(item);
    case Kind::Foot:    // stands outside, see foot
    case Kind::Caption: // with its field
    case Kind::Empty:
    case Kind::Stretch:
    case Kind::Gap:
        break;
    }
    return {};
}

// A group that the screen may hide has the distance to its left within, and takes it along.
void LayoutBuilder::keepApart(QBoxLayout& box, const Item& item, const Piece& piece, int distance) {
    if (item.kind() == Kind::Group && item.control() != nullptr)
        piece.widget->layout()->setContentsMargins(distance, 0, 0, 0);
    else
        box.addSpacing(distance);
}

// What grows shares the room that is left, also when the item asks for no share of its own.
void LayoutBuilder::place(QBoxLayout& box, const Item& item, const Piece& piece, Qt::Alignment alignment, bool grows) {
    const int share = std::max(item.stretch(), grows ? 1 : 0);
    if (item.kind() == Kind::Stretch) {
        box.addStretch(share);
    } else if (item.kind() == Kind::Gap) {
        box.addSpacing(measure::kRelated);
    } else if (piece.widget != nullptr) {
        box.addWidget(piece.widget, share, alignment);
    } else if (piece.layout != nullptr) {
        box.addLayout(piece.layout, share);
    }
}

LayoutBuilder::Piece LayoutBuilder::control(const Item& item) {
    Drawing& drawing = window_.addDrawing(*item.control(), parent_);
    drawing.wish(item.characters(), item.lines());
    if (item.characters() > 0 && item.stretch() > 0)
        drawing.widget()->setMaximumWidth(QWIDGETSIZE_MAX); // so wide at least
    if (item.kind() == Kind::Title)
        setLook(*drawing.widget(), "title");
    const bool fixed = item.characters() > 0 && item.stretch() == 0 && item.control()->role() != Role::Grid;
    return {drawing.widget(), nullptr, drawing.wide() && !fixed, drawing.tall()};
}

QLabel* LayoutBuilder::caption(const std::string& text, Drawing* of) {
    auto* label = new QLabel(toQt(text), parent_);
    label->setTextFormat(Qt::PlainText);
    setLook(*label, "caption");
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    leadTo(*label, of);
    if (of != nullptr)
        of->setCompanion(label);
    return label;
}

QLabel* LayoutBuilder::captionOf(const Item& field) {
    Drawing* const of = window_.drawing(*field.control());
    if (!hasOwnCaption(field))
        return caption(field.text(), of);
    auto& label = dynamic_cast<Label&>(*field.children().front().control());
    auto* const widget = static_cast<QLabel*>(window_.addDrawing(label, parent_).widget());
    setLook(*widget, "caption");
    widget->setText(toQt(label.caption()));
    leadTo(*widget, of);
    return widget;
}

LayoutBuilder::Piece LayoutBuilder::fieldLine(const Item& item) {
    Piece first = control(item);
    if (item.children().size() == (hasOwnCaption(item) ? 1 : 0))
        return first;
    auto* line = made<QHBoxLayout>();
    line->setSpacing(measure::kRelated);
    line->addWidget(first.widget, first.wide ? 1 : 0);
    bool wide = first.wide;
    for (const Item& behind : item.children()) {
        if (behind.kind() == Kind::Caption)
            continue;
        const Piece piece = build(behind);
        place(*line, behind, piece, {}, piece.wide);
        wide = wide || piece.wide || behind.kind() == Kind::Stretch;
    }
    if (!wide)
        line->addStretch(1);
    return {nullptr, line, true, first.tall};
}

LayoutBuilder::Piece LayoutBuilder::field(const Item& item) {
    auto* line = made<QHBoxLayout>();
    line->setSpacing(measure::kRelated);
    const Piece rest = fieldLine(item);
    QLabel* const label = captionOf(item);
    line->addWidget(label, 0, rest.tall ? Qt::AlignTop : Qt::AlignVCenter);
    if (rest.widget != nullptr)
        line->addWidget(rest.widget, rest.wide ? 1 : 0);
    else
        line->addLayout(rest.layout, 1);
    return {nullptr, line, rest.wide, rest.tall};
}

LayoutBuilder::Piece LayoutBuilder::row(const Item& item) {
    auto* box = made<QHBoxLayout>();
    bool wide = false;
    bool tall = false;
    const Item* before = nullptr;
    std::vector<std::pair<const Item*, Piece>> pieces;
    for (const Item& child : item.children())
        pieces.emplace_back(&child, build(child));
    bool shared = false; // someone asks for a share
    for (const auto& [child, piece] : pieces) {
        tall = tall || piece.tall;
        shared = shared || child->stretch() > 0;
    }
    for (const auto& [child, piece] : pieces) {
        if (before != nullptr && !isSpace(*child))
            keepApart(*box, *child, piece, beside(*before, *child));
        place(*box, *child, piece, tall && !piece.tall && piece.widget != nullptr ? Qt::AlignTop : Qt::Alignment(), piece.wide && !shared);
        wide = wide || piece.wide || child->stretch() > 0;
        before = isSpace(*child) ? before : child;
    }
    if (!wide && item.children().size() > 1)
        box->addStretch(1);
    return {nullptr, box, wide || item.children().size() > 1, tall};
}

LayoutBuilder::Piece LayoutBuilder::column(const Item& item) {
    auto* box = made<QVBoxLayout>();
    const bool bar = onlyButtons(item);
    bool wide = false;
    bool tall = false;
    std::vector<std::pair<const Item*, Piece>> pieces;
    for (const Item& child : item.children()) {
        if (&child == bar_)
            continue; // stands outside, see foot
        pieces.emplace_back(&child, build(child));
        tall = tall || pieces.back().second.tall || child.stretch() > 0;
        wide = wide || pieces.back().second.wide;
    }
    const Item* const last = lastOf(item);
    const bool ended = last != nullptr && last->kind() == Kind::Buttons && last != bar_;
    const Item* before = nullptr;
    for (const auto& [child, piece] : pieces) {
        if (!tall && child == last && ended)
            box->addStretch(1);
        if (before != nullptr && !isSpace(*child))
            box->addSpacing(below(*before, *child));
        place(*box, *child, piece, keepsWidth(*child) && !bar ? Qt::AlignLeft : Qt::Alignment(), piece.tall);
        before = isSpace(*child) ? before : child;
    }
    if (!tall && !ended)
        box->addStretch(1);
    if (last != nullptr && last == bar_)
        aboveBar_ = before == nullptr ? 0 : below(*before, *last);
    return {nullptr, box, wide, tall};
}

// The first field's controls and the rest of its row behind them.
LayoutBuilder::Piece LayoutBuilder::ledLine(const Item& item) {
    Piece piece = fieldLine(item.children().front());
    auto* box = made<QHBoxLayout>();
    box->setSpacing(measure::kRelated);
    place(*box, item.children().front(), piece, {}, piece.wide);
    for (std::size_t i = 1; i < item.children().size(); ++i) {
        const Piece next = build(item.children()[i]);
        place(*box, item.children()[i], next, {}, next.wide);
        piece.wide = piece.wide || next.wide || item.children()[i].stretch() > 0;
    }
    if (!piece.wide)
        box->addStretch(1);
    return {nullptr, box, true, piece.tall};
}

// What is no field stands under the fields, or under captions and fields when it is a group of its own.
LayoutBuilder::Piece LayoutBuilder::addOther(QGridLayout& grid, int line, const Item& item) {
    const Piece piece = build(item);
    const bool whole = isBlock(item) || item.kind() == Kind::Note;
    if (piece.widget != nullptr)
        grid.addWidget(piece.widget, line, whole ? 0 : 1, 1, whole ? 2 : 1, keepsWidth(item) ? Qt::AlignLeft : Qt::Alignment());
    else if (piece.layout != nullptr)
        grid.addLayout(piece.layout, line, whole ? 0 : 1, 1, whole ? 2 : 1);
    else if (isSpace(item))
        grid.setRowMinimumHeight(line, measure::kHair);
    return piece;
}

LayoutBuilder::Piece LayoutBuilder::addFieldRow(QGridLayout& grid, int line, const Item& item) {
    // A row that begins with a field lends its caption to the column of captions.
    const bool led = item.kind() == Kind::Row && !item.children().empty() && item.children().front().kind() == Kind::Field;
    const Item& first = led ? item.children().front() : item;
    if (first.kind() != Kind::Field)
        return addOther(grid, line, item);
    const Piece piece = led ? ledLine(item) : fieldLine(first);
    QLabel* const label = captionOf(first);
    label->setMinimumHeight(measure::kField);
    grid.addWidget(label, line, 0, Qt::AlignRight | (piece.tall ? Qt::AlignTop : Qt::AlignVCenter));
    if (piece.widget != nullptr)
        grid.addWidget(piece.widget, line, 1, piece.wide ? Qt::Alignment() : Qt::AlignLeft);
    else
        grid.addLayout(piece.layout, line, 1);
    return piece;
}

LayoutBuilder::Piece LayoutBuilder::fields(const Item& item) {
    auto* grid = made<QGridLayout>();
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(measure::kRelated);
    grid->setColumnStretch(1, 1);
    bool wide = false;
    bool tall = false;
    int line = 0;
    for (const Item& child : item.children()) {
        const Piece piece = addFieldRow(*grid, line, child);
        if (piece.tall || child.stretch() > 0)
            grid->setRowStretch(line, std::max(1, child.stretch()));
        wide = wide || piece.wide;
        tall = tall || piece.tall;
        ++line;
    }
    if (!tall)
        grid->setRowStretch(line, 1);
    return {nullptr, grid, wide, tall};
}

LayoutBuilder::Piece LayoutBuilder::group(const Item& item) {
    const Item& inside = item.children().front();
    // A list in a box has its own frame; a second one around it would only be noise. A frame without a heading only holds together what is
    // shown and hidden at once.
    const bool nameless = item.control() != nullptr && static_cast<Frame*>(item.control())->caption().empty();
    const bool bare = nameless || (inside.kind() == Kind::Control && inside.control()->role() == Role::Grid);
    GroupPanel* panel = nullptr;
    if (item.control() != nullptr) {
        Drawing& drawing = window_.addDrawing(*item.control(), parent_);
        panel = static_cast<GroupPanel*>(drawing.widget());
    } else {
        panel = new GroupPanel(parent_);
        panel->setHeading(toQt(item.text()));
    }
    panel->setBare(bare);
    const bool tall = fillBody(*panel->body(), inside, bare ? 0 : measure::kGroups);
    return {panel, nullptr, true, tall || item.stretch() > 0};
}

LayoutBuilder::Piece LayoutBuilder::pages(const Item& item) {
    Drawing& drawing = window_.addDrawing(*item.control(), parent_);
    int page = 0;
    for (const Item& content : item.children()) {
        if (QWidget* body = drawing.body(page))
            fillBody(*body, content, measure::kGroups);
        ++page;
    }
    return {drawing.widget(), nullptr, true, true};
}

// Without a stretch of its own the bar stands right.
LayoutBuilder::Piece LayoutBuilder::buttons(const Item& item) {
    auto* box = made<QHBoxLayout>();
    box->setSpacing(measure::kRelated);
    if (std::none_of(item.children().begin(), item.children().end(), [](const Item& child) { return child.stretch() > 0; }))
        box->addStretch(1);
    const Item* before = nullptr;
    for (const Item& child : item.children()) {
        if (before != nullptr && before->kind() == Kind::Note)
            box->addSpacing(measure::kRelated);
        place(*box, child, build(child), {}, false);
        before = &child;
    }
    return {nullptr, box, true, false};
}

LayoutBuilder::Piece LayoutBuilder::figure(const Item& item) {
    auto* box = made<QVBoxLayout>();
    const Piece value = control(item);
    setLook(*value.widget, "figure");
    static_cast<QLabel*>(value.widget)->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QLabel* const label = caption(item.text(), window_.drawing(*item.control()));
    label->setAlignment(Qt::AlignRight);
    box->addWidget(label);
    box->addSpacing(2);
    box->addWidget(value.widget);
    return {nullptr, box, false, false};
}

LayoutBuilder::Piece LayoutBuilder::note(const Item& item) {
    auto* label = new QLabel(toQt(item.text()), parent_);
    setLook(*label, "note");
    label->setTextFormat(Qt::PlainText);
    if (item.text().size() > kLongNote)
        label->setWordWrap(true);
    return {label, nullptr, label->wordWrap(), false};
}

} // namespace merchantry::ui
