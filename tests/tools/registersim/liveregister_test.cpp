#include "tools/registersim/liveregister.h"

#include "app/db/schema/schema.h"
#include "tests/db/teststore.h"

#include <atomic>
#include <thread>

namespace merchantry::registersim {
namespace {

// Registers beside a manager, on a store with one item.
class LiveRegisters : public db::OnAStore {
protected:
    LiveRegisters() {
        db::createSchema(*session);
        run("EXEC bsp_NewItem 'A', 'A' UPDATE PriceMatrix SET Price = 5 UPDATE Stock SET Quantity = 1000000");
        run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea) VALUES ('A', 'A', 'Opening Stock', 'Opening', 1000000, "
            "2)");
    }
    // As the screen of the tenders writes them: these from the first place on, the others unticked.
    void offer(db::Session& manager, const std::vector<std::string>& tenders) {
        db::NoResult none;
        manager.execute("UPDATE TenderTypes SET Available = 0", none);
        for (std::size_t place = 0; place < tenders.size(); ++place)
            manager.execute("sp_UpdateTenderType 1, '" + tenders[place] + "', '" + tenders[place] + "', 1, " + std::to_string(place), none);
    }
};

TEST_F(LiveRegisters, TakeTheTendersUpWithTheNextReceipt) {
    LiveRegister till(store->session(), 1, 3);
    const auto paidBy = [&](const std::vector<std::string>& tenders) {
        offer(*session, tenders);
        run("DELETE FROM TransactionTender");
        bool any = false;
        for (int i = 0; i < 20; ++i)
            any = till.postOne(*Date::fromParts(2026, 5, 4, 12)) || any;
        return any ? rowsOf("SELECT DISTINCT TenderType FROM TransactionTender ORDER BY TenderType") : "nothing";
    };
    EXPECT_EQ(paidBy({"Debit Card"}), "Debit Card");
    EXPECT_EQ(paidBy({"Mobile Payment", "Gift Voucher"}), "Mobile Payment");
    EXPECT_EQ(paidBy({"Gift Voucher", "Mobile Payment"}), "Gift Voucher;Mobile Payment");
    EXPECT_EQ(paidBy({}), "nothing");
}

// A rate that was changed went to the receipt's tax line while its items were still taxed at the old one.
TEST_F(LiveRegisters, TaxByTheRateOfTheMoment) {
    run("INSERT INTO TaxDef (Amt, Description) VALUES (10, 'Tax') UPDATE Item SET TaxID = 1");
    LiveRegister till(store->session(), 1, 3);
    for (const char* rate : {"10", "20", "0"}) {
        run("UPDATE TaxDef SET Amt = " + std::string(rate) + " WHERE TaxID = 1");
        for (int i = 0; i < 5; ++i)
            till.postOne(*Date::fromParts(2026, 5, 4, 12));
        EXPECT_EQ(rowsOf("SELECT DISTINCT Amount * 100 / Taxable FROM TransactionTax WHERE Rate = " + std::string(rate)), rate);
    }
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM TransactionTax WHERE ROUND(Taxable * Rate / 100, 2) <> Amount"), "0");
}

TEST_F(LiveRegisters, GoOnWhileTheTendersChange) {
    offer(*session, {"Cash"});
    std::atomic<bool> done = false;
    std::thread manager([&] {
        const auto own = store->session();
        for (bool cards = false; !done; cards = !cards)
            offer(*own, cards ? std::vector<std::string>{"Credit Card", "Cash"} : std::vector<std::string>{"Cash", "Check"});
    });
    const LiveFigures figures = runRegisters([&] { return store->session(); }, {.registers = 2, .perSecond = 0, .seconds = 1});
    done = true;
    manager.join();
    EXPECT_EQ(figures.failed, 0) << (figures.errors.empty() ? "" : figures.errors.front());
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM TransactionTender WHERE TenderType NOT IN ('Cash', 'Check', 'Credit Card')"), "0");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM [Transaction] t WHERE t.Total <> (SELECT SUM(p.Amount) FROM TransactionTender p WHERE "
                     "p.TransactionNumber = t.TransactionNumber)"),
              "0");
}

} // namespace
} // namespace merchantry::registersim
