#include "tools/registersim/postings.h"

namespace merchantry::registersim {
namespace {

int highestNumber(db::Session& session) {
    return static_cast<int>(query(session, "SELECT ISNULL(MAX(TransactionNumber), 0) FROM [Transaction]").front().front().toInteger());
}

// What a movement of that type is.
std::string kindOf(const std::string& type) {
    if (type == "Sale" || type == "Return" || type == "Receipt")
        return type;
    return type == "Opening Stock" ? "Opening" : "Adjustment";
}

Value orNull(const std::string& text) {
    return text.empty() ? Value() : Value(text);
}

} // namespace

Postings::Postings(db::Session& session)
    : transactionRows_(session, "[Transaction]",
                       "TransactionNumber, RegisterID, CashierID, CustomerID, Time, TransType, SubTotal, TaxTotal, Total, TaxExempt",
                       "iiiidtmmmb", true),
      lineRows_(session, "TransactionEntry",
                "TransactionNumber, SKU, MatrixSKU, Quantity, FullPrice, Cost, Discount, TaxID, Tax, DepartmentID, SerialNo",
                "ittimmmimit"),
      tenderRows_(session, "TransactionTender", "TransactionNumber, TenderType, Amount", "itm"),
      taxRows_(session, "TransactionTax", "TransactionNumber, TaxID, Taxable, Amount, Rate", "iimmf"),
      ledgerRows_(session, "InventoryLedger", "SKU, MatrixSKU, Type, Kind, Qty, Cost_ea, Cost_wt, QtyAfter, PostDate", "ttttimmid"),
      drawerRows_(session, "DrawerEvent", "RegisterID, CashierID, Time, EventType, Amount", "iidtm"),
      cashierRows_(session, "CashierEvent", "CashierID, RegisterID, Time, EventType", "iidt"), lastNumber_(highestNumber(session)) {}

int Postings::post(const Shop& shop, const Sale& sale) {
    const int number = ++lastNumber_;
    const Value customer = sale.customerId(shop);
    transactionRows_.add({number, sale.registerId, sale.cashierId, customer, sale.time, sale.isReturn ? "Return" : "Sale", sale.subTotal(),
                          sale.taxTotal(), sale.total(), sale.exempt});
    for (const SaleLine& line : sale.lines) {
        const Good& good = shop.goods[static_cast<std::size_t>(line.good)];
        lineRows_.add({number, good.sku, good.matrixSku, line.quantity, line.fullPrice, line.cost, line.discount, good.taxId, line.tax,
                       good.departmentId, orNull(line.serial)});
        Good after = good;
        after.move(-line.quantity, line.cost);
        move(after, sale.isReturn ? "Return" : "Sale", -line.quantity, line.cost, sale.time);
        ++lineCount_;
    }
    for (const Tender& tender : sale.tenders)
        tenderRows_.add({number, tender.type, tender.amount});
    postTaxes(shop, sale, number);
    ++transactionCount_;
    flushFull();
    return number;
}

void Postings::postTaxes(const Shop& shop, const Sale& sale, int number) {
    std::map<int, std::pair<Currency, Currency>> byClass; // taxable, tax
    for (const SaleLine& line : sale.lines) {
        auto& [taxable, tax] = byClass[shop.goods[static_cast<std::size_t>(line.good)].taxId];
        taxable += line.amount();
        tax += line.tax;
    }
    for (const auto& [taxId, sums] : byClass)
        taxRows_.add({number, taxId, sums.first, sums.second, shop.taxPercent(taxId)});
}

void Postings::move(const Good& good, const std::string& type, int quantity, Currency cost, Date time) {
    ledgerRows_.add({good.sku, good.matrixSku, type, kindOf(type), quantity, cost, good.averageCost, good.onHand, time});
}

void Postings::drawer(int registerId, int cashierId, Date time, const std::string& event, Currency amount) {
    drawerRows_.add({registerId, cashierId, time, event, amount});
}

void Postings::cashier(int cashierId, int registerId, Date time, const std::string& event) {
    cashierRows_.add({cashierId, registerId, time, event});
}

// A receipt goes before its lines.
void Postings::flushFull() {
    if (!transactionRows_.full())
        return;
    transactionRows_.flush();
    for (BulkInsert* rows : {&lineRows_, &tenderRows_, &taxRows_, &ledgerRows_, &drawerRows_, &cashierRows_})
        rows->flush();
}

void Postings::finish() {
    for (BulkInsert* rows : {&transactionRows_, &lineRows_, &tenderRows_, &taxRows_, &ledgerRows_, &drawerRows_, &cashierRows_})
        rows->finish();
}

} // namespace merchantry::registersim
