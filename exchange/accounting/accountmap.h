#pragma once

#include "app/db/session.h"

#include <string>
#include <string_view>
#include <vector>

namespace merchantry::exchange {

// What an amount of the store is for; with a code where there are several of the kind.
enum class AccountUse {
    Department,   // its number: what was sold
    Tax,          // its number: tax that was taken
    Tender,       // its type: what was paid with
    RegisterItem, // its SKU: what registers book that is no sale, such as a payment on account
    CreditCode,   // its text: the other side of a posting to a customer's account
    Clearing,     // what was sold on account, until it is posted to the customer's
    Receivable,
    Payable,
    Purchases,
    OtherCosts, // freight and the like of a delivery
};

struct MappedAccount {
    AccountUse use{};
    std::string code;    // empty for a use that there is once
    std::string what;    // for the user: "Sales of Garden"
    std::string account; // levels joined by ":"
    std::string type;    // as accounting calls it: "INC"
};

struct AccountType {
    const char* code;
    const char* what;
};
// The types that an account can have.
const std::vector<AccountType>& accountTypes();

// To which account of accounting each amount of the store goes: as the store keeps it, else a sensible one.
class AccountMap {
public:
    // All that the store knows now: departments, taxes, tenders, codes.
    static AccountMap read(db::Session& session);

    const std::vector<MappedAccount>& all() const { return accounts_; }
    // That of a use; a code that the store does not know any more joins the others with the account that it would get.
    MappedAccount of(AccountUse use, const std::string& code = "");
    // What is to be kept when one of them, from 0, gets another account, or another type: accounting knows one type for an account and all
    // below it. Another account takes over the type that it has already; another type is that of all that share it.
    std::vector<MappedAccount> withAccount(std::size_t index, const std::string& account) const;
    std::vector<MappedAccount> withType(std::size_t index, const std::string& type) const;

private:
    void add(AccountUse use, const std::string& code, const std::string& name);

    std::vector<MappedAccount> accounts_;
};

// What is wrong with an account for its use, in a sentence; empty when nothing is.
std::string accountComplaint(const MappedAccount& account);
// Keeps it in the store. Requires: no complaint. Throws DbError.
void keepAccount(db::Session& session, const MappedAccount& account);

} // namespace merchantry::exchange
