#pragma once

#include "app/db/schema/schema.h"
#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"
#include "exchange/import/recordplan.h"
#include "tests/db/teststore.h"
#include "tests/exchange/import/readwhole.h"

#include <fstream>

namespace merchantry::exchange {

// A shop with two departments, a tax class, a supplier, and three items: a lamp with a price, stock and supplier, a bag of a parent, and
// one with zeros in front of its code.
class ImportStore : public db::OnAStore {
protected:
    ImportStore() {
        db::createSchema(*session);
        run("INSERT INTO Departments (Department) VALUES ('Lighting') INSERT INTO TaxDef (Amt, Description) VALUES (8.25, 'State') "
            "INSERT INTO Suppliers (Supplier) VALUES ('Acme') INSERT INTO InvReasonCodes (ReasonCode) VALUES ('Count') "
            "INSERT INTO Item (SKU, MatrixSKU, Name, DepartmentID, TypeID) VALUES ('LAMP', 'LAMP', 'Lamp', 2, 6), ('BAG', 'BAG', 'Bags', "
            "1, 4), "
            "('BAG', 'BAG-RED', 'Red bag', 1, 2), ('00123', '00123', 'Bulb', 2, 6) "
            "INSERT INTO Stock (SKU, MatrixSKU, Quantity) SELECT SKU, MatrixSKU, 0 FROM Item "
            "INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity, Price) SELECT SKU, MatrixSKU, 1, 1, 10 FROM Item "
            "UPDATE Stock SET Quantity = 5 WHERE SKU = 'LAMP' "
            "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('LAMP', 'LAMP', 'Opening Stock', 5, 4) "
            "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, PartNo) VALUES ('LAMP', 'LAMP', 1, 4, 'A-1')");
    }

    // Reads the text as a file and reckons what it would make.
    ImportPlan& plan(const std::string& text, Target target = Target::Items) {
        const auto path = folder / "list.csv";
        std::ofstream(path, std::ios::binary) << text;
        const DelimitedFile read(path);
        options.reading.decimalComma = read.guessed().decimalComma;
        plan_.reset();
        table_ = readWhole(DelimitedReading(read, read.guessed()));
        return planTable(target);
    }
    ImportPlan& planTable(Target target) {
        const ColumnMatch match = matched(target, table_);
        plan_.reset();
        if (target == Target::Items) {
            items_ = std::make_unique<ItemsInStore>(*session, match);
            plan_ = std::make_unique<ItemPlan>(table_, match, options, *items_);
        } else {
            records_ = std::make_unique<RecordsInStore>(*session, target, match);
            plan_ = std::make_unique<RecordPlan>(table_, match, target, options, *records_);
        }
        while (plan_->step() < 100) {
        }
        return *plan_;
    }
    // Rows on lines: their state and what changes.
    std::string said() const {
        std::string text;
        for (int i = 0; i < plan_->rows(); ++i) {
            static constexpr const char* kStates[] = {"new", "changed", "same", "bad"};
            text += std::string(kStates[static_cast<int>(plan_->state(i))]) + " " + plan_->key(i) + ": " + plan_->changes(i) + "\n";
        }
        return text;
    }
    // The bad cells: "B3 reason".
    std::string bad() const {
        std::string text;
        for (const Finding& one : plan_->findings())
            text += (one.column < 0 ? "" : columnLetters(one.column)) + std::to_string(table_.number(one.row)) + " " + one.reason + "\n";
        return text;
    }
    std::int32_t write(db::Session& by) {
        const auto writing = writingOf(by, *plan_, {"list.csv", "hash"});
        while (writing->step() < 100) {
        }
        return writing->run();
    }
    std::int32_t write() { return write(*session); }
    void undo(std::int32_t key) {
        ImportUndoing undoing(*session, key);
        while (undoing.step() < 100) {
        }
    }
    // Why it cannot be taken back; empty when it was.
    std::string keptBy(std::int32_t key) {
        try {
            undo(key);
            return "";
        } catch (const ImportKept& kept) {
            std::string text;
            for (const std::string& reason : kept.reasons())
                text += reason + "\n";
            return text;
        }
    }
    // All that imports may touch, but the ledger, which only grows, and what tells of imports.
    std::string everything() {
        return rowsOf(
            "SELECT SKU, MatrixSKU, Name, DepartmentID, TaxID, Reorder, Restock, Active, Notes FROM Item ORDER BY 1, 2 "
            "SELECT SKU, MatrixSKU, Quantity FROM Stock ORDER BY 1, 2 SELECT * FROM PriceMatrix ORDER BY 1, 2, 3, 4 "
            "SELECT * FROM SupplierMatrixDetail ORDER BY 1, 2, 3, 4 SELECT * FROM Departments ORDER BY 1 SELECT * FROM Suppliers ORDER BY "
            "1 SELECT * FROM Customer ORDER BY 1");
    }
    void expectSound() {
        EXPECT_EQ(db::brokenInvariants(*session), std::vector<std::string>());
        EXPECT_EQ(
            rowsOf("SELECT s.SKU FROM Stock s WHERE s.Quantity <> ISNULL((SELECT SUM(Qty) FROM InventoryLedger l WHERE l.SKU = s.SKU AND "
                   "l.MatrixSKU = s.MatrixSKU), 0) OR s.Quantity <> ISNULL((SELECT TOP 1 QtyAfter FROM InventoryLedger l WHERE l.SKU = "
                   "s.SKU AND l.MatrixSKU = s.MatrixSKU ORDER BY LedgerID DESC), 0)"),
            "");
    }

    ImportOptions options;
    SheetTable table_;
    std::unique_ptr<ItemsInStore> items_;
    std::unique_ptr<RecordsInStore> records_;
    std::unique_ptr<ImportPlan> plan_;
};

} // namespace merchantry::exchange
