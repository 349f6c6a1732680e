#pragma once

#include "app/db/session.h"
#include "exchange/accounting/accountmap.h"
#include "exchange/accounting/iif.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace merchantry::exchange {

// What a day came to.
struct DayFigures {
    int receipts = 0;
    Currency sales;    // without tax
    Currency tax;      // that was taken
    Currency tendered; // change given back is off
    Currency bills;    // deliveries
    Currency accounts; // postings to customers' accounts, sales on account among them

    bool operator==(const DayFigures&) const = default;
};

// A day of the store as accounting books it: a journal entry for each register, a bill for each delivery, an entry for each posting to a
// customer's account.
struct BookedDay {
    Date day;
    DayFigures figures;
    std::vector<AccountEntry> entries;
    std::string fault; // why it must not go out: what does not agree, and where; empty when all does
};

struct Daybook {
    std::vector<BookedDay> days; // on which something happened, in their order
    AccountMap map;
    bool stopped = false;
};

// Asked between two steps with the percent done; false stops the work.
using BookProgress = std::function<bool(int percent)>;

// Reads the days from `first` to `last`. A day's journal must agree with its receipts, its tenders and what the report of daily sales says,
// exactly. Where lines have fractions of a cent, the largest of them takes what rounding leaves. Throws DbError.
Daybook readDays(db::Session& session, Date first, Date last, const BookProgress& goOn);

// The file for some days, with the accounts, customers and suppliers that they name. Throws DbError.
AccountFile fileOf(db::Session& session, const std::vector<BookedDay>& days, const AccountMap& map);

} // namespace merchantry::exchange
