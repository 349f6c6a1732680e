// Registers read the options and their own row before each receipt while a manager changes them: nobody hears of a lock, nothing is read
// half written, and what the manager set last stands.

#include "tests/reliability/shopfolder.h"
#include "tests/reliability/shopregisters.h"

#include "app/db/ado/recordset.h"

#include <gtest/gtest.h>

#include <set>

using namespace merchantry;

namespace {

constexpr int kTills = 3;

// A manager at the options, field by field through the row that stays open, and at the registers.
class Manager {
public:
    explicit Manager(const std::filesystem::path& file) : connection_(std::make_shared<db::Connection>(provider_)) {
        connection_->Open("Data Source=" + file.string());
        options_.Open("bsp_StoreOptions", connection_, db::CursorType::Dynamic, db::LockType::Optimistic);
    }
    void change() {
        ++turns_;
        set("Name", "Shop " + std::to_string(turns_));
        set("TaxStatus", turns_ % 2 == 0);
        db::Recordset registers;
        registers.Open("Select * FROM Register ORDER BY ID", connection_, db::CursorType::Dynamic, db::LockType::Optimistic);
        for (; !registers.Eof(); registers.MoveNext()) {
            registers["RecptMsg"] = "Thanks " + std::to_string(turns_);
            registers.Update();
        }
    }
    int turns() const { return turns_; }

private:
    void set(const char* column, const Value& value) {
        options_[column] = value;
        options_.Update();
    }

    db::Provider provider_;
    db::ConnectionPtr connection_;
    db::Recordset options_;
    int turns_ = 0;
};

} // namespace

TEST(Options, RegistersReadThemWhileTheyChange) {
    const ShopFolder folder;
    const std::filesystem::path shop = folder.shop("shop.store");
    std::set<pid_t> tills;
    for (int number = 1; number <= kTills; ++number)
        tills.insert(startRegister(shop, number, receiptsWanted()));
    {
        Manager manager(shop);
        while (!tills.empty()) {
            EXPECT_EQ(saidBy([&] { manager.change(); }), "");
            int status = 0;
            const pid_t ended = waitpid(-1, &status, WNOHANG);
            if (ended <= 0)
                continue;
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a register could not post";
            tills.erase(ended);
        }
        EXPECT_EQ(cell(shop, "SELECT Name FROM StoreOptions"), "Shop " + std::to_string(manager.turns()));
        EXPECT_EQ(cell(shop, "SELECT COUNT(*) FROM Register WHERE RecptMsg <> 'Thanks " + std::to_string(manager.turns()) + "'"), "0");
    }
    // What stands now is what a till reads before its next receipt.
    registersim::LiveRegister till(db::Store::open(shop)->session(), 1, 7);
    till.postOne(*Date::fromParts(2026, 11, 21, 17));
    EXPECT_EQ(till.settings().storeName, cell(shop, "SELECT Name FROM StoreOptions"));
    EXPECT_EQ(till.settings().message, cell(shop, "SELECT RecptMsg FROM Register WHERE ID = 1"));
}
