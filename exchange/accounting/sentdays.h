#pragma once

#include "app/db/session.h"
#include "exchange/accounting/daybook.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace merchantry::exchange {

// A file that went to accounting.
struct SentFile {
    int number = 0;
    Date made;
    Date first; // the days that it holds
    Date last;
    int days = 0;
    std::int64_t bytes = 0;
};

// A day that went out, as it was then.
struct SentDay {
    int file = 0;
    Date made;
    DayFigures figures;
};

// A day went out meanwhile: each goes once.
class AlreadySent : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "3/2/2026, 3/4/2026 and 12 more".
std::string daysNamed(const std::vector<Date>& days);

// By day. All throw DbError.
std::map<Date, SentDay> sentDays(db::Session& session);
// The days on which something was posted after they went out, as far as their receipts, deliveries and account postings tell, in their
// order.
std::vector<Date> changedSince(db::Session& session);
// The last first.
std::vector<SentFile> sentFiles(db::Session& session);
// The very bytes that went out; empty when there is no such file.
std::string sentBytes(db::Session& session, int number);
// Keeps the file with its days, in one transaction; its number. Throws AlreadySent with a sentence, nothing kept. Requires: some days.
int keepSent(db::Session& session, const std::vector<BookedDay>& days, const std::string& bytes);
// The day behind the last that went out, else the first on which something happened; today when there is none before it.
Date firstUnsent(db::Session& session, Date today);

} // namespace merchantry::exchange
