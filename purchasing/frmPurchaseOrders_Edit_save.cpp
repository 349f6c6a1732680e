// Writing an order: its lines in one transaction, and what is to be remembered for the supplier.
#include "purchasing/frmPurchaseOrders_Edit.h"

#include "app/db/ado/transaction.h"
#include "app/db/again.h"
#include "app/modMain.h"
#include "app/posting.h"
#include "app/titles.h"
#include "purchasing/openlines.h"
#include "purchasing/orders.h"
#include "ui/desk.h"
#include "ui/waiting.h"

#include <map>

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
        } catch (const OrderChanged& changed) {
            gaveUp_ = true;
            fillGrid();
            desk().message("Someone else changed this order meanwhile, and nothing was saved:\n\n" + std::string(changed.what()) +
                               "\nWhat you typed is kept. OK on the screen saves yours in place of theirs, Cancel there leaves theirs.",
                           kProduct);
        }
    });
}

// Lines that both changed are told, once: the next save is the user's word. Of a line that only the screen changed it takes what others
// changed beside that.
void frmPurchaseOrders_Edit::takeMeanwhile() {
    std::map<std::string, OrderedLine> now;
    const auto rows = openDirect(Sql("sp_GetPOItems ") + PONumber);
    for (; !rows->Eof(); rows->MoveNext()) {
        db::Recordset& row = *rows;
        now[itemKey(row["SKU"].text(), row["MatrixSKU"].text())] = {row["PartNo"].text(), row["Qty"].Value().toInt16(),
                                                                    row["Cost"].Value().toCurrency()};
    }
    std::string told;
    for (Line& line : lines_) {
        if (!line.InDatabase || !(line.Changed || line.Deleted))
            continue;
        if (const auto found = now.find(itemKey(line.SKU, line.MatrixSKU)); found != now.end()) {
            told += met(line, found->second);
            line.stored = found->second;
        } else {
            told += line.Deleted ? "" : line.MatrixSKU + " was taken off.\n";
            line.InDatabase = false;
        }
    }
    if (!told.empty())
        throw OrderChanged(told);
}

// What others changed of a line that is changed or deleted here, too; what was left alone here is taken.
std::string frmPurchaseOrders_Edit::met(Line& line, const OrderedLine& now) {
    std::string told;
    const auto compare = [&](const char* name, auto& typed, const auto& before, const auto& theirs, const std::string& shown) {
        if (typed == before && !line.Deleted)
            typed = theirs;
        else if (theirs != before && (line.Deleted || theirs != typed))
            told += line.MatrixSKU + ": " + name + " is " + shown + " now.\n";
    };
    compare("Supplier Part #", line.PartNo, line.stored.PartNo, now.PartNo, now.PartNo.empty() ? "empty" : now.PartNo);
    compare("Qty", line.Qty, line.stored.Qty, now.Qty, std::to_string(now.Qty));
    compare("Cost", line.Cost, line.stored.Cost, now.Cost, now.Cost.toDisplay());
    return told;
}

void frmPurchaseOrders_Edit::writeOrder() {
    const ui::Waiting hourglass(desk());
    db::Transaction transaction(modMain().Conn);
    const bool isNew = PONumber == kNewOrder;
    const std::int32_t poid =
        isNew ? numberFrom(Sql("sp_InsertPOHeader ") + int{SupplierID}, "POID") : numberFrom(Sql("sp_GetPOID ") + PONumber, "POID");
    if (!isNew)
        takeMeanwhile();
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
        lines_[i].stored = {lines_[i].PartNo, lines_[i].Qty, lines_[i].Cost};
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
