#include "app/db/ado/recordset.h"

#include "app/db/ado/ahead.h"
#include "app/db/ado/coerce.h"
#include "app/db/ado/sort.h"
#include "app/db/ado/writeback.h"
#include "base/guard.h"
#include "base/text.h"

#include <algorithm>
#include <numeric>

namespace merchantry::db {
namespace {

using Category = DbError::Category;

// Keeps the first set of rows of a batch.
class Collector : public ResultSink {
public:
    explicit Collector(bool writesBack) : writesBack_(writesBack) {}
    bool wantsTables() const override { return writesBack_; }
    void beginSet(const std::vector<Column>& columns) override {
        taking_ = store == nullptr;
        if (taking_)
            store = std::make_shared<RowStore>(columns);
    }
    void row(const RowView& row) override {
        if (taking_)
            store->append(row);
    }

    std::shared_ptr<RowStore> store;

private:
    bool writesBack_;
    bool taking_ = false;
};

} // namespace

const std::string& Field::Name() const {
    return rows_.store_->columns()[static_cast<std::size_t>(column_)].name;
}

const SqlType& Field::Type() const {
    return rows_.store_->columns()[static_cast<std::size_t>(column_)].type;
}

merchantry::Value Field::Value() const {
    return rows_.current(column_);
}

void Field::setValue(const merchantry::Value& value) {
    rows_.pend(column_, value);
}

Recordset::~Recordset() = default;

void Recordset::Open(const Sql& source, const ConnectionPtr& connection, CursorType /*cursor*/, LockType lock) {
    connection_ = connection;
    source_ = source;
    command_.reset();
    lock_ = lock == LockType::Unspecified ? LockType::ReadOnly : lock;
    run();
}

void Recordset::Open(Command& command, CursorType /*cursor*/, LockType lock) {
    connection_ = command.connection();
    command_ = command;
    lock_ = lock == LockType::Unspecified ? LockType::ReadOnly : lock;
    run();
}

void Recordset::Requery() {
    needOpen();
    run();
}

void Recordset::run() {
    const Sql& text = command_ ? command_->text() : source_;
    connection_->sent(text);
    text.check();
    std::shared_ptr<RowStore> rows = takenAhead(text);
    if (rows == nullptr)
        rows = asked(text);
    mode_ = Mode::None;
    pending_.clear();
    store_ = std::move(rows);
    arrange();
    position_ = 0;
    notify();
}

std::shared_ptr<RowStore> Recordset::asked(const Sql& text) {
    Collector rows(canChange());
    if (command_ && command_->type() == CommandType::StoredProcedure)
        connection_->session().call(text.text(), command_->parameters(), rows);
    else
        connection_->session().execute(text.text(), rows);
    return rows.store;
}

std::shared_ptr<RowStore> Recordset::takenAhead(const Sql& text) {
    Ahead* ahead = connection_->provider().ahead;
    return ahead == nullptr ? nullptr : ahead->take(text.text(), command_ ? command_->parameters() : std::vector<Parameter>(), canChange());
}

void Recordset::Close() {
    store_.reset();
    view_.clear();
    pending_.clear();
    mode_ = Mode::None;
    position_ = -1;
    notify();
}

// Works out the visible rows and their order from filter and sort.
void Recordset::arrange() {
    view_.clear();
    if (store_ == nullptr)
        return;
    if (filterText_.empty()) {
        view_.resize(static_cast<std::size_t>(store_->rowCount()));
        std::iota(view_.begin(), view_.end(), 0);
    } else {
        const class Filter filter(filterText_, *store_);
        for (int row = 0; row < store_->rowCount(); ++row)
            if (filter.matches(row))
                view_.push_back(row);
    }
    const std::vector<SortField> fields = parseSort(sortText_, *store_);
    if (fields.empty())
        return;
    std::stable_sort(view_.begin(), view_.end(), [&](int left, int right) {
        for (const SortField& field : fields)
            if (const int order = compareCells(*store_, left, right, field.column); order != 0)
                return field.descending ? order > 0 : order < 0;
        return false;
    });
}

void Recordset::notify() {
    const auto listeners = listeners_; // a listener may stop listening
    for (const auto& [number, changed] : listeners)
        changed();
}

void Recordset::needOpen() const {
    if (store_ == nullptr)
        throw DbError(Category::Other, 0, "Operation is not allowed when the object is closed.").withHresult(kClosedObject);
}

void Recordset::needRow() const {
    needOpen();
    if (!onRow() && mode_ != Mode::Add)
        throw DbError(Category::Other, 0,
                      "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a current record.")
            .withHresult(kNoCurrentRow);
}

void Recordset::MoveFirst() {
    needOpen();
    position_ = 0;
}

void Recordset::MoveLast() {
    needOpen();
    position_ = RecordCount() - 1;
}

void Recordset::MoveNext() {
    needRow();
    ++position_;
}

Field Recordset::operator[](const std::string& name) {
    needOpen();
    const int column = store_->columnOf(name);
    if (column < 0)
        throw DbError(Category::Name, 0, "Item cannot be found in the collection corresponding to the requested name or ordinal: " + name)
            .withHresult(kNotInCollection);
    return {*this, column};
}

Field Recordset::operator[](int column) {
    needOpen();
    if (column < 0 || column >= columnCount())
        throw DbError(Category::Name, 0, "Item cannot be found in the collection corresponding to the requested name or ordinal.")
            .withHresult(kNotInCollection);
    return {*this, column};
}

Value Recordset::current(int column) const {
    needRow();
    if (const auto pending = pending_.find(column); pending != pending_.end())
        return pending->second;
    return mode_ == Mode::Add ? Value() : store_->value(storeRow(), column);
}

void Recordset::pend(int column, const Value& value) {
    needRow();
    if (!canChange())
        throw DbError(Category::Other, 0, "Current Recordset does not support updating.").withHresult(kReadOnly);
    const Value fitted = coerced(value, store_->columns()[static_cast<std::size_t>(column)].type);
    if (mode_ != Mode::Add && fitted == current(column))
        return;
    if (mode_ == Mode::None)
        mode_ = Mode::Edit;
    pending_[column] = fitted;
}

void Recordset::AddNew() {
    needOpen();
    if (!canChange())
        throw DbError(Category::Other, 0, "Current Recordset does not support updating.").withHresult(kReadOnly);
    Update();
    mode_ = Mode::Add;
    pending_.clear();
}

void Recordset::Update() {
    if (mode_ == Mode::None)
        return;
    if (mode_ == Mode::Add)
        insertPending();
    else
        updatePending();
    mode_ = Mode::None;
    pending_.clear();
    notify();
}

void Recordset::insertPending() {
    view_.push_back(writeInsert(connection_->session(), *store_, pending_));
    position_ = RecordCount() - 1;
}

void Recordset::updatePending() {
    const int row = storeRow();
    writeUpdate(connection_->session(), *store_, row, pending_);
    for (const auto& [column, value] : pending_)
        store_->set(row, column, value);
}

void Recordset::CancelUpdate() {
    mode_ = Mode::None;
    pending_.clear();
}

void Recordset::Delete() {
    needRow();
    writeDelete(connection_->session(), *store_, storeRow());
    view_.erase(view_.begin() + position_);
    notify();
}

void Recordset::Find(const std::string& criterion) {
    needOpen();
    const class Filter wanted(criterion, *store_);
    position_ = std::max(position_, 0);
    while (position_ < RecordCount() && !wanted.matches(storeRow()))
        ++position_;
}

void Recordset::setFilter(const std::string& filter) {
    needOpen();
    if (!filter.empty())
        const class Filter check(filter, *store_);
    filterText_ = filter;
    arrange();
    position_ = 0;
    notify();
}

void Recordset::setSort(const std::string& sort) {
    needOpen();
    parseSort(sort, *store_);
    sortText_ = sort;
    arrange();
    position_ = 0;
    notify();
}

std::optional<RowOrder> Recordset::sortedBy() const {
    if (store_ == nullptr || trimmed(sortText_).empty())
        return std::nullopt;
    const SortField first = parseSort(sortText_, *store_).front();
    return RowOrder{first.column, first.descending};
}

int Recordset::columnCount() const {
    return store_ == nullptr ? 0 : static_cast<int>(store_->columns().size());
}

std::string Recordset::columnName(int column) const {
    return store_->columns()[static_cast<std::size_t>(column)].name;
}

Value Recordset::cell(int row, int column) const {
    return store_->value(view_[static_cast<std::size_t>(row)], column);
}

std::string_view Recordset::cellText(int row, int column) const {
    if (store_->isText(column))
        return store_->text(view_[static_cast<std::size_t>(row)], column);
    scratch_ = cell(row, column).toText();
    return scratch_;
}

void Recordset::setCell(int row, int column, const Value& value) {
    needOpen();
    position_ = row;
    Undo undo([this] { CancelUpdate(); });
    pend(column, value);
    Update();
    undo.keep();
}

void Recordset::addRow(const std::vector<Value>& cells) {
    AddNew();
    Undo undo([this] { CancelUpdate(); });
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (!cells[i].isNull())
            pend(static_cast<int>(i), cells[i]);
    Update();
    undo.keep();
}

void Recordset::removeRow(int row) {
    position_ = row;
    Delete();
}

int Recordset::listen(std::function<void()> changed) {
    listeners_[nextListener_] = std::move(changed);
    return nextListener_++;
}

void Recordset::stopListening(int listener) {
    listeners_.erase(listener);
}

} // namespace merchantry::db
