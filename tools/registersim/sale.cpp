#include "tools/registersim/sale.h"

namespace merchantry::registersim {
namespace {

constexpr int kPasserBy = 62; // percent of receipts without a customer
constexpr int kReturns = 2;   // percent
constexpr int kStaffDiscount = 15;
constexpr const char* kCash = "Cash";
constexpr const char* kOnAccount = "Charge Account";
constexpr Currency kOne = Currency::fromUnits(Currency::kUnitsPerOne);

std::vector<int> weightsOf(const std::vector<Good>& goods) {
    std::vector<int> weights;
    for (const Good& good : goods)
        weights.push_back(good.popularity);
    return weights;
}

// Those who buy for a business come more often.
std::vector<int> weightsOf(const std::vector<Shopper>& shoppers) {
    std::vector<int> weights;
    for (const Shopper& shopper : shoppers)
        weights.push_back(shopper.tier == 1 ? 1 : 6);
    return weights;
}

bool holds(const Sale& sale, int good) {
    return std::any_of(sale.lines.begin(), sale.lines.end(), [&](const SaleLine& line) { return line.good == good; });
}

} // namespace

Currency Sale::subTotal() const {
    Currency sum;
    for (const SaleLine& line : lines)
        sum += line.amount();
    return sum;
}

Currency Sale::taxTotal() const {
    Currency sum;
    for (const SaleLine& line : lines)
        sum += line.tax;
    return sum;
}

Value Sale::customerId(const Shop& shop) const {
    if (shopper < 0)
        return {};
    return shop.shoppers[static_cast<std::size_t>(shopper)].id;
}

Currency Sale::charged() const {
    Currency sum;
    for (const Tender& tender : tenders)
        if (tender.type == kOnAccount)
            sum += tender.amount;
    return sum;
}

SaleMaker::SaleMaker(const Shop& shop, Random& random)
    : shop_(shop), random_(random), goods_(weightsOf(shop.goods)), shoppers_(weightsOf(shop.shoppers)) {}

std::optional<Sale> SaleMaker::make(Date time, int registerId, int cashierId) {
    Sale sale;
    sale.time = time;
    sale.registerId = registerId;
    sale.cashierId = cashierId;
    if (goods_.empty())
        return {};
    if (!shop_.shoppers.empty() && !random_.chance(kPasserBy))
        sale.shopper = shoppers_.pick(random_);
    sale.exempt = sale.shopper >= 0 && shop_.shoppers[static_cast<std::size_t>(sale.shopper)].exempt;
    sale.isReturn = random_.chance(kReturns);
    fill(sale);
    if (sale.lines.empty())
        return {};
    if (!pay(sale))
        return {};
    return sale;
}

void SaleMaker::fill(Sale& sale) {
    const int tier = sale.shopper < 0 ? 1 : shop_.shoppers[static_cast<std::size_t>(sale.shopper)].tier;
    int lines = 1;
    while (!sale.isReturn && lines < 14 && random_.chance(tier == 1 ? 55 : 75))
        ++lines;
    for (int i = 0; i < lines; ++i) {
        const int position = goods_.pick(random_);
        const Good& good = shop_.goods[static_cast<std::size_t>(position)];
        const int quantity = quantityFor(good, tier);
        if (holds(sale, position))
            continue;
        if (sale.isReturn && !good.serialized)
            addLine(sale, position, -1, false);
        else if (!sale.isReturn && quantity > 0)
            addLine(sale, position, quantity, true);
    }
}

int SaleMaker::quantityFor(const Good& good, int tier) {
    const int wished = tier > 1 ? random_.between(2, 18) : random_.chance(70) ? 1 : random_.between(2, 4);
    const int most = good.serialized ? std::min(1, static_cast<int>(good.serials.size())) : good.onHand;
    return std::min(wished, most);
}

void SaleMaker::addLine(Sale& sale, int position, int quantity, bool fetchSerial) {
    const Good& good = shop_.goods[static_cast<std::size_t>(position)];
    const Shopper* shopper = sale.shopper < 0 ? nullptr : &shop_.shoppers[static_cast<std::size_t>(sale.shopper)];
    SaleLine line;
    line.good = position;
    line.quantity = quantity;
    line.fullPrice = Shop::price(good, shopper == nullptr ? 1 : shopper->tier, quantity, sale.time.dateOnly());
    line.cost = good.averageCost;
    if (shopper != nullptr && shopper->employee)
        line.discount = Currency::fromUnits((line.fullPrice * quantity).units() * kStaffDiscount / 100 / 100 * 100);
    if (!sale.exempt)
        line.tax = shop_.tax(good.taxId, line.amount());
    if (fetchSerial && good.serialized)
        line.serial = good.serials.front();
    sale.lines.push_back(std::move(line));
}

bool SaleMaker::offers(const std::string& tender) const {
    return std::any_of(shop_.tenders.begin(), shop_.tenders.end(), [&](const TenderKey& key) { return key.type == tender; });
}

// As the shopper wishes, or else by the first tender that the register offers. False when none is left.
bool SaleMaker::pay(Sale& sale) {
    const Currency due = sale.total();
    const bool mayCharge = sale.shopper >= 0 && shop_.shoppers[static_cast<std::size_t>(sale.shopper)].charge && !sale.isReturn;
    const int way = random_.below(100);
    std::string wish = way < 78 ? "Credit Card" : way < 94 ? "Debit Card" : "Check";
    if (mayCharge && way < 60)
        wish = kOnAccount;
    else if (sale.isReturn || way < 30 || due < kOne)
        wish = kCash;
    for (std::size_t key = 0; !offers(wish); ++key) {
        if (key == shop_.tenders.size())
            return false;
        if (mayCharge || shop_.tenders[key].type != kOnAccount)
            wish = shop_.tenders[key].type;
    }
    if (wish == kCash)
        payCash(sale, due);
    else
        sale.tenders.push_back({wish, due});
    return true;
}

void SaleMaker::payCash(Sale& sale, Currency due) {
    if (due < kOne || random_.chance(25)) { // to the cent, or money back
        sale.tenders.push_back({kCash, due});
        return;
    }
    const std::int64_t note = due < kOne * 10 ? 5 : due < kOne * 40 ? 10 : 20;
    const std::int64_t unit = note * Currency::kUnitsPerOne;
    const Currency given = Currency::fromUnits((due.units() + unit - 1) / unit * unit);
    sale.tenders.push_back({kCash, given});
    if (given != due)
        sale.tenders.push_back({kCash, due - given});
}

void takeOffShelves(Shop& shop, const Sale& sale) {
    for (const SaleLine& line : sale.lines) {
        Good& good = shop.goods[static_cast<std::size_t>(line.good)];
        good.move(-line.quantity, line.cost);
        good.lastSold = sale.time;
        if (!line.serial.empty())
            std::erase(good.serials, line.serial);
    }
    if (sale.shopper < 0)
        return;
    Shopper& shopper = shop.shoppers[static_cast<std::size_t>(sale.shopper)];
    shopper.bought += sale.subTotal();
    shopper.lastPurchase = sale.time;
}

} // namespace merchantry::registersim
