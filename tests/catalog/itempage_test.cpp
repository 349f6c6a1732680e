#include "app/db/schema/schema.h"
#include "catalog/generalpage.h"
#include "catalog/notespage.h"
#include "catalog/supplierspage.h"
#include "tests/db/teststore.h"
#include "ui/play/playdesk.h"

#include <sstream>

namespace merchantry::catalog {
namespace {

// The pages without their screen: a bare form, and what they tell it.
class BareForm : public ui::Form, public ItemScreen {
public:
    explicit BareForm(ui::Desk& desk) : Form(desk, "frmBare", "Item") {
        setLayout(ui::column({general.item(panel), suppliers.item(), notes.item()}));
    }

    ui::Form& form() override { return *this; }
    ui::UndoLine& undoLine() override { return undo; }
    bool populated() const override { return true; }
    bool filled() const override { return isFilled; }
    std::string retailPrice() const override { return general.retailPrice(); }
    std::string cost() const override { return general.cost(); }
    void readAgain() override {}
    void pricesWritten() override { told += "prices written;"; }
    void pricesPutBack() override {}
    void retailPriceWritten() override { told += "retail " + retailPrice() + ";"; }
    void offerPriceUndo(app::WrittenRows& rows, const std::string& procedure, int) override {
        told += rows.compare() ? procedure + " can be undone;" : "";
    }
    void nameChanged(const std::string& typed) override { told += "name " + typed + ";"; }
    void typeChanged(int type) override { told += "type " + std::to_string(type) + ";"; }
    void itemDeleted() override {}

    template <class T> T& the(const char* name) { return dynamic_cast<T&>(*find(name)); }

    bool isFilled = false;
    std::string told;
    ui::UndoLine undo{*this};
    ui::Button panel{*this, "cmdPanel", ""};
    GeneralPage general{*this};
    SuppliersPage suppliers{*this};
    NotesPage notes{*this};
};

class ItemPages : public db::OnAStore {
protected:
    ItemPages() {
        db::createSchema(*session);
        run("INSERT INTO Suppliers (Supplier) VALUES ('Acme') EXEC bsp_NewItem 'A', 'A' "
            "UPDATE Item SET Name = 'Lamp', Notes = 'Fragile' UPDATE PriceMatrix SET Price = 5 "
            "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, Priority) VALUES ('A', 'A', 1, 2, 1)");
        app::ModMain& shared = app::modMain();
        shared.desk = &desk_;
        shared.provider = std::make_unique<db::Provider>();
        shared.Conn = std::make_shared<db::Connection>(*shared.provider);
        shared.Conn->Open("Data Source=" + file.string());
        shared.DataBroker = std::make_shared<app::DataBroker>(*shared.provider);
        shared.CurrentSKU = shared.CurrentMatrixSKU = "A";
        shared.ItemRecordset = openUpdatable("bsp_ItemLookup", itemKey());
        form_.ensureLoaded();
    }
    ~ItemPages() override {
        form_.suppliers.release();
        app::modMain().ItemRecordset.reset();
        app::resetModMain();
    }

    std::ostringstream out_;
    ui::play::Transcript transcript_{out_};
    ui::play::PlayDesk desk_{transcript_};
    BareForm form_{desk_};
};

TEST_F(ItemPages, LeavingABoxThatWasNeverFilledKeepsWhatIsStored) {
    auto& notes = form_.the<ui::TextBox>("txtNotes");
    notes.lostFocus();
    form_.the<ui::TextBox>("txtReorder").lostFocus();
    EXPECT_EQ(rowsOf("SELECT Notes FROM Item WHERE SKU = 'A'"), "Fragile");
    form_.notes.populate();
    form_.isFilled = true;
    notes.setText("");
    notes.lostFocus();
    EXPECT_EQ(rowsOf("SELECT Notes FROM Item WHERE SKU = 'A'"), "");
}

TEST_F(ItemPages, ThePriceOnTheFirstPageIsToldToTheOthers) {
    form_.general.loadLists();
    form_.general.populate();
    form_.told.clear();
    form_.the<ui::TextBox>("txtPriceAmt").setText("7.5");
    form_.the<ui::TextBox>("txtPriceAmt").lostFocus();
    EXPECT_EQ(form_.told, "retail 7.5;txtPriceAmt_LostFocus can be undone;prices written;");
    form_.told.clear();
    form_.the<ui::TextBox>("txtName").setText(" Lantern ");
    form_.the<ui::TextBox>("txtName").lostFocus();
    EXPECT_EQ(form_.told, "name  Lantern ;");
    EXPECT_EQ(rowsOf("SELECT Name FROM Item WHERE SKU = 'A'"), "Lantern");
}

TEST_F(ItemPages, SuppliersAreWrittenOnlyByTheirSaving) {
    form_.suppliers.populate();
    auto& grid = form_.the<ui::Grid>("grdSuppliers");
    ASSERT_EQ(grid.dataRows(), 1);
    grid.setCurrent(1, 0);
    form_.the<ui::Button>("cmdDeleteSupplier").press();
    EXPECT_EQ(grid.dataRows(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM SupplierMatrixDetail"), "1");
    EXPECT_TRUE(form_.suppliers.SaveSupplierMatrix());
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM SupplierMatrixDetail"), "0");
}

// A user who would not wait for another program, or whose server was gone, found the old name in the box.
TEST_F(ItemPages, WhatCouldNotBeSavedJustThenStaysTyped) {
    struct Impatient : db::Waiter {
        bool goOn(std::chrono::milliseconds) override { return false; }
    };
    form_.general.loadLists();
    form_.general.populate();
    form_.isFilled = true;
    auto& name = form_.the<ui::TextBox>("txtName");
    auto& reorder = form_.the<ui::TextBox>("txtReorder");
    name.setText("Lantern");
    reorder.setText("7");
    app::modMain().waiter = std::make_unique<Impatient>();
    app::modMain().provider->waiter = app::modMain().waiter.get();
    app::modMain().Conn->session().setWaiter(app::modMain().waiter.get());
    app::modMain().ItemRecordset = openUpdatable("bsp_ItemLookup", itemKey());
    run("BEGIN TRANSACTION UPDATE Item SET Notes = Notes");
    name.lostFocus();
    reorder.lostFocus();
    EXPECT_EQ(name.text() + " " + reorder.text(), "Lantern 7");
    run("ROLLBACK");
    name.lostFocus();
    reorder.lostFocus();
    EXPECT_EQ(rowsOf("SELECT Name, Reorder FROM Item WHERE SKU = 'A'"), "Lantern|7");
}

} // namespace
} // namespace merchantry::catalog
