#include "tools/registersim/liveregister.h"

#include "app/db/again.h"
#include "app/db/work.h"
#include "base/platform/platform.h"
#include "tools/registersim/query.h"

#include <chrono>
#include <mutex>
#include <thread>

namespace merchantry::registersim {
namespace {

constexpr int kManager = 5;

using SteadyClock = std::chrono::steady_clock;
constexpr std::size_t kKeptErrors = 10;
constexpr auto kNap = std::chrono::milliseconds(100);

double msSince(SteadyClock::time_point start) {
    return std::chrono::duration<double, std::milli>(SteadyClock::now() - start).count();
}

// What all registers of one run measured.
class Tally {
public:
    void posted(double ms) {
        const std::lock_guard lock(mutex_);
        times_.push_back(ms);
    }
    void failed(const std::string& error) {
        const std::lock_guard lock(mutex_);
        ++failed_;
        if (errors_.size() < kKeptErrors)
            errors_.push_back(error);
    }
    LiveFigures figures() {
        std::sort(times_.begin(), times_.end());
        LiveFigures figures{static_cast<int>(times_.size()), failed_, 0, 0, errors_};
        if (!times_.empty()) {
            figures.medianMs = times_[times_.size() / 2];
            figures.worstMs = times_.back();
        }
        return figures;
    }

private:
    std::mutex mutex_;
    std::vector<double> times_;
    std::vector<std::string> errors_;
    int failed_ = 0;
};

// In short naps: a slow till hears as soon as a busy one that it is to close.
void sleepUntil(SteadyClock::time_point end, const LivePlan& plan) {
    while (SteadyClock::now() < end && !(plan.closing && plan.closing()))
        std::this_thread::sleep_until(std::min(end, SteadyClock::now() + kNap));
}

void work(LiveRegister& till, const LivePlan& plan, SteadyClock::time_point end, Tally& tally) {
    auto next = SteadyClock::now();
    while (SteadyClock::now() < end && !(plan.closing && plan.closing())) {
        const auto start = SteadyClock::now();
        try {
            if (till.postOne(platform::localTime()))
                tally.posted(msSince(start));
        } catch (const std::exception& error) {
            tally.failed(error.what());
        }
        if (plan.perSecond <= 0)
            continue;
        next += std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(1 / plan.perSecond));
        sleepUntil(std::min(next, end), plan);
    }
}

} // namespace

LiveRegister::LiveRegister(std::unique_ptr<db::Session> session, int registerId, std::uint64_t seed)
    : session_(std::move(session)), shop_(loadShop(*session_)), random_(seed), maker_(shop_, random_), registerId_(registerId) {
    // Serial numbers are fetched by hand from the shelf: a simulated till leaves them there.
    for (Good& good : shop_.goods)
        if (good.serialized)
            good.serials.clear();
}

void LiveRegister::readOptions() {
    const auto options = query(*session_, "SELECT TaxStatus, RecptPrintPostSale, ISNULL(Name, '') FROM StoreOptions");
    if (options.size() != 1)
        throw std::runtime_error("The store options are " + std::to_string(options.size()) + " rows.");
    const Row& row = options.front();
    settings_ = {row[0].toFlag(), row[1].toFlag(), row[2].toText(), ""};
    for (const Row& own : query(*session_, "SELECT ISNULL(RecptMsg, '') FROM Register WHERE ID = " + std::to_string(registerId_)))
        settings_.message = own[0].toText();
}

// The supplied manager works at the till only where there is nobody else.
int LiveRegister::cashierAtWork() {
    std::vector<int> ids = shop_.cashierIds;
    if (ids.size() > 1)
        std::erase(ids, kManager);
    return ids.at(static_cast<std::size_t>(random_.below(static_cast<int>(ids.size()))));
}

// Shoppers have their habits; now and then one pays in another way that the store offers.
void LiveRegister::payAsOffered(Sale& sale) {
    if (sale.tenders.size() != 1 || sale.isReturn || sale.charged() != Currency() || !random_.chance(20))
        return;
    const TenderKey& key = shop_.tenders[static_cast<std::size_t>(random_.below(static_cast<int>(shop_.tenders.size())))];
    const bool own = key.type == "Charge Account" || key.type == "Store Credit" || key.type == "Gift Voucher"; // they need a balance
    if (!own)
        sale.tenders.front().type = key.type;
}

bool LiveRegister::postOne(Date now) {
    readSettings(*session_, shop_); // a manager may have changed them since the last receipt
    readOptions();
    const int cashier = cashierAtWork();
    auto sale = maker_.make(now, registerId_, cashier);
    if (!sale)
        return false;
    payAsOffered(*sale);
    db::againWhenBusy(*session_, [&] {
        db::Work work(*session_);
        post(*sale);
        work.commit();
    });
    takeOffShelves(shop_, *sale);
    return true;
}

void LiveRegister::post(const Sale& sale) {
    const Value customer = sale.customerId(shop_);
    run(*session_,
        "INSERT INTO [Transaction] (RegisterID, CashierID, CustomerID, Time, TransType, SubTotal, TaxTotal, Total, TaxExempt) "
        "VALUES (@p1, @p2, @p3, @p4, @p5, @p6, @p7, @p8, @p9)",
        "iiidtmmmb",
        {sale.registerId, sale.cashierId, customer, sale.time, sale.isReturn ? "Return" : "Sale", sale.subTotal(), sale.taxTotal(),
         sale.total(), sale.exempt});
    const Value number = session_->lastIdentity();
    for (const SaleLine& line : sale.lines)
        postLine(sale, line, number);
    for (const Tender& tender : sale.tenders)
        run(*session_, "INSERT INTO TransactionTender (TransactionNumber, TenderType, Amount) VALUES (@p1, @p2, @p3)", "itm",
            {number, tender.type, tender.amount});
    run(*session_,
        "INSERT INTO TransactionTax (TransactionNumber, TaxID, Taxable, Amount, Rate) SELECT e.TransactionNumber, e.TaxID, SUM(e.FullPrice "
        "* "
        "e.Quantity - e.Discount), SUM(e.Tax), MIN(d.Amt) FROM TransactionEntry e LEFT JOIN TaxDef d ON d.TaxID = e.TaxID "
        "WHERE e.TransactionNumber = @p1 GROUP BY e.TransactionNumber, e.TaxID",
        "i", {number});
    if (sale.shopper >= 0)
        run(*session_, "UPDATE Customer SET TotalSales = TotalSales + @p1, LastPurchaseDate = @p2 WHERE ID = @p3", "mdi",
            {sale.subTotal(), sale.time, customer});
    if (sale.charged() != Currency())
        run(*session_,
            "INSERT INTO CreditTransaction (TransactionNumber, CustomerID, CashierID, CreditCode, Time, Total, OutstandingBalance) "
            "VALUES (@p1, @p2, @p3, 'Sale', @p4, @p5, @p5) UPDATE Customer SET Balance = Balance + @p5 WHERE ID = @p2",
            "iiidm", {number, customer, sale.cashierId, sale.time, sale.charged()});
}

void LiveRegister::postLine(const Sale& sale, const SaleLine& line, const Value& number) {
    const Good& good = shop_.goods[static_cast<std::size_t>(line.good)];
    run(*session_,
        "INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, Quantity, FullPrice, Cost, Discount, TaxID, Tax, DepartmentID) "
        "VALUES (@p1, @p2, @p3, @p4, @p5, @p6, @p7, @p8, @p9, @p10)",
        "ittimmmimi",
        {number, good.sku, good.matrixSku, line.quantity, line.fullPrice, line.cost, line.discount, good.taxId, line.tax,
         good.departmentId});
    run(*session_, "UPDATE Stock SET Quantity = Quantity - @p1 WHERE SKU = @p2 AND MatrixSKU = @p3", "itt",
        {line.quantity, good.sku, good.matrixSku});
    run(*session_, "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea) VALUES (@p1, @p2, @p3, @p3, @p4, @p5)", "tttim",
        {good.sku, good.matrixSku, sale.isReturn ? "Return" : "Sale", -line.quantity, line.cost});
    run(*session_, "UPDATE Item SET DateLastSold = @p1 WHERE SKU = @p2 AND MatrixSKU = @p3", "dtt", {sale.time, good.sku, good.matrixSku});
}

LiveFigures runRegisters(const SessionMaker& open, const LivePlan& plan) {
    std::vector<std::unique_ptr<LiveRegister>> tills;
    for (int i = 0; i < plan.registers; ++i)
        tills.push_back(std::make_unique<LiveRegister>(open(), i + 1, plan.seed * 1000 + static_cast<std::uint64_t>(i)));
    Tally tally;
    const auto end = SteadyClock::now() + std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(plan.seconds));
    std::vector<std::thread> threads;
    for (const auto& till : tills)
        threads.emplace_back([&] { work(*till, plan, end, tally); });
    for (std::thread& thread : threads)
        thread.join();
    return tally.figures();
}

} // namespace merchantry::registersim
