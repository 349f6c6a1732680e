#include "ui/layout.h"

#include "ui/frame.h"
#include "ui/label.h"
#include "ui/tabset.h"

namespace merchantry::ui {

using Kind = Item::Kind;

Item::Item() = default;
Item::~Item() = default;
Item::Item(const Item&) = default;
Item::Item(Item&&) noexcept = default;
Item& Item::operator=(const Item&) = default;
Item& Item::operator=(Item&&) noexcept = default;

Item::Item(Kind kind, Control* control, std::string text, std::vector<Item> children)
    : kind_(kind), control_(control), text_(std::move(text)), children_(std::move(children)) {}

Item at(Control& control) {
    return {Kind::Control, &control, "", {}};
}

Item field(std::string caption, Control& control, std::vector<Item> behind) {
    return {Kind::Field, &control, std::move(caption), std::move(behind)};
}

Item field(Label& caption, Control& control, std::vector<Item> behind) {
    behind.insert(behind.begin(), Item(Kind::Caption, &caption, "", {}));
    return {Kind::Field, &control, "", std::move(behind)};
}

Item row(std::vector<Item> items) {
    return {Kind::Row, nullptr, "", std::move(items)};
}

Item column(std::vector<Item> items) {
    return {Kind::Column, nullptr, "", std::move(items)};
}

Item fields(std::vector<Item> items) {
    return {Kind::Fields, nullptr, "", std::move(items)};
}

Item group(Frame& frame, Item content) {
    return {Kind::Group, &frame, "", {std::move(content)}};
}

Item box(std::string heading, Item content) {
    return {Kind::Group, nullptr, std::move(heading), {std::move(content)}};
}

Item pages(TabSet& tabs, std::vector<Item> contents) {
    return {Kind::Pages, &tabs, "", std::move(contents)};
}

Item buttons(std::vector<Item> items) {
    return {Kind::Buttons, nullptr, "", std::move(items)};
}

Item foot(std::vector<Item> items) {
    return {Kind::Foot, nullptr, "", std::move(items)};
}

Item title(Control& label) {
    return {Kind::Title, &label, "", {}};
}

Item figure(std::string caption, Control& label) {
    return {Kind::Figure, &label, std::move(caption), {}};
}

Item note(std::string text) {
    return {Kind::Note, nullptr, std::move(text), {}};
}

Item stretch() {
    return Item(Kind::Stretch, nullptr, "", {}).stretched();
}

Item gap() {
    return {Kind::Gap, nullptr, "", {}};
}

} // namespace merchantry::ui
