#include "catalog/saleevents.h"

#include <gtest/gtest.h>

namespace merchantry::catalog {
namespace {

SaleEvent sale(const char* from, const char* to, bool deleted = false) {
    SaleEvent made;
    made.DateFrom = *Date::fromText(from);
    made.DateTo = *Date::fromText(to);
    made.Deleted = deleted;
    return made;
}

} // namespace

TEST(SaleEvents, DaysInCommonAreRefusedAndNeighboursAreNot) {
    struct Case {
        std::vector<SaleEvent> sales;
        const char* fault;
    };
    const SaleEvent week = sale("3/1/2026", "3/7/2026");
    for (const Case& c : {
             Case{{}, ""},
             Case{{week, sale("3/8/2026", "3/8/2026"), sale("2/1/2026", "2/28/2026")}, ""},
             Case{{week, sale("3/7/2026", "3/9/2026")}, "Sales periods are overlapping in lines 1 and 2."},
             Case{{week, sale("2/1/2026", "3/1/2026")}, "Sales periods are overlapping in lines 1 and 2."},
             Case{{sale("1/1/2026", "1/1/2026"), week, sale("3/3/2026", "3/4/2026")}, "Sales periods are overlapping in lines 2 and 3."},
             Case{{sale("3/3/2026", "3/4/2026"), sale("9/1/2026", "9/1/2026"), sale("1/1/2026", "12/31/2026")},
                  "Sales periods are overlapping in lines 1 and 3."},
             Case{{week, sale("3/1/2026", "3/7/2026", true)}, ""},
             Case{{week, week, sale("3/7/2026", "3/1/2026", true)}, "Starting date exceeds ending date in line 3. Please reenter."},
         })
        EXPECT_EQ(faultIn(c.sales), c.fault);
}

TEST(SaleEvents, TimeIsComparedWithTheClockNotTheDay) {
    const Date noon = *Date::fromText("11/21/2026 12:00");
    EXPECT_EQ(timeOf(sale("11/21/2026", "11/21/2026"), noon), SaleTime::Past);
    EXPECT_EQ(timeOf(sale("11/21/2026", "11/22/2026"), noon), SaleTime::Current);
    EXPECT_EQ(timeOf(sale("11/21/2026 12:00", "11/21/2026 12:00"), noon), SaleTime::Current);
    EXPECT_EQ(timeOf(sale("11/22/2026", "11/20/2026"), noon), SaleTime::Future);
}

} // namespace merchantry::catalog
