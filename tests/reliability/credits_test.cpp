// Two managers apply the same credits at once while registers sell on account: one of them is refused each time, nothing is applied twice,
// and every account adds up.

#include "app/db/schema/schema.h"
#include "tests/reliability/shopregisters.h"

#include <gtest/gtest.h>

using namespace merchantry;

namespace {

constexpr int kRegisters = 4;
constexpr int kAccounts = 10;
constexpr int kFailed = 99; // exit code of a manager who heard of anything but a refusal

void run(db::Session& session, const std::string& batch) {
    db::NoResult none;
    session.execute(batch, none);
}

// A debit of 100 and a credit of 30 on the accounts of some customers, who go on buying, and a batch for each manager.
std::vector<int> makeAccounts(const std::filesystem::path& file) {
    const auto session = db::Store::open(file)->session();
    std::vector<int> customers;
    for (const auto& row :
         registersim::query(*session, "SELECT TOP " + std::to_string(kAccounts) + " ID FROM Customer WHERE ChargeAccount = 1 ORDER BY ID"))
        customers.push_back(static_cast<int>(row.at(0).toInteger()));
    run(*session, "EXEC sp_AddBatch 1, 5 EXEC sp_AddBatch 1, 5 EXEC sp_AddBatch 1, 5");
    for (const int customer : customers)
        for (const char* amount : {"100", "-30"})
            run(*session, "DECLARE @b int SELECT @b = MAX(BatchNumber) - 2 FROM batch EXEC sp_PostAdjustment @b, 1, " +
                              std::to_string(customer) + ", 5, " + amount + ", 1, 'Other'");
    return customers;
}

// The number that the screen shows for the customer's debit or credit of those.
std::string numberOf(db::Session& session, int customer, const char* total) {
    return registersim::query(session, "SELECT MAX(TransactionNumber) FROM CreditTransaction WHERE CustomerID = " +
                                           std::to_string(customer) + " AND CreditCode = 'Other' AND Total = " + total)
        .at(0)
        .at(0)
        .toScriptText();
}

// The credit against the debit, half by half, as the screen does. False when the store refused it.
bool applied(db::Session& session, int batch, int customer) {
    const auto half = [&](const char* total, const char* amount) {
        run(session, "sp_PostAppliedAmount " + std::to_string(batch) + ", " + numberOf(session, customer, total) + ", 1, " +
                         std::to_string(customer) + ", 5, " + amount + ", 2, 'application'");
    };
    try {
        half("100", "30");
        half("-30", "-30");
        return true;
    } catch (const db::DbError& error) {
        if (std::string(error.what()).find("Somebody else may have applied it") == std::string::npos)
            throw;
        return false;
    }
}

// A manager in a process of its own; the exit code is how often the store refused.
pid_t startManager(const std::filesystem::path& file, int batch, const std::vector<int>& customers) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    int refused = 0;
    const std::string failed = saidBy([&] {
        const auto session = db::Store::open(file)->session();
        for (const int customer : customers)
            refused += applied(*session, batch, customer) ? 0 : 1;
        run(*session, "sp_CloseBatch " + std::to_string(batch) + ", 1, 5");
    });
    if (!failed.empty() && write(STDERR_FILENO, failed.data(), failed.size()) < 0)
        _exit(kFailed);
    _exit(failed.empty() ? refused : kFailed);
}

int exitCodeOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Credits, OfTwoManagersBesideRegistersAreAppliedOnce) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    const std::vector<int> customers = makeAccounts(file);
    ASSERT_EQ(customers.size(), static_cast<std::size_t>(kAccounts));
    const int batch = std::stoi(cell(file, "SELECT MAX(BatchNumber) FROM batch"));
    std::vector<pid_t> registers;
    registers.reserve(kRegisters);
    for (int number = 1; number <= kRegisters; ++number)
        registers.push_back(startRegister(file, number, receiptsWanted()));
    const pid_t first = startManager(file, batch - 1, customers);
    const pid_t second = startManager(file, batch, customers);
    const int refused = exitCodeOf(first) + exitCodeOf(second);
    for (const pid_t child : registers)
        EXPECT_EQ(exitCodeOf(child), 0);
    EXPECT_EQ(refused, kAccounts);
    EXPECT_EQ(cell(file, "SELECT COUNT(*) FROM CreditTransaction WHERE CreditCode = 'Other' AND ((Total = 100 AND OutstandingBalance = 70) "
                         "OR (Total = -30 AND OutstandingBalance = 0))"),
              std::to_string(2 * kAccounts));
    EXPECT_EQ(cell(file, "SELECT COUNT(*) FROM CreditApplication WHERE Pending = 1"), "0");
    EXPECT_EQ(db::brokenInvariants(*db::Store::open(file)->session()), std::vector<std::string>());
}

} // namespace
