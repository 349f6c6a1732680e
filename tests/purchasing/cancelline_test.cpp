#include "purchasing/cancelline.h"
#include "purchasing/receiveline.h"

#include "app/db/schema/schema.h"
#include "app/modMain.h"
#include "tests/db/teststore.h"

namespace merchantry::purchasing {
namespace {

// An order of three items, ten of each.
class OpenOrder : public db::OnAStore {
protected:
    OpenOrder() {
        db::createSchema(*session);
        run("INSERT INTO Suppliers (Supplier) VALUES ('Acme') INSERT INTO PurchaseOrder (SupID, PONumber) VALUES (1, 1)");
        for (const std::string code : {"'A', 'A'", "'B', 'B'", "'C', 'C'"})
            run("bsp_NewItem " + code + " INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost) VALUES (1, " + code + ", 10, 1)");
        app::modMain().provider = std::make_unique<db::Provider>();
        app::modMain().Conn = std::make_shared<db::Connection>(*app::modMain().provider);
        app::modMain().Conn->Open("Data Source=" + file.string());
    }
    ~OpenOrder() override { app::resetModMain(); }

    std::string cancelled() { return rowsOf("SELECT SKU, QtyCanceled FROM PurchaseOrderItem WHERE QtyCanceled > 0 ORDER BY SKU"); }
    std::string status() { return rowsOf("SELECT Status FROM PurchaseOrder"); }
};

TEST_F(OpenOrder, LinesOfOnePostingBearOneNumberAndTheRestKeepsItOpen) {
    std::vector<CancelLine> lines = openLinesFor(1, &CancelLine::CancelQty);
    lines[1].CancelQty = 0;
    const std::int32_t number = postCancellation(1, lines);
    EXPECT_EQ(cancelled(), "A|10;C|10");
    EXPECT_EQ(rowsOf("SELECT DISTINCT CancelNumber FROM PurchaseOrderCancel"), std::to_string(number));
    EXPECT_EQ(status(), "P");
    std::vector<ReceiveLine> rest = openLinesFor(1, &ReceiveLine::RecvQty);
    ASSERT_EQ(rest.size(), 1U);
    postReceipt(1, rest, {}, "");
    EXPECT_EQ(status(), "C");
}

TEST_F(OpenOrder, ARefusedLineLeavesNothingOfItsPosting) {
    std::vector<CancelLine> lines = openLinesFor(1, &CancelLine::CancelQty);
    lines[2].CancelQty = 11;
    EXPECT_THROW(postCancellation(1, lines), db::DbError);
    EXPECT_EQ(cancelled(), "");
    EXPECT_NE(status(), "C");
}

} // namespace
} // namespace merchantry::purchasing
