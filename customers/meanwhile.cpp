#include "customers/meanwhile.h"

#include "app/titles.h"
#include "base/characters.h"
#include "base/text.h"
#include "ui/choice.h"
#include "ui/desk.h"
#include "ui/label.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;

namespace {

std::string plain(const std::string& caption) {
    const std::string text = replaced(caption, "&", "");
    return text.ends_with(':') ? text.substr(0, text.size() - 1) : text;
}

// The caption that the layout puts before the control; empty when there is none.
std::string captionIn(const Item& item, const Control& control) {
    if (item.kind() == Item::Kind::Field && item.control() == &control) {
        if (!item.text().empty())
            return plain(item.text());
        for (const Item& child : item.children())
            if (const auto* label = dynamic_cast<const Label*>(child.control()); child.kind() == Item::Kind::Caption && label != nullptr)
                return plain(label->caption());
    }
    for (const Item& child : item.children())
        if (const std::string found = captionIn(child, control); !found.empty())
            return found;
    return "";
}

// "City is \"Salem\" now."
std::string told(const Form& form, const DataControl& data, const Control& control) {
    constexpr std::size_t kRoom = 60; // of a note
    if (const auto* box = dynamic_cast<const CheckBox*>(&control))
        return plain(box->caption()) + " is " + (box->value() ? "not ticked" : "ticked") + " now.";
    const std::string text = data.shownText(control);
    return captionIn(form.layout(), control) + " is " +
           (text.empty() ? "empty"
                         : "\"" + (characterCount(text) > kRoom ? std::string(characters(text, 0, kRoom)) + "..." : text) + "\"") +
           " now.";
}

} // namespace

bool takeMeanwhile(Form& form, DataControl& data, db::RecordsetPtr now, const std::string& what) {
    if (now->Eof()) {
        form.desk().message("This " + what + " was deleted meanwhile. Nothing was saved; Cancel leaves the screen.", kProduct);
        return false;
    }
    const auto met = data.renew(std::move(now));
    if (met.empty())
        return true;
    std::string lines;
    for (const Control* control : met)
        lines += "\n" + told(form, data, *control);
    form.desk().message("Someone else changed this " + what + " meanwhile, and nothing was saved:\n" + lines +
                            "\n\nWhat you typed is kept. Update saves yours in place of theirs, Cancel leaves theirs.",
                        kProduct);
    return false;
}

} // namespace merchantry::customers
