#include "exchange/import/itemwriting.h"

#include "exchange/import/statements.h"

namespace merchantry::exchange {
namespace {

constexpr int kStagedAtOnce = 10; // rows of one statement
constexpr int kStagedAStep = 4000;
constexpr int kWrittenAStep = 2000;
constexpr int kStagedPercent = 30;

Value textOrNull(std::string_view text) {
    return text.empty() ? Value() : Value(text);
}

} // namespace

ItemWriting::ItemWriting(db::Session& session, const ItemPlan& plan, const ImportFile& file)
    : ImportWriting(session, plan, file), items_(plan) {
    chooseColumns();
    for (const Column& column : columns_)
        columnNames_ += (columnNames_.empty() ? "" : ", ") + std::string(column.name);
    insertMany_ = insertOf(kStagedAtOnce);
    insertOne_ = insertOf(1);
    for (int row = 0; row < kStagedAtOnce; ++row)
        for (std::size_t i = 0; i < columns_.size(); ++i)
            many_.push_back(parameter("p" + std::to_string(row) + "_" + std::to_string(i), columns_[i].type));
    one_.assign(many_.begin(), many_.begin() + static_cast<std::ptrdiff_t>(columns_.size()));
    ran(session_, "IF OBJECT_ID('tempdb..#ImportStage') IS NOT NULL DROP TABLE #ImportStage");
    ran(session_, "SELECT " + columnNames_ + " INTO #ImportStage FROM ImportItem WHERE 1 = 0");
}

ItemWriting::~ItemWriting() {
    try {
        ran(session_, "IF OBJECT_ID('tempdb..#ImportStage') IS NOT NULL DROP TABLE #ImportStage");
    } catch (const std::exception&) {
        // the table goes with the session
    }
}

void ItemWriting::addColumn(const char* name, const db::SqlType& type, ValueOf value) {
    columns_.push_back({name, type, std::move(value)});
}

// Only what the file gives is carried along; what stood there only where items of the store change.
void ItemWriting::addField(int field, const char* before, const char* after, const db::SqlType& type,
                           std::function<Value(const ItemRow&)> now, std::function<Value(const StoredItem&)> was) {
    if (plan_.match().columnOf(field) < 0)
        return;
    addColumn(after, type,
              [field, now = std::move(now)](const ItemRow& row, const StoredItem*) { return row.has(field) ? now(row) : Value(); });
    if (changesItems())
        addColumn(before, type, [field, was = std::move(was)](const ItemRow& row, const StoredItem* stored) {
            return row.has(field) && stored != nullptr ? was(*stored) : Value();
        });
}

bool ItemWriting::changesItems() const {
    return plan_.count(RowState::Changed) > 0;
}

void ItemWriting::chooseColumns() {
    const SheetTable& table = plan_.table();
    addColumn("RowNo", kWhole, [&table](const ItemRow& row, const StoredItem*) { return Value(table.number(row.tableRow)); });
    addColumn("SKU", kName, [](const ItemRow& row, const StoredItem*) { return Value(row.sku); });
    addColumn("MatrixSKU", kName, [](const ItemRow& row, const StoredItem*) { return Value(row.matrixSku); });
    addColumn("Made", kFlag, [](const ItemRow& row, const StoredItem*) { return Value(row.existing < 0); });
    addFields();
    const bool costs = plan_.match().columnOf(item::Cost) >= 0;
    if (costs && plan_.match().columnOf(item::Stock) >= 0)
        addColumn("Cost_ea", kMoney, [](const ItemRow& row, const StoredItem*) {
            return row.has(item::Stock) && row.has(item::Cost) ? Value(row.cost) : Value();
        });
    const bool parts = plan_.match().columnOf(item::PartNo) >= 0;
    if (costs || parts || plan_.match().columnOf(item::Supplier) >= 0 || items_.options().supplier)
        addLinkColumns();
}

void ItemWriting::addFields() {
    addField(
        item::Name, "OldName", "NewName", kName, [](const ItemRow& row) { return Value(row.name); },
        [](const StoredItem& was) { return Value(was.name); });
    addField(
        item::Price, "OldPrice", "NewPrice", kMoney, [](const ItemRow& row) { return Value(row.price); },
        [](const StoredItem& was) { return was.price ? Value(*was.price) : Value(); });
    addField(
        item::Department, "OldDepartmentID", "NewDepartmentID", kWhole, [](const ItemRow& row) { return Value(row.department); },
        [](const StoredItem& was) { return was.department < 0 ? Value() : Value(was.department); });
    addField(
        item::Tax, "OldTaxID", "NewTaxID", kWhole, [](const ItemRow& row) { return Value(row.tax); },
        [](const StoredItem& was) { return Value(was.tax); });
    addField(
        item::Reorder, "OldReorder", "NewReorder", kWhole, [](const ItemRow& row) { return Value(row.reorder); },
        [](const StoredItem& was) { return Value(was.reorder); });
    addField(
        item::Restock, "OldRestock", "NewRestock", kWhole, [](const ItemRow& row) { return Value(row.restock); },
        [](const StoredItem& was) { return Value(was.restock); });
    addField(
        item::Active, "OldActive", "NewActive", kFlag, [](const ItemRow& row) { return Value(row.active); },
        [](const StoredItem& was) { return Value(was.active); });
    addField(
        item::Notes, "OldNotes", "NewNotes", kLongText, [](const ItemRow& row) { return Value(row.notes); },
        [](const StoredItem& was) { return textOrNull(was.notes); });
    addField(
        item::Stock, "OldStock", "NewStock", kWhole, [](const ItemRow& row) { return Value(row.stock); },
        [](const StoredItem& was) { return Value(was.stock); });
}

// What an item costs at its supplier, and the supplier's number of it.
void ItemWriting::addLinkColumns() {
    const auto linked = [](const ItemRow& row) {
        return row.linkMade || (row.link >= 0 && (row.has(item::Cost) || row.has(item::PartNo)));
    };
    const auto linkOf = [](const ItemRow& row, const StoredItem* stored) {
        return stored != nullptr && row.link >= 0 ? &stored->links[static_cast<std::size_t>(row.link)] : nullptr;
    };
    addColumn("SupID", kWhole, [linked](const ItemRow& row, const StoredItem*) { return linked(row) ? Value(row.supplier) : Value(); });
    addColumn("LinkMade", kFlag, [linked](const ItemRow& row, const StoredItem*) { return linked(row) ? Value(row.linkMade) : Value(); });
    addColumn("NewCost", kMoney,
              [linked](const ItemRow& row, const StoredItem*) { return linked(row) && row.has(item::Cost) ? Value(row.cost) : Value(); });
    addColumn("NewPartNo", kName, [linked](const ItemRow& row, const StoredItem*) {
        return linked(row) && row.has(item::PartNo) ? Value(row.partNo) : Value();
    });
    if (!changesItems())
        return;
    addColumn("OldCost", kMoney, [linked, linkOf](const ItemRow& row, const StoredItem* stored) {
        const SupplierLink* link = linkOf(row, stored);
        return linked(row) && link != nullptr ? Value(link->cost) : Value();
    });
    addColumn("OldPartNo", kName, [linked, linkOf](const ItemRow& row, const StoredItem* stored) {
        const SupplierLink* link = linkOf(row, stored);
        return linked(row) && link != nullptr ? Value(link->partNo) : Value();
    });
}

std::string ItemWriting::insertOf(std::size_t rows) const {
    std::string batch = "INSERT INTO #ImportStage (" + columnNames_ + ") VALUES ";
    for (std::size_t row = 0; row < rows; ++row) {
        batch += row > 0 ? ", (" : "(";
        for (std::size_t i = 0; i < columns_.size(); ++i)
            batch += (i > 0 ? ", @p" : "@p") + std::to_string(row) + "_" + std::to_string(i);
        batch += ")";
    }
    return batch;
}

int ItemWriting::step() {
    switch (phase_) {
    case Phase::Stage:
        stage();
        return items_.rows() == 0 ? 0 : static_cast<int>(static_cast<std::int64_t>(next_) * kStagedPercent / items_.rows());
    case Phase::Open:
        open();
        return kStagedPercent;
    case Phase::Write:
        write();
        break;
    case Phase::Done:
        return 100;
    }
    if (phase_ == Phase::Done)
        return 100;
    return kStagedPercent + static_cast<int>(static_cast<std::int64_t>(next_) * (99 - kStagedPercent) / std::max(1, last_));
}

void ItemWriting::stage() {
    std::vector<const ItemRow*> rows;
    const int end = std::min(items_.rows(), next_ + kStagedAStep);
    for (; next_ < end; ++next_) {
        const ItemRow& row = items_.at(next_);
        if (row.state != RowState::New && row.state != RowState::Changed)
            continue;
        rows.push_back(&row);
        last_ = plan_.table().number(row.tableRow);
        if (rows.size() == kStagedAtOnce) {
            stageRows(rows);
            rows.clear();
        }
    }
    for (const ItemRow* row : rows)
        stageRows({row});
    if (next_ == items_.rows())
        phase_ = Phase::Open;
}

void ItemWriting::stageRows(const std::vector<const ItemRow*>& rows) {
    const bool many = rows.size() == kStagedAtOnce;
    std::vector<db::Parameter>& parameters = many ? many_ : one_;
    std::size_t at = 0;
    for (const ItemRow* row : rows) {
        const StoredItem* stored = items_.stored(*row);
        for (const Column& column : columns_)
            parameters[at++].value = column.value(*row, stored);
    }
    db::NoResult none;
    session_.execute(many ? insertMany_ : insertOne_, parameters, none);
}

void ItemWriting::open() {
    begin();
    const auto number = [&](const char* column, const std::vector<int>& keys) {
        for (std::size_t i = 0; i < keys.size(); ++i)
            ran(session_, "UPDATE #ImportStage SET " + std::string(column) + " = @key WHERE " + column + " = @made",
                {parameter("key", kWhole, Value(keys[i])), parameter("made", kWhole, Value(kFirstNew - static_cast<int>(i)))});
    };
    number("NewDepartmentID", makeNamed("Department", plan_.newDepartments()));
    number("SupID", makeNamed("Supplier", plan_.newSuppliers()));
    ran(session_, "INSERT INTO ImportItem (ImportID, " + columnNames_ + ") SELECT @run, " + columnNames_ + " FROM #ImportStage",
        {parameter("run", kWhole, Value(run()))});
    next_ = 1;
    phase_ = Phase::Write;
}

void ItemWriting::write() {
    const int end = std::min(last_, next_ + kWrittenAStep - 1);
    const std::vector<db::Parameter> range{parameter("ImportID", kWhole, Value(run())), parameter("First", kWhole, Value(next_)),
                                           parameter("Last", kWhole, Value(end))};
    const auto moved = called(session_, "bsp_ImportItemsMoved", range);
    if (!moved.empty())
        throw StoreChanged("Somebody else works on the store: the item " + moved[0][1].toText() + " (row " + moved[0][0].toText() +
                           " of the file) " + moved[0][2].toText() + ". Nothing was written. Please check again.");
    std::vector<db::Parameter> parameters = range;
    parameters.push_back(parameter("Reason", kName, Value(items_.options().reason)));
    called(session_, "bsp_ImportItems", parameters);
    next_ = end + 1;
    if (next_ <= last_)
        return;
    commit();
    phase_ = Phase::Done;
}

} // namespace merchantry::exchange
