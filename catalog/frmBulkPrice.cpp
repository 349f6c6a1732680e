#include "catalog/frmBulkPrice.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "catalog/itemscreen.h"
#include "catalog/modItemLookup.h"
#include "ui/desk.h"

#include <algorithm>
#include <unordered_map>

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmBulkPrice";
constexpr std::size_t kNamedAtMost = 10;
constexpr int kToCents = 1; // among the roundings: what the grid shows of a price is then all of it
enum ChangeColumn { kChangeId, kMade, kChange, kChangedPrices, kUndone }; // of the earlier changes
enum TierPriceColumn { kParent, kMatrix, kQuantity, kPrice };             // as bsp_TierPrices answers

std::string keyOf(const std::string& sku, const std::string& matrixSku) {
    return lowerCase(sku) + "|" + lowerCase(matrixSku);
}

// One whose transaction holds nothing of what else the program does.
db::ConnectionPtr ownConnection() {
    const auto connection = std::make_shared<db::Connection>(modMain().Conn->provider());
    connection->Open(modMain().Conn->ConnectionString());
    return connection;
}

std::string priceCount(int count) {
    return counted(count, "price");
}

// By the newest posting of each item, which is what its other screens show.
std::unordered_map<std::string, Currency> costsOfItems() {
    const auto newest = openDirect("SELECT SKU, MatrixSKU, Cost_wt FROM InventoryLedger WHERE Cost_wt > 0 AND LedgerID IN (SELECT "
                                   "MAX(LedgerID) FROM InventoryLedger GROUP BY SKU, MatrixSKU)");
    std::unordered_map<std::string, Currency> costs;
    for (; !newest->Eof(); newest->MoveNext())
        costs.emplace(keyOf((*newest)[0].text(), (*newest)[1].text()), (*newest)[2].Value().toCurrency());
    return costs;
}

std::string wordsForBelowCost(int count) {
    return counted(count, "falls below cost", "fall below cost");
}

// The prices left alone, the first of them by name.
std::string wordsForSkipped(const std::vector<PriceStep>& skipped) {
    if (skipped.empty())
        return "";
    const auto count = static_cast<int>(skipped.size());
    std::string words = "\r\n\r\n" + priceCount(count) + (count == 1 ? " has" : " have") + " changed or gone meanwhile and " +
                        (count == 1 ? "was" : "were") + " left as " + (count == 1 ? "it is" : "they are") + ":";
    for (std::size_t i = 0; i < std::min(skipped.size(), kNamedAtMost); ++i)
        words += "\r\n" + skipped[i].matrixSku + " (" + skipped[i].sku + ")";
    if (skipped.size() > kNamedAtMost)
        words += "\r\nand " + withThousands(count - static_cast<int>(kNamedAtMost)) + " more";
    return words;
}

} // namespace

frmBulkPrice::frmBulkPrice(Desk& desk) : Form(desk, "frmBulkPrice", "Change Prices") {
    setIcon("items");
    shapeGrids();
    for (const char* by : {"Percent", "Amount"})
        lbxBy.add(by);
    for (const PriceRounding& rounding : priceRoundings())
        lbxRounding.add(rounding.caption);
    lbxBy.setListIndex(0);
    lbxRounding.setListIndex(kToCents);
    chkBreaks.setValue(true);
    txtChange.alignRight = true;
    txtChange.placeholder = "5 or -2.5";
    txtChange.setToolTip("A number; a negative one lowers the prices.");
    prgWrite.setVisible(false);
    cmdStop.setVisible(false);
    cmdApply.isDefault = true;
    cmdExit.isCancel = true;

    lbxTier.click = [this] { loadPrices(); };
    chkBreaks.click = [this] { loadPrices(); };
    txtChange.change = [this] {
        if (txtChange.text().empty())
            nothingUnsaved();
        show();
    };
    lbxBy.click = [this] { show(); };
    lbxRounding.click = [this] { show(); };
    cmdApply.click = [this] { cmdApply_Click(); };
    cmdUndo.click = [this] { cmdUndo_Click(); };
    cmdStop.click = [this] { stop_ = true; };
    cmdExit.click = [this] { unload(); };

    asksBeforeLeaving({&tabPrices, &lbxTier, &lbxRounding, &lbxBy, &chkBreaks, &grdPrices, &grdChanges});
    setLayout(column({
        title(lblHeading),
        pages(tabPrices,
              {
                  column({
                      row({fields({field("&Tier:", lbxTier).wide(20), field("&Round:", lbxRounding).wide(20)}), gap(),
                           fields({field("Change b&y:", lbxBy).wide(14), field("C&hange:", txtChange).wide(14)}), gap(),
                           fields({field("", chkBreaks)}), stretch()}),
                      at(lblSays),
                      at(grdPrices).high(12).wide(110).stretched(),
                      row({stretch(), at(cmdApply)}),
                  }),
                  column({
                      at(grdChanges).high(12).stretched(),
                      row({note("Prices that changed again since are left as they are"), stretch(), at(cmdUndo)}),
                  }),
              }),
        buttons({at(prgWrite).wide(40), at(cmdStop), stretch(), at(cmdExit)}),
    }));
}

void frmBulkPrice::shapeGrids() {
    using Format = GridColumn::Format;
    grdPrices.setColumns({{.heading = "SKU", .fixedWidth = true},
                          {.heading = "MatrixSKU", .fixedWidth = true},
                          {.heading = "Name", .characters = 26},
                          {.heading = "Qty >=", .format = Format::Number},
                          {.heading = "Before", .format = Format::Currency},
                          {.heading = "After", .format = Format::Currency},
                          {.heading = "Remark", .characters = 18}});
    grdPrices.editable = grdChanges.editable = false;
    grdPrices.emptyText = "The items of the list have no prices in this tier.";
    grdPrices.colorOf = [this](int row, int column) {
        const auto& line = preview_.lines()[static_cast<std::size_t>(row) - 1];
        const bool refused = line.remark == NewPrice::Remark::NotAboveZero || line.remark == NewPrice::Remark::NoPrice;
        if (column != preview_.columnCount() - 1)
            return Color::None;
        return refused ? Color::Red : line.belowCost() ? Color::Yellow : Color::None;
    };
    grdChanges.setColumns({{.heading = "PriceChangeID", .hidden = true},
                           {.heading = "Made", .characters = 20},
                           {.heading = "Change", .characters = 30},
                           {.heading = "Prices", .format = Format::Number},
                           {.heading = "Undone", .characters = 20}});
    grdChanges.emptyText = "No prices have been changed together yet.";
}

void frmBulkPrice::ChangePrices(std::vector<ListedItem> items) {
    items_ = std::move(items);
    ensureLoaded();
    desk().showModal(*this);
}

void frmBulkPrice::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        loadTiers();
        loadChanges();
    });
}

void frmBulkPrice::loadTiers() {
    const auto tiers = openList("bsp_PriceTiers");
    for (; !tiers->Eof(); tiers->MoveNext())
        lbxTier.add((*tiers)[1].text(), static_cast<int>((*tiers)[0].Value().toInteger()));
    if (lbxTier.count() > 0)
        lbxTier.setListIndex(0);
}

// The prices of the items in the tier, in the order of the list.
void frmBulkPrice::loadPrices() {
    guarded({kTag, "loadPrices"}, [this] {
        desk().waitCursor(true);
        std::unordered_map<std::string, std::size_t> places;
        for (std::size_t i = 0; i < items_.size(); ++i)
            places.emplace(keyOf(items_[i].sku, items_[i].matrixSku), i);
        const auto costs = costsOfItems();
        std::vector<std::pair<std::size_t, PricePreview::Line>> found;
        const int tier = lbxTier.listIndex() < 0 ? 0 : lbxTier.itemData();
        const auto prices = openList("bsp_TierPrices", {intParameter("Tier", tier)});
        for (int row = 0; row < prices->RecordCount(); ++row) {
            const std::string sku = prices->cell(row, kParent).toText();
            const std::string matrixSku = prices->cell(row, kMatrix).toText();
            const std::string key = keyOf(sku, matrixSku);
            const auto place = places.find(key);
            const double quantity = prices->cell(row, kQuantity).toNumber();
            if (place == places.end() || (!chkBreaks.value() && quantity > 1))
                continue;
            const Currency price = prices->cell(row, kPrice).toCurrency();
            const auto cost = costs.find(key);
            found.push_back({place->second,
                             {{sku, matrixSku, tier, quantity, price, price},
                              items_[place->second].name,
                              {},
                              cost == costs.end() ? Currency() : cost->second}});
        }
        std::sort(found.begin(), found.end(), [](const auto& left, const auto& right) {
            return std::pair(left.first, left.second.step.quantity) < std::pair(right.first, right.second.step.quantity);
        });
        std::vector<PricePreview::Line> lines;
        lines.reserve(found.size());
        for (auto& [place, line] : found)
            lines.push_back(std::move(line));
        grdPrices.bind(nullptr);
        preview_.setLines(std::move(lines));
        grdPrices.bind(&preview_);
        desk().waitCursor(false);
    });
    show();
}

std::optional<PriceRule> frmBulkPrice::rule() const {
    const bool percent = lbxBy.listIndex() == 0;
    const auto change = changeFromText(txtChange.text(), percent);
    if (!change)
        return std::nullopt;
    return PriceRule{percent, *change, priceRoundings()[static_cast<std::size_t>(lbxRounding.listIndex())]};
}

// Works the rule out for every price.
void frmBulkPrice::show() {
    if (!loaded())
        return;
    const auto wanted = rule();
    std::string says;
    try {
        if (wanted)
            preview_.apply(*wanted);
        else
            preview_.applyNone();
        says = counted(static_cast<std::int64_t>(items_.size()), "item") + " in the list, " + priceCount(preview_.rowCount()) +
               " in this tier: " + withThousands(preview_.changing()) + " would change" +
               (preview_.refused() > 0 ? ", " + withThousands(preview_.refused()) + " cannot" : "") +
               (preview_.belowCost() > 0 ? ", " + wordsForBelowCost(preview_.belowCost()) : "") + ".";
    } catch (const std::exception&) {
        preview_.applyNone();
        says = "With this change a price would be larger than money can be.";
    }
    if (!wanted && !trimmed(txtChange.text()).empty())
        says = lbxBy.listIndex() == 0 ? "The change must be a number with at most two decimals, such as 5 or -2.5."
                                      : "The change must be a number with at most four decimals, such as 0.5 or -1.25.";
    lblSays.setCaption(says);
    cmdApply.setEnabled(preview_.changing() > 0);
    grdPrices.setStatusText(priceCount(preview_.rowCount()) + ", " + withThousands(preview_.changing()) + " would change");
}

void frmBulkPrice::loadChanges() {
    grdChanges.bind(nullptr);
    changes_ = openList("bsp_PriceChanges");
    grdChanges.bind(changes_.get());
    grdChanges.setStatusText(counted(grdChanges.dataRows(), "change"));
    cmdUndo.setEnabled(grdChanges.dataRows() > 0);
}

void frmBulkPrice::cmdApply_Click() {
    const auto wanted = rule();
    if (!wanted || preview_.changing() == 0)
        return;
    const std::string words = lbxTier.text() + ": " + wordsFor(*wanted);
    const std::string warning = preview_.belowCost() > 0 ? "\r\n\r\n" + wordsForBelowCost(preview_.belowCost()) + "." : "";
    if (desk().message("Change " + priceCount(preview_.changing()) + "?\r\n\r\n" + words + warning, caption(), MessageIcon::Question,
                       MessageButtons::YesNo) != Answer::Yes)
        return;
    const std::vector<PriceStep> steps = preview_.steps();
    write(
        "cmdApply_Click", preview_.changing(),
        [&](const PriceProgress& progress) { return changePrices(ownConnection(), words, steps, progress); },
        [this](const PriceOutcome& outcome) {
            desk().message(outcome.stopped ? "Stopped. No price was changed."
                                           : priceCount(outcome.written) + " changed." + wordsForSkipped(outcome.skipped),
                           caption(), MessageIcon::Information);
            if (!outcome.stopped)
                txtChange.setText("");
        });
}

void frmBulkPrice::cmdUndo_Click() {
    if (!grdChanges.selected())
        return;
    const int row = grdChanges.row();
    if (!grdChanges.text(row, kUndone).empty()) {
        desk().message("This change has been undone before.", caption(), MessageIcon::Information);
        return;
    }
    const int id = static_cast<int>(grdChanges.value(row, kChangeId).toInteger());
    if (desk().message("Put the prices of this change back to what they were?\r\n\r\n" + grdChanges.text(row, kChange), caption(),
                       MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    write(
        "cmdUndo_Click", static_cast<int>(grdChanges.value(row, kChangedPrices).toInteger()),
        [&](const PriceProgress& progress) { return undoPriceChange(ownConnection(), id, progress); },
        [this](const PriceOutcome& outcome) {
            desk().message(outcome.stopped ? (stop_ ? "Stopped. No price was put back." : "This change has been undone before.")
                                           : priceCount(outcome.written) + " put back." + wordsForSkipped(outcome.skipped),
                           caption(), MessageIcon::Information);
        });
}

void frmBulkPrice::write(const char* procedure, int prices, const std::function<PriceOutcome(const PriceProgress&)>& work,
                         const std::function<void(const PriceOutcome&)>& done) {
    stop_ = false;
    setWriting(true);
    std::optional<PriceOutcome> outcome;
    guarded({kTag, procedure}, [&] {
        outcome = work([this, prices](int written) {
            prgWrite.set(written, std::max(1, prices));
            desk().yield();
            return !stop_;
        });
    });
    setWriting(false);
    if (outcome)
        done(*outcome);
    guarded({kTag, procedure}, [this] { loadChanges(); });
    loadPrices();
}

void frmBulkPrice::setWriting(bool on) {
    writing_ = on;
    prgWrite.setVisible(on);
    cmdStop.setVisible(on);
    for (Control* control :
         std::initializer_list<Control*>{&lbxTier, &lbxBy, &txtChange, &lbxRounding, &chkBreaks, &cmdApply, &cmdUndo, &cmdExit, &tabPrices})
        control->setEnabled(!on);
}

// While prices are being written, closing stops that first.
void frmBulkPrice::Form_Unload(bool& cancel) {
    stop_ = cancel = writing_;
    if (cancel)
        return;
    grdPrices.bind(nullptr);
    grdChanges.bind(nullptr);
}

} // namespace merchantry::catalog
