#include "customers/statements/reckoning.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace merchantry::customers {
namespace {

constexpr std::int64_t kApr = 200'000; // 20 %

Date day(const char* text) {
    return Date::fromText(text).value();
}

// "1 3/1/2026 due 3/1/2026 120 open 120" without its words; due "" for none.
struct Line {
    int id;
    const char* time;
    const char* due;
    const char* total;
    const char* open;
    Posting::Kind kind = Posting::Kind::Charge;
};

struct Part {
    int posting;
    const char* time;
    const char* paid;
    const char* amount;
};

struct Case {
    const char* name;
    std::vector<Line> postings;
    std::vector<Part> applied;
    std::int64_t apr;
    const char* minimum;
    int grace;
    const char* last; // "" for none
    const char* asAt;
    const char* charge;
    const char* reckoning;
};

Account accountOf(const Case& one) {
    Account account;
    for (const Line& line : one.postings)
        account.postings.push_back({line.id, day(line.time), *line.due ? std::optional(day(line.due)) : std::nullopt, line.kind,
                                    Currency::fromText(line.total), Currency::fromText(line.open)});
    for (const Part& part : one.applied)
        account.applications.push_back({part.posting, day(part.time), day(part.paid), Currency::fromText(part.amount)});
    account.terms = {true, one.apr, Currency::fromText(one.minimum), one.grace};
    return account;
}

constexpr auto kPayment = Posting::Kind::Payment;
constexpr auto kFinance = Posting::Kind::FinanceCharge;

// Of the period: behind the statement before, or long ago.
Date firstDay(const Case& one) {
    return *one.last ? day(one.last).plusDays(1) : day("1/1/2020");
}

// Reckoned by hand: overdue * APR * days / 365, to cents, halves to even.
const std::vector<Case> kCases = {
    {"the plain one",
     {{1, "2/1/2026", "3/1/2026", "120", "120"}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/20/2026",
     "1.25",
     "$120.00 overdue since 3/2, 19 days at 20 %: $1.25"},
    {"raised to the minimum",
     {{1, "2/1/2026", "3/1/2026", "120", "120"}},
     {},
     kApr,
     "5",
     0,
     "",
     "3/20/2026",
     "5",
     "$120.00 overdue since 3/2, 19 days at 20 %: $1.25, raised to the minimum of $5.00"},
    {"not due yet", {{1, "2/1/2026", "3/20/2026", "120", "120"}}, {}, kApr, "5", 0, "", "3/20/2026", "0", ""},
    {"one day over",
     {{1, "2/1/2026", "3/19/2026", "120", "120"}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/20/2026",
     "0.07",
     "$120.00 overdue since 3/20, 1 day at 20 %: $0.07"},
    {"within the grace", {{1, "2/1/2026", "3/5/2026", "120", "120"}}, {}, kApr, "5", 15, "", "3/20/2026", "0", ""},
    {"the grace is over",
     {{1, "2/1/2026", "3/5/2026", "120", "120"}},
     {},
     kApr,
     "0",
     14,
     "",
     "3/20/2026",
     "0.07",
     "$120.00 overdue since 3/20, 1 day at 20 %: $0.07"},
    {"due on its own day",
     {{1, "3/1/2026 16:30", "", "1000", "1000"}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/11/2026",
     "5.48",
     "$1,000.00 overdue since 3/2, 10 days at 20 %: $5.48"},
    {"over the end of February",
     {{1, "2/1/2026", "2/27/2026", "365", "365"}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/2/2026",
     "0.6",
     "$365.00 overdue since 2/28, 3 days at 20 %: $0.60"},
    {"over a leap day",
     {{1, "2/1/2028", "2/27/2028", "365", "365"}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/2/2028",
     "0.8",
     "$365.00 overdue since 2/28, 4 days at 20 %: $0.80"},
    {"a year of 366 days is reckoned on 365",
     {{1, "1/1/2028", "1/1/2028", "100", "100"}},
     {},
     kApr,
     "0",
     0,
     "",
     "1/1/2029",
     "20.05",
     "$100.00 overdue since 1/2/2028, 366 days at 20 %: $20.05"},
    {"over the end of the year",
     {{1, "12/1/2025", "12/21/2025", "730", "730"}},
     {},
     kApr,
     "0",
     0,
     "",
     "1/5/2026",
     "6",
     "$730.00 overdue since 12/22/2025, 15 days at 20 %: $6.00"},
    {"half a cent goes to the even one below", {{1, "1/1/2026", "1/1/2026", "9.125", "9.125"}}, {}, kApr, "0", 0, "", "1/2/2026", "0", ""},
    {"and to the even one above",
     {{1, "1/1/2026", "1/1/2026", "27.375", "27.375"}},
     {},
     kApr,
     "0",
     0,
     "",
     "1/2/2026",
     "0.02",
     "$27.3750 overdue since 1/2, 1 day at 20 %: $0.02"},
    {"another rate",
     {{1, "1/1/2026", "1/31/2026", "500", "500"}},
     {},
     185'000,
     "0",
     0,
     "",
     "3/2/2026",
     "7.6",
     "$500.00 overdue since 2/1, 30 days at 18.5 %: $7.60"},
    {"no rate, no minimum either", {{1, "1/1/2026", "1/31/2026", "500", "500"}}, {}, 0, "5", 0, "", "3/2/2026", "0", ""},
    {"only the days behind the statement before",
     {{1, "1/1/2026", "1/31/2026", "500", "500"}},
     {},
     kApr,
     "0",
     0,
     "2/20/2026",
     "3/20/2026",
     "7.67",
     "$500.00 overdue since 2/1, 28 days at 20 %: $7.67"},
    {"none twice on the same day", {{1, "1/1/2026", "1/31/2026", "500", "500"}}, {}, kApr, "5", 0, "3/20/2026", "3/20/2026", "0", ""},
    {"partly paid within the period",
     {{1, "1/1/2026", "3/1/2026", "300", "100"}},
     {{1, "3/11/2026", "3/11/2026", "200"}},
     kApr,
     "0",
     0,
     "",
     "3/31/2026",
     "2.74",
     "$300.00 overdue since 3/2, 10 days at 20 %: $1.64\n$100.00 overdue since 3/2, 20 days at 20 %: $1.10"},
    {"two lines under the minimum",
     {{1, "1/1/2026", "3/1/2026", "300", "100"}},
     {{1, "3/11/2026", "3/11/2026", "200"}},
     kApr,
     "5",
     0,
     "",
     "3/31/2026",
     "5",
     "$300.00 overdue since 3/2, 10 days at 20 %: $1.64\n$100.00 overdue since 3/2, 20 days at 20 %: $1.10\ntogether $2.74, raised to the "
     "minimum of $5.00"},
    {"paid in full, too late",
     {{1, "1/1/2026", "3/1/2026", "300", "0"}},
     {{1, "3/11/2026", "3/11/2026", "300"}},
     kApr,
     "0",
     0,
     "",
     "3/31/2026",
     "1.64",
     "$300.00 overdue since 3/2, 10 days at 20 %: $1.64"},
    {"paid in time",
     {{1, "1/1/2026", "3/1/2026", "300", "0"}},
     {{1, "3/1/2026", "3/1/2026", "300"}},
     kApr,
     "5",
     0,
     "",
     "3/31/2026",
     "0",
     ""},
    {"paid in time, applied late",
     {{1, "1/1/2026", "3/1/2026", "300", "0"}},
     {{1, "3/25/2026", "2/27/2026", "300"}},
     kApr,
     "5",
     0,
     "",
     "3/31/2026",
     "0",
     ""},
    {"applied after the statement's day",
     {{1, "1/1/2026", "3/1/2026", "300", "0"}},
     {{1, "4/2/2026", "4/2/2026", "300"}},
     kApr,
     "0",
     0,
     "",
     "3/31/2026",
     "4.93",
     "$300.00 overdue since 3/2, 30 days at 20 %: $4.93"},
    {"a payment that waits counts from its day",
     {{1, "1/1/2026", "3/1/2026", "300", "300"}, {2, "3/11/2026", "", "-200", "-200", kPayment}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/31/2026",
     "2.74",
     "$300.00 overdue since 3/2, 10 days at 20 %: $1.64\n$100.00 overdue since 3/2, 20 days at 20 %: $1.10"},
    {"it goes to what is due first",
     {{1, "1/1/2026", "3/21/2026", "100", "100"}, {2, "1/2/2026", "3/1/2026", "100", "100"}, {3, "3/1/2026", "", "-100", "-100", kPayment}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/31/2026",
     "0.55",
     "$100.00 overdue since 3/22, 10 days at 20 %: $0.55"},
    {"never on earlier finance charges",
     {{1, "2/1/2026", "3/1/2026", "120", "120"}, {2, "2/15/2026", "", "50", "50", kFinance}},
     {},
     kApr,
     "0",
     0,
     "",
     "3/20/2026",
     "1.25",
     "$120.00 overdue since 3/2, 19 days at 20 %: $1.25"},
    {"what was posted later does not count", {{1, "3/21/2026", "3/1/2026", "120", "120"}}, {}, kApr, "5", 0, "", "3/20/2026", "0", ""},
    {"a credit alone", {{1, "3/1/2026", "", "-40", "-40", kPayment}}, {}, kApr, "5", 0, "", "3/20/2026", "0", ""},
};

TEST(Reckoning, FinanceChargesAreThoseReckonedByHand) {
    for (const Case& one : kCases) {
        const Statement statement = drawUp(accountOf(one), day(one.asAt), firstDay(one));
        EXPECT_EQ(statement.financeCharge.toText(), one.charge) << one.name;
        EXPECT_EQ(statement.reckoning, one.reckoning) << one.name;
        Account off = accountOf(one);
        off.terms.assess = false;
        EXPECT_EQ(drawUp(off, day(one.asAt), firstDay(one)).financeCharge, Currency()) << one.name;
    }
}

// Runs on one day after the other each raised the minimum: it is of a month.
TEST(Reckoning, TheMinimumIsRaisedOnceAMonth) {
    struct Month {
        const char* name;
        const char* overdue; // since 3/2, at 20 %
        const char* since;   // of the period
        const char* asAt;
        const char* minimum;
        const char* before; // charged in the month before
        const char* charge;
        const char* reckoning;
    };
    // 365 * 0.20 / 365 is 0.20 a day, 3650 is 2.00.
    const Month months[] = {
        {"the first run", "365", "3/2/2026", "3/20/2026", "5", "0", "5",
         "$365.00 overdue since 3/2, 19 days at 20 %: $3.80, raised to the minimum of $5.00"},
        {"the day after, the minimum was charged", "365", "3/21/2026", "3/21/2026", "5", "5", "0.2",
         "$365.00 overdue since 3/2, 1 day at 20 %: $0.20, with the month's minimum of $5.00 reached: $5.00 was charged before"},
        {"more than the minimum was charged", "365", "3/21/2026", "3/25/2026", "5", "7.3", "1",
         "$365.00 overdue since 3/2, 5 days at 20 %: $1.00, with the month's minimum of $5.00 reached: $7.30 was charged before"},
        {"together they reach it", "365", "3/11/2026", "3/20/2026", "5", "3.5", "2",
         "$365.00 overdue since 3/2, 10 days at 20 %: $2.00, with the month's minimum of $5.00 reached: $3.50 was charged before"},
        {"together they are just the minimum", "365", "3/11/2026", "3/20/2026", "5", "3", "2",
         "$365.00 overdue since 3/2, 10 days at 20 %: $2.00, with the month's minimum of $5.00 reached: $3.00 was charged before"},
        {"raised by what the month lacks", "365", "3/11/2026", "3/20/2026", "5", "1", "4",
         "$365.00 overdue since 3/2, 10 days at 20 %: $2.00, raised to $4.00 for the month's minimum of $5.00: $1.00 was charged before"},
        {"a minimum that was lowered meanwhile", "365", "3/11/2026", "3/20/2026", "2.5", "5", "2",
         "$365.00 overdue since 3/2, 10 days at 20 %: $2.00, with the month's minimum of $2.50 reached: $5.00 was charged before"},
        {"more than the minimum by the day", "3650", "3/11/2026", "3/20/2026", "5", "5", "20",
         "$3,650.00 overdue since 3/2, 10 days at 20 %: $20.00"},
        {"nothing overdue, nothing to raise", "0", "3/11/2026", "3/20/2026", "5", "1", "0", ""},
    };
    for (const Month& one : months) {
        Account account;
        account.postings.push_back(
            {1, day("2/1/2026"), day("3/1/2026"), Posting::Kind::Charge, Currency::fromText(one.overdue), Currency::fromText(one.overdue)});
        account.terms = {true, kApr, Currency::fromText(one.minimum), 0};
        account.chargedThisMonth = Currency::fromText(one.before);
        const Statement statement = drawUp(account, day(one.asAt), day(one.since));
        EXPECT_EQ(statement.financeCharge.toText(), one.charge) << one.name;
        EXPECT_EQ(statement.reckoning, one.reckoning) << one.name;
    }
}

// A register's sale of 3/18 that reached the store after the statement as at 3/20 stood on no statement at all.
TEST(Reckoning, WhatIsEnteredLateStandsOnTheNextStatement) {
    const Case one{"",
                   {{1, "3/1/2026", "3/16/2026", "100", "100"},
                    {2, "3/18/2026", "4/2/2026", "40", "40"},     // late
                    {3, "3/19/2026", "", "-10", "-10", kPayment}, // late
                    {4, "4/5/2026", "4/20/2026", "25", "25"},
                    {5, "4/21/2026", "4/21/2026", "7", "7"}}, // behind the statement's day
                   {},
                   kApr,
                   "0",
                   0,
                   "3/20/2026",
                   "4/20/2026",
                   "",
                   ""};
    Account account = accountOf(one);
    account.postings[0].told = true;
    account.lastBalance = Currency::fromText("100");
    const Statement s = drawUp(account, day(one.asAt), firstDay(one));
    EXPECT_EQ(s.broughtForward.toText(), "100");
    EXPECT_EQ(s.charged.toText(), "65");
    EXPECT_EQ(s.paid.toText(), "10");
    EXPECT_EQ(s.financeCharge.toText(), "1.92"); // 90 since 3/17, 31 days: 1.5288; 40 since 4/3, 18 days: 0.3945
    EXPECT_EQ(s.balance.toText(), "156.92");
    EXPECT_EQ((s.ages.notDue + s.ages.days30 + s.ages.days60 + s.ages.days90 + s.ages.over90 + s.ages.unapplied), s.balance);
}

TEST(Reckoning, TheFiguresOfAStatementAddUp) {
    const Case one{"",
                   {{1, "11/1/2025", "11/16/2025", "100", "20"}, // over 90 days
                    {2, "2/10/2026", "2/25/2026", "70", "70"},   // 23 days
                    {3, "3/5/2026", "4/4/2026", "45.50", "45.50"},
                    {4, "3/8/2026", "", "-80", "0", kPayment},
                    {5, "3/9/2026", "", "-10", "-10", Posting::Kind::Credit},
                    {6, "3/25/2026", "", "500", "500"}}, // behind the statement's day
                   {{1, "3/8/2026", "3/8/2026", "80"}, {4, "3/8/2026", "3/8/2026", "-80"}},
                   kApr,
                   "5",
                   0,
                   "2/20/2026",
                   "3/20/2026",
                   "",
                   ""};
    const Statement s = drawUp(accountOf(one), day(one.asAt), day("2/21/2026"));
    EXPECT_EQ(s.broughtForward.toText(), "170");
    EXPECT_EQ(s.charged.toText(), "45.5");
    EXPECT_EQ(s.paid.toText(), "80");
    EXPECT_EQ(s.credited.toText(), "10");
    EXPECT_EQ(s.financeCharge.toText(), "5"); // 0.88 + 0.01 + 0.07 + 0.88
    EXPECT_EQ(s.balance.toText(), "130.5");
    EXPECT_EQ(s.ages.over90.toText(), "10"); // the credit that waits is set against it
    EXPECT_EQ(s.ages.days30.toText(), "70");
    EXPECT_EQ(s.ages.notDue.toText(), "50.5"); // the finance charge with it
    EXPECT_EQ(s.ages.unapplied, Currency());
    EXPECT_EQ(s.broughtForward + s.charged - s.paid - s.credited + s.financeCharge, s.balance);
}

// A printed statement has room for so many lines; the sum is told all the same.
TEST(Reckoning, ALongReckoningIsSummedUp) {
    Case one{"", {}, {}, kApr, "0", 0, "", "3/31/2026", "", ""};
    for (int id = 1; id <= 100; ++id)
        one.postings.push_back({id, "3/1/2026", "3/1/2026", "100", "100"});
    const Statement statement = drawUp(accountOf(one), day(one.asAt), firstDay(one));
    EXPECT_EQ(statement.financeCharge.toText(), "164");
    EXPECT_EQ(std::count(statement.reckoning.begin(), statement.reckoning.end(), '\n'), 12);
    EXPECT_TRUE(statement.reckoning.ends_with("\nand 88 more alike: $144.32")) << statement.reckoning;
}

TEST(Reckoning, BillingDaysOfShortMonths) {
    EXPECT_EQ(lastBillingDay(day("3/4/2026"), 5), day("2/5/2026"));
    EXPECT_EQ(lastBillingDay(day("3/5/2026"), 5), day("3/5/2026"));
    EXPECT_EQ(lastBillingDay(day("3/30/2026"), 31), day("2/28/2026"));
    EXPECT_EQ(lastBillingDay(day("3/1/2028"), 30), day("2/29/2028"));
    EXPECT_EQ(lastBillingDay(day("4/30/2026"), 31), day("4/30/2026"));
    EXPECT_EQ(lastBillingDay(day("1/1/2026"), 15), day("12/15/2025"));
    EXPECT_EQ(billingDayBefore(day("3/31/2026"), 31), day("2/28/2026"));
    EXPECT_EQ(billingDayBefore(day("2/28/2026"), 31), day("1/31/2026"));
    // a month before any day
    EXPECT_EQ(monthBefore(day("2/28/2026")), day("1/31/2026"));
    EXPECT_EQ(monthBefore(day("3/31/2026")), day("2/28/2026"));
    EXPECT_EQ(monthBefore(day("3/25/2026")), day("2/25/2026"));
    EXPECT_EQ(monthBefore(day("3/30/2028")), day("2/29/2028"));
    EXPECT_EQ(monthBefore(day("4/30/2026")), day("3/31/2026")) << "a month's end is a month behind the one before";
    EXPECT_EQ(monthBefore(day("4/29/2026")), day("3/29/2026"));
}

} // namespace
} // namespace merchantry::customers
