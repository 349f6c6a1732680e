// Price lists come in while eight registers sell: nobody hears of a lock, every receipt is whole, and the stock proves.

#include "app/stockproof.h"
#include "exchange/import/delimitedfile.h"
#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"
#include "tests/reliability/shopregisters.h"

#include <fstream>
#include <gtest/gtest.h>

using namespace merchantry;
using namespace merchantry::exchange;

namespace {

constexpr int kRegisters = 8;
constexpr int kNewItems = 500;

// Every other item at another price and with the stock counted anew, and new ones that no list before had.
void writeList(db::Session& session, const std::filesystem::path& file, int list) {
    std::ofstream out(file);
    out << "Code,Parent,Name,Price,Stock\n";
    readRows(session,
             "SELECT i.MatrixSKU, i.SKU, s.Quantity FROM Item i INNER JOIN Stock s ON s.SKU = i.SKU AND s.MatrixSKU = i.MatrixSKU WHERE "
             "i.SerialFlag = 0 AND i.TypeID <> 4 AND i.TypeID <> 5 AND i.SKU NOT LIKE '$%' ORDER BY i.SKU, i.MatrixSKU",
             [&, row = 0](const db::RowView& item) mutable {
                 if (++row % 40 == list % 40)
                     out << '"' << item.text(0) << "\",\"" << item.text(1) << "\",," << list + 1 << ".95," << item.number(2) + 3 << '\n';
             });
    for (int i = 0; i < kNewItems; ++i)
        out << "LIST-" << list << '-' << i << ",,New,2.50,4\n";
}

// Whether it was written; false when a register was quicker.
bool import(db::Session& session, const std::filesystem::path& file) {
    const DelimitedFile text(file);
    DelimitedReading reading(text, text.guessed());
    while (reading.step() < 100) {
    }
    const SheetTable table = reading.take();
    const ColumnMatch match = matched(Target::Items, table);
    ImportOptions options;
    options.codes = ImportOptions::Codes::Leave;
    const ItemsInStore store(session, match);
    ItemPlan plan(table, match, options, store);
    while (plan.step() < 100) {
    }
    EXPECT_TRUE(plan.findings().empty()) << plan.findings().front().reason;
    try {
        const auto writing = writingOf(session, plan, {"list.csv", ""});
        while (writing->step() < 100) {
        }
        return true;
    } catch (const StoreChanged&) {
        return false;
    }
}

TEST(Imports, BesideEightRegistersLoseNothingAndHearOfNoLock) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    const int receipts = std::stoi(cell(file, "SELECT COUNT(*) FROM [Transaction]"));
    std::vector<pid_t> registers;
    for (int i = 1; i <= kRegisters; ++i)
        registers.push_back(startRegister(file, i, receiptsWanted()));
    const auto session = db::Store::open(file)->session();
    const auto list = file.parent_path() / "list.csv";
    int written = 0;
    int lists = 0;
    for (const pid_t one : registers) {
        int status = 0;
        while (waitpid(one, &status, WNOHANG) == 0)
            EXPECT_EQ(saidBy([&] {
                          writeList(*session, list, lists);
                          written += import(*session, list) ? 1 : 0;
                          ++lists;
                      }),
                      "");
        EXPECT_EQ(status, 0);
    }
    writeList(*session, list, lists);
    EXPECT_TRUE(import(*session, list)) << "nobody sells any more";
    EXPECT_EQ(std::stoi(cell(file, "SELECT COUNT(*) FROM [Transaction]")), receipts + kRegisters * receiptsWanted());
    EXPECT_EQ(std::stoi(cell(file, "SELECT COUNT(*) FROM Item WHERE SKU LIKE 'LIST-%'")), (written + 1) * kNewItems);
    EXPECT_EQ(std::stoi(cell(file, "SELECT COUNT(*) FROM ImportRun")), written + 1);
    const app::Proof proof = app::proveStockFile(file, [](int) { return true; });
    for (const auto* findings : {&proof.ledger, &proof.stock})
        for (const app::ProofFinding& finding : *findings)
            ADD_FAILURE() << finding.sentence();
    EXPECT_EQ(db::brokenInvariants(*session), std::vector<std::string>());
}

} // namespace
