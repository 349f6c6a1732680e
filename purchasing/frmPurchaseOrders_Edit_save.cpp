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

#include <set>
#include <utility>

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

// Others received or cancelled of the order meanwhile: it is not to be edited any more.
class OrderNotOpen : public OrderChanged {
public:
    using OrderChanged::OrderChanged;
};

// What was not typed over takes theirs. Where both are the same now, the user knows it.
template <class T> void settle(T& typed, const T& before, const T& theirs, T& known) {
    if (typed == before)
        typed = theirs;
    if (typed == theirs)
        known = theirs;
}

// "Nut: 8 received meanwhile."
std::string booked(const std::string& MatrixSKU, int before, int now, const char* what) {
    return before == now ? "" : MatrixSKU + ": " + std::to_string(now - before) + " " + what + " meanwhile.\n";
}

} // namespace

void frmPurchaseOrders_Edit::SavePO() {
    gaveUp_ = false;
    guarded({kTag, "SavePO"}, [this] {
        const std::string meanwhile = "Someone else changed this order meanwhile, and nothing was saved:\n\n";
        try {
            db::againWhenBusy(modMain().Conn->session(), [this] { writeOrder(); });
        } catch (const db::DbError& error) {
            gaveUp_ = isPassing(error);
            throw;
        } catch (const OrderNotOpen& changed) {
            gaveUp_ = true;
            onlyLookAt();
            desk().message(meanwhile + changed.what() + "\nIt is not open any more and only looked at: the screen shows it as it is now.",
                           kProduct);
        } catch (const OrderChanged& changed) {
            gaveUp_ = true;
            fillGrid();
            desk().message(meanwhile + changed.what() +
                               "\nWhat you typed is kept. OK on the screen saves yours in place of theirs, Cancel there leaves theirs.",
                           kProduct);
        }
    });
}

// What was typed is given up: nothing of it can be saved.
void frmPurchaseOrders_Edit::onlyLookAt() {
    LoadData();
    ReadOnly = true;
    undoLine.dismiss();
    unsaved_ = false;
    nothingUnsaved();
    showOrder();
}

// Lines that both changed are told, once: the next save is the user's word. Of a line that only the screen changed it takes what others
// changed beside that.
void frmPurchaseOrders_Edit::takeMeanwhile(const StoredLines& now) {
    std::set<std::string> shown;
    for (const Line& line : lines_)
        if (line.InDatabase)
            shown.insert(itemKey(line.SKU, line.MatrixSKU));
    ToldChanges told;
    for (Line& line : lines_) {
        const std::string key = itemKey(line.SKU, line.MatrixSKU);
        const auto found = now.find(key);
        const OrderedLine* const theirs = found == now.end() ? nullptr : &found->second;
        if (line.InDatabase && (line.Changed || line.Deleted))
            told.add(metLine(line, theirs));
        else if (!line.InDatabase && !line.Deleted && line.Qty > 0 && !shown.contains(key)) // one taken off here is no one else's
            told.add(metAddition(line, theirs));
    }
    if (told.any())
        throw OrderChanged(told.text());
}

// What others made of a line that is changed or deleted here, too, null for taken off; what was left alone here is taken.
std::string frmPurchaseOrders_Edit::metLine(Line& line, const OrderedLine* now) {
    line.InDatabase = now != nullptr;
    if (now == nullptr)
        return line.Deleted ? "" : line.MatrixSKU + " was taken off.\n";
    const OrderedLine before = std::exchange(line.stored, *now);
    OrderedLine known = before;
    if (!line.Deleted) {
        settle(line.PartNo, before.PartNo, now->PartNo, known.PartNo);
        settle(line.Qty, before.Qty, now->Qty, known.Qty);
        settle(line.Cost, before.Cost, now->Cost, known.Cost);
    }
    return changes(line, known, *now);
}

// Another desktop's line of an item that is new here, null for none. To add both up would order what nobody asked for.
std::string frmPurchaseOrders_Edit::metAddition(Line& line, const OrderedLine* now) {
    const bool known = std::exchange(line.TheirsToo, now != nullptr);
    if (now == nullptr)
        return "";
    const OrderedLine before = std::exchange(line.stored, *now);
    if (known)
        return changes(line, before, *now);
    return line.MatrixSKU + " was added there, too: Qty " + std::to_string(now->Qty) + ", Cost " + now->Cost.toDisplay() + ".\n";
}

// How a line is now, where that is not what is known of it, a sentence each.
std::string frmPurchaseOrders_Edit::changes(const Line& line, const OrderedLine& known, const OrderedLine& now) {
    std::string told;
    const auto tell = [&](const char* name, const std::string& value) {
        told += line.MatrixSKU + ": " + name + " is " + value + " now.\n";
    };
    if (now.PartNo != known.PartNo)
        tell("Supplier Part #", now.PartNo.empty() ? "empty" : now.PartNo);
    if (now.Qty != known.Qty)
        tell("Qty", std::to_string(now.Qty));
    if (now.Cost != known.Cost)
        tell("Cost", now.Cost.toDisplay());
    return told + booked(line.MatrixSKU, known.QtyRecvd, now.QtyRecvd, "received") +
           booked(line.MatrixSKU, known.QtyCanceled, now.QtyCanceled, "cancelled");
}

// All that others changed of the lines since they were read.
std::string frmPurchaseOrders_Edit::changesOf(const StoredLines& now) const {
    ToldChanges told;
    for (const Line& line : lines_) {
        if (!line.InDatabase)
            continue;
        const auto found = now.find(itemKey(line.SKU, line.MatrixSKU));
        told.add(found == now.end() ? line.MatrixSKU + " was taken off.\n" : changes(line, line.stored, found->second));
    }
    return told.text();
}

// The key of the order, with what others changed of it taken in. Throws OrderChanged. Reads the lines first, which locks them: who receives
// or cancels has then written the status, too.
std::int32_t frmPurchaseOrders_Edit::requireEditable() {
    StoredLines now;
    for (const Line& line : storedLines())
        now[itemKey(line.SKU, line.MatrixSKU)] = line.stored;
    const OrderHead order = orderHead(PONumber);
    if (!order.isOpen() && order.Status != status_)
        throw OrderNotOpen(changesOf(now) + "Status is " + order.statusWord() + " now.\n");
    takeMeanwhile(now);
    return order.POID;
}

void frmPurchaseOrders_Edit::writeOrder() {
    const ui::Waiting hourglass(desk());
    db::Transaction transaction(modMain().Conn);
    const bool isNew = PONumber == kNewOrder;
    const std::int32_t poid = isNew ? numberFrom(Sql("sp_InsertPOHeader ") + int{SupplierID}, "POID") : requireEditable();
    std::vector<bool> entered;
    for (const Line& line : lines_)
        entered.push_back(saveLine(line, poid));
    const std::int32_t number = isNew ? numberFrom(Sql("sp_UpdatePONumber ") + poid, "PONumber") : PONumber;
    closeIfDone(number);
    const std::string status = orderHead(number).Status;
    transaction.commit();
    PONumber = number;
    status_ = status;
    unsaved_ = false;
    undoLine.dismiss();
    if (isNew)
        showHeading();
    // A line that was taken off is written once: if its item was added again, the next save must not take that off. One that the store
    // dropped, of quantity 0, is still to be added.
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        lines_[i].InDatabase = !lines_[i].Deleted && entered[i];
        lines_[i].Changed = false;
        lines_[i].TheirsToo = false;
        lines_[i].stored = {lines_[i].PartNo, lines_[i].Qty, lines_[i].Cost, lines_[i].stored.QtyRecvd, lines_[i].stored.QtyCanceled};
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
    if (!line.InDatabase && !line.TheirsToo)
        return !line.Deleted && numberFrom(Sql("sp_InsertPOItem") + key + content, "Qty") > 0;
    if (line.TheirsToo && (line.Deleted || line.Qty == 0)) // theirs is left alone
        return false;
    Sql statement;
    if (line.Changed || line.TheirsToo)
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
