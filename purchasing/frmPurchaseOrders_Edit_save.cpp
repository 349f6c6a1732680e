// Writing an order: its lines in one transaction, and what is to be remembered for the supplier.
#include "purchasing/frmPurchaseOrders_Edit.h"

#include "app/db/ado/transaction.h"
#include "app/modMain.h"
#include "purchasing/orders.h"
#include "ui/waiting.h"

namespace merchantry::purchasing {

using namespace app;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders_Edit";

// The number in that column of the one row that the statement gives.
std::int16_t numberFrom(const Sql& statement, const std::string& column) {
    const auto rows = openDirect(statement);
    return (*rows)[column].Value().toInt16();
}

} // namespace

void frmPurchaseOrders_Edit::SavePO() {
    guarded({kTag, "SavePO"}, [this] {
        const ui::Waiting hourglass(desk());
        db::Transaction transaction(modMain().Conn);
        const bool isNew = PONumber == kNewOrder;
        const std::int16_t poid = isNew ? numberFrom(Sql("sp_InsertPOHeader ") + int{SupplierID}, "POID")
                                        : numberFrom(Sql("sp_GetPOID ") + int{PONumber}, "POID");
        for (const Line& line : lines_)
            saveLine(line, poid);
        const std::int16_t number = isNew ? numberFrom(Sql("sp_UpdatePONumber ") + int{poid}, "PONumber") : PONumber;
        transaction.commit();
        PONumber = number;
        unsaved_ = false;
        if (isNew)
            showHeading();
        // A line that was taken off is written once: if its item was added again, the next save must not take that off.
        for (Line& line : lines_) {
            line.InDatabase = !line.Deleted;
            line.Changed = false;
        }
        showTotal();
    });
}

// What was changed is asked before what was deleted: a line that was both is written, and comes back with the order.
void frmPurchaseOrders_Edit::saveLine(const Line& line, std::int16_t poid) const {
    const Sql key = Sql(" ") + int{poid} + ", '" + line.SKU + "', '" + line.MatrixSKU + "'";
    const Sql content = Sql(", ") + int{line.Qty} + ", " + line.Cost + ", '" + line.PartNo + "'";
    Sql statement;
    if (!line.InDatabase && !line.Deleted)
        statement = Sql("sp_InsertPOItem") + key + content;
    else if (line.InDatabase && line.Changed)
        statement = Sql("sp_UpdatePOItem") + key + content;
    else if (line.InDatabase && line.Deleted)
        statement = Sql("sp_DeletePOItem") + key;
    else
        return;
    modMain().Conn->Execute(statement);
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
