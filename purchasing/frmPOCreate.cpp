#include "purchasing/frmPOCreate.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "purchasing/frmPOFrom.h"
#include "ui/desk.h"
#include "ui/longwork.h"
#include "ui/waiting.h"

#include <chrono>
#include <map>
#include <optional>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPOCreate";
constexpr auto kSlice = std::chrono::milliseconds(30); // of a long work, between two looks at the user

// What a run would do, by filter in the order of the window: with the lowest cost, with the priority order.
struct Explanation {
    const char* byCost;
    const char* byPriority;
};
constexpr Explanation kExplanations[] = {
    {"Purchase orders will be created for all items at or below the reorder level using the supplier with the lowest cost",
     "Purchase orders will be created for all items at or below the reorder level using the supplier with the highest priority"},
    {"Purchase orders will be created for specifically chosen items at or below the reorder level using the supplier with the lowest cost",
     "Purchase orders will be created for specifically chosen items at or below the reorder level using the supplier with the highest "
     "priority"},
    {"Purchase orders will be created for specifically chosen items using the supplier with the lowest cost",
     "Purchase orders will be created for specifically chosen items using the supplier with the highest priority"},
    {"Purchase orders will be created for items at or below the reorder level associated with specifically chosen suppliers using the "
     "lowest cost for the supplier",
     "Purchase orders will be created for items at or below the reorder level associated with the specifically chosen suppliers using only "
     "the priority #1 supplier"},
    {"Purchase orders will be created for items at or below the reorder level associated with specifically chosen departments using the "
     "supplier with the lowest cost",
     "Purchase orders will be created for items at or below the reorder level associated with specifically chosen departments using the "
     "supplier with the highest priority"},
};

using ItemKey = std::pair<std::string, std::string>;

std::map<ItemKey, std::string> itemNames() {
    std::map<ItemKey, std::string> names;
    const auto rows = openDirect("sp_GetAllItems");
    for (; !rows->Eof(); rows->MoveNext())
        names[{(*rows)["SKU"].text(), (*rows)["MatrixSKU"].text()}] = (*rows)["Name"].text();
    return names;
}

std::map<std::int16_t, std::string> supplierNames() {
    std::map<std::int16_t, std::string> names;
    const auto rows = openDirect("bsp_Suppliers");
    for (; !rows->Eof(); rows->MoveNext())
        names[(*rows)[0].Value().toInt16()] = (*rows)[1].text();
    return names;
}

} // namespace

frmPOCreate::frmPOCreate(Desk& desk) : Form(desk, "frmPOCreate", "Create a Purchase Order") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdPreview.setColumns({{.heading = "Supplier", .characters = 18},
                           {.heading = "SKU", .fixedWidth = true, .characters = 11},
                           {.heading = "Name", .characters = 22},
                           {.heading = "In Stock", .format = Format::Number},
                           {.heading = "Qty", .format = Format::Number},
                           {.heading = "Cost", .format = Format::Currency},
                           {.heading = "Extended", .format = Format::Currency}});
    grdPreview.emptyText = "Press Preview to see what would be ordered.";
    grdPreview.setToolTip("What OK would order now. Nothing is written.");
    grdPreview.colorOf = [this](int row, int column) {
        const PreviewLine& line = preview_.line(row - 1);
        if (column != OrderPreview::kQty)
            return Color::None;
        return line.orphan() ? Color::Red : line.dropped() ? Color::Yellow : Color::None;
    };
    grdOffers.setColumns({{.heading = "Compared Supplier", .characters = 17},
                          {.heading = "Part #", .fixedWidth = true, .characters = 11},
                          {.heading = "Cost", .format = Format::Currency},
                          {.heading = "Minimum", .format = Format::Number},
                          {.heading = "Priority", .format = Format::Number},
                          {.heading = "Qty", .format = Format::Number},
                          {.heading = "Why", .characters = 28}});
    grdOffers.emptyText = "Choose a line above to see why it goes to its supplier.";
    grdPreview.editable = grdOffers.editable = false;
    cmdPreview.setToolTip("Works out what OK would order now, and writes nothing. What is picked for it is ticked again on OK.");
    cmdOK.setToolTip(
        "Writes the orders, each whole or not at all, in the order of the preview: a supplier who comes up twice there gets two.");
    optSpecSupplier.setToolTip("Only the chosen suppliers are asked, whoever else delivers the items.");
    for (OptionButton* option : {&optLowestCost, &optPriorityOrder})
        option->group = "rule";
    pbPO.setVisible(false);
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;

    for (OptionButton* option :
         {&optAll, &optReorder, &optSpecItems, &optSpecSupplier, &optSpecDepartment, &optLowestCost, &optPriorityOrder})
        option->click = [this] { choiceClicked(); };
    cmdPreview.click = [this] { cmdPreview_Click(); };
    grdPreview.rowColChange = [this] { grdPreview_RowColChange(); };
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };

    asksBeforeLeaving({&optAll, &optReorder, &optSpecItems, &optSpecSupplier, &optSpecDepartment, &optLowestCost, &optPriorityOrder,
                       &grdPreview, &grdOffers});
    setLayout(column({
        title(lblHeading),
        row({box("Items", column({at(optAll), at(optReorder), at(optSpecItems), at(optSpecSupplier), at(optSpecDepartment)})),
             column({box("Supplier", column({at(optLowestCost), at(optPriorityOrder)})), at(lblExplain).wide(56), stretch(),
                     row({stretch(), at(cmdPreview)})})
                 .stretched()}),
        at(grdPreview).high(7).wide(96).stretched(9),
        at(lblOffers),
        at(grdOffers).high(3).stretched(5),
        buttons({at(pbPO).wide(30), stretch(), at(cmdCancel), at(cmdOK)}),
    }));
}

void frmPOCreate::Form_Load() {
    choiceClicked();
}

// While orders are written, closing stops that first.
void frmPOCreate::Form_Unload(bool& cancel) {
    stop_ = cancel = writing_;
    if (!cancel)
        grdPreview.bind(nullptr);
}

SupplierRule frmPOCreate::rule() const {
    return optLowestCost.value() ? SupplierRule::LowestCost : SupplierRule::Priority;
}

// Another choice: what was worked out for the old one goes.
void frmPOCreate::choiceClicked() {
    const OptionButton* const filters[] = {&optAll, &optReorder, &optSpecItems, &optSpecSupplier, &optSpecDepartment};
    for (std::size_t i = 0; i < std::size(filters); ++i)
        if (filters[i]->value())
            lblExplain.setCaption(rule() == SupplierRule::LowestCost ? kExplanations[i].byCost : kExplanations[i].byPriority);
    pickedSources_.clear();
    pickedItems_.clear();
    nothingUnsaved();
    clearPreview();
}

void frmPOCreate::clearPreview() {
    grdPreview.bind(nullptr);
    preview_.setLines({});
    grdPreview.setStatusText("Nothing worked out yet");
    grdPreview_RowColChange();
}

bool frmPOCreate::collectLines() {
    lines_.clear();
    const bool read = optAll.value()                               ? GetAllReorderItems()
                      : optReorder.value() || optSpecItems.value() ? PickIndividualItemsItems()
                      : optSpecSupplier.value()                    ? PickItemsBySuppliers()
                                                                   : PickItemsByDepartments();
    if (!pickedItems_.empty() || !pickedSources_.empty())
        touched(cmdPreview); // what was picked is lost with the screen
    if (!read) {             // half a list orders for half a store
        lines_.clear();
        return false;
    }
    if (lines_.empty() && (optAll.value() || !pickedSources_.empty()))
        grdPreview.setStatusText("No item is at or below its reorder level");
    return !lines_.empty();
}

bool frmPOCreate::GetAllReorderItems() {
    return guarded({kTag, "GetAllReorderItems"}, [this] {
        const Waiting hourglass(desk());
        addLines(lines_, *modMain().Conn->Execute("sp_GetAllReorderItems"));
    });
}

bool frmPOCreate::PickIndividualItemsItems() {
    return guarded({kTag, "PickIndividualItemsItems"}, [this] {
        const auto picked = PickItems(desk(), optReorder.value() ? Sql("sp_GetAllReorderList") : Sql("sp_GetAllItems"), "", pickedItems_);
        pickedItems_.clear();
        const bool whole = forEach("Reading the items ...", picked.size(), [&](std::size_t i) {
            pickedItems_.insert({picked[i].SKU, picked[i].MatrixSKU});
            addLine(lines_, *modMain().Conn->Execute(Sql("sp_GetItemReorderData '") + picked[i].SKU + "', '" + picked[i].MatrixSKU + "'"));
        });
        if (!whole)
            lines_.clear();
    });
}

bool frmPOCreate::PickItemsBySuppliers() {
    return guarded({kTag, "PickItemsBySuppliers"}, [this] {
        pickedSources_ = PickSources(desk(), frmPOFrom::kSuppliers, pickedSources_);
        if (pickedSources_.empty())
            return;
        const Waiting hourglass(desk());
        modMain().Conn->Execute("sp_POBreakGround");
        for (const std::int16_t supplier : pickedSources_)
            modMain().Conn->Execute(Sql("sp_InsertWrkSupplier ") + supplier);
        addLines(lines_, *modMain().Conn->Execute("sp_GetReorderItemsBySupplier"));
    });
}

bool frmPOCreate::PickItemsByDepartments() {
    return guarded({kTag, "PickItemsByDepartments"}, [this] {
        pickedSources_ = PickSources(desk(), frmPOFrom::kDepartments, pickedSources_);
        if (pickedSources_.empty())
            return;
        const Waiting hourglass(desk());
        modMain().Conn->Execute("sp_POBreakGround");
        for (const std::int16_t department : pickedSources_)
            modMain().Conn->Execute(Sql("sp_InsertWrkDepartment ") + department);
        addLines(lines_, *modMain().Conn->Execute("sp_GetReorderItemsByDept"));
    });
}

bool frmPOCreate::forEach(const std::string& what, std::size_t count, const std::function<void(std::size_t index)>& work) {
    std::size_t next = 0;
    return longWork(desk(), what, [&] {
        for (const auto end = std::chrono::steady_clock::now() + kSlice; next < count && std::chrono::steady_clock::now() < end; ++next)
            work(next);
        return next == count ? 100 : static_cast<int>(next * 100 / count);
    });
}

// Only the suppliers of the work table are looked at: the chosen ones, or all.
bool frmPOCreate::lookUpSuppliers(const std::function<void(OrderLine& line, db::Recordset& offers)>& choose) {
    db::Connection& store = *modMain().Conn;
    if (!optSpecSupplier.value()) {
        store.Execute("sp_POBreakGround");
        store.Execute("sp_InsertAllSuppliers");
    }
    return forEach("Choosing the suppliers ...", lines_.size(),
                   [&](std::size_t i) { choose(lines_[i], *offersFor(store, lines_[i], rule())); });
}

void frmPOCreate::cmdOK_Click() {
    if (!collectLines())
        return;
    std::optional<OrdersWritten> written;
    guarded({kTag, "cmdOK_Click"}, [&] {
        if (!lookUpSuppliers([](OrderLine& line, db::Recordset& offers) { takeOffer(line, offers); }))
            return;
        setWriting(true);
        written = write();
    });
    setWriting(false);
    if (!written)
        return;
    const std::string summary = written->orders > 0 ? std::to_string(written->orders) + " purchase order(s) with total of " +
                                                          std::to_string(written->lines) + " item(s) have been generated."
                                                    : "No purchase orders have been generated.";
    desk().message((written->stopped ? "Stopped. " : "") + summary, kProduct);
    DialogResult = true;
    hide();
}

OrdersWritten frmPOCreate::write() {
    const int count = static_cast<int>(lines_.size());
    {
        const Waiting hourglass(desk());
        groupBySupplier(lines_);
    }
    pbPO.set(0, count);
    pbPO.setVisible(count > 1);
    return writeOrders(modMain().Conn, lines_, [&](int done) {
        if (count > 1) {
            pbPO.set(done, count);
            desk().yield();
        }
        return !stop_;
    });
}

// Meanwhile nothing can be changed, and Cancel stops the writing.
void frmPOCreate::setWriting(bool on) {
    writing_ = on;
    stop_ = false;
    if (!on)
        pbPO.setVisible(false);
    for (Control* control :
         std::initializer_list<Control*>{&optAll, &optReorder, &optSpecItems, &optSpecSupplier, &optSpecDepartment, &optLowestCost,
                                         &optPriorityOrder, &cmdPreview, &grdPreview, &grdOffers, &cmdOK})
        control->setEnabled(!on);
    cmdCancel.setCaption(on ? "Stop" : "Cancel");
}

void frmPOCreate::cmdPreview_Click() {
    clearPreview();
    if (collectLines())
        guarded({kTag, "cmdPreview_Click"}, [this] { preview(); });
}

// The steps of the run up to the grouping.
void frmPOCreate::preview() {
    std::map<ItemKey, std::vector<SupplierOffer>> offersOf;
    const bool whole = lookUpSuppliers([&](OrderLine& line, db::Recordset& offers) {
        if (!offers.Eof())
            takeOffer(line, offers);
        offersOf[{line.SKU, line.MatrixSKU}] = readOffers(offers);
    });
    if (!whole)
        return;
    const Waiting hourglass(desk());
    groupBySupplier(lines_);
    const auto suppliers = supplierNames();
    const auto items = itemNames();
    std::vector<PreviewLine> shown;
    shown.reserve(lines_.size());
    for (const OrderLine& line : lines_) {
        const ItemKey key{line.SKU, line.MatrixSKU};
        PreviewLine one{line, std::move(offersOf[key]), "", ""};
        if (const auto item = items.find(key); item != items.end())
            one.name = item->second;
        if (const auto supplier = suppliers.find(line.SupID); supplier != suppliers.end() && !one.orphan())
            one.supplier = supplier->second;
        shown.push_back(std::move(one));
    }
    previewRule_ = rule();
    grdPreview.bind(nullptr);
    preview_.setLines(std::move(shown));
    grdPreview.bind(&preview_);
    grdPreview.setStatusText(preview_.summary());
    grdPreview_RowColChange();
}

void frmPOCreate::grdPreview_RowColChange() {
    lblOffers.setCaption("");
    grdOffers.setDataRows(0);
    grdOffers.setStatusText("No line chosen");
    if (grdPreview.dataRows() > 0 && grdPreview.selected())
        guarded({kTag, "grdPreview_RowColChange"}, [this] { showOffers(preview_.line(grdPreview.row() - 1)); });
}

// The suppliers that took part, the preferred one first, and then those that did not.
void frmPOCreate::showOffers(const PreviewLine& shown) {
    const OrderLine& line = shown.line;
    lblOffers.setCaption("Why from this supplier: " + line.MatrixSKU + ", " + shown.name);
    const auto served = openDirect(Sql("bsp_SupplierMatrixDetailLookup '") + line.SKU + "', '" + line.MatrixSKU + "'");
    struct Served {
        std::string supplier, part, minimum, priority;
    };
    std::map<std::pair<std::int16_t, Currency>, Served> rest;
    for (db::Recordset& row = *served; !row.Eof(); row.MoveNext())
        rest[{row["SupID"].Value().toInt16(), row["Cost"].Value().toCurrency()}] = {row["Supplier"].text(), row["PartNo"].text(),
                                                                                    row["MinOrder"].text(), row["Priority"].text()};
    for (std::size_t i = 0; i < shown.offers.size(); ++i) {
        const SupplierOffer& offer = shown.offers[i];
        const auto of = rest.extract({offer.SupID, offer.Cost});
        const Served words = of.empty() ? Served() : of.mapped();
        grdOffers.addRow({words.supplier, offer.PartNo, offer.Cost.toText(), words.minimum, std::to_string(offer.Priority),
                          std::to_string(offer.ReorderQty),
                          i == 0 ? whyTaken(shown.offers, previewRule_) : whyNot(offer, shown.offers[0], previewRule_)});
    }
    for (const auto& [key, words] : rest)
        grdOffers.addRow({words.supplier, words.part, key.second.toText(), words.minimum, words.priority, "",
                          key.first == 0 ? "the Empty Supplier takes no part" : "takes no part in this run"});
    grdOffers.setStatusText(counted(grdOffers.dataRows(), "offer") + " of suppliers");
}

} // namespace merchantry::purchasing
