#include "app/modMain.h"
#include "app/storefile.h"
#include "programs/screens.h"
#include "purchasing/frmPOCreate.h"
#include "tests/scratchfolder.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace merchantry::programs {
namespace {

using purchasing::frmPOCreate;

// The desktop with a look at the form each time that it lets the windows work, and every box answered.
class WatchingDesk : public ui::QtDesk {
public:
    WatchingDesk() : QtDesk(*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light) {}
    using Desk::message;
    ui::Answer message(const ui::Message& message) override {
        said = message.text;
        return ui::Answer::Ok;
    }
    void yield() override {
        if (const auto* bar = dynamic_cast<const ui::ProgressBar*>(form<frmPOCreate>().find("pbPO")); bar->visible())
            written(bar->value(), bar->most());
        QtDesk::yield();
    }
    void press(const char* button) {
        enter([&] { ui::gestures::press(dynamic_cast<ui::Button&>(*form<frmPOCreate>().find(button))); });
    }
    std::string said;
    std::function<void(int done, int most)> written = [](int, int) {};
};

// A run on a store where three suppliers deliver so many items by turns.
class OrderCreation : public testing::Test {
protected:
    explicit OrderCreation() {
        const auto file = folder_ / "orders.store";
        app::createStoreFile(file, {}, [](int) {});
        app::ModMain& session = app::modMain();
        session.provider = std::make_unique<db::Provider>();
        session.Conn = std::make_shared<db::Connection>(*session.provider);
        session.Conn->Open("Data Source=" + file.string());
        session.Conn->Execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('Bolt'), ('Cord')");
        session.desk = &desk;
    }
    ~OrderCreation() override { app::resetModMain(); }
    void addItems(int count) {
        for (int i = 0; i < count; ++i) {
            const std::string sku = std::to_string(100 + i);
            const auto key = db::Sql(" VALUES ('") + sku + "', '" + sku + "', ";
            app::modMain().Conn->Execute(db::Sql("INSERT INTO Item (SKU, MatrixSKU, Restock, Reorder)") + key + "4, 10)");
            app::modMain().Conn->Execute(db::Sql("INSERT INTO Stock (SKU, MatrixSKU, Quantity)") + key + "0)");
            app::modMain().Conn->Execute(db::Sql("INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID)") + key + (i % 3 + 1) + ")");
        }
    }
    frmPOCreate& shown() {
        auto& form = desk.form<frmPOCreate>();
        desk.enter([&] { desk.show(form); });
        return form;
    }
    static std::string ordered() {
        return app::openDirect(
                   "SELECT CAST(COUNT(DISTINCT POID) AS varchar(9)) + ' ' + CAST(COUNT(*) AS varchar(9)) FROM PurchaseOrderItem")
            ->cell(0, 0)
            .toText();
    }

    ScratchFolder folder_;
    WatchingDesk desk;
};

} // namespace

TEST_F(OrderCreation, ShowsEachLineAndStopsInTheMiddleOfAnOrder) {
    addItems(60);
    frmPOCreate& form = shown();
    int looks = 0;
    desk.written = [&](int done, int most) {
        EXPECT_EQ(done, ++looks);
        EXPECT_EQ(most, 60);
        EXPECT_FALSE(form.find("cmdOK")->enabled());
        if (done == 30)
            desk.press("cmdCancel"); // in the middle of the second order of 20 lines
    };
    desk.press("cmdOK");
    EXPECT_EQ(looks, 30);
    EXPECT_EQ(desk.said, "Stopped. 1 purchase order(s) with total of 20 item(s) have been generated.");
    EXPECT_EQ(ordered(), "1 20");
    EXPECT_TRUE(form.DialogResult);
    EXPECT_TRUE(form.hidden());
}

TEST_F(OrderCreation, FitsASmallScreen) {
    const ui::FormWindow& window = *desk.window(shown());
    QCoreApplication::processEvents();
    EXPECT_LE(window.minimumSizeHint().width(), 800);
    EXPECT_LE(window.minimumSizeHint().height(), 600);
}

TEST_F(OrderCreation, ShowsNoProgressForOneLine) {
    addItems(1);
    frmPOCreate& form = shown();
    desk.written = [](int, int) { ADD_FAILURE() << "a progress bar"; };
    desk.press("cmdOK");
    EXPECT_EQ(desk.said, "1 purchase order(s) with total of 1 item(s) have been generated.");
    EXPECT_TRUE(form.DialogResult);
}

} // namespace merchantry::programs
