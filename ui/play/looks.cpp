#include "ui/play/looks.h"

#include "ui/button.h"
#include "ui/chart.h"
#include "ui/choice.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/menu.h"
#include "ui/reportview.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

namespace merchantry::ui::play {
namespace {

// The text through the first of these kinds that the control is.
template <class... Kinds, class Read> std::optional<std::string> readAs(const Control& control, Read read) {
    std::optional<std::string> text;
    const auto tryOne = [&](const auto* kind) {
        if (!text && kind != nullptr)
            text = read(*kind);
    };
    (tryOne(dynamic_cast<const Kinds*>(&control)), ...);
    return text;
}

template <class List> std::vector<std::string> textsOf(const List& list) {
    std::vector<std::string> texts;
    for (const ListEntry& entry : list.entries())
        texts.push_back(entry.text);
    return texts;
}

// Whether this holds for the control, what holds it, and for a menu's command also the menus above it.
template <class Test> bool upward(const Control& control, Test test) {
    for (const Control* at = &control; at != nullptr; at = at->container())
        if (!test(*at))
            return false;
    const auto* entry = dynamic_cast<const MenuEntry*>(&control);
    return entry == nullptr || entry->parent() == nullptr || upward(*entry->parent(), test);
}

bool onTurnedPage(const Control& control) {
    const auto* tabs = dynamic_cast<const TabSet*>(control.container());
    return tabs == nullptr || tabs->current() == control.page();
}

void collectTexts(const Item& item, std::vector<std::string>& texts) {
    const Control* const control = item.control();
    if (control != nullptr && !isVisible(*control))
        return;
    if (!item.text().empty())
        texts.push_back(item.text());
    if (const auto* label = dynamic_cast<const Label*>(control))
        texts.push_back(label->caption());
    if (const auto* frame = dynamic_cast<const Frame*>(control))
        texts.push_back(frame->caption());
    if (const auto* grid = dynamic_cast<const Grid*>(control))
        texts.push_back(grid->statusText);
    const auto* tabs = item.kind() == Item::Kind::Pages ? dynamic_cast<const TabSet*>(control) : nullptr;
    for (std::size_t i = 0; i < item.children().size(); ++i)
        if (tabs == nullptr || tabs->current() == static_cast<int>(i))
            collectTexts(item.children()[i], texts);
}

// The texts of the page looked at, one below the other.
std::string pageText(const ReportView& view) {
    if (view.page() == 0)
        return "";
    const Page page = view.pages()->page(view.page() - 1);
    std::string text;
    for (const PageItem* item : readingOrder(page))
        text += (text.empty() ? "" : "\n") + item->text;
    return text;
}

} // namespace

std::optional<std::string> shownText(const Target& target) {
    if (target.tool != nullptr)
        return target.tool->caption;
    const Control& control = *target.control;
    if (const auto* tabs = dynamic_cast<const TabSet*>(&control))
        return tabs->captions().at(static_cast<std::size_t>(tabs->current()));
    if (const auto* bar = dynamic_cast<const ProgressBar*>(&control))
        return std::to_string(bar->value());
    if (const auto* view = dynamic_cast<const ReportView*>(&control))
        return pageText(*view);
    if (const auto* chart = dynamic_cast<const Chart*>(&control))
        return chart->text();
    if (auto text = readAs<TextBox, ListBox, ComboBox>(control, [](const auto& box) { return box.text(); }))
        return text;
    return readAs<Label, Button, CheckBox, OptionButton, Frame, MenuEntry>(control, [](const auto& one) { return one.caption(); });
}

std::optional<std::string> tellableText(const Target& target) {
    const auto* box = dynamic_cast<const TextBox*>(target.control);
    const bool secret = target.tool == nullptr && box != nullptr && box->password;
    return secret ? std::optional<std::string>(box->text().empty() ? "" : "••••••••") : shownText(target);
}

std::optional<bool> shownFlag(const Control& control) {
    if (const auto* box = dynamic_cast<const CheckBox*>(&control))
        return box->value();
    if (const auto* option = dynamic_cast<const OptionButton*>(&control))
        return option->value();
    return {};
}

std::optional<std::vector<std::string>> shownEntries(const Control& control) {
    if (const auto* list = dynamic_cast<const ListBox*>(&control))
        return textsOf(*list);
    if (const auto* combo = dynamic_cast<const ComboBox*>(&control))
        return textsOf(*combo);
    if (const auto* tabs = dynamic_cast<const TabSet*>(&control))
        return tabs->captions();
    const auto* menu = dynamic_cast<const MenuEntry*>(&control);
    if (menu == nullptr)
        return {};
    std::vector<std::string> captions;
    for (const MenuEntry* entry : menu->children())
        if (entry->visible() && entry->caption() != "-")
            captions.push_back(entry->caption());
    return captions;
}

bool isVisible(const Control& control) {
    const Form& form = control.form();
    return !form.closed() && !form.hidden() && upward(control, [](const Control& one) { return one.visible() && onTurnedPage(one); });
}

bool isEnabled(const Control& control) {
    return upward(control, [](const Control& one) { return one.enabled(); });
}

std::vector<std::string> visibleTexts(const Form& form) {
    std::vector<std::string> texts;
    collectTexts(form.layout(), texts);
    return texts;
}

std::string kindOf(const Control& control) {
    constexpr const char* kKinds[] = {"label", "text box", "button", "check box", "option",     "list",    "combo",       "frame", "tabs",
                                      "grid",  "bar",      "timer",  "image",     "menu entry", "toolbar", "report view", "chart"};
    return kKinds[static_cast<int>(control.role())];
}

int firstVisibleColumn(const Grid& grid) {
    for (int column = 0; column < grid.columnCount(); ++column)
        if (!grid.column(column).hidden)
            return column;
    return 0;
}

} // namespace merchantry::ui::play
