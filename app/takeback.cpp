#include "app/takeback.h"

#include "app/db/ado/transaction.h"
#include "app/db/again.h"
#include "app/modMain.h"
#include "base/lettercase.h"
#include "base/textorder.h"

#include <algorithm>
#include <set>

namespace merchantry::app {

using db::Recordset;
using db::Sql;

namespace {

constexpr const char* kWrittenMeanwhile = "This was changed again meanwhile. Nothing was put back.";
constexpr const char* kRefused = "The store no longer takes this: what it belongs to, or its place, is not there any more. "
                                 "Nothing was put back.";

std::vector<Value> currentRow(Recordset& rows) {
    std::vector<Value> cells;
    for (int column = 0; column < rows.columnCount(); ++column)
        cells.push_back(rows[column].Value());
    return cells;
}

template <class Rows, class Row> bool contains(const Rows& rows, const Row& row) {
    return std::find(rows.begin(), rows.end(), row) != rows.end();
}

// The columns whose numbers the store gives by itself.
std::set<std::string> givenByTheStore(const std::string& table) {
    std::set<std::string> names;
    for (const auto& field : modMain().Conn->session().table(table).fields)
        if (field.identity || field.computed)
            names.insert(lowerCase(field.name));
    return names;
}

void addRow(Recordset& rows, const std::vector<Value>& cells, const std::string& table) {
    const std::set<std::string> given = givenByTheStore(table);
    rows.AddNew();
    for (int column = 0; column < rows.columnCount(); ++column)
        if (!given.contains(lowerCase(rows.columnName(column))))
            rows[column] = cells[static_cast<std::size_t>(column)];
    rows.Update();
}

} // namespace

WrittenRows::WrittenRows(KeyedTable table, const Sql& condition) : table_(std::move(table)) {
    source_ = Sql("SELECT * FROM ") + table_.name + " WHERE " + condition;
    before_ = read();
}

std::optional<std::vector<WrittenRows::Row>> WrittenRows::read() {
    try {
        std::vector<Row> found;
        const auto rows = openDirect(source_);
        columns_.clear();
        for (int column = 0; column < rows->columnCount(); ++column)
            columns_.push_back(rows->columnName(column));
        for (; !rows->Eof(); rows->MoveNext())
            found.push_back(currentRow(*rows));
        return found;
    } catch (const std::exception&) {
        return std::nullopt; // the procedure's own statements tell it
    }
}

bool WrittenRows::compare() {
    changes_.clear();
    const auto after = before_ ? read() : std::nullopt;
    if (!after)
        return false;
    std::vector<Row> gone;
    std::copy_if(before_->begin(), before_->end(), std::back_inserter(gone), [&](const Row& row) { return !contains(*after, row); });
    std::vector<Row> fresh;
    std::copy_if(after->begin(), after->end(), std::back_inserter(fresh), [&](const Row& row) { return !contains(*before_, row); });
    pair(gone, std::move(fresh));
    return !changes_.empty();
}

// Each row that is not there as it was with what it became: the one of its key, or else one of another key.
void WrittenRows::pair(const std::vector<Row>& gone, std::vector<Row> fresh) {
    const auto take = [&](Change& change, auto next) {
        if (next == fresh.end())
            return;
        change.after = *next;
        fresh.erase(next);
    };
    for (const Row& row : gone) {
        changes_.push_back({row, std::nullopt});
        take(changes_.back(), std::find_if(fresh.begin(), fresh.end(), [&](const Row& other) { return sameKey(row, other); }));
    }
    for (Change& change : changes_)
        if (!change.after)
            take(change, fresh.begin());
}

int WrittenRows::columnAt(const std::string& name) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(), [&](const std::string& column) { return sameText(column, name); });
    return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

bool WrittenRows::sameKey(const Row& one, const Row& other) const {
    return std::all_of(table_.key.begin(), table_.key.end(), [&](const std::string& name) {
        const auto at = static_cast<std::size_t>(columnAt(name));
        return one.at(at) == other.at(at);
    });
}

Value WrittenRows::was(const std::string& column) const {
    const int at = columnAt(column);
    return changes_.empty() || at < 0 ? Value() : changes_.front().before[static_cast<std::size_t>(at)];
}

Value WrittenRows::now(const std::string& column) const {
    const int at = columnAt(column);
    return changes_.empty() || at < 0 || !changes_.front().after ? Value() : (*changes_.front().after)[static_cast<std::size_t>(at)];
}

// False when the row is not there as this program left it.
bool WrittenRows::putBack(const Change& change) const {
    const auto rows = openDirect(source_, db::CursorType::Keyset, db::LockType::Optimistic);
    const Row& left = change.after ? *change.after : change.before;
    while (!rows->Eof() && !sameKey(currentRow(*rows), left))
        rows->MoveNext();
    if (rows->Eof() == change.after.has_value())
        return false;
    if (!change.after) {
        addRow(*rows, change.before, table_.name);
        return true;
    }
    for (std::size_t at = 0; at < columns_.size(); ++at) {
        if (change.before[at] == left[at])
            continue;
        if (!((*rows)[static_cast<int>(at)].Value() == left[at]))
            return false;
        (*rows)[static_cast<int>(at)] = change.before[at];
    }
    rows->Update();
    return true;
}

std::string WrittenRows::putAllBack() const {
    db::Transaction transaction(modMain().Conn);
    for (const Change& change : changes_)
        if (!putBack(change))
            return kWrittenMeanwhile;
    transaction.commit();
    return "";
}

std::string WrittenRows::takeBack() const {
    try {
        return db::againWhenBusy(modMain().Conn->session(), [this] { return putAllBack(); });
    } catch (const db::DbError& error) {
        if (error.hresult() == db::kConflict)
            return kWrittenMeanwhile;
        if (error.hresult() == db::kIntegrityError)
            return kRefused;
        throw;
    }
}

void offerUndo(ui::UndoLine& line, const FailurePlace& place, const std::string& sentence, const WrittenRows& rows,
               std::function<void()> shown) {
    line.offer(sentence, [place, rows, shown = std::move(shown)] {
        std::string refused;
        guarded(place, [&] {
            refused = rows.takeBack();
            shown();
        });
        return refused;
    });
}

} // namespace merchantry::app
