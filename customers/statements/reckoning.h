#pragma once

#include "base/currency.h"
#include "base/date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::customers {

// A posting to a customer's account, as a statement counts it.
struct Posting {
    enum class Kind { Charge, Payment, Credit, FinanceCharge };
    std::int64_t id = 0;
    Date time;
    std::optional<Date> due; // a debit's; its own day when there is none
    Kind kind = Kind::Charge;
    Currency total;    // positive what the customer owes
    Currency open;     // what is open of it today
    bool told = false; // stood on the customer's last statement, or on one before
};

// What was taken off a posting's open amount, with the posting's sign. Both halves of an application have the same time, so that what is
// open adds up as at any day.
struct Application {
    std::int64_t posting = 0;
    Date time; // when it was applied, and both postings were there
    Date paid; // when the credit came in that was applied to a debit: from that day on the debit was smaller
    Currency amount;
};

// The terms of a charge account.
struct Terms {
    bool assess = true;   // finance charges at all
    std::int64_t apr = 0; // ten-thousandths of a percent a year
    Currency minimum;     // the least charge where there is one
    int graceDays = 0;    // after the due day
};

// A part of a finance charge: so much was overdue for so many days.
struct ChargeLine {
    Currency overdue;
    Date since; // the first overdue day
    int days = 0;
    Currency charge; // in cents, halves to even

    bool operator==(const ChargeLine&) const = default;
};

// The age of what is open, by the days since it was due. What no debit was found for is unapplied, zero or below.
struct Ages {
    Currency notDue, days30, days60, days90, over90, unapplied;

    bool operator==(const Ages&) const = default;
};

// A customer's statement as at a day. broughtForward + charged - paid - credited + financeCharge = balance = the sum of the ages.
struct Statement {
    Date since; // the first day of the period
    Currency broughtForward, charged, paid, credited, financeCharge, balance;
    Ages ages;
    std::vector<ChargeLine> lines;
    std::string reckoning; // the finance charge in words, a sentence a line; empty without one

    bool operator==(const Statement&) const = default;
};

struct Account {
    std::vector<Posting> postings;         // by time
    std::vector<Application> applications; // in any order
    Terms terms;
    std::optional<Currency> lastBalance; // of the customer's last statement; nothing before the first
    Currency chargedThisMonth;           // the finance charges of the statements of less than a month before
};

// Draws up the statement of the days from `since` to `asAt`, both in the period. What was brought forward is the last statement's balance;
// charged, paid and credited is what was posted up to the day and stood on no statement yet, also with a day before the period: entered
// late, it stands on the next statement. Before the first statement, what lies before the period is brought forward.
// Finance charges are simple interest by the day on 365, on what is past its due day and the grace days and no finance charge itself:
//   charge = overdue * APR / 100 * days / 365, each line rounded to cents, halves to even,
// for the days of the period: what was overdue before it is the affair of earlier statements. What was paid on a day counts for that day.
// A credit that is not applied yet is set against what is due first, from its own day on.
// The minimum is of a month and not of a run: where there is any charge, it is raised as far as the charges of the month, this one and
// those of the statements of less than a month before, lack of the minimum. Two runs within a month raise no more than one would.
// Example: 120.00 due on 3/1 without grace, at 20 % as at 3/20: 120 * 0.20 * 19 / 365 = 1.2493, so 1.25; 5.00 with that minimum. The day
// after, 0.07: the month has its minimum.
Statement drawUp(const Account& account, Date asAt, Date since);

// The last billing day not behind today: the day of the month (1 to 31), or the month's last day where the month is shorter.
Date lastBillingDay(Date today, int dayOfMonth);
// The billing day a month before one.
Date billingDayBefore(Date billingDay, int dayOfMonth);
// The day a month before any day: the same day of the month before, or that month's last one where it is shorter; that of a month's last
// day is the last day of the month before. Runs as at the ends of two months are a month apart, however long those are.
Date monthBefore(Date day);

} // namespace merchantry::customers
