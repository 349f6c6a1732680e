#include "app/db/schema/schema.h"

#include <array>

namespace merchantry::db {
namespace {

// Each statement finds rows that must not be there.
struct Invariant {
    const char* says;
    const char* select;
};

constexpr std::array kInvariants{
    Invariant{"The store options are not one row.", "SELECT 1 WHERE (SELECT COUNT(*) FROM StoreOptions) <> 1"},
    Invariant{"The base tier, department, reason code, tax class, sales message, supplier or manager account is missing.",
              "SELECT 1 WHERE NOT EXISTS (SELECT * FROM TierDefs WHERE TierID = 1) OR NOT EXISTS (SELECT * FROM Departments WHERE "
              "DepartmentID = 1) "
              "OR NOT EXISTS (SELECT * FROM InvReasonCodes WHERE ReasonID = 1) OR NOT EXISTS (SELECT * FROM TaxDef WHERE TaxID = 0) "
              "OR NOT EXISTS (SELECT * FROM SalesMessages WHERE SalesMsgID = 0) OR NOT EXISTS (SELECT * FROM Suppliers WHERE SupID = 0) "
              "OR NOT EXISTS (SELECT * FROM Cashier WHERE ID = 5)"},
    Invariant{"A transaction's entries do not add up to its subtotal.",
              "SELECT TOP 1 t.TransactionNumber FROM [Transaction] t WHERE t.SubTotal <> "
              "ISNULL((SELECT SUM(e.FullPrice * e.Quantity - e.Discount) FROM TransactionEntry e WHERE e.TransactionNumber = "
              "t.TransactionNumber), 0)"},
    Invariant{"A transaction's subtotal and tax do not add up to its total.",
              "SELECT TOP 1 TransactionNumber FROM [Transaction] WHERE SubTotal + TaxTotal <> Total"},
    Invariant{"An item's newest ledger row does not hold the sum of its movements.",
              "SELECT TOP 1 s.SKU FROM (SELECT SKU, MatrixSKU, SUM(Qty) AS Moved, MAX(LedgerID) AS Newest FROM InventoryLedger GROUP BY "
              "SKU, MatrixSKU) s "
              "INNER JOIN InventoryLedger l ON l.LedgerID = s.Newest WHERE l.QtyAfter <> s.Moved"},
};

class Counter : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView&) override { ++rows; }
    int rows = 0;
};

} // namespace

void createSchema(Session& session) {
    session.begin();
    for (const SchemaFile& file : schemaFiles()) {
        try {
            NoResult none;
            session.execute(file.text, none);
        } catch (const DbError& error) {
            session.rollback();
            throw DbError(error.category(), error.native(), std::string(file.name) + ": " + error.what(), error.line());
        }
    }
    session.commit();
}

std::vector<std::string> brokenInvariants(Session& session) {
    std::vector<std::string> broken;
    for (const Invariant& invariant : kInvariants) {
        Counter found;
        session.execute(invariant.select, found);
        if (found.rows > 0)
            broken.emplace_back(invariant.says);
    }
    return broken;
}

} // namespace merchantry::db
