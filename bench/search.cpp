#include "app/db/ado/filter.h"
#include "bench/ratio.h"

#include <cctype>
#include <cstring>
#include <string>

// One keystroke in the field search over 100,000 items, all four fields, beside a bare scan of the same bytes.
namespace {

using namespace merchantry;

constexpr int kItems = 100'000;

db::RowStore items() {
    std::vector<db::Column> columns(4);
    const char* names[] = {"SKU", "MatrixSKU", "Name", "Department"};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].name = names[i];
        columns[i].type = {db::TypeKind::VarChar, 100, 0, 0};
    }
    const char* words[] = {"White", "hanging", "heart",   "T-light", "holder",  "Vintage",
                           "union", "jack",    "bunting", "mug",     "Regency", "cakestand"};
    const char* departments[] = {"Candles & lights", "Kitchen", "Bags", "Bikes"};
    db::RowStore store(columns);
    for (int i = 0; i < kItems; ++i) {
        const int row = store.appendEmpty();
        const std::string code = std::to_string(20000 + i);
        store.set(row, 0, code);
        store.set(row, 1, code + "A");
        store.set(row, 2, std::string(words[i % 12]) + " " + words[(i / 12) % 12] + " " + words[(i / 144) % 12] + " " + std::to_string(i));
        store.set(row, 3, departments[i % 4]);
    }
    return store;
}

// Without case, byte by byte.
bool contains(std::string_view text, std::string_view needle) {
    for (std::size_t at = 0; at + needle.size() <= text.size(); ++at) {
        std::size_t i = 0;
        while (i < needle.size() && std::tolower(static_cast<unsigned char>(text[at + i])) == needle[i])
            ++i;
        if (i == needle.size())
            return true;
    }
    return false;
}

} // namespace

int main() {
    const db::RowStore store = items();
    for (const char* typed : {"h", "hea", "heart m", "zzzz"}) {
        const std::string needle = typed;
        std::string filter;
        for (const char* column : {"SKU", "MatrixSKU", "Name", "Department"})
            filter += (filter.empty() ? "" : " or ") + std::string(column) + " like '%" + needle + "%'";
        std::size_t found = 0;
        std::size_t foundBare = 0;
        bench::ratio(("one keystroke, \"" + needle + "\" in four fields of 100,000").c_str(), 15,
                     [&] {
                         std::vector<int> rows;
                         const db::Filter wanted(filter, store);
                         for (int row = 0; row < store.rowCount(); ++row)
                             if (wanted.matches(row))
                                 rows.push_back(row);
                         found = rows.size();
                     },
                     [&] {
                         std::vector<int> rows;
                         for (int row = 0; row < store.rowCount(); ++row)
                             for (int column = 0; column < 4; ++column)
                                 if (contains(store.text(row, column), needle)) {
                                     rows.push_back(row);
                                     break;
                                 }
                         foundBare = rows.size();
                     });
        if (found != foundBare)
            std::printf("DIFFERENT: %zu and %zu rows\n", found, foundBare);
    }
    return 0;
}
