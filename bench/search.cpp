// One keystroke in the field search over 100,000 items, all four fields, beside a bare scan of the same bytes: the whole road through
// Recordset::setFilter, with someone who listens as a grid does.

#include "app/db/ado/recordset.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

#include <cctype>
#include <string>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 15;

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

// The numbers of the rows that hold the text in one of their cells.
std::vector<int> scan(const std::vector<std::string>& cells, std::size_t columns, const std::string& needle) {
    std::vector<int> rows;
    for (std::size_t row = 0; row * columns < cells.size(); ++row)
        for (std::size_t column = 0; column < columns; ++column)
            if (contains(cells[row * columns + column], needle)) {
                rows.push_back(static_cast<int>(row));
                break;
            }
    return rows;
}

std::vector<std::string> cellsOf(const db::Recordset& rows) {
    std::vector<std::string> cells;
    for (int row = 0; row < rows.rowCount(); ++row)
        for (int column = 0; column < rows.columnCount(); ++column)
            cells.emplace_back(rows.cellText(row, column));
    return cells;
}

std::string filterOf(const std::string& needle) {
    std::string filter;
    for (const char* column : {"SKU", "MatrixSKU", "Name", "Department"})
        filter += (filter.empty() ? "" : " or ") + std::string(column) + " like '%" + needle + "%'";
    return filter;
}

} // namespace

int main() {
    const ItemStore items;
    db::Provider provider;
    const auto connection = std::make_shared<db::Connection>(provider);
    connection->Open("Data Source=" + items.file().string());
    const auto rows = connection->Execute("sp_GetAllItems 1, 0");
    const std::vector<std::string> cells = cellsOf(*rows);
    int heard = 0;
    rows->listen([&] { heard += rows->RecordCount() > 0 ? 1 : 0; });
    for (const char* needle : {"h", "hea", "heart m", "zzzz"}) {
        std::size_t found = 0;
        ratio((std::string("a keystroke that makes it \"") + needle + "\"").c_str(), kRuns, [&] { rows->setFilter(filterOf(needle)); },
              [&] { found = scan(cells, 4, needle).size(); });
        if (static_cast<std::size_t>(rows->RecordCount()) != found)
            std::printf("DIFFERENT: %d and %zu rows\n", rows->RecordCount(), found);
    }
    return 0;
}
