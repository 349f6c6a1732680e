// Calls of one row: a procedure, the same through a recordset, and an ad hoc statement whose text is new each time.

#include "app/db/ado/recordset.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 401;
constexpr int kCallsInRun = 50; // short enough to be rarely interrupted
constexpr int kStride = 7919;   // a prime: neighbouring calls ask for items far apart

int itemOf(int call) {
    return static_cast<int>(static_cast<long>(call) * kStride % kItems);
}

// Reads every cell, as readRow does.
class Reader : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>& columns) override { columns_ = &columns; }
    void row(const db::RowView& row) override {
        for (int i = 0; i < row.size(); ++i) {
            const db::SqlType& type = (*columns_)[static_cast<std::size_t>(i)].type;
            if (row.isNull(i))
                continue;
            if (type.isText())
                sum += row.text(i).front() + static_cast<long>(row.text(i).size());
            else if (type.isFloat())
                sum += static_cast<long>(row.value(i).toNumber());
            else
                sum += row.number(i);
        }
    }
    long sum = 0;

private:
    const std::vector<db::Column>* columns_ = nullptr;
};

std::vector<db::Parameter> pairOf(int item) {
    const db::SqlType code{db::TypeKind::VarChar, 100, 0, 0};
    return {{"@SKU", code, ItemStore::sku(item), false}, {"@MatrixSKU", code, ItemStore::sku(item) + "A", false}};
}

void require(long ours, long bare) {
    if (ours != bare)
        std::printf("DIFFERENT: %ld and %ld\n", ours, bare);
}

class PreparedLookup {
public:
    explicit PreparedLookup(const BareStore& store)
        : statement_(store.prepare("SELECT *, 1 AS \"True\" FROM Item WHERE SKU = ?1 AND MatrixSKU = ?2")) {}
    ~PreparedLookup() { sqlite3_finalize(statement_); }
    PreparedLookup(const PreparedLookup&) = delete;
    PreparedLookup& operator=(const PreparedLookup&) = delete;

    long run(int item) {
        const std::string sku = ItemStore::sku(item);
        const std::string matrixSku = sku + "A";
        sqlite3_bind_text(statement_, 1, sku.data(), static_cast<int>(sku.size()), SQLITE_STATIC);
        sqlite3_bind_text(statement_, 2, matrixSku.data(), static_cast<int>(matrixSku.size()), SQLITE_STATIC);
        long sum = 0;
        while (sqlite3_step(statement_) == SQLITE_ROW)
            sum += readRow(statement_);
        sqlite3_reset(statement_);
        return sum;
    }

private:
    sqlite3_stmt* statement_;
};

std::string adHoc(int item) {
    return "SELECT Name, DepartmentID, Active FROM Item WHERE SKU = '" + ItemStore::sku(item) + "' AND MatrixSKU = '" +
           ItemStore::sku(item) + "A'";
}

long preparedAnew(const BareStore& store, int item) {
    sqlite3_stmt* const statement = store.prepare(adHoc(item));
    long sum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW)
        sum += readRow(statement);
    sqlite3_finalize(statement);
    return sum;
}

void procedure(const ItemStore& items, const BareStore& bare) {
    const auto session = items.session();
    PreparedLookup lookup(bare);
    int ourCall = 0;
    int bareCall = 0;
    Reader reader;
    long sum = 0;
    ratio(
        "50 calls of bsp_ItemLookup", kRuns,
        [&] {
            for (int i = 0; i < kCallsInRun; ++i) {
                auto parameters = pairOf(itemOf(ourCall++));
                session->call("bsp_ItemLookup", parameters, reader);
            }
        },
        [&] {
            for (int i = 0; i < kCallsInRun; ++i)
                sum += lookup.run(itemOf(bareCall++));
        });
    require(reader.sum, sum);
}

void recordset(const ItemStore& items, const BareStore& bare) {
    db::Provider provider;
    const auto connection = std::make_shared<db::Connection>(provider);
    connection->Open("Data Source=" + items.file().string());
    PreparedLookup lookup(bare);
    int ourCall = 0;
    int bareCall = 0;
    ratio(
        "the same through a command into an updatable recordset", kRuns,
        [&] {
            for (int i = 0; i < kCallsInRun; ++i) {
                db::Command command(connection);
                command.setCommandType(db::CommandType::StoredProcedure);
                command.setCommandText("bsp_ItemLookup");
                for (const db::Parameter& parameter : pairOf(itemOf(ourCall++)))
                    command.append(parameter.name, parameter.type, parameter.value);
                db::Recordset rows;
                rows.Open(command, db::CursorType::Static, db::LockType::Optimistic);
                require(rows.RecordCount(), 1);
            }
        },
        [&] {
            for (int i = 0; i < kCallsInRun; ++i)
                lookup.run(itemOf(bareCall++));
        });
}

void adHocStatement(const ItemStore& items, const BareStore& bare) {
    const auto session = items.session();
    int ourCall = 0;
    int bareCall = 0;
    Reader reader;
    long sum = 0;
    ratio(
        "50 ad hoc statements, each text new", kRuns,
        [&] {
            for (int i = 0; i < kCallsInRun; ++i)
                session->execute(adHoc(itemOf(ourCall++)), reader);
        },
        [&] {
            for (int i = 0; i < kCallsInRun; ++i)
                sum += preparedAnew(bare, itemOf(bareCall++));
        });
    require(reader.sum, sum);
}

// The row that was just given its number, among 100,000, sought by that number: a decimal beside a column of integers.
void newestRow(const ItemStore& items, const BareStore& bare) {
    const auto session = items.session();
    db::NoResult none;
    session->execute("CREATE TABLE Numbered (ID int IDENTITY PRIMARY KEY, Code varchar(100)) INSERT INTO Numbered SELECT SKU FROM Item "
                     "INSERT INTO Numbered VALUES ('the newest')",
                     none);
    sqlite3_stmt* const statement = bare.prepare("SELECT Code FROM Numbered WHERE ID = ?1");
    Reader reader;
    long sum = 0;
    ratio(
        "50 looks for the newest row by @@IDENTITY", kRuns,
        [&] {
            for (int i = 0; i < kCallsInRun; ++i)
                session->execute("SELECT Code FROM Numbered WHERE ID = @@IDENTITY", reader);
        },
        [&] {
            for (int i = 0; i < kCallsInRun; ++i) {
                sqlite3_bind_int64(statement, 1, kItems + 1);
                while (sqlite3_step(statement) == SQLITE_ROW)
                    sum += readRow(statement);
                sqlite3_reset(statement);
            }
        });
    sqlite3_finalize(statement);
    require(reader.sum, sum);
}

} // namespace

int main() {
    const ItemStore items;
    const BareStore bare(items.file());
    procedure(items, bare);
    recordset(items, bare);
    adHocStatement(items, bare);
    newestRow(items, bare);
    return 0;
}
