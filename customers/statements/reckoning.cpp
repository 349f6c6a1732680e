#include "customers/statements/reckoning.h"

#include "base/counted.h"
#include "base/division.h"
#include "base/shown.h"

#include <algorithm>
#include <span>

namespace merchantry::customers {
namespace {

constexpr int kDaysInYear = 365;
constexpr std::int64_t kUnitsInCent = 100;
constexpr std::int64_t kPercentUnits = 10'000; // APR in ten-thousandths of a percent
constexpr int kPercent = 100;
constexpr std::size_t kMostLines = 12; // of a reckoning in words; a printed statement has room for these

std::int64_t daysBetween(Date from, Date to) {
    return (to.ms() - from.ms()) / Date::kMsPerDay;
}

// A debit with what was taken off it, day by day.
struct Debit {
    const Posting* posting = nullptr;
    Date due;
    Currency open;                               // at the end of the statement's day, before unapplied credits
    std::vector<std::pair<Date, Currency>> paid; // what was taken off it on which day
};

// What is open of a posting as at a day: what is open today, and what was applied to it since.
Currency openAt(const Posting& posting, std::span<const Application> applied, Date asAt) {
    Currency open = posting.open;
    for (const Application& one : applied)
        if (one.time.dateOnly() > asAt)
            open += one.amount;
    return open;
}

// Simple interest in cents, halves to even.
Currency interest(Currency overdue, std::int64_t apr, std::int64_t days) {
    const __int128 numerator = static_cast<__int128>(overdue.units()) * apr * days;
    const __int128 divisor = static_cast<__int128>(kPercentUnits) * kPercent * kDaysInYear * kUnitsInCent;
    return Currency::fromUnits(static_cast<std::int64_t>(dividedHalfEven(numerator, divisor)) * kUnitsInCent);
}

std::string aprText(std::int64_t apr) {
    return Currency::fromUnits(apr).toText();
}

// With its year where that is not the statement's.
std::string shortDay(Date day, Date asAt) {
    return std::to_string(day.month()) + "/" + std::to_string(day.day()) +
           (day.year() == asAt.year() ? "" : "/" + std::to_string(day.year()));
}

std::string days(int count) {
    return counted(count, "day");
}

class Drawing {
public:
    Drawing(const Account& account, Date asAt, Date since)
        : account_(account), asAt_(asAt.dateOnly()), since_(since.dateOnly()), applications_(account.applications) {
        std::stable_sort(applications_.begin(), applications_.end(), [](const auto& a, const auto& b) { return a.posting < b.posting; });
        gather();
    }

    Statement drawn() {
        Statement statement;
        statement.since = since_;
        sum(statement);
        if (account_.terms.assess)
            charge(statement);
        statement.balance += statement.financeCharge;
        statement.ages.notDue += statement.financeCharge;
        return statement;
    }

private:
    void gather() {
        for (const Posting& posting : account_.postings) {
            if (posting.time.dateOnly() > asAt_)
                continue;
            const std::span<const Application> own = appliedTo(posting);
            const Currency open = openAt(posting, own, asAt_);
            if (posting.total > Currency() || (posting.total == Currency() && open > Currency()))
                debits_.push_back(debitOf(posting, own, open));
            else if (open < Currency())
                credits_.emplace_back(posting.time.dateOnly(), -open);
        }
        std::stable_sort(debits_.begin(), debits_.end(), [](const Debit& a, const Debit& b) { return a.due < b.due; });
        setCreditsAgainstDebits();
    }

    std::span<const Application> appliedTo(const Posting& posting) const {
        const auto [first, last] = std::equal_range(applications_.begin(), applications_.end(), Application{posting.id, {}, {}, {}},
                                                    [](const auto& a, const auto& b) { return a.posting < b.posting; });
        return {first, last};
    }

    Debit debitOf(const Posting& posting, std::span<const Application> applied, Currency open) const {
        Debit debit{&posting, posting.due.value_or(posting.time).dateOnly(), open, {}};
        for (const Application& one : applied)
            if (one.time.dateOnly() <= asAt_)
                debit.paid.emplace_back(one.paid.dateOnly(), one.amount);
        return debit;
    }

    // Credits that wait to be applied, oldest first, against what is due first.
    void setCreditsAgainstDebits() {
        auto debit = debits_.begin();
        for (auto [day, left] : credits_) {
            for (; debit != debits_.end() && left > Currency(); ++debit) {
                const Currency part = std::min(left, debit->open);
                if (part > Currency())
                    debit->paid.emplace_back(std::max(day, debit->posting->time.dateOnly()), part);
                debit->open -= std::max(part, Currency());
                left -= std::max(part, Currency());
                if (left == Currency())
                    break; // something of the debit may be left
            }
            unapplied_ -= left;
        }
        for (Debit& one : debits_)
            std::stable_sort(one.paid.begin(), one.paid.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    }

    void sum(Statement& statement) const {
        statement.ages.unapplied = unapplied_;
        statement.balance = unapplied_;
        for (const Debit& debit : debits_) {
            ageOf(statement.ages, daysBetween(debit.due, asAt_)) += debit.open;
            statement.balance += debit.open;
        }
        for (const Posting& posting : account_.postings) {
            if (!isOfStatement(posting))
                continue;
            if (posting.kind == Posting::Kind::Payment)
                statement.paid -= posting.total;
            else if (posting.total < Currency())
                statement.credited -= posting.total;
            else
                statement.charged += posting.total;
        }
        const Currency moved = statement.charged - statement.paid - statement.credited;
        statement.broughtForward = account_.lastBalance.value_or(statement.balance - moved);
        statement.balance = statement.broughtForward + moved;
    }

    // Posted up to the day, and on no statement yet.
    bool isOfStatement(const Posting& posting) const {
        const Date day = posting.time.dateOnly();
        return day <= asAt_ && (account_.lastBalance ? !posting.told : day >= since_);
    }

    static Currency& ageOf(Ages& ages, std::int64_t overdue) {
        if (overdue <= 0)
            return ages.notDue;
        return overdue <= 30 ? ages.days30 : overdue <= 60 ? ages.days60 : overdue <= 90 ? ages.days90 : ages.over90;
    }

    void charge(Statement& statement) const {
        for (const Debit& debit : debits_)
            if (debit.posting->kind != Posting::Kind::FinanceCharge)
                chargeDebit(statement, debit);
        if (statement.financeCharge == Currency()) {
            statement.lines.clear();
            return;
        }
        Currency told;
        std::size_t lines = 0;
        for (const ChargeLine& line : statement.lines) {
            if (++lines > kMostLines)
                break;
            told += line.charge;
            statement.reckoning += (lines == 1 ? "" : "\n") + shownCost(line.overdue) + " overdue since " + shortDay(line.since, asAt_) +
                                   ", " + days(line.days) + " at " + aprText(account_.terms.apr) + " %: " + line.charge.toDisplay();
        }
        if (lines > kMostLines)
            statement.reckoning += "\nand " + std::to_string(statement.lines.size() - kMostLines) +
                                   " more alike: " + (statement.financeCharge - told).toDisplay();
        if (statement.financeCharge < account_.terms.minimum)
            raise(statement);
    }

    // To the month's minimum, as far as the month's charges have not reached it.
    void raise(Statement& statement) const {
        const Currency minimum = account_.terms.minimum;
        const Currency before = account_.chargedThisMonth;
        statement.reckoning += statement.lines.size() > 1 ? "\ntogether " + statement.financeCharge.toDisplay() : std::string();
        if (before <= Currency()) {
            statement.financeCharge = minimum;
            statement.reckoning += ", raised to the minimum of " + minimum.toDisplay();
            return;
        }
        const Currency lacking = minimum - before;
        const bool lacks = statement.financeCharge < lacking;
        statement.reckoning += lacks ? ", raised to " + lacking.toDisplay() + " for" : ", with";
        statement.reckoning += " the month's minimum of " + minimum.toDisplay() + (lacks ? "" : " reached") + ": " + before.toDisplay() +
                               " was charged before";
        statement.financeCharge = std::max(statement.financeCharge, lacking);
    }

    // The days from the end of the grace, or from the period's first day, to the statement's own, in stretches between payments.
    void chargeDebit(Statement& statement, const Debit& debit) const {
        const Date lastFree = debit.due.plusDays(account_.terms.graceDays);
        Date from = std::max(lastFree, since_.plusDays(-1));
        Currency owed = debit.open;
        for (const auto& [day, amount] : debit.paid)
            owed += amount;
        const auto stretch = [&](Date to) {
            if (to <= from)
                return;
            if (owed > Currency())
                addLine(statement, {owed, lastFree.plusDays(1), static_cast<int>(daysBetween(from, to)), Currency()});
            from = to;
        };
        for (const auto& [day, amount] : debit.paid) {
            stretch(std::min(day, asAt_));
            owed -= amount;
        }
        stretch(asAt_);
    }

    void addLine(Statement& statement, ChargeLine line) const {
        line.charge = interest(line.overdue, account_.terms.apr, line.days);
        statement.financeCharge += line.charge;
        statement.lines.push_back(line);
    }

    const Account& account_;
    Date asAt_;
    Date since_;
    std::vector<Application> applications_; // by posting
    std::vector<Debit> debits_;
    std::vector<std::pair<Date, Currency>> credits_;
    Currency unapplied_;
};

} // namespace

Statement drawUp(const Account& account, Date asAt, Date since) {
    return Drawing(account, asAt, since).drawn();
}

namespace {

int lengthOfMonth(int year, int month) {
    for (int day = 31; day > 28; --day)
        if (Date::fromParts(year, month, day))
            return day;
    return 28;
}

Date billingDay(int year, int month, int dayOfMonth) {
    return *Date::fromParts(year, month, std::min(dayOfMonth, lengthOfMonth(year, month)));
}

} // namespace

Date lastBillingDay(Date today, int dayOfMonth) {
    const Date thisMonth = billingDay(today.year(), today.month(), dayOfMonth);
    return thisMonth <= today ? thisMonth : billingDayBefore(thisMonth, dayOfMonth);
}

Date monthBefore(Date day) {
    const bool endsMonth = day.day() == lengthOfMonth(day.year(), day.month());
    return billingDayBefore(day, endsMonth ? 31 : day.day());
}

Date billingDayBefore(Date day, int dayOfMonth) {
    return day.month() == 1 ? billingDay(day.year() - 1, 12, dayOfMonth) : billingDay(day.year(), day.month() - 1, dayOfMonth);
}

} // namespace merchantry::customers
