// Every screen that posts, its line to the server cut at many a request: nothing of the posting is in the store then, or all of it, the
// screen keeps what was typed, and the next press posts.

#include "app/modMain.h"
#include "app/serverstore.h"
#include "app/stockproof.h"
#include "base/text.h"
#include "programs/storehost.h"
#include "tests/server/cable.h"
#include "tests/server/onaserver.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/play/player.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <sstream>
#include <thread>

namespace merchantry::programs {
namespace {

using db::Cable;

constexpr int kMore = 1000; // requests than any posting has

// What is there to post on, in any number.
constexpr const char* kGoods =
    "INSERT INTO Suppliers (Supplier) VALUES ('Acme') EXEC bsp_NewItem 'CUP', 'CUP' EXEC bsp_NewItem 'LAMP', 'LAMP' "
    "UPDATE Item SET Name = SKU, Restock = 4 UPDATE PriceMatrix SET Price = 10 WHERE SKU IN ('CUP', 'LAMP') "
    "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo) VALUES ('CUP', 'CUP', 1, 2, 1, 1, 'A'), "
    "('LAMP', 'LAMP', 1, 20, 1, 1, 'B') "
    "EXEC sp_InsertPOHeader 1 EXEC sp_InsertPOItem 1, 'CUP', 'CUP', 9000, 2, 'A' EXEC sp_InsertPOItem 1, 'LAMP', 'LAMP', 9000, 20, 'B' "
    "EXEC sp_UpdatePONumber 1 "
    "INSERT INTO Customer (FirstName, LastName, ChargeAccount, AssessFinanceCharges, APR, OverdueAfter) VALUES ('Ann', 'Ash', 1, 1, 20, 0) "
    "INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, PastDueDate, Total, OutstandingBalance) VALUES (1, 'Sale', '2025-01-01', "
    "'2025-01-01', 120, 120) UPDATE Customer SET Balance = 120";

struct Road {
    const char* name;
    const char* open;    // lines of a play that lead to the screen, filled in
    const char* form;    // that stays after a failure,
    const char* button;  // and posts
    const char* figures; // a row of numbers that one posting moves by the same, always
};

constexpr Road kRoads[] = {
    {"Receiving",
     "call frmPurchaseOrders_Recv.Receive \"1\"\n"
     "edit grdPOItems 1 5 \"1\"\n"
     "edit grdPOItems 2 5 \"2\"\n",
     "frmPurchaseOrders_Recv", "cmdOK",
     "SELECT (SELECT COUNT(*) FROM PurchaseOrderReceipt), (SELECT SUM(QtyRecvd) FROM PurchaseOrderItem WHERE POID = 1), "
     "(SELECT SUM(Quantity) FROM Stock), (SELECT SUM(Qty) FROM InventoryLedger)"},
    {"Cancelling",
     "call frmPOCancel.Cancel \"1\"\n"
     "edit grdPOItems 1 4 \"1\"\n"
     "edit grdPOItems 2 4 \"2\"\n",
     "frmPOCancel", "cmdOK",
     "SELECT (SELECT COUNT(*) FROM PurchaseOrderCancel), (SELECT SUM(QtyCanceled) FROM PurchaseOrderItem WHERE POID = 1)"},
    {"ANewOrder",
     "call frmPurchaseOrders_Edit.ShowOrder \"-1\" \"1\"\n"
     "edit grdItems 1 0 \"1\"\n"
     "edit grdItems 2 0 \"1\"\n"
     "click cmdOK\n"
     "edit grdPOItems 1 4 \"3\"\n"
     "edit grdPOItems 2 4 \"4\"\n",
     "frmPurchaseOrders_Edit", "cmdOK",
     "SELECT COUNT(*), MAX(PONumber), (SELECT COUNT(*) FROM PurchaseOrderItem), (SELECT SUM(Qty) FROM PurchaseOrderItem) FROM "
     "PurchaseOrder"},
    {"AnOrderRun",
     "sql \"UPDATE Item SET Reorder = (SELECT SUM(Qty - QtyRecvd - QtyCanceled) FROM PurchaseOrderItem i WHERE i.SKU = Item.SKU) + 10 "
     "WHERE SKU IN ('CUP', 'LAMP') UPDATE Item SET Restock = 9999 WHERE SKU IN ('CUP', 'LAMP')\"\n"
     "command mnuSuppiersPurchaseorders\n"
     "click cmdAdd\n"
     "click cmdGenerate\n",
     "frmPOCreate", "cmdOK", "SELECT COUNT(*), MAX(PONumber), (SELECT COUNT(*) FROM PurchaseOrderItem) FROM PurchaseOrder"},
    {"StoreCredit",
     "command mnuStoreCreditAdj\n"
     "type txtAmount \"10\"\n",
     "frmStoreCreditUdjustment", "cmdPostAdjustment",
     "SELECT COUNT(*), SUM(Total), SUM(OutstandingBalance), (SELECT SUM(Balance) FROM Customer) FROM CreditTransaction"},
    {"PricesTogether",
     "command mnuItemsItemmaintenance\n"
     "call frmItemLookup.srch_FieldSearch \"All\" \"\"\n"
     "click cmdBulkPrice\n"
     "pick lbxTier \"Retail\"\n"
     "pick lbxBy \"Amount\"\n"
     "type txtChange \"1\"\n",
     "frmBulkPrice", "cmdApply",
     "SELECT COUNT(*), (SELECT COUNT(*) FROM PriceChangeItem), (SELECT SUM(Price) FROM PriceMatrix WHERE SKU IN ('CUP', 'LAMP')) FROM "
     "PriceChange"},
    {"Statements",
     "sql \"DECLARE @run int SELECT @run = MAX(RunID) FROM StatementRun IF @run IS NOT NULL EXEC bsp_TakeBackStatementRun @run\"\n"
     "command mnuRunCustomerStatements\n"
     "type txtAsAt \"2/1/2026\"\n"
     "click cmdDrawUp\n",
     "frmStatements", "cmdPost",
     "SELECT (SELECT COUNT(*) FROM StatementRun), (SELECT COUNT(*) FROM Statement), (SELECT COUNT(*) FROM CreditTransaction WHERE "
     "CreditCode LIKE 'Finance%')"},
};

using Figures = std::vector<double>;

// A play's application behind a cable. Two "queries" of its script are not the store's: "cut" arms the cable, and "look" sees what became
// of the posting and, where nothing did, presses the button again.
class CutHost : public StoreHost {
public:
    CutHost(const std::string& place, std::function<void(ui::play::PlayDesk&)> cut, std::function<void(ui::play::PlayDesk&)> look)
        : StoreHost(place, false), cut_(std::move(cut)), look_(std::move(look)) {}
    void start(ui::play::PlayDesk& desk, const ui::play::StartUp& startUp) override {
        desk_ = &desk;
        StoreHost::start(desk, startUp);
    }
    std::vector<std::vector<Value>> query(const std::string& batch) override {
        if (batch != "cut" && batch != "look")
            return StoreHost::query(batch);
        (batch == "cut" ? cut_ : look_)(*desk_);
        return {};
    }

private:
    ui::play::PlayDesk* desk_ = nullptr;
    std::function<void(ui::play::PlayDesk&)> cut_;
    std::function<void(ui::play::PlayDesk&)> look_;
};

class RoadsOnAServer : public db::OnAServer, public testing::WithParamInterface<Road> {
protected:
    static void SetUpTestSuite() { setUpStore(kGoods); }
    void SetUp() override {
        OnAServer::SetUp();
        if (!IsSkipped())
            cable.reset(new Cable(db::cableTo(host->address())));
    }

    Figures figures() const {
        Figures found;
        for (const std::string& text : split(rowsOf(GetParam().figures), "|"))
            found.push_back(text.empty() || text == "NULL" ? 0 : std::stod(text));
        return found;
    }
    static Figures moved(const Figures& from, const Figures& by) {
        Figures sum = from;
        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] += by[i];
        return sum;
    }
    // Plays the road, cut at that request of its posting; how many requests were left until the cut.
    int play(int request, Cable::Where where, const std::function<void(ui::play::PlayDesk&)>& look) {
        const Road& road = GetParam();
        int left = 0;
        CutHost application(
            db::through(*cable, host->address()).connectionText(),
            [&](ui::play::PlayDesk&) {
                before = figures();
                cable->cutAt(request, where);
            },
            [&](ui::play::PlayDesk& desk) {
                left = cable->spared();
                look(desk);
            });
        std::ostringstream out;
        ui::play::Transcript transcript(out);
        ui::play::PlayDesk desk(transcript);
        desk.queueAnswer(ui::Answer::Yes); // where it asks first
        const auto script = ui::play::parseScript(road.name, std::string("login \"manager\" \"manager\"\n") + road.open +
                                                                 "sql \"cut\"\nclick " + road.button + "\nsql \"look\"\n");
        ui::play::Player player(script, desk, application, transcript);
        EXPECT_TRUE(player.run()) << out.str();
        told = out.str();
        return left;
    }
    // How many boxes told that the connection was lost. All boxes are taken away.
    static int lossesTold(ui::play::PlayDesk& desk) {
        const auto tellsLoss = [](const ui::Message& box) { return box.text.find(" was lost. ") != std::string::npos; };
        const auto told = std::count_if(desk.messages.begin(), desk.messages.end(), tellsLoss);
        desk.messages.clear();
        return static_cast<int>(told);
    }
    // The next attempt, on the same screen.
    static void pressAgain(ui::play::PlayDesk& desk) {
        ui::Form* kept = nullptr;
        for (ui::Form* form : desk.openForms())
            if (form->name() == GetParam().form)
                kept = form;
        ASSERT_NE(kept, nullptr) << "the screen is gone";
        desk.queueAnswer(ui::Answer::Yes);
        dynamic_cast<ui::Button&>(*kept->find(GetParam().button)).press();
        desk.messages.clear();
    }
    void prove() const {
        const app::Proof proof = app::proveStock(*session, [](int) { return true; });
        for (const auto& list : {proof.ledger, proof.stock})
            for (const app::ProofFinding& finding : list)
                ADD_FAILURE() << finding.sentence();
        for (const std::string& broken : db::brokenInvariants(*session))
            ADD_FAILURE() << broken;
    }

    std::unique_ptr<Cable> cable;
    Figures before;
    std::string told;
};

TEST_P(RoadsOnAServer, CutAnywhereSaveAllOrNothingAndGoOn) {
    Figures step;
    const int requests = kMore - play(kMore, Cable::Where::BeforeIt, [&](ui::play::PlayDesk& desk) {
                             step = figures();
                             for (std::size_t i = 0; i < step.size(); ++i)
                                 step[i] -= before[i];
                             desk.messages.clear();
                         });
    ASSERT_NE(step, Figures(step.size())) << "nothing was posted: " << told;
    ASSERT_GT(requests, 1);
    int came = 0;
    int whole = 0;
    int nothing = 0;
    for (const int request : std::set<int>{2, requests / 2, requests})
        for (const Cable::Where where : {Cable::Where::BeforeIt, Cable::Where::BehindIt}) {
            SCOPED_TRACE(std::to_string(request) + " of " + std::to_string(requests) + (where == Cable::Where::BeforeIt ? "" : ", behind"));
            const int left = play(request, where, [&](ui::play::PlayDesk& desk) {
                // Nobody looks at once, and a server may be at work on what it was told last.
                std::this_thread::sleep_for(std::chrono::milliseconds(500));
                const int losses = lossesTold(desk);
                EXPECT_LE(losses, 1);
                if (figures() == before) {
                    EXPECT_EQ(losses, 1);
                    ++nothing;
                    pressAgain(desk);
                } else {
                    ++whole;
                }
                EXPECT_EQ(figures(), moved(before, step));
            });
            came += left == 0 ? 1 : 0; // the last requests, which read, are some more or less
        }
    EXPECT_GE(came, 4);
    EXPECT_GT(nothing, 0);
    EXPECT_GT(whole, 0);
    prove();
}

INSTANTIATE_TEST_SUITE_P(Screens, RoadsOnAServer, testing::ValuesIn(kRoads), [](const auto& road) { return road.param.name; });

} // namespace
} // namespace merchantry::programs
