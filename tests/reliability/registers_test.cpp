// Eight registers post while a manager edits items, adjusts stock, keeps serial numbers and makes backups: nobody hears of a lock, and
// nothing is lost but what an adjustment's absolute balance may overwrite.

#include "tests/reliability/shopfolder.h"
#include "tests/reliability/shopregisters.h"

#include "app/db/ado/recordset.h"
#include "app/db/schema/schema.h"
#include "app/stockproof.h"
#include "inventory/adjustment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <sys/wait.h>
#include <thread>

using namespace merchantry;

namespace {

constexpr int kRegisters = 8;
constexpr int kItemsEdited = 5;

// A manager at the item screen: a field through an updatable recordset, a price through a statement, each turn one item.
class Manager {
public:
    explicit Manager(const std::filesystem::path& file) : connection_(std::make_shared<db::Connection>(provider_)) {
        connection_->Open("Data Source=" + file.string());
        db::Recordset items;
        items.Open("SELECT TOP 5 SKU, MatrixSKU FROM Item WHERE SKU NOT LIKE '$%' ORDER BY SKU", connection_);
        for (; !items.Eof(); items.MoveNext())
            pairs_.emplace_back(items[0].text(), items[1].text());
    }
    void edit() {
        const auto& [sku, matrixSku] = pairs_.at(static_cast<std::size_t>(++edits_ % kItemsEdited));
        const auto here = db::Sql(" WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku + "'";
        db::Recordset item;
        item.Open(db::Sql("SELECT SKU, MatrixSKU, Notes FROM Item") + here, connection_, db::CursorType::Keyset, db::LockType::Optimistic);
        item["Notes"] = "edit " + std::to_string(edits_);
        item.Update();
        connection_->Execute(db::Sql("UPDATE PriceMatrix SET Price = ") + edits_ + here + " AND Tier = 1");
    }
    int edits() const { return edits_; }
    // As the adjustment screen posts it; each turn one of the items that are edited.
    void adjust() {
        const auto& [sku, matrixSku] = pairs_.at(static_cast<std::size_t>(++adjustments_ % kItemsEdited));
        inventory::postAdjustment(*connection_, sku, matrixSku, "Stock Count", {1, 1.25});
        adjusted_.insert(sku + "|" + matrixSku);
    }
    int adjustments() const { return adjustments_; }
    bool hasAdjusted(const app::ProofFinding& finding) const { return adjusted_.contains(finding.sku + "|" + finding.matrixSku); }
    // As the screen of serial numbers does: a placeholder, the number typed over it, and of every three one taken away again.
    void keepSerials() {
        const auto& [sku, matrixSku] = pairs_.front();
        db::Recordset serials;
        serials.Open(db::Sql("SELECT SKU, MatrixSKU, SerialNo FROM StockSerials WHERE SKU = '") + sku + "' AND MatrixSKU = '" + matrixSku +
                         "' AND LockedFlag = 0",
                     connection_, db::CursorType::Dynamic, db::LockType::Optimistic);
        serials.addRow({sku, matrixSku, "XXXX"});
        serials.setCell(serials.RecordCount() - 1, 2, "busy " + std::to_string(++serials_));
        if (serials_ % 3 == 0)
            serials.removeRow(serials.RecordCount() - 1);
    }
    int serialsLeft() const { return serials_ - serials_ / 3; }

private:
    db::Provider provider_;
    db::ConnectionPtr connection_;
    std::vector<std::pair<std::string, std::string>> pairs_;
    int edits_ = 0;
    int adjustments_ = 0;
    int serials_ = 0;
    std::set<std::string> adjusted_;
};

TEST(EightRegisters, BesideAManagerLoseNothingAndHearOfNoLock) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    const int before = std::stoi(cell(file, "SELECT COUNT(*) FROM [Transaction]"));
    const std::string movements = "SELECT COUNT(*) - (SELECT COUNT(*) FROM TransactionEntry) FROM InventoryLedger";
    const int otherMovements = std::stoi(cell(file, movements));
    std::vector<pid_t> registers;
    for (int i = 1; i <= kRegisters; ++i)
        registers.push_back(startRegister(file, i, receiptsWanted()));
    Manager manager(file);
    for (const pid_t one : registers)
        for (int status = 0; waitpid(one, &status, WNOHANG) == 0;) {
            EXPECT_EQ(saidBy([&] { manager.edit(); }), "");
            EXPECT_EQ(saidBy([&] { manager.adjust(); }), "");
            EXPECT_EQ(saidBy([&] { manager.keepSerials(); }), "");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    EXPECT_EQ(std::stoi(cell(file, "SELECT COUNT(*) FROM [Transaction]")), before + kRegisters * receiptsWanted());
    for (int last = std::max(1, manager.edits() - kItemsEdited + 1); last <= manager.edits(); ++last) {
        const std::string number = std::to_string(last);
        EXPECT_EQ(cell(file, "SELECT COUNT(*) FROM Item WHERE CAST(Notes AS varchar(20)) = 'edit " + number + "'"), "1") << number;
        EXPECT_NE(cell(file, "SELECT COUNT(*) FROM PriceMatrix WHERE Tier = 1 AND Price = " + number), "0") << number;
    }
    EXPECT_EQ(app::checkStoreFile(file), std::vector<std::string>{});

    // Every line sold and every adjustment has its movement, balances and weighted costs follow from one another, and the stock is that of
    // the ledger but where an adjustment may have overwritten a sale.
    ASSERT_GT(manager.adjustments(), 0);
    EXPECT_EQ(std::stoi(cell(file, movements)), otherMovements + manager.adjustments());
    const app::Proof proof = app::proveStockFile(file, [](int) { return true; });
    for (const app::ProofFinding& finding : proof.ledger)
        ADD_FAILURE() << finding.sentence();
    for (const app::ProofFinding& finding : proof.stock)
        EXPECT_TRUE(manager.hasAdjusted(finding)) << finding.sentence();
    EXPECT_EQ(cell(file, "SELECT COUNT(*) FROM StockSerials WHERE SerialNo LIKE 'busy %'"), std::to_string(manager.serialsLeft()));
    EXPECT_EQ(cell(file, "SELECT COUNT(*) FROM StockSerials WHERE SerialNo = 'XXXX'"), "0");
}

TEST(Backups, TakenWhileRegistersPostAreWholeAndGoBack) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    std::vector<pid_t> registers;
    for (int i = 1; i <= kRegisters / 2; ++i)
        registers.push_back(startRegister(file, i, receiptsWanted()));
    int made = 0;
    for (const pid_t one : registers)
        for (int status = 0; waitpid(one, &status, WNOHANG) == 0 && made < 4;) {
            const auto copy = folder / ("copy" + std::to_string(++made) + ".store");
            app::backupStoreFile(file, copy);
            EXPECT_EQ(app::checkStoreFile(copy), std::vector<std::string>{}) << made;
        }
    for (const pid_t one : registers)
        waitpid(one, nullptr, 0);
    ASSERT_GT(made, 0);

    // Back while other registers post on the very file: a receipt goes into the old store or the restored one, never half into each.
    const auto copy = folder / "copy1.store";
    const pid_t till = startRegister(file, kRegisters, receiptsWanted());
    app::restoreStoreFile(copy, file);
    int status = 0;
    waitpid(till, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(app::checkStoreFile(file), std::vector<std::string>{});
}

} // namespace
