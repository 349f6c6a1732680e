#include "tools/registersim/sale.h"

#include <gtest/gtest.h>

#include <set>

using namespace merchantry;
using namespace merchantry::registersim;

namespace {

Currency money(const char* text) {
    return Currency::fromText(text);
}

Good goodOf(const std::string& sku, const char* price, int onHand) {
    Good good;
    good.sku = good.matrixSku = sku;
    good.taxId = 1;
    good.prices = {{1, 1, money(price)}};
    good.move(onHand, money("1"));
    return good;
}

Shop smallShop() {
    Shop shop;
    shop.goods = {goodOf("A", "2.55", 40), goodOf("B", "9.99", 3), goodOf("C", "0.85", 500), goodOf("D", "1200", 2)};
    shop.goods[3].serialized = true;
    shop.goods[3].serials = {"S1", "S2"};
    shop.shoppers = {{.id = 11}, {.id = 12, .tier = 2, .charge = true}, {.id = 13, .exempt = true}, {.id = 14, .employee = true}};
    shop.taxRates = {{0, 0}, {1, 6875}};
    for (const char* tender : {"Cash", "Check", "Credit Card", "Debit Card", "Charge Account"})
        shop.tenders.push_back({tender, tender});
    return shop;
}

TEST(Goods, AverageCostFollowsWhatComesIn) {
    const struct {
        int quantity;
        const char* cost;
        const char* average;
        int onHand;
    } moves[] = {
        {10, "2", "2", 10},         {5, "3.5", "2.5", 15}, {-15, "9", "2.5", 0},
        {-2, "9", "2.5", -2},       {6, "4", "4", 4},      {2, "4.0001", "4", 6}, // a third of a ten-thousandth is rounded off
        {3, "4.0004", "4.0001", 9},
    };
    Good good;
    for (const auto& move : moves) {
        good.move(move.quantity, money(move.cost));
        EXPECT_EQ(good.averageCost, money(move.average)) << move.quantity << " at " << move.cost;
        EXPECT_EQ(good.onHand, move.onHand);
    }
}

TEST(Prices, HighestBreakOfTheTierThenRetail) {
    Good good;
    good.prices = {{1, 1, money("10")}, {1, 12, money("8")}, {2, 1, money("9")}, {2, 6, money("7")}, {3, 50, money("1")}};
    good.events = {{*Date::fromParts(2026, 3, 1), *Date::fromParts(2026, 3, 7), money("7.5")}};
    const Date day = *Date::fromParts(2026, 2, 28);
    const struct {
        int tier;
        int quantity;
        Date day;
        const char* price;
    } cases[] = {
        {1, 1, day, "10"},
        {1, 11, day, "10"},
        {1, 12, day, "8"},
        {2, 5, day, "9"},
        {2, 60, day, "7"},
        {3, 49, day, "8"},
        {3, 50, day, "1"},
        {1, -1, day, "10"},
        {4, 1, day, "10"},
        {1, 1, day.plusDays(1), "7.5"},
        {2, 6, day.plusDays(7), "7"},
        {1, 1, day.plusDays(8), "10"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(Shop::price(good, one.tier, one.quantity, one.day), money(one.price)) << one.tier << " " << one.quantity;
}

TEST(Taxes, AreCentsWithHalvesAwayFromZero) {
    const Shop shop = smallShop();
    EXPECT_EQ(shop.tax(1, money("2.55")), money("0.18"));
    EXPECT_EQ(shop.tax(1, money("8")), money("0.55"));
    EXPECT_EQ(shop.tax(1, money("-8")), money("-0.55"));
    EXPECT_EQ(shop.tax(1, money("0.07")), money("0"));
    EXPECT_EQ(shop.tax(0, money("100")), money("0"));
    EXPECT_EQ(shop.tax(9, money("100")), money("0")) << "an unknown class";
}

std::string told(const Sale& sale) {
    std::string text = std::to_string(sale.shopper) + (sale.isReturn ? "R" : "S") + sale.total().toText();
    for (const SaleLine& line : sale.lines)
        text += " " + std::to_string(line.good) + "x" + std::to_string(line.quantity) + line.serial;
    for (const Tender& tender : sale.tenders)
        text += " " + tender.type + tender.amount.toText();
    return text;
}

TEST(Sales, AreWholeReceiptsOfWhatIsOnTheShelves) {
    Shop shop = smallShop();
    Random random(4);
    SaleMaker maker(shop, random);
    for (int i = 0; i < 400; ++i) {
        const auto sale = maker.make(*Date::fromParts(2026, 5, 4, 12), 1, 5);
        if (!sale)
            continue;
        Currency paid;
        for (const Tender& tender : sale->tenders)
            paid += tender.amount;
        EXPECT_EQ(paid, sale->total()) << told(*sale);
        EXPECT_EQ(sale->taxTotal() == Currency(), sale->exempt) << told(*sale);
        takeOffShelves(shop, *sale);
        for (const Good& good : shop.goods)
            EXPECT_GE(good.onHand, 0) << good.sku << " after " << told(*sale);
    }
    EXPECT_TRUE(shop.goods[3].serials.empty()) << "both pieces found a buyer";
    EXPECT_EQ(shop.goods[3].onHand, 0);
}

TEST(Sales, AreTheSameForTheSameSeed) {
    const auto play = [](std::uint64_t seed) {
        const Shop shop = smallShop();
        Random random(seed);
        SaleMaker maker(shop, random);
        std::string all;
        for (int i = 0; i < 50; ++i)
            if (const auto sale = maker.make(*Date::fromParts(2026, 5, 4), 1, 5))
                all += told(*sale) + "\n";
        return all;
    };
    EXPECT_EQ(play(1), play(1));
    EXPECT_NE(play(1), play(2));
}

TEST(Sales, ArePaidByWhatTheRegistersOffer) {
    const auto tendersOf = [](const std::vector<std::string>& offered) {
        Shop shop = smallShop();
        shop.tenders.clear();
        for (const std::string& tender : offered)
            shop.tenders.push_back({tender, tender});
        Random random(7);
        SaleMaker maker(shop, random);
        std::set<std::string> used;
        for (int i = 0; i < 300; ++i)
            if (const auto sale = maker.make(*Date::fromParts(2026, 5, 4), 1, 5))
                for (const Tender& tender : sale->tenders)
                    used.insert(tender.type);
        return used;
    };
    using Types = std::set<std::string>;
    EXPECT_EQ(tendersOf({"Check", "Debit Card"}), (Types{"Check", "Debit Card"}));
    EXPECT_EQ(tendersOf({"Mobile Payment", "Cash"}), (Types{"Cash", "Mobile Payment"})) << "the first one takes what is not offered";
    EXPECT_EQ(tendersOf({"Charge Account"}), Types{"Charge Account"}) << "who has no account pays nothing, and takes nothing";
    EXPECT_EQ(tendersOf({}), Types{});
}

TEST(Sales, AnEmptyShopSellsNothing) {
    const Shop shop;
    Random random(1);
    EXPECT_FALSE(SaleMaker(shop, random).make(Date(), 1, 5).has_value());
}

} // namespace
