#include "demo/people.h"

#include "tools/registersim/bulkinsert.h"
#include "tools/registersim/random.h"

namespace merchantry::demo {
namespace {

using registersim::BulkInsert;
using registersim::query;
using registersim::Random;
using registersim::Row;
using registersim::run;

constexpr int kLayaways = 14;
constexpr int kVouchers = 60;
const Currency kAccountLimit = Currency::fromInteger(5000);
const Currency kLeastCharge = Currency::fromInteger(5);
constexpr int kGraceDays = 15;

} // namespace

void addCustomers(db::Session& session, const std::filesystem::path& dataFolder, const Ids& tiers, Date today) {
    const Tsv customers(dataFolder / "customers.tsv");
    BulkInsert rows(session, "Customer",
                    "AccountNumber, FirstName, LastName, Company, Address, Address2, City, State, Zip, Country, PhoneNumber, Email, "
                    "TierID, ChargeAccount, "
                    "AccountLimit, AssessFinanceCharges, APR, MinFinChg, OverdueAfter, TaxExempt, Employee, LayawayCustomer, "
                    "AccountOpened, LastUpdated",
                    "ttttttttttttibmbfmibbbdd");
    for (std::size_t i = 0; i < customers.size(); ++i) {
        Row row;
        for (const char* column : {"account", "first", "last", "company", "address", "address2", "city", "state", "zip"})
            row.emplace_back(customers.at(i, column));
        const std::string& tier = customers.at(i, "tier");
        const bool charge = customers.number(i, "charge") == 1;
        const Date opened = today.plusDays(-1100 + static_cast<int>(i % 350));
        for (const Value& value :
             {Value("USA"), Value(customers.at(i, "phone")), Value(customers.at(i, "email")), Value(tiers.at(tier)), Value(charge),
              Value(charge ? kAccountLimit : Currency()), Value(charge && i % 5 != 0), charge ? Value(20.0) : Value(),
              charge ? Value(kLeastCharge) : Value(), charge ? Value(kGraceDays) : Value(), Value(customers.number(i, "exempt") == 1),
              Value(tier == "Staff"), Value(i % 101 == 7), Value(opened), Value(opened)})
            row.push_back(value);
        rows.add(std::move(row));
    }
    rows.finish();
}

void addStaff(db::Session& session) {
    BulkInsert cashiers(session, "Cashier",
                        "Name, Password, FirstName, LastName, DrawerLimit, ReturnLimit, AllowHold, AllowReprint, AllowNoSale", "ttttmmbbb");
    for (const auto& [first, last] : {std::pair("Maya", "Lindberg"), std::pair("Tom", "Okafor"), std::pair("Grace", "Whitman"),
                                      std::pair("Luis", "Ortega"), std::pair("Priya", "Nair"), std::pair("Ben", "Carver")})
        cashiers.add({std::string(first).substr(0, 1) + last, "1234", first, last, Currency::fromInteger(600), Currency::fromInteger(75),
                      true, true, false});
    cashiers.finish();
    BulkInsert registers(session, "Register", "PopDrawer, RecptMsg", "tt");
    registers.add({"1", "Thank you for shopping with us"});
    registers.add({"1", "Thank you for shopping with us"});
    registers.finish();
    BulkInsert reasons(session, "InvReasonCodes", "ReasonCode", "t");
    for (const char* reason : {"Damaged", "Stock Count", "Theft", "Shop Use", "Returned to Supplier"})
        reasons.add({reason});
    reasons.finish();
}

namespace {

void addLayaways(db::Session& session, Random& random, Date today, const std::vector<Row>& goods, const std::vector<Row>& customers) {
    for (int i = 0; i < kLayaways && !goods.empty() && !customers.empty(); ++i) {
        const Row& good = goods[static_cast<std::size_t>(i) * goods.size() / kLayaways];
        const Row& customer = customers[static_cast<std::size_t>(i) % customers.size()];
        const Date opened = today.plusDays(-random.between(3, 70));
        const Currency price = good[2].toCurrency();
        const Currency paid = Currency::fromUnits(price.units() * random.between(20, 60) / 100 / 100 * 100);
        run(session, "INSERT INTO Layaway (CustomerID, OpenDate, ExpirationDate, Total, Paid) VALUES (@p1, @p2, @p3, @p4, @p5)", "iddmm",
            {customer[0], opened, opened.plusDays(90), price, paid});
        run(session, "INSERT INTO LayawayEntry (LayawayID, SKU, MatrixSKU, Quantity, Price) VALUES (@p1, @p2, @p3, 1, @p4)", "ittm",
            {session.lastIdentity(), good[0], good[1], price});
        run(session, "UPDATE Stock SET QtyCommitt = QtyCommitt + 1 WHERE SKU = @p1 AND MatrixSKU = @p2", "tt", {good[0], good[1]});
    }
}

void addVouchers(db::Session& session, Random& random, Date today) {
    BulkInsert rows(session, "GiftVoucher", "VoucherNo, IssueDate, ExpirationDate, Amount, Balance", "tddmm");
    for (int i = 0; i < kVouchers; ++i) {
        const Date issued = today.plusDays(-random.between(1, 700));
        const Currency amount = Currency::fromInteger(random.between(1, 5) * 10);
        const Currency left = random.chance(40) ? Currency() : random.chance(30) ? Currency::fromUnits(amount.units() / 2) : amount;
        rows.add({"GV" + std::to_string(20'000 + i * 7), issued, issued.plusDays(730), amount, left});
    }
    rows.finish();
}

} // namespace

void addPromises(db::Session& session, Date today) {
    Random random(7);
    const auto goods =
        query(session,
              "SELECT s.SKU, s.MatrixSKU, p.Price FROM Stock s INNER JOIN PriceMatrix p ON p.SKU = s.SKU AND p.MatrixSKU = s.MatrixSKU "
              "INNER JOIN Item i ON i.SKU = s.SKU AND i.MatrixSKU = s.MatrixSKU "
              "WHERE p.Tier = 1 AND p.Quantity = 1 AND p.Price > 60 AND s.Quantity > 1 AND i.SerialFlag = 0 ORDER BY s.SKU, s.MatrixSKU");
    const auto customers = query(session, "SELECT ID FROM Customer WHERE LayawayCustomer = 1 ORDER BY ID");
    addLayaways(session, random, today, goods, customers);
    addVouchers(session, random, today);
}

} // namespace merchantry::demo
