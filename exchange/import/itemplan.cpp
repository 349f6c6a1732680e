#include "exchange/import/itemplan.h"

#include "app/itemcodes.h"
#include "base/characters.h"
#include "base/counted.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/shown.h"
#include "base/text.h"
#include "base/textorder.h"
#include "exchange/import/decimals.h"

#include <algorithm>
#include <functional>

namespace merchantry::exchange {
namespace {

constexpr int kCodeLength = 100;
constexpr std::size_t kMostNamed = 6; // of departments or suppliers

std::string rowNumber(const SheetTable& table, int row) {
    return "Row " + withThousands(table.number(row));
}

constexpr const char* kChooseCodes = " On page 2 you choose whether such codes are mended or taken as they are.";

// What the programs could never find again; see also itemCodeComplaint.
std::string complaintAbout(std::string_view sku, std::string_view matrixSku) {
    for (const std::string_view code : {matrixSku, sku}) {
        if (characterCount(code) > kCodeLength)
            return "The code has more than 100 characters.";
        if (code.find_first_of("';") != std::string_view::npos)
            return "A code holds no \"'\" and no \";\".";
        if (code.find_first_of("\r\n\t") != std::string_view::npos)
            return "The code goes over several lines.";
    }
    return app::itemCodeComplaint(std::string(sku), std::string(matrixSku));
}

// "Lighting, Cards and 12 more".
std::string firstOf(const std::vector<std::string>& names) {
    const std::size_t shown = std::min(names.size(), kMostNamed);
    const std::string some = joined({names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown)}, ", ");
    return shown == names.size() ? some : some + " and " + withThousands(static_cast<std::int64_t>(names.size() - shown)) + " more";
}

std::string flagText(bool on) {
    return on ? "yes" : "no";
}

} // namespace

ItemPlan::ItemPlan(const SheetTable& table, const ColumnMatch& match, const ImportOptions& options, const ItemsInStore& store)
    : ImportPlan(table, match, Target::Items, options.hiddenRows), options_(options), store_(store), reader_(options.reading),
      decimalsOpen_(!options.reading.decimalComma && !options.reading.decimalsSaid && decimalsUnclear(table, match, Target::Items)) {
    rows_.reserve(static_cast<std::size_t>(table.rows()));
    seen_.reserve(static_cast<std::size_t>(table.rows()));
}

const StoredItem* ItemPlan::stored(const ItemRow& row) const {
    return row.existing < 0 ? nullptr : &store_.items()[static_cast<std::size_t>(row.existing)];
}

std::string ItemPlan::name(int row) const {
    const ItemRow& one = at(row);
    const StoredItem* before = stored(one);
    return one.name.empty() && before != nullptr ? before->name : std::string(one.name);
}

bool ItemPlan::refused(const ItemRow& row, int field, const Refusal& refusal) {
    if (refusal)
        refuse(row.tableRow, field, refusal);
    return static_cast<bool>(refusal);
}

// Every cell of a row is looked at, so that all that is bad is told at once.
void ItemPlan::checkRow(int tableRow) {
    ItemRow row;
    row.tableRow = tableRow;
    const std::int64_t flattened = reader_.flattened();
    const bool known = takeCode(row);
    const bool good = takeFields(row, known) && known;
    row.flattened = reader_.flattened() != flattened;
    if (good) {
        leaveOutSame(row);
        row.state = row.existing < 0 ? RowState::New : row.changed != 0 || row.linkMade ? RowState::Changed : RowState::Same;
    }
    countState(row.state, 1);
    rows_.push_back(row);
    if (known)
        noteTwice(rows() - 1);
}

bool ItemPlan::takeCode(ItemRow& row) {
    const SheetCell cell = cellOf(row.tableRow, item::Code);
    std::string_view code;
    std::string_view parent;
    Refusal refusal;
    reader_.text(cell, kCodeLength, false, code, refusal);
    if (!refusal && code.empty())
        refusal = {FindingKind::Code, "There is no code in this row."};
    if (!refusal)
        judgeCode(cell, code, refusal);
    row.matrixSku = code;
    if (refused(row, item::Code, refusal))
        return false;
    reader_.text(cellOf(row.tableRow, item::Parent), kCodeLength, false, parent, refusal);
    if (refused(row, item::Parent, refusal))
        return false;
    return findItem(row, code, parent);
}

// Codes that a spreadsheet changed. A code that the store has as it stands is no doubt.
void ItemPlan::judgeCode(const SheetCell& cell, std::string_view& code, Refusal& refusal) {
    const CodeDoubt doubt = doubtOf(cell, code, refusal);
    if (refusal || options_.codes == ImportOptions::Codes::Leave || store_.find(code) >= 0)
        return;
    std::string mended = doubt.mended;
    std::string what = doubt.what;
    const int alike = store_.findByNumber(mended.empty() ? code : std::string_view(mended));
    if (alike >= 0) {
        mended = store_.items()[static_cast<std::size_t>(alike)].matrixSku;
        what = "The store has the item " + mended + "; this code differs from it only as a spreadsheet changes numbers.";
    }
    if (mended.empty() || mended == code)
        return;
    if (options_.codes == ImportOptions::Codes::Mend)
        code = reader_.keep(std::move(mended));
    else
        refusal = {FindingKind::Code, what + kChooseCodes};
}

bool ItemPlan::findItem(ItemRow& row, std::string_view code, std::string_view parent) {
    row.sku = parent.empty() ? code : parent;
    int found = store_.find(code);
    int fits = 0;
    for (int one = found; one >= 0; one = store_.next(one)) {
        const StoredItem& stored = store_.items()[static_cast<std::size_t>(one)];
        const bool wanted = parent.empty() || sameText(stored.sku, parent);
        fits += wanted ? 1 : 0;
        row.existing = wanted ? one : row.existing;
    }
    Refusal refusal;
    if (fits > 1)
        refusal = {FindingKind::Code,
                   "Several items have this code, under different parents. A column with the parent's SKU tells them apart."};
    else if (fits == 0 && !parent.empty() && !sameText(parent, code))
        refusal = {FindingKind::Code, "The store has no such item of the parent " + std::string(parent) +
                                          ". Matrix items are made on the screen of their parent."};
    else if (fits == 0 && found >= 0)
        refusal = {FindingKind::Code, "An item of another parent has this code."};
    else if (fits == 1 && stored(row)->parent)
        refusal = {FindingKind::Code, "This is the code of a matrix parent, which is never sold."};
    else if (fits == 0)
        refusal = {FindingKind::Code, complaintAbout(row.sku, code)};
    else if (stored(row)->sku.starts_with('$'))
        refusal = {FindingKind::Code, "\"$\" begins the codes of the registers' own items."};
    if (refusal)
        row.existing = -1;
    if (refused(row, item::Code, refusal))
        return false;
    if (const StoredItem* before = stored(row)) {
        row.sku = before->sku;
        row.matrixSku = before->matrixSku;
    }
    return true;
}

bool ItemPlan::takeFields(ItemRow& row, bool known) {
    const bool texts = takeTexts(row);
    const bool numbers = takeNumbers(row);
    const bool names = takeNames(row);
    const bool supplier = takeSupplier(row);
    const bool named = !known || checkNew(row);
    return texts && numbers && names && supplier && named;
}

bool ItemPlan::takeTexts(ItemRow& row) {
    bool good = true;
    const auto take = [&](int field, std::string_view& into) {
        const SheetCell cell = cellOf(row.tableRow, field);
        if (cell.kind == CellKind::Empty)
            return;
        const Field& shape = fieldsOf(Target::Items)[static_cast<std::size_t>(field)];
        Refusal refusal;
        reader_.text(cell, shape.most, shape.kind == FieldKind::Notes, into, refusal);
        row.set(field, !into.empty());
        good = !refused(row, field, refusal) && good;
    };
    take(item::Name, row.name);
    take(item::PartNo, row.partNo);
    take(item::Notes, row.notes);
    const SheetCell active = cellOf(row.tableRow, item::Active);
    Refusal refusal;
    if (!trimmed(active.text).empty())
        row.set(item::Active, reader_.flag(active, row.active, refusal));
    return !refused(row, item::Active, refusal) && good;
}

bool ItemPlan::takeAmount(const SheetCell& cell, Currency& into, Refusal& refusal) {
    if (decimalsOpen_ && cell.kind == CellKind::Text && readsEitherWay(cell.text))
        refusal = {FindingKind::Number, "\"" + std::string(trimmed(cell.text)) +
                                            "\" can be thousands or have three decimals, and no amount of the file tells which. On page 1 "
                                            "you choose what the decimal sign is."};
    else if (reader_.money(cell, into, refusal) && into < Currency())
        refusal = {FindingKind::Number, "The amount is below 0."};
    return !refusal;
}

bool ItemPlan::takeNumbers(ItemRow& row) {
    bool good = true;
    const auto given = [&](int field) { return !trimmed(cellOf(row.tableRow, field).text).empty(); };
    const auto check = [&](int field, const Refusal& refusal) {
        row.set(field, !refusal);
        good = !refused(row, field, refusal) && good;
    };
    for (const auto& [field, into] : {std::pair{item::Price, &row.price}, std::pair{item::Cost, &row.cost}}) {
        if (!given(field))
            continue;
        Refusal refusal;
        if (takeAmount(cellOf(row.tableRow, field), *into, refusal) && field == item::Price && *into == Currency())
            refusal = {FindingKind::Number, "Price cannot be zero. An empty cell leaves the price alone."};
        check(field, refusal);
    }
    for (const auto& [field, into] :
         {std::pair{item::Stock, &row.stock}, std::pair{item::Restock, &row.restock}, std::pair{item::Reorder, &row.reorder}}) {
        if (!given(field))
            continue;
        Refusal refusal;
        if (reader_.whole(cellOf(row.tableRow, field), fieldsOf(Target::Items)[static_cast<std::size_t>(field)].most, *into, refusal) &&
            field != item::Stock && *into < 0)
            refusal = {FindingKind::Number, "The quantity is below 0."};
        check(field, refusal);
    }
    const StoredItem* before = stored(row);
    if (row.has(item::Stock) && before != nullptr && before->serialized && row.stock != before->stock) {
        refuse(row.tableRow, item::Stock, {FindingKind::Number, "The item has serial numbers: its stock changes on their screen."});
        return false;
    }
    return good;
}

// A name among the new ones, made when it is not there; its number.
int ItemPlan::numberOf(std::vector<std::string>& made, std::string_view name) {
    const auto found = std::find_if(made.begin(), made.end(), [&](const std::string& one) { return sameText(one, name); });
    const auto index = static_cast<int>(found - made.begin());
    if (found == made.end())
        made.emplace_back(name);
    return kFirstNew - index;
}

bool ItemPlan::takeNames(ItemRow& row) {
    bool good = true;
    const auto take = [&](int field, const NamesInStore& names, std::vector<std::string>* made, const char* advice, std::int32_t& into) {
        std::string_view name;
        Refusal refusal;
        reader_.text(cellOf(row.tableRow, field), fieldsOf(Target::Items)[static_cast<std::size_t>(field)].most, false, name, refusal);
        if (!refusal && name.empty())
            return;
        into = refusal ? NamesInStore::kNone : names.idOf(name);
        if (!refusal && into == NamesInStore::kSeveral)
            refusal = {FindingKind::UnknownName, "Several are called \"" + std::string(name) + "\" in the store."};
        else if (!refusal && into == NamesInStore::kNone && made == nullptr)
            refusal = {FindingKind::UnknownName,
                       "The store has no " + lowerCase(heading(field)) + " \"" + std::string(name) + "\"." + advice};
        else if (!refusal && into == NamesInStore::kNone)
            into = numberOf(*made, name);
        row.set(field, !refusal);
        good = !refused(row, field, refusal) && good;
    };
    take(item::Department, store_.departments, options_.makeDepartments ? &newDepartments_ : nullptr, " A tick on page 2 has it made.",
         row.department);
    take(item::Tax, store_.taxes, nullptr, " Make it under Items, Setup, Tax Classes, or write one that there is.", row.tax);
    take(item::Supplier, store_.suppliers, options_.makeSuppliers ? &newSuppliers_ : nullptr, " A tick on page 2 has it made.",
         row.supplier);
    const StoredItem* before = stored(row);
    if (row.has(item::Tax) && before != nullptr && before->untaxed && row.tax != before->tax) {
        refuse(row.tableRow, item::Tax, {FindingKind::UnknownName, "A serialized item has no tax class."});
        return false;
    }
    return good;
}

// A cost or part number belongs to a supplier: the row's, the one chosen for all rows, or the only one that the item has.
bool ItemPlan::takeSupplier(ItemRow& row) {
    const bool given = row.has(item::Supplier);
    const bool needed = row.has(item::Cost) || row.has(item::PartNo);
    if (!given && options_.supplier)
        row.supplier = *options_.supplier;
    const StoredItem* before = stored(row);
    if (!given && !options_.supplier && needed && before != nullptr && before->links.size() == 1)
        row.supplier = before->links[0].supplier;
    if (row.supplier != NamesInStore::kNone && row.supplier != NamesInStore::kSeveral)
        return takeLink(row);
    const bool valued = row.has(item::Cost) && row.has(item::Stock) && !row.has(item::PartNo);
    if (!needed || valued) // a cost values the stock that comes, also without a supplier
        return true;
    const bool named = !trimmed(cellOf(row.tableRow, item::Supplier).text).empty();
    if (!named) // an unknown name was told already
        refuse(row.tableRow, row.has(item::Cost) ? item::Cost : item::PartNo,
               {FindingKind::UnknownName, "Whose is it? On page 2 you choose the column of the supplier, or the supplier of all rows."});
    return false;
}

bool ItemPlan::takeLink(ItemRow& row) {
    const StoredItem* before = stored(row);
    row.linkMade = true;
    if (before == nullptr || row.supplier <= kFirstNew)
        return true;
    int fits = 0;
    for (std::size_t i = 0; i < before->links.size(); ++i) {
        if (before->links[i].supplier != row.supplier)
            continue;
        ++fits;
        row.linkMade = false;
        if (row.link < 0 || before->links[i].cost == row.cost)
            row.link = static_cast<std::int16_t>(i);
    }
    const bool sameCost = fits > 1 && before->links[static_cast<std::size_t>(row.link)].cost == row.cost && row.has(item::Cost);
    if (fits <= 1 || sameCost)
        return true;
    refuse(row.tableRow, row.has(item::Cost) ? item::Cost : item::Supplier,
           {FindingKind::UnknownName, "The item has this supplier several times, at different costs. Change it on the item's screen."});
    return false;
}

bool ItemPlan::checkNew(ItemRow& row) {
    const auto wanted = [&](int field) {
        return row.existing < 0 && match().columnOf(field) >= 0 && trimmed(cellOf(row.tableRow, field).text).empty();
    };
    const bool nameWanted = wanted(item::Name);
    const bool priceWanted = wanted(item::Price);
    if (nameWanted)
        refuse(row.tableRow, item::Name, {FindingKind::Text, "A new item wants a name."});
    if (priceWanted)
        refuse(row.tableRow, item::Price, {FindingKind::Number, "A new item wants a price."});
    return !nameWanted && !priceWanted;
}

// Fields that say what the store has already are not written.
void ItemPlan::leaveOutSame(ItemRow& row) const {
    const StoredItem* before = stored(row);
    if (before == nullptr)
        return;
    const auto same = [&](int field, bool isSame) {
        if (isSame)
            row.set(field, false);
    };
    same(item::Name, row.name == before->name);
    same(item::Notes, row.notes == before->notes);
    same(item::Price, before->price && row.price == *before->price);
    same(item::Department, row.department == before->department);
    same(item::Tax, row.tax == before->tax);
    same(item::Stock, row.stock == before->stock);
    same(item::Reorder, row.reorder == before->reorder);
    same(item::Restock, row.restock == before->restock);
    same(item::Active, row.active == before->active);
    row.set(item::Supplier, row.linkMade);
    if (row.linkMade)
        return;
    const SupplierLink* link = row.link < 0 ? nullptr : &before->links[static_cast<std::size_t>(row.link)];
    same(item::Cost, link == nullptr || row.cost == link->cost);
    same(item::PartNo, link == nullptr || row.partNo == link->partNo);
}

void ItemPlan::noteTwice(int rowIndex) {
    const ItemRow& row = at(rowIndex);
    const auto [entry, fresh] = seen_.emplace(storeKey(row.sku) + "|" + storeKey(row.matrixSku), rowIndex);
    if (fresh)
        return;
    const int first = entry->second;
    const auto twice = [&](int other) {
        return Refusal{FindingKind::Twice, rowNumber(table(), tableRow(other)) + " has the same code " + key(rowIndex) + "."};
    };
    spoil(rowIndex, item::Code, twice(first));
    spoil(first, item::Code, twice(rowIndex));
}

// Departments and suppliers that only bad rows name are not made: numbers are given anew.
void ItemPlan::checkedAll() {
    const auto keepUsed = [&](std::vector<std::string>& made, std::int32_t ItemRow::*member) {
        std::vector<int> numbers(made.size(), 0);
        std::vector<std::string> used;
        for (ItemRow& row : rows_) {
            if (row.*member > kFirstNew || row.state == RowState::Bad)
                continue;
            const auto index = static_cast<std::size_t>(kFirstNew - row.*member);
            if (numbers[index] == 0) {
                numbers[index] = kFirstNew - static_cast<int>(used.size());
                used.push_back(made[index]);
            }
            row.*member = numbers[index];
        }
        made = std::move(used);
    };
    keepUsed(newDepartments_, &ItemRow::department);
    keepUsed(newSuppliers_, &ItemRow::supplier);
}

std::string ItemPlan::departmentName(int id) const {
    return id <= kFirstNew ? newDepartments_[static_cast<std::size_t>(kFirstNew - id)] + " (new)" : store_.departments.nameOf(id);
}

std::string ItemPlan::supplierName(int id) const {
    return id <= kFirstNew ? newSuppliers_[static_cast<std::size_t>(kFirstNew - id)] + " (new)" : store_.suppliers.nameOf(id);
}

std::string ItemPlan::changesOf(int index) const {
    const ItemRow& row = at(index);
    const StoredItem* before = stored(row);
    std::string words;
    const auto say = [&](int field, const std::string& to, const std::function<std::string()>& from) {
        if (row.has(field))
            appendChange(words, heading(field), before != nullptr ? std::optional(from()) : std::nullopt, to);
    };
    if (before != nullptr)
        say(item::Name, std::string(row.name), [&] { return before->name; });
    say(item::Price, shownCost(row.price), [&] { return before->price ? shownCost(*before->price) : "(none)"; });
    say(item::Department, departmentName(row.department), [&] { return departmentName(before->department); });
    say(item::Tax, store_.taxes.nameOf(row.tax), [&] { return store_.taxes.nameOf(before->tax); });
    say(item::Stock, withThousands(row.stock), [&] { return withThousands(before->stock); });
    const SupplierLink* link = before == nullptr || row.link < 0 ? nullptr : &before->links[static_cast<std::size_t>(row.link)];
    if (row.linkMade)
        appendChange(words, "Supplier", std::nullopt, supplierName(row.supplier));
    if (row.has(item::Cost))
        appendChange(words, heading(item::Cost), link != nullptr ? std::optional(shownCost(link->cost)) : std::nullopt,
                     shownCost(row.cost));
    if (row.has(item::PartNo))
        appendChange(words, heading(item::PartNo), link != nullptr ? std::optional(link->partNo) : std::nullopt, std::string(row.partNo));
    say(item::Restock, withThousands(row.restock), [&] { return shortestDecimal(before->restock); });
    say(item::Reorder, withThousands(row.reorder), [&] { return shortestDecimal(before->reorder); });
    say(item::Active, flagText(row.active), [&] { return flagText(before->active); });
    if (row.has(item::Notes))
        appendChange(words, heading(item::Notes), std::nullopt, std::string(characters(row.notes, 0, 40)));
    if (row.flattened && row.state != RowState::Same)
        appendFlattened(words);
    return words;
}

std::vector<std::string> ItemPlan::sums() const {
    std::int64_t pieces = 0;
    __int128 worth = 0; // ten-thousandths
    int raised = 0;
    int lowered = 0;
    for (const ItemRow& row : rows_) {
        const StoredItem* before = stored(row);
        if (row.state == RowState::Bad || row.state == RowState::Same)
            continue;
        if (row.has(item::Stock)) {
            const int moved = row.stock - (before != nullptr ? before->stock : 0);
            pieces += moved;
            worth += static_cast<__int128>(row.cost.units()) * moved;
        }
        if (row.has(item::Price) && before != nullptr && before->price)
            ++(row.price > *before->price ? raised : lowered);
    }
    std::vector<std::string> said;
    const int made = count(RowState::New);
    if (made > 0 && match().columnOf(item::Price) < 0)
        said.push_back(counted(made, "new item has", "new items have") + " no price.");
    if (pieces != 0)
        said.push_back(
            "Stock moves by " + withThousands(pieces) + " pieces" +
            (worth != 0 ? ", " + Currency::fromUnits(static_cast<std::int64_t>(worth)).toDisplay() + " at the file's costs." : "."));
    if (raised + lowered > 0)
        said.push_back(counted(raised, "price rises", "prices rise") + ", " + counted(lowered, "falls.", "fall."));
    if (reader_.rounded() > 0)
        said.push_back(withThousands(reader_.rounded()) + " amounts are rounded to cents.");
    if (!newDepartments_.empty())
        said.push_back("New departments: " + firstOf(newDepartments_) + ".");
    if (!newSuppliers_.empty())
        said.push_back("New suppliers: " + firstOf(newSuppliers_) + ".");
    return said;
}

} // namespace merchantry::exchange
