#include "app/db/embedded/identities.h"

#include "app/db/tsql/convert_to.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"
#include "base/guard.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::Cell;

namespace {

bool fits(std::int64_t number, const SqlType& type) {
    if (type.kind == TypeKind::Decimal) {
        const tsql::Wide limit = tsql::powerOfTen(type.precision);
        return number < limit && number > -limit;
    }
    const tsql::Range range = tsql::rangeOf(type.kind);
    return number >= range.low && number <= range.high;
}

} // namespace

// The number that the next row builds on.
Identities::Counter& Identities::counterOf(std::int64_t table) {
    const auto found = counters_.find(table);
    if (found != counters_.end())
        return found->second;
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    const tsql::ColumnDef& column = definition->columns[static_cast<std::size_t>(definition->identityColumn())];
    Counter counter{column.seed - column.increment, column.increment, column.type, false};
    if (table < 0) {
        if (const auto own = temporary_.find(table); own != temporary_.end())
            counter.last = own->second;
        return counters_[table] = counter;
    }
    for (const std::optional<std::int64_t>& known : {lastInFile(table), lastInProcess(table)}) {
        if (known)
            counter.last = column.increment > 0 ? std::max(counter.last, *known) : std::min(counter.last, *known);
    }
    return counters_[table] = counter;
}

std::optional<std::int64_t> Identities::lastInFile(std::int64_t table) {
    if (!read_)
        read_ = Statement3(connection_.handle(), "SELECT last FROM ts_identity WHERE id = ?1");
    const ResetGuard guard(read_.get());
    sqlite3_bind_int64(read_.get(), 1, table);
    if (!connection_.step(read_.get()))
        return std::nullopt;
    return sqlite3_column_int64(read_.get(), 0);
}

std::optional<std::int64_t> Identities::lastInProcess(std::int64_t table) {
    const std::lock_guard lock(shared_->mutex);
    const auto found = shared_->lastIdentity.find(table);
    return found == shared_->lastIdentity.end() ? std::nullopt : std::optional(found->second);
}

void Identities::keep(std::int64_t table, Counter& counter, std::int64_t number) {
    counter.last = number;
    counter.changed = true;
    if (table < 0) {
        temporary_[table] = number;
        return;
    }
    const std::lock_guard lock(shared_->mutex);
    shared_->lastIdentity[table] = number;
}

std::int64_t Identities::next(std::int64_t table) {
    Counter& counter = counterOf(table);
    std::int64_t number = 0;
    if (__builtin_add_overflow(counter.last, counter.increment, &number) || !fits(number, counter.type))
        throw serverMessage(Message::ArithmeticOverflow, {"IDENTITY", tsql::kindNameOf(counter.type)});
    last_ = Cell::ofInteger(number);
    keep(table, counter, number);
    return number;
}

void Identities::note(std::int64_t table, std::int64_t given) {
    Counter& counter = counterOf(table);
    last_ = Cell::ofInteger(given);
    if (counter.increment > 0 ? given > counter.last : given < counter.last)
        keep(table, counter, given);
}

void Identities::endStatement() {
    for (const auto& [table, counter] : counters_) {
        if (table >= 0 && counter.changed)
            unwritten_[table] = counter.last;
    }
    counters_.clear();
}

void Identities::write() {
    for (const auto& [table, last] : unwritten_) {
        if (!write_)
            write_ = Statement3(connection_.handle(),
                                "INSERT INTO ts_identity(id, last) VALUES (?1, ?2) ON CONFLICT(id) DO UPDATE SET last = excluded.last");
        const ResetGuard guard(write_.get());
        sqlite3_bind_int64(write_.get(), 1, table);
        sqlite3_bind_int64(write_.get(), 2, last);
        connection_.step(write_.get());
    }
    unwritten_.clear();
}

void Identities::startOver(std::int64_t table) {
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->lastIdentity.erase(table);
    }
    temporary_.erase(table);
    unwritten_.erase(table);
    connection_.run("DELETE FROM ts_identity WHERE id = " + std::to_string(table));
}

Cell Identities::info(const tsql::TableDef* table, int which) {
    if (!table || table->identityColumn() < 0)
        return {};
    const tsql::ColumnDef& column = table->columns[static_cast<std::size_t>(table->identityColumn())];
    if (which == 1)
        return Cell::ofInteger(column.seed);
    if (which == 2)
        return Cell::ofInteger(column.increment);
    const Restore running(counters_, Counters());
    const std::int64_t last = counterOf(table->id).last;
    return Cell::ofInteger(last == column.seed - column.increment ? column.seed : last);
}

Identities::Numbers Identities::numbers() {
    Numbers numbers;
    numbers.counters = counters_;
    numbers.temporary = temporary_;
    numbers.last = last_;
    const std::lock_guard lock(shared_->mutex);
    numbers.shared = shared_->lastIdentity;
    return numbers;
}

void Identities::putBack(Numbers numbers) {
    counters_ = std::move(numbers.counters);
    temporary_ = std::move(numbers.temporary);
    last_ = std::move(numbers.last);
    const std::lock_guard lock(shared_->mutex);
    shared_->lastIdentity = std::move(numbers.shared);
}

} // namespace merchantry::db::embedded
