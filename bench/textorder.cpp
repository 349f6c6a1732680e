// 100,000 names in the store's order beside SQLite's own order without case: what the rule for signs, digits and accents costs a sort and
// an index.

#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 15;

void run(const BareStore& store, const std::string& sql) {
    sqlite3_stmt* statement = store.prepare(sql);
    while (sqlite3_step(statement) == SQLITE_ROW)
        readRow(statement);
    sqlite3_finalize(statement);
}

void compare(const BareStore& store, const char* what, const std::string& names) {
    ratio((std::string("sorted: ") + what).c_str(), kRuns, [&] { run(store, "SELECT n FROM " + names + " ORDER BY n COLLATE ts"); },
          [&] { run(store, "SELECT n FROM " + names + " ORDER BY n COLLATE NOCASE"); });
    ratio((std::string("indexed: ") + what).c_str(), kRuns,
          [&] {
              run(store, "CREATE INDEX temp.ours ON " + names + "(n COLLATE ts)");
              run(store, "DROP INDEX temp.ours");
          },
          [&] {
              run(store, "CREATE INDEX temp.bare ON " + names + "(n COLLATE NOCASE)");
              run(store, "DROP INDEX temp.bare");
          });
}

} // namespace

int main() {
    const ItemStore items;
    const BareStore store(items.file());
    run(store, "CREATE TEMP TABLE plain AS SELECT Name AS n FROM main.Item ORDER BY (abs(Item._rowid_ * 7919) % 100003)");
    run(store, "CREATE TEMP TABLE accented AS SELECT replace(replace(n, 'e', 'é'), 'o', 'ö') AS n FROM plain");
    compare(store, "names without accents", "plain");
    compare(store, "names with accents", "accented");
    return 0;
}
