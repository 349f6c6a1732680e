#include "tests/reports/files/filesstore.h"

#include "app/db/schema/schema.h"
#include "customers/statements/statementrun.h"
#include "demo/demostore.h"
#include "tests/scratchfolder.h"

namespace merchantry::reports {
namespace {

// What the demo goods lack: other costs, cancellations, a partial order, adjustments of an account, a failure, a serial number too many,
// and what registers book beside goods.
const char* const kMore = R"(
INSERT INTO PurchaseOrderCost (POID, Amount, Description) VALUES (2, 25.5, 'Freight')
UPDATE PurchaseOrderReceipt SET OtherCost = 1.23, CostID = 1 WHERE POID = 2
INSERT INTO PurchaseOrder (PONumber, SupID, Status) VALUES (30001, 1, 'P')
INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, QtyRecvd, QtyCanceled)
  SELECT TOP 3 (SELECT MAX(POID) FROM PurchaseOrder), SKU, MatrixSKU, 10, 3.1425, 6, 3 FROM Item WHERE TypeID = 6 AND Active = 1 AND SKU NOT LIKE '$%' ORDER BY SKU
INSERT INTO PurchaseOrderReceipt (ReceiptNumber, POID, SKU, MatrixSKU, Quantity, Cost, OtherCost)
  SELECT 30001, POID, SKU, MatrixSKU, 6, Cost, 0.5 FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)
INSERT INTO PurchaseOrderCancel (CancelNumber, POID, SKU, MatrixSKU, Quantity)
  SELECT 7, POID, SKU, MatrixSKU, 3 FROM PurchaseOrderItem WHERE POID = (SELECT MAX(POID) FROM PurchaseOrder)
INSERT INTO CreditTransaction (CustomerID, CreditID, CreditCode, Total, OutstandingBalance) VALUES (1, 1, 'Other', -12.5, -12.5)
UPDATE Customer SET Balance = Balance - 12.5 WHERE ID = 1
INSERT INTO ErrorLog (Tag, ProcedureName, ErrorNumber, Description) VALUES ('MR_frmItems', 'Form_Load', 91, 'It''s a long story about an object that was never set')
INSERT INTO StockSerials (SKU, MatrixSKU, SerialNo, LockedFlag) SELECT TOP 1 SKU, MatrixSKU, 'TOO-MANY', 1 FROM Item WHERE SerialFlag = 1 ORDER BY SKU
INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea)
  SELECT TOP 1 i.SKU, i.MatrixSKU, 'Adjustment', 7, 0 FROM Item i WHERE i.TypeID = 6 AND i.SKU NOT LIKE '$%' AND NOT EXISTS (SELECT * FROM InventoryLedger l WHERE l.SKU = i.SKU) ORDER BY i.SKU
UPDATE Stock SET Quantity = 7 WHERE SKU = (SELECT SKU FROM InventoryLedger WHERE Type = 'Adjustment')
INSERT INTO [Transaction] (CashierID, TransType, SubTotal, Total) VALUES (5, 'Payout', -20, -20)
INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, Quantity, FullPrice) SELECT MAX(TransactionNumber), '$Payout', '$Payout', -1, 20 FROM [Transaction]
)";

struct Made {
    Made() {
        store = db::Store::create(folder / "reports.store");
        const auto session = store->session();
        db::createSchema(*session);
        demo::fillDemoStore(
            *session, {.dataFolder = "demo/data", .today = *Date::fromParts(2026, 11, 21, 15), .days = 100, .salesPerDay = 20, .seed = 4},
            [](int) {});
        db::NoResult none;
        session->execute(kMore, none);
        runStatements(*session, *Date::fromParts(2026, 11, 5));
        // dated before that run, entered after it: the next one tells of it
        session->execute("INSERT INTO CreditTransaction (CustomerID, CreditID, CreditCode, Time, Total, OutstandingBalance) VALUES (4, 1, "
                         "'Other', '20261101', -7.25, -7.25) UPDATE Customer SET Balance = Balance - 7.25 WHERE ID = 4",
                         none);
        runStatements(*session, *Date::fromParts(2026, 11, 15));
    }
    static void runStatements(db::Session& session, Date day) {
        const auto going = [](int) { return true; };
        customers::postStatements(session, customers::drawUpStatements(session, day, going), going);
    }
    ScratchFolder folder;
    std::shared_ptr<db::Store> store;
};

} // namespace

db::Store& filesStore() {
    static const Made made;
    return *made.store;
}

ParameterTexts parametersFor(const std::string& file, db::Session& session) {
    const auto cell = [&](const char* select) { return cellOf(session, select).toText(); };
    if (file == "CustSalesHist.rpt")
        return {cell("SELECT TOP 1 CustomerID FROM [Transaction] WHERE CustomerID IS NOT NULL GROUP BY CustomerID ORDER BY COUNT(*) DESC"),
                "", ""};
    if (file == "CreditViewDetail.rpt")
        return {cell(
            "SELECT TOP 1 TransactionNumber FROM TransactionEntry GROUP BY TransactionNumber ORDER BY COUNT(*) DESC, TransactionNumber")};
    if (file == "PurchaseOrder.rpt")
        return {cell("SELECT MAX(POID) FROM PurchaseOrder"), "", ""};
    if (file == "POHistory.rpt")
        return {cell("SELECT MAX(POID) FROM PurchaseOrder"), "0"};
    if (file == "POReceipt.rpt" || file == "POCancel.rpt")
        return {cell("SELECT MAX(POID) FROM PurchaseOrder"), file == "POReceipt.rpt" ? "30001" : "7"};
    if (file == "CustomerStatement.rpt")
        return {cell("SELECT MAX(RunID) FROM StatementRun")};
    if (file.ends_with("Qty.rpt"))
        return {"2", ""};
    if (file.ends_with("Rcpt.rpt"))
        return {"30001"};
    if (file.ends_with("PO.rpt"))
        return {"WHERE purchaseorder_items.poid = 30001"};
    return {};
}

} // namespace merchantry::reports
