// The list of 100,000 customers, from the call to the painted window, beside its select alone, stepped and copied on SQLite; and a
// keystroke of its search over all seven fields beside a bare scan of the same bytes.

#include "bench/barestore.h"
#include "bench/benchdesk.h"
#include "bench/ratio.h"
#include "customers/frmCustomerView.h"
#include "ui/qt/formwindow.h"

#include <cctype>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kCustomers = 100'000;
constexpr int kRowsAtOnce = 500;
constexpr int kRuns = 11;
constexpr std::size_t kSearched = 7; // columns behind the number

constexpr const char* kList = "SELECT ID, FirstName, LastName, Company, CleanPhoneNumber, City, State, Zip FROM Customer ORDER BY ID";
constexpr const char* kFirst[] = {"Anna", "Ben", "Carol", "Dave", "Ellen", "Frank", "Grace"};
constexpr const char* kLast[] = {"Ash", "Birch", "Cole", "Diaz", "Ellis", "Foster", "Gupta", "Hearth", "Ivory", "Jensen", "Kelly"};

void furnish(db::Session& session) {
    db::NoResult none;
    session.begin();
    for (int first = 0; first < kCustomers; first += kRowsAtOnce) {
        std::string rows = "INSERT INTO Customer (FirstName, LastName, Company, PhoneNumber, City, State, Zip) VALUES ";
        for (int i = first; i < first + kRowsAtOnce; ++i) {
            const std::string number = std::to_string(10'000 + i % 90'000);
            rows += std::string(i > first ? ", ('" : "('") + kFirst[i % 7] + "', '" + kLast[i % 11] + "', '" +
                    (i % 3 == 0 ? "Trading " + number : std::string()) + "', '(555) " + number.substr(0, 3) + "-" + number.substr(1) +
                    "', 'Maplewood', 'MN', '" + number + "')";
        }
        session.execute(rows, none);
    }
    session.commit();
}

std::vector<std::string> copied(const BareStore& store) {
    sqlite3_stmt* const statement = store.prepare(kList);
    std::vector<std::string> cells;
    while (sqlite3_step(statement) == SQLITE_ROW)
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            cells.emplace_back(text == nullptr ? "" : text);
        }
    sqlite3_finalize(statement);
    return cells;
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

int found(const std::vector<std::string>& cells, const std::string& needle) {
    int rows = 0;
    for (std::size_t row = 0; row * (kSearched + 1) < cells.size(); ++row)
        for (std::size_t column = 1; column <= kSearched; ++column)
            if (contains(cells[row * (kSearched + 1) + column], needle)) {
                ++rows;
                break;
            }
    return rows;
}

void measureList(ui::QtDesk& desk, PaintWatch& watch, const BareStore& store) {
    std::vector<double> shown;
    std::vector<double> bare;
    for (int i = 0; i < kRuns; ++i) {
        bare.push_back(msOf([&] { copied(store); }));
        shown.push_back(msOf([&] { showPainted<customers::frmCustomerView>(desk, watch); }));
        auto& list = desk.form<customers::frmCustomerView>();
        if (const int rows = dynamic_cast<ui::Grid&>(*list.find("grdCust")).dataRows(); rows != kCustomers)
            std::printf("DIFFERENT: %d rows shown\n", rows);
        desk.enter([&] { list.unload(); });
        QCoreApplication::processEvents();
    }
    print("frmCustomerView on 100,000 customers until painted", median(shown), median(bare));
}

void measureSearch(ui::QtDesk& desk, PaintWatch& watch, const BareStore& store) {
    const std::vector<std::string> cells = copied(store);
    showPainted<customers::frmCustomerView>(desk, watch);
    auto& list = desk.form<customers::frmCustomerView>();
    const auto& grid = dynamic_cast<ui::Grid&>(*list.find("grdCust"));
    for (const char* needle : {"e", "el", "ellis", "zzzz"}) {
        int rows = 0;
        ratio((std::string("a keystroke that makes it \"") + needle + "\"").c_str(), kRuns,
              [&] { desk.enter([&] { list.ApplyFilter("All", needle); }); }, [&] { rows = found(cells, needle); });
        if (grid.dataRows() != rows)
            std::printf("DIFFERENT: %d and %d rows\n", grid.dataRows(), rows);
    }
    desk.enter([&] { list.unload(); });
}

} // namespace

int main(int argc, char** argv) {
    const ItemStore items(1);
    furnish(*items.session());
    BenchDesk<> bench(argc, argv, items);
    auto& desk = bench.desk;
    PaintWatch& watch = bench.watch;
    const BareStore store(items.file());
    measureList(desk, watch, store);
    measureSearch(desk, watch, store);
    return 0;
}
