#include "purchasing/frmPOFrom.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

std::vector<SourcePick> allSources(std::int16_t from) {
    const bool suppliers = from == frmPOFrom::kSuppliers;
    const auto rows = openDirect(suppliers ? db::Sql("bsp_Suppliers") : db::Sql("bsp_Departments"), db::CursorType::Static);
    rows->setSort(suppliers ? "Supplier asc" : "Department asc");
    std::vector<SourcePick> sources;
    for (; !rows->Eof(); rows->MoveNext())
        sources.push_back({(*rows)[0].Value().toInt16(), (*rows)[1].text()});
    return sources;
}

// Shows the list to the user; its entries as the user left them, none on Cancel.
std::vector<SourcePick> askedFor(Desk& desk, std::int16_t from, bool manual, const std::string& title,
                                 const std::vector<std::int16_t>& ticked = {}) {
    std::vector<SourcePick> sources = allSources(from);
    for (SourcePick& source : sources)
        source.Selected = std::find(ticked.begin(), ticked.end(), source.Key) != ticked.end();
    if (sources.empty()) {
        desk.message("No suppliers found in the database.", kProduct);
        return {};
    }
    auto& list = desk.form<frmPOFrom>();
    list.Sources = std::move(sources);
    list.From = from;
    list.ManualPO = manual;
    list.Title = title;
    desk.showModal(list);
    if (!list.DialogResult)
        return {};
    sources = std::move(list.Sources);
    std::erase_if(sources, [](const SourcePick& source) { return !source.Selected; });
    list.unload();
    return sources;
}

} // namespace

frmPOFrom::frmPOFrom(Desk& desk)
    : PickForm(desk, "frmPOFrom", "Departments", grdFrom), rows_(Sources, {[](const SourcePick& source) { return Value(source.Name); }}) {
    grdFrom.setColumns({{.heading = "Selected", .editor = GridColumn::Editor::Check, .fixedWidth = true, .characters = 8},
                        {.heading = "Department", .characters = 40},
                        {.heading = "Index", .hidden = true}});
    setLayout(layoutAround(lblHeading, 72));
}

void frmPOFrom::Form_Load() {
    const bool suppliers = From == kSuppliers;
    const std::string heading = ManualPO    ? "Create a Manual Purchase Order"
                                : suppliers ? "Item Selection Based On Suppliers"
                                            : "Item Selection Based On Departments";
    setCaption(ManualPO ? "Create a Purchase Order" : suppliers ? "Suppliers" : "Departments");
    lblHeading.setCaption(Title.empty() ? heading : Title);
    grdFrom.setText(0, kFirstShown, suppliers ? "Supplier" : "Department");
    grdFrom.setHidden(kTick, ManualPO);
    if (ManualPO) {
        grdFrom.setToolTip("A double click takes the supplier.");
        grdFrom.dblClick = [this] { cmdOK_Click(); };
    }
    show(rows_, kFirstShown, !ManualPO);
    if (ManualPO)
        grdFrom.setCurrent(0, kFirstShown); // nobody is taken unasked
}

bool frmPOFrom::accepts() {
    if (ManualPO && grdFrom.selected()) {
        Sources.at(static_cast<std::size_t>(grdFrom.row()) - 1).Selected = true;
        return true;
    }
    if (!ManualPO && selectedCount() > 0)
        return true;
    desk().message(ManualPO ? "No entry has been selected for a purchase order." : "No entries have been selected for a purchase order.",
                   "Velmora TillmarkProfessional");
    return false;
}

std::vector<std::int16_t> PickSources(Desk& desk, std::int16_t from, const std::vector<std::int16_t>& ticked) {
    std::vector<std::int16_t> keys;
    for (const SourcePick& source : askedFor(desk, from, false, "", ticked))
        keys.push_back(source.Key);
    return keys;
}

std::optional<std::int16_t> PickSupplier(Desk& desk, const std::string& title) {
    const auto picked = askedFor(desk, frmPOFrom::kSuppliers, true, title);
    return picked.empty() ? std::nullopt : std::optional(picked.front().Key);
}

} // namespace merchantry::purchasing
