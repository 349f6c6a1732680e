#pragma once

#include "base/currency.h"
#include "base/date.h"

#include <string>
#include <vector>

namespace merchantry::exchange {

// One side of an entry: a debit is positive, a credit negative; whole cents.
struct AccountLine {
    std::string account; // levels joined by ":"
    Currency amount;
    std::string name{}; // of the customer or supplier whom it concerns
    std::string memo{};
};

// What happened, as accounting books it. Its lines add up to 0, and there are at least two.
struct AccountEntry {
    std::string type; // "GENERAL JOURNAL", "BILL"
    Date day;
    std::string number;
    std::vector<AccountLine> lines;

    bool balances() const;
};

struct ListedAccount {
    std::string name;
    std::string type; // "INC", "OCASSET" …
};

struct ListedName {
    std::string name;
    std::vector<std::string> address; // up to five lines
    std::string phone;
    std::string email;
};

// What one file brings to accounting: the names that its entries use, and the entries.
struct AccountFile {
    std::vector<ListedAccount> accounts; // those above a level are added
    std::vector<ListedName> customers;
    std::vector<ListedName> vendors;
    std::vector<AccountEntry> entries;
};

// The file in the text format of accounting programs: a keyword and its fields parted by tabs, a heading for each keyword, dates with the
// month first, amounts with a point and two decimals, lines that end with CR LF, in windows-1252. fullYears writes 2026 for 26. The same
// content gives the same bytes. Requires: every entry balances.
std::string iifText(const AccountFile& file, bool fullYears);

// A name as such a file can hold it: no tabs, line ends, quotes or colons, not longer than that.
std::string accountingName(std::string_view text, std::size_t longest);

constexpr std::size_t kLongestName = 41;    // characters, of a customer or supplier
constexpr std::size_t kLongestAccount = 31; // of one level

} // namespace merchantry::exchange
