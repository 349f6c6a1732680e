#include "tools/registersim/history.h"

#include "app/db/work.h"
#include "tools/registersim/accounts.h"
#include "tools/registersim/purchasing.h"

#include <array>

namespace merchantry::registersim {
namespace {

// Receipts by hour from 9 to 19 and by month, as the till of a real gift shop had them.
const std::vector<int> kHours{147, 234, 237, 320, 273, 242, 231, 132, 66, 19, 14};
constexpr int kFirstHour = 9;
constexpr std::array kMonths{1081, 1093, 1440, 1235, 1668, 1525, 1452, 1339, 1818, 2005, 2751, 2366};
constexpr int kAverageMonth = 1648;
constexpr std::array kWeekdays{70, 80, 85, 90, 100, 130, 160}; // percent, Sunday first
constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr Currency kFloat = Currency::fromUnits(150 * Currency::kUnitsPerOne);
constexpr Currency kDropAbove = Currency::fromUnits(600 * Currency::kUnitsPerOne);

Date at(Date day, std::int64_t ms) {
    return Date::fromMs(day.ms() + ms);
}

class History {
public:
    History(db::Session& session, Shop& shop, const HistoryPlan& plan)
        : session_(session), shop_(shop), plan_(plan), random_(plan.seed), postings_(session),
          purchasing_(session, shop, random_, postings_), accounts_(session, random_) {}

    HistoryFigures run(const Progress& progress) {
        if (plan_.openingStock)
            fillShelves();
        SaleMaker maker(shop_, random_);
        const std::int64_t days = (plan_.to.ms() - plan_.from.ms()) / Date::kMsPerDay;
        for (std::int64_t i = 0; i < days; ++i) {
            day(plan_.from.plusDays(i), maker);
            progress(static_cast<int>(i * 95 / days));
        }
        purchasing_.finish();
        postings_.finish();
        accounts_.finish();
        bringUpToDate();
        progress(100);
        return {postings_.transactions(), postings_.lines(), purchasing_.orders()};
    }

private:
    void fillShelves();
    void day(Date morning, SaleMaker& maker);
    void sell(Date morning, SaleMaker& maker);
    std::vector<Date> receiptTimes(Date morning);
    void correctStock(Date morning);
    void openDrawers(Date morning);
    void closeDrawers(Date morning);
    void cashIn(const Sale& sale, std::size_t place);
    int cashierOf(Date morning, std::size_t place) const;
    void bringUpToDate();
    void writeSerials();

    db::Session& session_;
    Shop& shop_;
    const HistoryPlan& plan_;
    Random random_;
    Postings postings_;
    Purchasing purchasing_;
    Accounts accounts_;
    std::vector<Currency> cash_; // in the drawers, by place of the register
    Wheel hours_{kHours};
};

void History::fillShelves() {
    int serial = 1;
    for (Good& good : shop_.goods) {
        if (good.hasLedger || good.onHand != 0 || good.reorderQty == 0)
            continue;
        const int quantity = good.reorderAt + 1 + random_.below(good.reorderQty);
        good.move(quantity, good.supplierCost);
        postings_.move(good, "Opening Stock", quantity, good.supplierCost, at(plan_.from, 7 * kHour));
        for (int i = 0; good.serialized && i < quantity; ++i)
            good.serials.push_back("OS" + std::to_string(10'000 + serial++));
    }
}

void History::day(Date morning, SaleMaker& maker) {
    purchasing_.day(morning);
    if (morning.day() == 1)
        correctStock(morning);
    openDrawers(morning);
    sell(morning, maker);
    closeDrawers(morning);
    if (morning.day() == 10)
        accounts_.collect(at(morning, 20 * kHour));
}

// Once a month somebody walks the shelves: a few things are broken, a few are more or less than the books say.
void History::correctStock(Date morning) {
    for (int i = 0; i < 15 && !shop_.goods.empty(); ++i) {
        Good& good = shop_.goods[static_cast<std::size_t>(random_.below(static_cast<int>(shop_.goods.size())))];
        if (good.serialized || good.onHand < 4)
            continue;
        const bool broken = random_.chance(50);
        const int quantity = broken ? -random_.between(1, 3) : random_.chance(70) ? -1 : 1;
        const Currency cost = good.averageCost;
        good.move(quantity, cost);
        postings_.move(good, broken ? "Damaged" : "Stock Count", quantity, cost, at(morning, 8 * kHour + 40 * 60 * kSecond + i * kSecond));
    }
}

std::vector<Date> History::receiptTimes(Date morning) {
    const int month = kMonths[static_cast<std::size_t>(morning.month() - 1)] * 100 / kAverageMonth;
    const int weekday = kWeekdays[static_cast<std::size_t>(morning.dayOfWeek() - 1)];
    const int count = plan_.salesPerDay * month * weekday / 100 * random_.between(80, 120) / 100 / 100;
    std::vector<Date> times;
    for (int i = 0; i < count; ++i)
        times.push_back(at(morning, (kFirstHour + hours_.pick(random_)) * kHour + random_.below(3600) * kSecond));
    std::sort(times.begin(), times.end());
    return times;
}

int History::cashierOf(Date morning, std::size_t place) const {
    const auto turn = static_cast<std::size_t>(morning.ms() / Date::kMsPerDay) + place;
    return shop_.cashierIds[turn % shop_.cashierIds.size()];
}

void History::openDrawers(Date morning) {
    cash_.assign(shop_.registerIds.size(), kFloat);
    for (std::size_t place = 0; place < cash_.size(); ++place) {
        const Date time = at(morning, 8 * kHour + 50 * 60 * kSecond + random_.below(500) * kSecond);
        postings_.cashier(cashierOf(morning, place), shop_.registerIds[place], time, "Log On");
        postings_.drawer(shop_.registerIds[place], cashierOf(morning, place), time, "Opening", kFloat);
    }
}

void History::sell(Date morning, SaleMaker& maker) {
    for (const Date time : receiptTimes(morning)) {
        const auto place = static_cast<std::size_t>(random_.below(static_cast<int>(shop_.registerIds.size())));
        const auto sale = maker.make(time, shop_.registerIds[place], cashierOf(morning, place));
        if (!sale)
            continue;
        const int number = postings_.post(shop_, *sale);
        takeOffShelves(shop_, *sale);
        if (sale->charged() != Currency())
            accounts_.charge(shop_.shoppers[static_cast<std::size_t>(sale->shopper)].id, number, sale->time, sale->charged());
        cashIn(*sale, place);
    }
}

void History::cashIn(const Sale& sale, std::size_t place) {
    for (const Tender& tender : sale.tenders)
        if (tender.type == "Cash")
            cash_[place] += tender.amount;
    if (cash_[place] <= kDropAbove)
        return;
    const Currency drop = cash_[place] - kFloat;
    postings_.drawer(sale.registerId, sale.cashierId, at(sale.time, 60 * kSecond), "Drop", -drop);
    cash_[place] -= drop;
}

void History::closeDrawers(Date morning) {
    for (std::size_t place = 0; place < cash_.size(); ++place) {
        const Date time = at(morning, 20 * kHour + random_.below(900) * kSecond);
        postings_.drawer(shop_.registerIds[place], cashierOf(morning, place), time, "Closing", cash_[place]);
        postings_.cashier(cashierOf(morning, place), shop_.registerIds[place], time, "Log Off");
    }
}

void History::bringUpToDate() {
    for (const Good& good : shop_.goods) {
        if (!good.hasLedger)
            continue;
        registersim::run(session_, "UPDATE Stock SET Quantity = @p1 WHERE SKU = @p2 AND MatrixSKU = @p3", "itt",
                         {good.onHand, good.sku, good.matrixSku});
        if (good.lastSold)
            registersim::run(session_, "UPDATE Item SET DateLastSold = @p1 WHERE SKU = @p2 AND MatrixSKU = @p3", "dtt",
                             {*good.lastSold, good.sku, good.matrixSku});
    }
    for (const Shopper& shopper : shop_.shoppers)
        if (shopper.lastPurchase)
            registersim::run(session_, "UPDATE Customer SET TotalSales = TotalSales + @p1, LastPurchaseDate = @p2 WHERE ID = @p3", "mdi",
                             {shopper.bought, *shopper.lastPurchase, shopper.id});
    writeSerials();
}

void History::writeSerials() {
    BulkInsert rows(session_, "StockSerials", "SKU, MatrixSKU, SerialNo", "ttt");
    for (const Good& good : shop_.goods) {
        if (!good.serialized)
            continue;
        registersim::run(session_, "DELETE FROM StockSerials WHERE SKU = @p1 AND MatrixSKU = @p2", "tt", {good.sku, good.matrixSku});
        for (const std::string& serial : good.serials)
            rows.add({good.sku, good.matrixSku, serial});
    }
    rows.finish();
}

} // namespace

HistoryFigures postHistory(db::Session& session, Shop& shop, const HistoryPlan& plan, const Progress& progress) {
    db::Work work(session);
    const HistoryFigures figures = History(session, shop, plan).run(progress);
    work.commit();
    return figures;
}

} // namespace merchantry::registersim
