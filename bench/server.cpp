// A store on the server that MERCHANTRY_TEST_SERVER names: a call of one row and a hundred thousand rows, beside the driver alone. A
// database of its own is made for it and dropped. Then the demo store, copied up to the server and back.

#include "app/db/ado/recordset.h"
#include "app/storecopy.h"
#include "app/storefile.h"
#include "base/guard.h"
#include "bench/benchserver.h"
#include "bench/ratio.h"
#include "demo/demostore.h"

#include <array>
#include <optional>

using namespace merchantry;
using namespace merchantry::bench;
using namespace merchantry::db::server;

namespace {

constexpr int kRows = 100'000;
constexpr int kCalls = 50; // of one run
constexpr int kRuns = 41;
constexpr int kLoads = 7;
constexpr char kSelect[] = "SELECT Id, SKU, Name, Price, Sold FROM Goods";

// The driver alone, as a program would use it that knows its columns.
class BareLink : public BareDriver {
public:
    explicit BareLink(const Address& address) : BareDriver(address) {
        SQLBindCol(statement(), 1, SQL_C_SLONG, &id_, 0, &lengths_[0]);
        SQLBindCol(statement(), 2, SQL_C_CHAR, sku_.data(), static_cast<SQLLEN>(sku_.size()), &lengths_[1]);
        SQLBindCol(statement(), 3, SQL_C_CHAR, name_.data(), static_cast<SQLLEN>(name_.size()), &lengths_[2]);
        SQLBindCol(statement(), 4, SQL_C_CHAR, price_.data(), static_cast<SQLLEN>(price_.size()), &lengths_[3]);
        SQLBindCol(statement(), 5, SQL_C_TYPE_TIMESTAMP, &sold_, 0, &lengths_[4]);
    }

    long call(const std::string& sku) {
        auto length = static_cast<SQLLEN>(sku.size());
        SQLBindParameter(statement(), 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 20, 0, const_cast<char*>(sku.data()), length, &length);
        const long rows = run("{call OneGood(?)}");
        SQLFreeStmt(statement(), SQL_RESET_PARAMS);
        return rows;
    }
    long run(const std::string& text) {
        send(text);
        long sum = 0;
        while (SQL_SUCCEEDED(SQLFetch(statement())))
            sum += id_ + lengths_[1] + lengths_[2];
        SQLFreeStmt(statement(), SQL_CLOSE);
        return sum;
    }

private:
    SQLINTEGER id_ = 0;
    std::array<char, 21> sku_{};
    std::array<char, 51> name_{};
    std::array<char, 40> price_{};
    SQL_TIMESTAMP_STRUCT sold_{};
    std::array<SQLLEN, 5> lengths_{};
};

class Sum : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override {
        sum += static_cast<long>(row.number(0)) + static_cast<long>(row.text(1).size() + row.text(2).size());
    }
    long sum = 0;
};

std::string skuOf(int number) {
    return "SKU" + std::to_string(number);
}

void fill(db::Session& session) {
    db::NoResult none;
    session.execute(
        "CREATE TABLE Goods (Id int NOT NULL PRIMARY KEY, SKU varchar(20) NOT NULL, Name varchar(50) NOT NULL, Price money NOT NULL, "
        "Sold datetime NULL, CONSTRAINT UQ_Goods UNIQUE (SKU))",
        none);
    session.execute("INSERT INTO Goods VALUES (0, 'SKU0', 'Bell of brass, number 0', 1.25, '20040229')", none);
    for (int rows = 1; rows < kRows; rows *= 2) {
        const std::string more = std::to_string(rows);
        session.execute("INSERT INTO Goods SELECT Id + " + more + ", 'SKU' + CAST(Id + " + more +
                            " AS varchar(10)), 'Bell of brass, number ' + " + "CAST(Id + " + more +
                            " AS varchar(10)), Price, Sold FROM Goods WHERE Id + " + more + " < " + std::to_string(kRows),
                        none);
    }
    session.execute("CREATE PROCEDURE OneGood @sku varchar(20) AS SELECT Id, SKU, Name, Price, Sold FROM Goods WHERE SKU = @sku", none);
}

void require(long ours, long bare) {
    if (ours != bare)
        std::printf("DIFFERENT: %ld and %ld\n", ours, bare);
}

void benchCalls(db::Session& session, BareLink& bare) {
    long ours = 0;
    long theirs = 0;
    ratio(
        "a procedure's one row, 50 calls", kRuns,
        [&] {
            Sum sum;
            for (int i = 0; i < kCalls; ++i) {
                std::vector<db::Parameter> sku{{"sku", {db::TypeKind::VarChar, 20, 0, 0}, skuOf(i * 997)}};
                session.call("OneGood", sku, sum);
            }
            ours = sum.sum;
        },
        [&] {
            theirs = 0;
            for (int i = 0; i < kCalls; ++i)
                theirs += bare.call(skuOf(i * 997));
        });
    require(ours, theirs);
}

void benchRows(const db::ConnectionPtr& connection, BareLink& bare) {
    long rows = 0;
    long theirs = 0;
    ratio(
        "100,000 rows into a recordset, beside a bare fetch", kLoads,
        [&] {
            db::Recordset all;
            all.Open(kSelect, connection, db::CursorType::Static, db::LockType::ReadOnly);
            rows = all.RecordCount();
        },
        [&] { theirs = bare.run(kSelect); });
    require(rows, kRows);
    require(theirs > 0 ? 1 : 0, 1);
}

// Rows a second of a whole copy, and of its rows alone: without the database, the tables and procedures, and the comparison.
void copy(const char* what, const std::string& from, const std::string& to) {
    using Clock = std::chrono::steady_clock;
    std::optional<Clock::time_point> first;
    Clock::time_point last;
    app::StoreCopy done;
    const double ms = msOf([&] {
        done = app::copyStoreTo(from, to, [&](int) {
            last = Clock::now();
            first = first.value_or(last);
        });
    });
    const double rowsMs = std::chrono::duration<double, std::milli>(last - *first).count();
    std::printf("%-30s %lld rows: %.1f s, %.0f rows/s; the rows alone %.1f s, %.0f rows/s\n", what, static_cast<long long>(done.rows),
                ms / 1e3, static_cast<double>(done.rows) / ms * 1e3, rowsMs / 1e3, static_cast<double>(done.rows) / rowsMs * 1e3);
}

void benchCopy(const Address& server) {
    Address address = server;
    address.database += "_copy";
    const auto folder = std::filesystem::temp_directory_path() / address.database;
    std::filesystem::create_directories(folder);
    const AtEnd removed([&] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
    const std::string file = (folder / "demo.store").string();
    const demo::DemoPlan plan{.dataFolder = demo::demoDataFolder(), .today = *Date::fromParts(2026, 11, 21, 15)};
    app::createStoreFile(
        file, [&](db::Session& session, const auto& progress) { demo::fillDemoStore(session, plan, progress); }, [](int) {});
    const std::string place = address.connectionText();
    copy("the demo store to the server", file, place);
    const AtEnd dropped([&] { dropDatabase(address); });
    copy("and back into a file", place, (folder / "back.store").string());
}

} // namespace

int main() {
    return onServer([](const Address& address) {
        db::Provider provider;
        const auto connection = std::make_shared<db::Connection>(provider);
        connection->Open(address.connectionText());
        fill(connection->session());
        BareLink bare(address);
        benchCalls(connection->session(), bare);
        benchRows(connection, bare);
        connection->Close();
        benchCopy(address);
    });
}
