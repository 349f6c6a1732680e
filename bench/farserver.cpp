// Screens on a store that a server keeps far away: an item, an order and a receipt of 200 lines over a line of 0, 5 and 20 ms there and
// back, to the server that MERCHANTRY_TEST_SERVER names. A store of its own is made for it and dropped.

#include "app/modMain.h"
#include "app/serverstore.h"
#include "bench/benchserver.h"
#include "bench/ratio.h"
#include "catalog/frmItems.h"
#include "programs/screens.h"
#include "purchasing/frmPurchaseOrders_Edit.h"
#include "purchasing/frmPurchaseOrders_Recv.h"
#include "tests/countingsession.h"
#include "tests/server/cable.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 7;

// One item and an order of 200 lines.
void furnish(const std::string& place) {
    const auto session = app::openStore(place);
    db::NoResult none;
    session->execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme') EXEC bsp_NewItem 'A1', 'A1' EXEC sp_InsertPOHeader 1", none);
    session->execute("DECLARE @i int SET @i = 0 DECLARE @sku varchar(20) WHILE @i < 200 BEGIN SET @i = @i + 1 SET @sku = 'L' + CAST(@i AS "
                     "varchar(10)) EXEC bsp_NewItem @sku, @sku EXEC sp_InsertPOItem 1, @sku, @sku, 5, 2, 'P' END EXEC sp_UpdatePONumber 1",
                     none);
}

// The application on the store, at the end of the line.
void start(ui::QtDesk& desk, const std::string& place, int& trips) {
    app::resetModMain();
    app::ModMain& session = app::modMain();
    session.desk = &desk;
    session.provider = std::make_unique<db::Provider>();
    session.provider->sessionOpened = [&trips](std::unique_ptr<db::Session> inner) {
        return std::make_unique<CountingSession>(std::move(inner), trips);
    };
    session.ConnectString = place;
    session.Conn = std::make_shared<db::Connection>(*session.provider);
    session.Conn->Open(place);
    session.DataBroker = std::make_shared<app::DataBroker>(*session.provider);
    programs::bindDoors(desk);
    session.doors.ShowItemList = {};
}

template <class Open, class Leave> void measure(const char* what, int lineMs, int& trips, Open&& open, Leave&& leave) {
    std::vector<double> times;
    for (int i = 0; i <= kRuns; ++i) {
        trips = 0;
        const double ms = msOf(open);
        if (i > 0) // the first one makes connections
            times.push_back(ms);
        const int counted = trips;
        leave();
        QCoreApplication::processEvents();
        trips = counted;
    }
    std::printf("%-28s over %2d ms: %8.1f ms, %d round trips\n", what, lineMs, median(times), trips);
}

void measureAll(ui::QtDesk& desk, const db::server::Address& address, int lineMs) {
    const db::Cable cable(address.host, address.port == 0 ? 1433 : address.port, std::chrono::milliseconds(lineMs));
    db::server::Address near = address;
    near.host = "127.0.0.1";
    near.port = cable.port();
    int trips = 0;
    start(desk, near.connectionText(), trips);
    measure(
        "frmItems", lineMs, trips, [&] { desk.enter([] { app::modMain().doors.CheckSKUs("A1|A1", false); }); },
        [&] { desk.enter([&] { desk.form<catalog::frmItems>().unload(); }); });
    const auto order = [&](auto& form) {
        form.PONumber = 1;
        desk.enter([&] { desk.show(form); });
    };
    measure(
        "an order of 200 lines", lineMs, trips, [&] { order(desk.form<purchasing::frmPurchaseOrders_Edit>()); },
        [&] { desk.enter([&] { desk.form<purchasing::frmPurchaseOrders_Edit>().unload(); }); });
    measure(
        "a receipt of 200 lines", lineMs, trips, [&] { order(desk.form<purchasing::frmPurchaseOrders_Recv>()); },
        [&] { desk.enter([&] { desk.form<purchasing::frmPurchaseOrders_Recv>().unload(); }); });
    app::resetModMain();
}

} // namespace

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(count, arguments);
    ui::QtDesk desk(application, ui::Tone::Light);
    return onServer([&](const db::server::Address& address) {
        app::createServerStore(address.connectionText(), [](int) {});
        furnish(address.connectionText());
        for (const int lineMs : {0, 5, 20})
            measureAll(desk, address, lineMs);
    });
}
