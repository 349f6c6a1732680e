#include "exchange/accounting/daybook.h"

#include "app/db/eachrow.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace merchantry::exchange {
namespace {

using db::EachRow;
using db::RowView;

constexpr const char* kJournal = "GENERAL JOURNAL";
constexpr const char* kBill = "BILL";

Currency moneyOf(const RowView& row, int column) {
    return row.isNull(column) ? Currency() : Currency::fromUnits(row.number(column));
}

std::string textOf(const RowView& row, int column) {
    return row.isNull(column) ? "" : std::string(row.text(column));
}

// A day, and one of its registers.
using TillDay = std::pair<std::int64_t, int>;

// What one register did on one day, by what it is for and its code.
struct Till {
    std::map<std::pair<AccountUse, std::string>, Currency> booked; // sales and taxes as they stand in the receipts' lines
    std::map<std::string, Currency> tenders;
    int receipts = 0;
    Currency subTotal; // as the receipts say
    Currency taxTotal;
    Currency total;

    Currency lines() const { return sum(std::nullopt); }
    Currency taxes() const { return sum(AccountUse::Tax); }
    Currency sales() const { return sum(AccountUse::Department); }
    Currency tendered() const {
        return std::accumulate(tenders.begin(), tenders.end(), Currency(), [](Currency all, const auto& one) { return all + one.second; });
    }

private:
    Currency sum(std::optional<AccountUse> use) const {
        Currency all;
        for (const auto& [key, amount] : booked)
            if (!use || key.first == *use)
                all += amount;
        return all;
    }
};

struct Reported {
    Currency sales;
    Currency tax;
};

// What the selects give, before it is booked.
struct Read {
    std::map<TillDay, Till> tills;
    std::map<std::int64_t, Reported> reported; // by the report of daily sales
};

std::string numberText(const RowView& row, int column) {
    return row.isNull(column) ? "0" : std::to_string(row.number(column));
}

TillDay tillDay(const RowView& row) {
    return {row.number(0), row.isNull(1) ? 0 : static_cast<int>(row.number(1))};
}

Currency sumOf(const AccountEntry& entry) {
    return std::accumulate(entry.lines.begin(), entry.lines.end(), Currency(),
                           [](Currency sum, const AccountLine& line) { return sum + line.amount; });
}

// Whole cents from exact amounts that balance: what rounding leaves goes to the largest of the lines that had fractions. Amounts that do
// not balance stay so.
void roundToCents(AccountEntry& entry) {
    const bool balanced = sumOf(entry) == Currency();
    AccountLine* largest = nullptr;
    const auto size = [](const AccountLine& line) { return std::max(line.amount, -line.amount); };
    for (AccountLine& line : entry.lines)
        if (const Currency exact = std::exchange(line.amount, line.amount.rounded(2));
            exact != line.amount && (largest == nullptr || size(line) > size(*largest)))
            largest = &line;
    if (balanced && largest != nullptr)
        largest->amount = largest->amount - sumOf(entry);
    std::erase_if(entry.lines, [](const AccountLine& line) { return line.amount == Currency(); });
}

class Reader {
public:
    Reader(db::Session& session, Date first, Date last, const BookProgress& goOn) : session_(session), goOn_(goOn) {
        between_ = " >= '" + first.toIsoText().substr(0, 10) + "' AND ";
        before_ = " < '" + last.plusDays(1).toIsoText().substr(0, 10) + "'";
    }

    Daybook read() {
        Daybook book;
        book.map = AccountMap::read(session_);
        map_ = &book.map;
        for (const auto step : {&Reader::readLines, &Reader::readTenders, &Reader::readReceipts, &Reader::readReport, &Reader::bookTills,
                                &Reader::bookDeliveries, &Reader::bookPostings}) {
            (this->*step)();
            if (!goOn_(std::min(99, percent_ += 14))) {
                book.stopped = true;
                return book;
            }
        }
        for (auto& [number, day] : days_)
            book.days.push_back(std::move(day));
        return book;
    }

private:
    std::string within(const std::string& column) const { return column + between_ + column + before_; }
    void select(const std::string& statement, std::function<void(const RowView&)> take) {
        EachRow rows(std::move(take));
        session_.execute(statement, rows);
    }

    void readLines();
    void readTenders();
    void readReceipts();
    void readReport();
    void bookTills();
    void bookDeliveries();
    void bookPostings();
    BookedDay& dayOf(std::int64_t number) {
        BookedDay& day = days_[number];
        day.day = Date().plusDays(number);
        return day;
    }
    AccountEntry entryOf(const TillDay& key, const Till& till);
    std::string faultOf(const TillDay& key, const Till& till);
    int firstUneven(const TillDay& key);

    db::Session& session_;
    const BookProgress& goOn_;
    std::string between_;
    std::string before_;
    AccountMap* map_ = nullptr;
    int percent_ = 0;
    Read read_;
    std::map<std::int64_t, BookedDay> days_;
};

void Reader::readLines() {
    select(
        "SELECT DATEDIFF(day, 0, t.Time), t.RegisterID, CASE WHEN e.SKU LIKE '$%' THEN e.SKU END, ISNULL(e.DepartmentID, i.DepartmentID), "
        "e.TaxID, SUM(e.Quantity * e.FullPrice - e.Discount), SUM(e.Tax) FROM [Transaction] t INNER JOIN TransactionEntry e ON "
        "e.TransactionNumber = t.TransactionNumber LEFT JOIN Item i ON i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU WHERE " +
            within("t.Time") +
            " GROUP BY DATEDIFF(day, 0, t.Time), t.RegisterID, CASE WHEN e.SKU LIKE '$%' THEN e.SKU END, ISNULL(e.DepartmentID, "
            "i.DepartmentID), e.TaxID",
        [this](const RowView& row) {
            Till& till = read_.tills[tillDay(row)];
            const std::string item = textOf(row, 2);
            const auto what =
                item.empty() ? std::pair(AccountUse::Department, numberText(row, 3)) : std::pair(AccountUse::RegisterItem, item);
            till.booked[what] += moneyOf(row, 5);
            till.booked[{AccountUse::Tax, numberText(row, 4)}] += moneyOf(row, 6);
        });
}

void Reader::readTenders() {
    select(
        "SELECT DATEDIFF(day, 0, t.Time), t.RegisterID, d.TenderType, SUM(d.Amount) FROM [Transaction] t INNER JOIN TransactionTender d ON "
        "d.TransactionNumber = t.TransactionNumber WHERE " +
            within("t.Time") + " GROUP BY DATEDIFF(day, 0, t.Time), t.RegisterID, d.TenderType",
        [this](const RowView& row) { read_.tills[tillDay(row)].tenders[textOf(row, 2)] += moneyOf(row, 3); });
}

void Reader::readReceipts() {
    select("SELECT DATEDIFF(day, 0, t.Time), t.RegisterID, COUNT(*), SUM(t.SubTotal), SUM(t.TaxTotal), SUM(t.Total) FROM [Transaction] t "
           "WHERE " +
               within("t.Time") + " GROUP BY DATEDIFF(day, 0, t.Time), t.RegisterID",
           [this](const RowView& row) {
               Till& till = read_.tills[tillDay(row)];
               till.receipts = static_cast<int>(row.number(2));
               till.subTotal = moneyOf(row, 3);
               till.taxTotal = moneyOf(row, 4);
               till.total = moneyOf(row, 5);
           });
}

// As the report of daily sales adds up its days.
void Reader::readReport() {
    select(
        "SELECT DATEDIFF(day, 0, t.Time), SUM(e.Quantity * e.FullPrice - e.Discount), SUM(e.Tax) FROM [Transaction] t INNER JOIN "
        "TransactionEntry e ON e.TransactionNumber = t.TransactionNumber INNER JOIN Item i ON i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU "
        "AND i.SKU NOT LIKE '$%' WHERE " +
            within("t.Time") + " GROUP BY DATEDIFF(day, 0, t.Time)",
        [this](const RowView& row) {
            read_.reported[row.number(0)] = {moneyOf(row, 1), moneyOf(row, 2)};
        });
}

AccountEntry Reader::entryOf(const TillDay& key, const Till& till) {
    AccountEntry entry{kJournal, Date().plusDays(key.first), "", {}};
    entry.number = replaced(entry.day.toIsoText().substr(0, 10), "-", "") + "-" + std::to_string(key.second);
    for (const auto& [tender, amount] : till.tenders)
        entry.lines.push_back({map_->of(AccountUse::Tender, tender).account, amount, "", tender});
    for (const auto& [what, amount] : till.booked) {
        const MappedAccount account = map_->of(what.first, what.second);
        entry.lines.push_back({account.account, -amount, "", account.what});
    }
    roundToCents(entry);
    return entry;
}

// The first receipt of the register's day whose parts do not add up; 0 when it is none alone.
int Reader::firstUneven(const TillDay& key) {
    const std::string day = Date().plusDays(key.first).toIsoText().substr(0, 10);
    int number = 0;
    select(
        "SELECT TOP 1 t.TransactionNumber FROM [Transaction] t WHERE t.Time >= '" + day + "' AND t.Time < DATEADD(day, 1, '" + day +
            "') AND ISNULL(t.RegisterID, 0) = " + std::to_string(key.second) +
            " AND (t.Total <> ISNULL((SELECT SUM(Amount) FROM TransactionTender d WHERE d.TransactionNumber = t.TransactionNumber), 0) OR "
            "t.Total <> ISNULL((SELECT SUM(Quantity * FullPrice - Discount + Tax) FROM TransactionEntry e WHERE e.TransactionNumber = "
            "t.TransactionNumber), 0)) ORDER BY t.TransactionNumber",
        [&](const RowView& row) { number = static_cast<int>(row.number(0)); });
    return number;
}

std::string Reader::faultOf(const TillDay& key, const Till& till) {
    if (till.lines() == till.total && till.tendered() == till.total && till.taxes() == till.taxTotal)
        return "";
    const int receipt = firstUneven(key);
    return "Register " + std::to_string(key.second) + ": the receipts say " + till.total.toDisplay() + " with " +
           till.taxTotal.toDisplay() + " tax, their lines come to " + till.lines().toDisplay() + " with " + till.taxes().toDisplay() +
           " tax, their tenders to " + till.tendered().toDisplay() +
           (receipt > 0 ? ". The first that does not agree is number " + std::to_string(receipt) + "." : ".");
}

void Reader::bookTills() {
    for (const auto& [key, till] : read_.tills) {
        BookedDay& day = dayOf(key.first);
        day.figures.receipts += till.receipts;
        day.figures.sales += till.sales();
        day.figures.tax += till.taxes();
        day.figures.tendered += till.tendered();
        if (day.fault.empty())
            day.fault = faultOf(key, till);
        AccountEntry entry = entryOf(key, till);
        if (!entry.lines.empty())
            day.entries.push_back(std::move(entry));
    }
    for (auto& [number, day] : days_) {
        const Reported report = read_.reported[number];
        if (day.fault.empty() && (report.sales != day.figures.sales || report.tax != day.figures.tax))
            day.fault = "The daily report says " + report.sales.toDisplay() + " of sales with " + report.tax.toDisplay() +
                        " tax, the journal " + day.figures.sales.toDisplay() + " with " + day.figures.tax.toDisplay() + ".";
        for (const AccountEntry& entry : day.entries)
            if (day.fault.empty() && !entry.balances())
                day.fault = "The journal of entry " + entry.number + " does not come to 0.";
    }
}

void Reader::bookDeliveries() {
    select("SELECT r.ReceiptNumber, DATEDIFF(day, 0, MIN(r.PostDate)), ISNULL(p.PONumber, 0), p.SupID, SUM(r.Quantity * r.Cost), "
           "SUM(r.OtherCost) FROM PurchaseOrderReceipt r INNER JOIN PurchaseOrder p ON p.POID = r.POID WHERE " +
               within("r.PostDate") + " GROUP BY r.ReceiptNumber, p.POID, p.PONumber, p.SupID ORDER BY r.ReceiptNumber, p.POID",
           [this](const RowView& row) {
               AccountEntry bill{kBill, Date().plusDays(row.number(1)), "R" + std::to_string(row.number(0)), {}};
               const std::string order = "Order " + std::to_string(row.number(2));
               const Currency goods = moneyOf(row, 4);
               const Currency other = moneyOf(row, 5);
               bill.lines = {{map_->of(AccountUse::Payable).account, -(goods + other), std::to_string(row.number(3)), order},
                             {map_->of(AccountUse::Purchases).account, goods, "", order},
                             {map_->of(AccountUse::OtherCosts).account, other, "", order}};
               roundToCents(bill);
               if (bill.lines.size() < 2)
                   return; // nothing was charged
               BookedDay& day = dayOf(row.number(1));
               day.figures.bills += goods + other;
               day.entries.push_back(std::move(bill));
           });
}

// A sale on account stands against what the register's journal booked; a posting of the store's own against its reason's account.
void Reader::bookPostings() {
    select("SELECT CreditTransID, DATEDIFF(day, 0, Time), CustomerID, CreditCode, Total, CASE WHEN TransactionNumber > 0 THEN 1 ELSE 0 END "
           "FROM "
           "CreditTransaction WHERE Total <> 0 AND " +
               within("Time") + " ORDER BY CreditTransID",
           [this](const RowView& row) {
               const std::string code = textOf(row, 3);
               const Currency amount = moneyOf(row, 4);
               const bool ofRegister = row.number(5) != 0;
               const MappedAccount against = ofRegister ? map_->of(AccountUse::Clearing) : map_->of(AccountUse::CreditCode, code);
               AccountEntry entry{kJournal, Date().plusDays(row.number(1)), "A" + std::to_string(row.number(0)), {}};
               entry.lines = {{map_->of(AccountUse::Receivable).account, amount, std::to_string(row.number(2)), code},
                              {against.account, -amount, "", code}};
               roundToCents(entry);
               BookedDay& day = dayOf(row.number(1));
               day.figures.accounts += amount;
               if (entry.lines.size() == 2)
                   day.entries.push_back(std::move(entry));
           });
}

// Customers and suppliers by number, as accounting lists them.
using Names = std::map<std::string, ListedName>;

std::vector<std::string> addressOf(const RowView& row, int from, int cityAt) {
    std::vector<std::string> lines;
    for (int i = from; i < cityAt; ++i)
        lines.push_back(textOf(row, i));
    const std::string state = textOf(row, cityAt + 1) + " " + textOf(row, cityAt + 2);
    lines.push_back(textOf(row, cityAt) + (trimmed(state).empty() ? "" : ", ") + std::string(trimmed(state)));
    std::erase_if(lines, [](const std::string& line) { return trimmed(line).empty(); });
    return lines;
}

// The number behind the name tells two of one name apart, and customers from suppliers.
std::string numbered(const std::string& name, const std::string& number) {
    const std::string behind = (name.empty() ? "#" : " #") + number;
    return accountingName(name, kLongestName - behind.size()) + behind;
}

Names customerNames(db::Session& session, const std::set<std::string>& wanted) {
    Names names;
    EachRow rows([&](const RowView& row) {
        const std::string number = std::to_string(row.number(0));
        if (!wanted.contains(number))
            return;
        const std::string person(trimmed(textOf(row, 1) + " " + textOf(row, 2)));
        names[number] = {numbered(person.empty() ? textOf(row, 3) : person, number), addressOf(row, 4, 6), textOf(row, 9), textOf(row, 10)};
    });
    session.execute(
        "SELECT ID, FirstName, LastName, Company, Address, Address2, City, State, Zip, PhoneNumber, Email FROM Customer ORDER BY ID", rows);
    return names;
}

Names supplierNames(db::Session& session, const std::set<std::string>& wanted) {
    Names names;
    std::map<std::string, int> alike;
    EachRow rows([&](const RowView& row) {
        const std::string number = std::to_string(row.number(0));
        const std::string name = accountingName(textOf(row, 1), kLongestName);
        const bool again = ++alike[lowerCase(name)] > 1 || name.empty();
        if (wanted.contains(number))
            names[number] = {again ? numbered(name, number) : name, addressOf(row, 2, 5), textOf(row, 8), textOf(row, 9)};
    });
    session.execute("SELECT SupID, Supplier, Address1, Address2, Address3, City, State, Zip, Phone, Email FROM Suppliers ORDER BY SupID",
                    rows);
    return names;
}

} // namespace

Daybook readDays(db::Session& session, Date first, Date last, const BookProgress& goOn) {
    return Reader(session, first, last, goOn).read();
}

AccountFile fileOf(db::Session& session, const std::vector<BookedDay>& days, const AccountMap& map) {
    AccountFile file;
    std::set<std::string> customers;
    std::set<std::string> suppliers;
    std::set<std::string> accounts;
    for (const BookedDay& day : days)
        for (const AccountEntry& entry : day.entries) {
            file.entries.push_back(entry);
            for (const AccountLine& line : entry.lines) {
                accounts.insert(lowerCase(line.account));
                if (!line.name.empty())
                    (entry.type == kBill ? suppliers : customers).insert(line.name);
            }
        }
    const Names customerNamed = customerNames(session, customers);
    const Names supplierNamed = supplierNames(session, suppliers);
    for (AccountEntry& entry : file.entries)
        for (AccountLine& line : entry.lines)
            if (!line.name.empty())
                line.name = (entry.type == kBill ? supplierNamed : customerNamed).at(line.name).name;
    for (const MappedAccount& account : map.all())
        if (accounts.erase(lowerCase(account.account)) > 0)
            file.accounts.push_back({account.account, account.type});
    for (const auto& [number, name] : customerNamed)
        file.customers.push_back(name);
    for (const auto& [number, name] : supplierNamed)
        file.vendors.push_back(name);
    return file;
}

} // namespace merchantry::exchange
