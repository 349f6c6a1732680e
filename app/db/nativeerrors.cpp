#include "app/db/nativeerrors.h"

#include <algorithm>
#include <span>

namespace merchantry::db {
namespace {

using Category = DbError::Category;

constexpr int kSyntax[] = {102,  104,  105,  108,  109,  110,  111,  113,  116,  117,   119,   120,   121,          130,  131,
                           133,  135,  136,  140,  141,  144,  145,  147,  155,  156,   159,   164,   169,          170,  174,
                           178,  179,  191,  192,  205,  213,  263,  264,  313,  319,   408,   1007,  1033,         1038, 2750,
                           4108, 4112, 4145, 4511, 8110, 8155, 8156, 8158, 8159, 10704, 10753, 35100, kUnnamedError};
constexpr int kName[] = {134,  137,  195,  207,  208,  209,  219,  448,  911,  1013, 1087, 1088, 4701, 4902, 1752, 1767, 1769, 1770, 1911,
                         1913, 2705, 2714, 2715, 2812, 3701, 3728, 4104, 4120, 4121, 4920, 4924, 7997, 8120, 8121, 8127, 8154, 8197};
constexpr int kType[] = {127,  201,  206,  214,  220,  232,  235,  240,   241,   242,   244,   245,  248,  257,  271,  281,
                         286,  293,  295,  296,  402,  447,  506,  517,   535,   537,   545,   1060, 1754, 1759, 1773, 1776,
                         1779, 1781, 2111, 2628, 2744, 2749, 2786, 2787,  3623,  3723,  3725,  3726, 4127, 4403, 4405, 4406,
                         4712, 4901, 4928, 5074, 8101, 8102, 8106, 8107,  8111,  8114,  8115,  8116, 8117, 8133, 8134, 8143,
                         8144, 8145, 8146, 8152, 8164, 8169, 8178, 16905, 16915, 16916, 16917, 16924};
constexpr int kIntegrity[] = {515, 544, 547, 1505, 2601, 2627};
constexpr int kTransaction[] = {266, 628, 3609, 3902, 3903, 3930, 3931, 3998, 6401};
constexpr int kBusy[] = {1204, 1205, 1222};
constexpr int kStorage[] = {701, 823, 824, 1101, 1105, 3906, 5120, 9002};

struct Meaning {
    Category category;
    std::span<const int> numbers;
};

constexpr Meaning kMeanings[] = {
    {Category::Syntax, kSyntax},           {Category::Name, kName}, {Category::Type, kType},       {Category::Integrity, kIntegrity},
    {Category::Transaction, kTransaction}, {Category::Busy, kBusy}, {Category::Storage, kStorage},
};

// Numbers that RAISERROR and THROW may give.
constexpr int kFirstRaised = 50000;
constexpr int kLastRaised = 33'000'000;

} // namespace

DbError::Category categoryOf(int native) {
    for (const Meaning& meaning : kMeanings)
        if (std::find(meaning.numbers.begin(), meaning.numbers.end(), native) != meaning.numbers.end())
            return meaning.category;
    return native >= kFirstRaised && native < kLastRaised ? Category::Raised : Category::Other;
}

} // namespace merchantry::db
