#include "exchange/accounting/accountmap.h"

#include "app/db/eachrow.h"
#include "base/characters.h"
#include "base/text.h"
#include "base/textorder.h"
#include "exchange/accounting/iif.h"

#include <algorithm>
#include <functional>
#include <map>

namespace merchantry::exchange {
namespace {

using db::EachRow;
using db::RowView;

// How a use is kept in the store, what it is called, and the account that it has at first. "*" stands for the name of what the code means.
struct UseRow {
    AccountUse use;
    const char* kept;
    const char* what;
    const char* account;
    const char* type;
};
constexpr UseRow kUses[] = {
    {AccountUse::Department, "Department", "Sales of *", "Sales:*", "INC"},
    {AccountUse::Tax, "Tax", "Tax *", "Sales Tax Payable:*", "OCLIAB"},
    {AccountUse::Tender, "Tender", "Paid by *", "Undeposited Funds", "OCASSET"},
    {AccountUse::RegisterItem, "RegisterItem", "At the registers: *", "Customer Accounts Clearing", "OCASSET"},
    {AccountUse::CreditCode, "CreditCode", "Posted to accounts: *", "Account Adjustments", "EXP"},
    {AccountUse::Clearing, "Clearing", "Sold on account, until it is posted", "Customer Accounts Clearing", "OCASSET"},
    {AccountUse::Receivable, "Receivable", "What customers owe", "Accounts Receivable", "AR"},
    {AccountUse::Payable, "Payable", "What is owed to suppliers", "Accounts Payable", "AP"},
    {AccountUse::Purchases, "Purchases", "Goods received", "Purchases", "COGS"},
    {AccountUse::OtherCosts, "OtherCosts", "Freight and other costs of deliveries", "Freight In", "COGS"},
};

// Codes that have an account of their own at first.
struct KnownCode {
    AccountUse use;
    const char* code;
    const char* account;
    const char* type;
};
constexpr KnownCode kKnownCodes[] = {
    {AccountUse::Tender, "Credit Card", "Card Settlement", "OCASSET"},
    {AccountUse::Tender, "Debit Card", "Card Settlement", "OCASSET"},
    {AccountUse::Tender, "Mobile Payment", "Card Settlement", "OCASSET"},
    {AccountUse::Tender, "Gift Voucher", "Gift Vouchers", "OCLIAB"},
    {AccountUse::Tender, "Store Credit", "Customer Accounts Clearing", "OCASSET"},
    {AccountUse::Tender, "Charge Account", "Customer Accounts Clearing", "OCASSET"},
    {AccountUse::RegisterItem, "$DROP", "Undeposited Funds", "OCASSET"},
    {AccountUse::RegisterItem, "$Payout", "Petty Cash Paid Out", "EXP"},
    {AccountUse::RegisterItem, "$CancelLayaway", "Layaway Deposits", "OCLIAB"},
    {AccountUse::CreditCode, "Payment", "Undeposited Funds", "OCASSET"},
    {AccountUse::CreditCode, "Finance Charge", "Finance Charges", "INC"},
};

// What each use with codes finds in the store: the code and its name.
struct CodeSource {
    AccountUse use;
    const char* select;
};
constexpr CodeSource kSources[] = {
    {AccountUse::Department, "SELECT CAST(DepartmentID AS varchar(12)), Department FROM Departments ORDER BY Department, DepartmentID"},
    {AccountUse::Tax, "SELECT CAST(TaxID AS varchar(12)), ExportName FROM TaxExportName ORDER BY TaxID"},
    {AccountUse::Tender,
     "SELECT TenderType, ISNULL(DisplayName, TenderType) FROM TenderTypes WHERE StoreID = 1 ORDER BY DisplayOrder, TenderType"},
    {AccountUse::RegisterItem, "SELECT SKU, ISNULL(Name, SKU) FROM Item WHERE SKU LIKE '$%' ORDER BY SKU, MatrixSKU"},
    {AccountUse::CreditCode,
     "SELECT CreditCode, CreditCode FROM (SELECT CreditCode FROM CreditCodes UNION SELECT 'Payment' UNION SELECT 'Finance Charge') c "
     "WHERE CreditCode <> 'application' ORDER BY CreditCode"},
};

const UseRow& rowOf(AccountUse use) {
    return *std::find_if(std::begin(kUses), std::end(kUses), [&](const UseRow& row) { return row.use == use; });
}

bool hasCodes(AccountUse use) {
    return std::any_of(std::begin(kSources), std::end(kSources), [&](const CodeSource& source) { return source.use == use; });
}

MappedAccount atFirst(AccountUse use, const std::string& code, const std::string& name) {
    const UseRow& row = rowOf(use);
    const std::string part = accountingName(name, kLongestAccount);
    MappedAccount account{use, code, replaced(row.what, "*", name), replaced(row.account, "*", part.empty() ? "No Name" : part), row.type};
    for (const KnownCode& known : kKnownCodes)
        if (known.use == use && sameText(known.code, code)) {
            account.account = known.account;
            account.type = known.type;
        }
    return account;
}

// The account at the top of those that one stands below.
std::string topOf(const MappedAccount& account) {
    return std::string(trimmed(account.account.substr(0, account.account.find(':'))));
}

bool isThat(const MappedAccount& account, AccountUse use, const std::string& code) {
    return account.use == use && sameText(account.code, code);
}

} // namespace

const std::vector<AccountType>& accountTypes() {
    static const std::vector<AccountType> kTypes{
        {"INC", "Income"},
        {"COGS", "Cost of goods sold"},
        {"EXP", "Expense"},
        {"EXINC", "Other income"},
        {"EXEXP", "Other expense"},
        {"BANK", "Bank"},
        {"OCASSET", "Current asset"},
        {"FIXASSET", "Fixed asset"},
        {"OASSET", "Other asset"},
        {"OCLIAB", "Current liability"},
        {"CCARD", "Credit card"},
        {"LTLIAB", "Long term liability"},
        {"EQUITY", "Equity"},
        {"AR", "Accounts receivable"},
        {"AP", "Accounts payable"},
    };
    return kTypes;
}

void AccountMap::add(AccountUse use, const std::string& code, const std::string& name) {
    accounts_.push_back(atFirst(use, code, name));
}

AccountMap AccountMap::read(db::Session& session) {
    AccountMap map;
    for (const CodeSource& source : kSources) {
        EachRow codes([&](const RowView& row) { map.add(source.use, std::string(row.text(0)), std::string(row.text(1))); });
        session.execute(source.select, codes);
    }
    for (const UseRow& use : kUses)
        if (!hasCodes(use.use))
            map.add(use.use, "", "");
    EachRow kept([&](const RowView& row) {
        for (MappedAccount& account : map.accounts_)
            if (sameText(rowOf(account.use).kept, row.text(0)) && sameText(account.code, row.text(1))) {
                account.account = row.text(2);
                account.type = row.text(3);
            }
    });
    session.execute("SELECT Purpose, Code, Account, AccountType FROM AccountMap", kept);
    return map;
}

MappedAccount AccountMap::of(AccountUse use, const std::string& code) {
    const auto found =
        std::find_if(accounts_.begin(), accounts_.end(), [&](const MappedAccount& account) { return isThat(account, use, code); });
    if (found != accounts_.end())
        return *found;
    add(use, code, code.empty() ? "No Name" : code);
    return accounts_.back();
}

std::vector<MappedAccount> AccountMap::withAccount(std::size_t index, const std::string& account) const {
    MappedAccount changed = accounts_.at(index);
    changed.account = account;
    for (std::size_t i = 0; i < accounts_.size(); ++i)
        if (i != index && sameText(topOf(accounts_[i]), topOf(changed)))
            changed.type = accounts_[i].type;
    return {changed};
}

std::vector<MappedAccount> AccountMap::withType(std::size_t index, const std::string& type) const {
    std::vector<MappedAccount> changed;
    for (const MappedAccount& one : accounts_)
        if (sameText(topOf(one), topOf(accounts_.at(index)))) {
            changed.push_back(one);
            changed.back().type = type;
        }
    return changed;
}

std::string accountComplaint(const MappedAccount& account) {
    for (const std::string& level : split(account.account, ":")) {
        if (trimmed(level).empty())
            return "An account needs a name; the levels of one below another are parted by a colon.";
        if (characterCount(level) > kLongestAccount)
            return "\"" + level + "\" is longer than the " + std::to_string(kLongestAccount) + " characters that accounting takes.";
        if (accountingName(level, kLongestAccount) != level)
            return "The name of an account holds no tabs, line ends or quotes, and no blanks at its ends.";
    }
    const bool receivable = account.use == AccountUse::Receivable;
    const bool payable = account.use == AccountUse::Payable;
    if (receivable != (account.type == "AR") || payable != (account.type == "AP"))
        return receivable ? "What customers owe goes to an account of the type accounts receivable."
               : payable  ? "What is owed to suppliers goes to an account of the type accounts payable."
                          : "Accounting takes no entry of the day on accounts receivable or payable. Please choose another type.";
    return "";
}

void keepAccount(db::Session& session, const MappedAccount& account) {
    const db::SqlType text{db::TypeKind::VarChar, 200};
    std::vector<db::Parameter> values{{"use", text, rowOf(account.use).kept},
                                      {"code", text, account.code},
                                      {"account", text, account.account},
                                      {"type", text, account.type}};
    db::NoResult none;
    session.execute("UPDATE AccountMap SET Account = @account, AccountType = @type WHERE Purpose = @use AND Code = @code "
                    "IF @@ROWCOUNT = 0 INSERT INTO AccountMap (Purpose, Code, Account, AccountType) VALUES (@use, @code, @account, @type)",
                    values, none);
}

} // namespace merchantry::exchange
