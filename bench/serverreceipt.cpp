// A receipt of 200 lines on the server that MERCHANTRY_TEST_SERVER names, posted as the receiving screen does, beside the same statements
// sent bare over the driver: one transaction on either side. A database of its own is made for it and dropped.

#include "app/db/ado/recordset.h"
#include "app/db/schema/schema.h"
#include "app/modMain.h"
#include "base/guard.h"
#include "bench/benchserver.h"
#include "bench/ratio.h"
#include "purchasing/receiveline.h"

using namespace merchantry;
using namespace merchantry::bench;
using namespace merchantry::db::server;

namespace {

constexpr int kLines = 200;
constexpr int kRuns = 9;

std::string codeOf(int line) {
    return "ITEM" + std::to_string(1000 + line);
}

// Two orders of the same items: number 1 is received by the program, number 2 by bare statements.
void order(db::Session& session) {
    db::NoResult none;
    session.execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme')", none);
    session.begin();
    for (int line = 0; line < kLines; ++line)
        session.execute("EXEC bsp_NewItem '" + codeOf(line) + "', '" + codeOf(line) + "'", none);
    for (const std::string poid : {"1", "2"}) {
        session.execute("EXEC sp_InsertPOHeader 1", none);
        for (int line = 0; line < kLines; ++line)
            session.execute("EXEC sp_InsertPOItem " + poid + ", '" + codeOf(line) + "', '" + codeOf(line) + "', 30000, 2.5, 'P'", none);
        session.execute("EXEC sp_UpdatePONumber " + poid, none);
    }
    session.commit();
}

std::vector<purchasing::ReceiveLine> receivedLines() {
    std::vector<purchasing::ReceiveLine> lines(kLines);
    for (int i = 0; i < kLines; ++i) {
        purchasing::ReceiveLine& line = lines[static_cast<std::size_t>(i)];
        line.SKU = line.MatrixSKU = codeOf(i);
        line.Qty = 30000;
        line.Cost = Currency::fromUnits(25'000);
        line.PartNo = "P";
        line.RecvQty = 1;
    }
    return lines;
}

// The statements of a receipt, sent over the driver.
class Bare : public BareDriver {
public:
    explicit Bare(const Address& address) : BareDriver(address) { SQLBindCol(statement(), 1, SQL_C_SLONG, &first_, 0, &length_); }

    // The first column of the last row.
    int run(const std::string& text) {
        first_ = 0;
        if (send(text) == SQL_ERROR)
            std::printf("DIFFERENT: %s\n", diagnosticsOf(SQL_HANDLE_STMT, statement()).front().text.c_str());
        SQLSMALLINT columns = 0;
        do {
            SQLNumResultCols(statement(), &columns);
            while (columns > 0 && SQL_SUCCEEDED(SQLFetch(statement()))) {
            }
        } while (SQL_SUCCEEDED(SQLMoreResults(statement())));
        SQLFreeStmt(statement(), SQL_CLOSE);
        return first_;
    }
    void receive() {
        run("BEGIN TRANSACTION");
        int receipt = -1;
        for (int i = 0; i < kLines; ++i) {
            const int given =
                run("sp_ReceiveItem 1, 2, '" + codeOf(i) + "', '" + codeOf(i) + "', 1, 2.5, 0, 0, " + std::to_string(receipt) + ", 'P'");
            receipt = receipt == -1 ? given : receipt;
        }
        run("sp_ChangePOStatus 2, 'P'");
        run("COMMIT TRANSACTION");
    }

private:
    SQLINTEGER first_ = 0;
    SQLLEN length_ = 0;
};

// As the desktop has one: it never gives up.
class Patient : public db::Waiter {
public:
    bool goOn(std::chrono::milliseconds) override { return true; }
};

int received(int poid) {
    db::Recordset sum;
    sum.Open(db::Sql("SELECT SUM(QtyRecvd) FROM PurchaseOrderItem WHERE POID = ") + poid, app::modMain().Conn);
    return sum[0].Value().toInt32();
}

} // namespace

int main() {
    return onServer([](const Address& address) {
        Patient waiter;
        const AtEnd left([] { app::resetModMain(); });
        app::ModMain& session = app::modMain();
        session.provider = std::make_unique<db::Provider>();
        session.provider->waiter = &waiter;
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open(address.connectionText());
        db::createSchema(session.Conn->session(), [](int) {});
        order(session.Conn->session());
        const std::vector<purchasing::ReceiveLine> lines = receivedLines();
        Bare bare(address);
        ratio(
            "a receipt of 200 lines on a server", kRuns, [&] { purchasing::postReceipt(1, lines, Currency(), ""); },
            [&] { bare.receive(); });
        if (received(1) != received(2))
            std::printf("DIFFERENT: %d and %d received\n", received(1), received(2));
    });
}
