#include "purchasing/supplierprice.h"

#include <gtest/gtest.h>

namespace merchantry::purchasing {
namespace {

TEST(SupplierPrice, TheTermsOfAQuantityAreThoseThatItReaches) {
    const std::vector<SupplierTerms> terms{{12, 2, Currency::fromInteger(20), "dozen"},
                                           {3, 1, Currency::fromInteger(25), "three"},
                                           {144, 3, Currency::fromInteger(15), "gross"},
                                           {12, 1, Currency::fromInteger(21), "preferred dozen"}};
    struct Case {
        std::int16_t quantity;
        const char* partNo;
    };
    for (const Case& test : {Case{0, "three"}, Case{2, "three"}, Case{3, "three"}, Case{11, "three"}, Case{12, "preferred dozen"},
                             Case{143, "preferred dozen"}, Case{144, "gross"}, Case{32767, "gross"}}) {
        const SupplierTerms* const found = termsFor(terms, test.quantity);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->PartNo, test.partNo) << test.quantity;
    }
    EXPECT_EQ(termsFor({}, 1), nullptr);
}

} // namespace
} // namespace merchantry::purchasing
