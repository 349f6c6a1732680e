// Writing an order: its lines in one transaction, and what is to be remembered for the supplier.
#include "purchasing/frmPurchaseOrders_Edit.h"

#include "app/db/ado/transaction.h"
#include "app/db/again.h"
#include "app/modMain.h"
#include "app/posting.h"
#include "purchasing/orders.h"
#include "ui/waiting.h"

namespace merchantry::purchasing {

using namespace app;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders_Edit";

// The number in that column of the one row that the statement gives.
std::int32_t numberFrom(const Sql& statement, const std::string& column) {
    const auto rows = openDirect(statement);
    return (*rows)[column].Value().toInt32();
}

} // namespace

void frmPurchaseOrders_Edit::SavePO() {
    gaveUp_ = false;
    guarded({kTag, "SavePO"}, [this] {
        try {
            db::againWhenBusy(modMain().Conn->session(), [this] { writeOrder(); });
        } catch (const db::DbError& error) {
            gaveUp_ = isPassing(error);
            throw;
        }
    });
}

void frmPurchaseOrders_Edit::writeOrder() {
    const ui::Waiting hourglass(desk());
    db::Transaction transaction(modMain().Conn);
    const bool isNew = PONumber == kNewOrder;
    const std::int32_t poid =
        isNew ? numberFrom(Sql("sp_InsertPOHeader ") + int{SupplierID}, "POID") : numberFrom(Sql("sp_GetPOID ") + PONumber, "POID");
    std::vector<bool> entered;
    for (const Line& line : lines_)
        entered.push_back(saveLine(line, poid));
    const std::int32_t number = isNew ? numberFrom(Sql("sp_UpdatePONumber ") + poid, "PONumber") : PONumber;
    closeIfDone(number);
    transaction.commit();
    PONumber = number;
    unsaved_ = false;
    undoLine.dismiss();
    if (isNew)
        showHeading();
    // A line that was taken off is written once: if its item was added again, the next save must not take that off. One that the store
    // dropped, of quantity 0, is still to be added.
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        lines_[i].InDatabase = !lines_[i].Deleted && entered[i];
        lines_[i].Changed = false;
    }
    showTotal();
}

// An order of which nothing is open any more is closed: what was edited may have come in or been given up meanwhile.
void frmPurchaseOrders_Edit::closeIfDone(std::int32_t number) const {
    modMain().Conn->Execute(Sql("sp_ChangePOStatus ") + number + ", 'O'");
}

// Whether the order has the line afterwards. What was changed is asked before what was deleted: a line that was both is written, and comes
// back with the order.
bool frmPurchaseOrders_Edit::saveLine(const Line& line, std::int32_t poid) const {
    const Sql key = Sql(" ") + poid + ", '" + line.SKU + "', '" + line.MatrixSKU + "'";
    const Sql content = Sql(", ") + int{line.Qty} + ", " + line.Cost + ", '" + line.PartNo + "'";
    if (!line.InDatabase)
        return !line.Deleted && numberFrom(Sql("sp_InsertPOItem") + key + content, "Qty") > 0;
    Sql statement;
    if (line.Changed)
        statement = Sql("sp_UpdatePOItem") + key + content;
    else if (line.Deleted)
        statement = Sql("sp_DeletePOItem") + key;
    else
        return true;
    modMain().Conn->Execute(statement);
    return true;
}

void frmPurchaseOrders_Edit::MemorizePO() {
    guarded({kTag, "MemorizePO"}, [this] {
        for (Line& line : lines_) {
            if (!line.Memorize || line.Deleted)
                continue;
            modMain().Conn->Execute(Sql("sp_AdjustSupplierMatrix '") + line.SKU + "', '" + line.MatrixSKU + "', " + int{SupplierID} + ", " +
                                    line.Cost + ", " + int{line.Qty} + ", '" + line.PartNo + "'");
            line.Memorize = false;
        }
    });
}

} // namespace merchantry::purchasing
