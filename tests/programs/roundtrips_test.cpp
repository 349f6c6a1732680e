#include "app/modMain.h"
#include "app/storefile.h"
#include "catalog/frmItems.h"
#include "programs/screens.h"
#include "purchasing/frmPurchaseOrders_Edit.h"
#include "purchasing/frmPurchaseOrders_Recv.h"
#include "tests/countingsession.h"
#include "tests/scratchfolder.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/qt/qtdesk.h"
#include "ui/textbox.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

constexpr int kLines = 200; // of the order

// How often screens go to their store and back: over a long line each time is felt.
class RoundTrips : public testing::Test {
protected:
    RoundTrips() {
        file_ = folder_ / "shop.store";
        app::createStoreFile(file_, {}, [](int) {});
        open(false);
        for (const db::Sql& statement : std::initializer_list<db::Sql>{
                 "INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('Bolt')", "INSERT INTO TierDefs (TierName) VALUES ('Club')",
                 "bsp_NewItem 'A1', 'A1'", "bsp_NewItem 'A2', 'A2'", "INSERT INTO SalesMessages (Message) VALUES ('Mind the wheel')",
                 "UPDATE Item SET Name = 'Bell ' + SKU, SalesMsgID = (SELECT MAX(SalesMsgID) FROM SalesMessages), Notes = 'brass'",
                 "UPDATE PriceMatrix SET Price = 5", "UPDATE Stock SET Quantity = 7",
                 "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('A1', 'A1', 'Opening', 7, 2)",
                 "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority) VALUES ('A1', 'A1', 1, 2, 1)",
                 "INSERT INTO ItemSubstitutes (SKU, MatrixSKU, SubSKU, SubMatrixSKU, Priority) VALUES ('A1', 'A1', 'A2', 'A2', 1)",
                 "sp_InsertPOHeader 1",
                 "DECLARE @i int SET @i = 0 WHILE @i < 200 BEGIN SET @i = @i + 1 DECLARE @sku varchar(20) SET @sku = 'L' + CAST(@i AS "
                 "varchar(10)) EXEC bsp_NewItem @sku, @sku EXEC sp_InsertPOItem 1, @sku, @sku, 5, 2, 'P' END",
                 "sp_UpdatePONumber 1"})
            app::modMain().Conn->Execute(statement);
    }
    ~RoundTrips() override { app::resetModMain(); }

    // The application on the store, counted and far, or as it is on a store file.
    void open(bool counted) {
        app::resetModMain();
        app::ModMain& session = app::modMain();
        session.desk = &desk;
        session.provider = std::make_unique<db::Provider>();
        if (counted)
            session.provider->sessionOpened = [this](std::unique_ptr<db::Session> inner) {
                return std::make_unique<CountingSession>(std::move(inner), trips);
            };
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.ConnectString = "Data Source=" + file_.string();
        session.Conn->Open(session.ConnectString);
        session.DataBroker = std::make_shared<app::DataBroker>(*session.provider);
        bindDoors(desk);
        session.doors.ShowItemList = {};
        session.doors.OrderReport = [](std::int16_t, const std::string&, const std::string&) {};
        trips = 0;
    }
    void openItem() {
        desk.enter([] { app::modMain().doors.CheckSKUs("A1|A1", false); });
    }
    // What the form shows, control by control.
    static std::string shownBy(ui::Form& form) {
        std::string shown;
        for (const ui::Control* control : form.controls()) {
            if (const auto* box = dynamic_cast<const ui::TextBox*>(control))
                shown += control->name() + "=" + box->text() + "\n";
            else if (const auto* label = dynamic_cast<const ui::Label*>(control))
                shown += control->name() + "=" + label->caption() + "\n";
            else if (const auto* grid = dynamic_cast<const ui::Grid*>(control))
                for (int row = 1; row <= grid->dataRows(); ++row)
                    for (int column = 0; column < grid->columnCount(); ++column)
                        shown += control->name() + "=" + grid->text(row, column) + "\n";
        }
        return shown;
    }

    ScratchFolder folder_;
    std::filesystem::path file_;
    ui::QtDesk desk{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
    int trips = 0;
};

} // namespace

TEST_F(RoundTrips, AnItemOpensInAtMostSix) {
    open(true);
    openItem();
    EXPECT_LE(trips, 6);
    EXPECT_GT(trips, 0);
}

// What was read ahead is what would have been read.
TEST_F(RoundTrips, AnItemShowsTheSameFromFarAsFromNear) {
    openItem();
    const std::string near = shownBy(desk.form<catalog::frmItems>());
    desk.enter([this] { desk.form<catalog::frmItems>().unload(); });
    open(true);
    openItem();
    EXPECT_EQ(shownBy(desk.form<catalog::frmItems>()), near);
    EXPECT_NE(near.find("Mind the wheel"), std::string::npos);
}

TEST_F(RoundTrips, AnOrderOpens) {
    open(true);
    auto& form = desk.form<purchasing::frmPurchaseOrders_Edit>();
    form.PONumber = 1;
    desk.enter([&] { desk.show(form); });
    EXPECT_LE(trips, 6);
    EXPECT_GT(trips, 0);
}

TEST_F(RoundTrips, AReceiptOpens) {
    open(true);
    auto& form = desk.form<purchasing::frmPurchaseOrders_Recv>();
    form.PONumber = 1;
    desk.enter([&] { desk.show(form); });
    EXPECT_LE(trips, 6);
    EXPECT_GT(trips, 0);
}

} // namespace merchantry::programs
