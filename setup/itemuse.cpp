#include "setup/itemuse.h"

#include "base/counted.h"
#include "base/numbers.h"

namespace merchantry::setup {

using namespace app;

namespace {

// What stands behind the row, and what its deletion would meet. Class 0 is the untaxed one.
std::string told(std::int64_t items, ItemGroup group, std::int64_t id, const std::string& name) {
    const std::string count = items == 0 ? "No items" : counted(items, "item");
    if (group == ItemGroup::TaxClass)
        return count + " with " + name + (items > 0 && id != 0 ? "; untaxed if it is deleted" : "");
    return count + " in " + name + (items == 0 ? "" : items == 1 ? " keeps it from being deleted" : " keep it from being deleted");
}

} // namespace

ItemUse::ItemUse(FailurePlace place, ItemGroup group, ui::Label& label, ui::Button& button)
    : place_(std::move(place)), group_(group), label_(label), button_(button) {
    button_.setEnabled(false);
    button_.click = [this] { cmdShowItems_Click(); };
}

void ItemUse::show(std::int64_t id, const std::string& name) {
    id_ = id;
    name_ = name;
    std::int64_t items = 0;
    std::string text;
    if (id >= 0)
        guarded(place_, [&] {
            items = count();
            text = told(items, group_, id, name);
        });
    label_.setCaption(text);
    button_.setEnabled(items > 0 && modMain().doors.ItemsOf != nullptr);
}

std::int64_t ItemUse::count() const {
    const auto rows =
        openDirect(db::Sql("bsp_ItemCount '") + std::string(group_ == ItemGroup::Department ? "Department" : "TaxClass") + "', " + id_);
    return (*rows)["Items"].Value().toInteger();
}

// What was moved meanwhile is counted no more.
void ItemUse::cmdShowItems_Click() {
    modMain().doors.ItemsOf(group_, static_cast<int>(id_), name_);
    show(id_, name_);
}

} // namespace merchantry::setup
