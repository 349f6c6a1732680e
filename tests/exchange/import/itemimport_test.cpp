#include "base/numbers.h"
#include "base/text.h"
#include "tests/exchange/import/importstore.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace merchantry::exchange {
namespace {

class ItemImport : public ImportStore {};

constexpr const char* kList = "Item No.,Description,Retail Price,Dept,Tax Class,On Hand,Vendor,Cost,Part #,Reorder At\n"
                              "LAMP,Big lamp,$12.50,Lighting,State,8,Acme,4.25,A-1,2\n"
                              "bag-red,,11,,,,,,,\n"
                              "NEW-1,Shade,\"1,250.00\",Lighting,State,3,Acme,2.10,S-7,\n"
                              "NEW-2,Cord,2,General,,,,,,\n"
                              ",,,,,,,,,\n"
                              "00123,Bulb,10,,,0,,,,\n";

TEST_F(ItemImport, TellsEveryRowsFateAndWritesNothing) {
    const std::string before = everything();
    plan(kList);
    EXPECT_EQ(bad(), "");
    EXPECT_EQ(said(),
              "changed LAMP: Name Lamp to Big lamp; Price $10.00 to $12.50; Tax class None to State; Stock 5 to 8; Cost $4.00 to $4.25; "
              "Reorder at 0 to 2\n"
              "changed BAG-RED: Price $10.00 to $11.00\n"
              "new NEW-1: Price $1,250.00; Department Lighting; Tax class State; Stock 3; Supplier Acme; Cost $2.10; Part number S-7\n"
              "new NEW-2: Price $2.00; Department General\n"
              "same 00123: \n");
    EXPECT_EQ(joined(plan_->sums(), " "), "Stock moves by 6 pieces, $19.05 at the file's costs. 2 prices rise, 0 fall.");
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM ImportRun"), "0");
}

TEST_F(ItemImport, WritesThroughTheLedgerAndIsUndoneAsOne) {
    const std::string before = everything();
    options.reason = "Count";
    plan(kList);
    const std::int32_t key = write();
    EXPECT_EQ(
        rowsOf("SELECT SKU, Name, DepartmentID, TaxID, Restock, TypeID FROM Item WHERE SKU IN ('LAMP', 'NEW-1', 'NEW-2') ORDER BY SKU"),
        "LAMP|Big lamp|2|1|2|6;NEW-1|Shade|2|1|0|6;NEW-2|Cord|1|0|0|6");
    EXPECT_EQ(rowsOf("SELECT SKU, Type, Kind, Qty, Cost_ea, Cost_wt, QtyAfter FROM InventoryLedger ORDER BY SKU, LedgerID"),
              "LAMP|Opening Stock|Opening|5|4|4|5;LAMP|Count|Adjustment|3|4.25|4.0938|8;NEW-1|Count|Adjustment|3|2.1|2.1|3");
    EXPECT_EQ(rowsOf("SELECT MatrixSKU, Price FROM PriceMatrix ORDER BY MatrixSKU"),
              "00123|10;BAG|10;BAG-RED|11;LAMP|12.5;NEW-1|1250;NEW-2|2");
    EXPECT_EQ(rowsOf("SELECT SKU, SupID, Cost, PartNo, MinOrder, Priority FROM SupplierMatrixDetail ORDER BY SKU"),
              "LAMP|1|4.25|A-1|1|1;NEW-1|1|2.1|S-7|1|1");
    EXPECT_EQ(rowsOf("SELECT Words, UndoneAt FROM ImportRun"), "2 new, 2 changed, 1 as they were|NULL");
    expectSound();
    EXPECT_NE(earlierImport(*session, Target::Items, "hash").find("exactly this content"), std::string::npos);
    EXPECT_EQ(earlierImport(*session, Target::Items, "other"), "");

    plan(kList);
    EXPECT_EQ(plan_->count(RowState::Same), 5) << said();

    undo(key);
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(rowsOf("SELECT Qty, Cost_wt, QtyAfter, ReversesID FROM InventoryLedger WHERE SKU = 'LAMP' ORDER BY LedgerID"),
              "5|4|5|NULL;3|4.0938|8|NULL;-3|4.0001|5|3");
    expectSound();
    EXPECT_EQ(keptBy(key), "This import was undone before.\n");
    EXPECT_EQ(earlierImport(*session, Target::Items, "hash"), "");
}

TEST_F(ItemImport, WhoseItemsWereChangedSinceStaysAndNamesThem) {
    plan(kList);
    const std::int32_t key = write();
    run("UPDATE PriceMatrix SET Price = 3 WHERE SKU = 'NEW-2' UPDATE Item SET Notes = 'fragile' WHERE SKU = 'NEW-1'");
    run("UPDATE Stock SET Quantity = 7 WHERE SKU = 'LAMP' INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('LAMP', "
        "'LAMP', 'Sale', -1, 4)");
    const std::string before = everything();
    EXPECT_EQ(keptBy(key),
              "The item LAMP has another stock since.\nThe item NEW-1 has other data since.\nThe item NEW-2 has another price since.\n");
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(rowsOf("SELECT UndoneAt FROM ImportRun"), "NULL");
}

TEST_F(ItemImport, IsUndoneAfterALaterOneThatWasUndone) {
    const std::string before = everything();
    plan("Code,Name,Price,Stock\nLAMP,,,8\nNEW-1,Shade,2,3\nNEW-2,Cord,2,\n");
    const std::int32_t first = write();
    const auto changeAndUndo = [&] {
        plan("Code,Stock\nLAMP,9\nNEW-1,7\nNEW-2,4\n");
        const std::int32_t later = write();
        EXPECT_EQ(keptBy(first), "The item LAMP has another stock since.\nThe item NEW-1 has another stock since.\nThe item NEW-2 has "
                                 "another stock since.\n");
        EXPECT_EQ(keptBy(later), "");
    };
    changeAndUndo();
    changeAndUndo();
    // what others moved stays in the way, also where it comes to nothing
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) SELECT SKU, MatrixSKU, 'Found', n.Qty, 1 FROM Item, (SELECT 1 AS "
        "Qty UNION SELECT -1) n WHERE SKU IN ('LAMP', 'NEW-1', 'NEW-2')");
    EXPECT_EQ(keptBy(first), "The item LAMP had other movements of stock since.\nThe item NEW-1 had other movements of stock since.\nThe "
                             "item NEW-2 had other movements of stock since.\n");
    run("DELETE FROM InventoryLedger WHERE Type = 'Found'");
    EXPECT_EQ(keptBy(first), "");
    EXPECT_EQ(everything(), before);
    // the same once more: what the items of an undone import left in the ledger is none of the new ones' movements
    plan("Code,Name,Price,Stock\nNEW-1,Shade,2,3\nNEW-2,Cord,2,\n");
    EXPECT_EQ(keptBy(write()), "");
    EXPECT_EQ(everything(), before);
}

TEST_F(ItemImport, LeavesTheStoreAloneWhenItChangedBehindThePreview) {
    const struct {
        const char* meanwhile;
        const char* says;
    } kChanges[] = {{"UPDATE PriceMatrix SET Price = 9 WHERE SKU = 'LAMP'", "LAMP (row 2 of the file) has another price"},
                    {"UPDATE Stock SET Quantity = 4 WHERE SKU = 'LAMP'", "LAMP (row 2 of the file) has another stock"},
                    {"UPDATE Item SET Name = 'Lantern' WHERE SKU = 'LAMP'", "LAMP (row 2 of the file) has other data"},
                    {"UPDATE SupplierMatrixDetail SET Cost = 5", "or another cost"},
                    {"DELETE FROM Item WHERE MatrixSKU = 'BAG-RED'", "BAG-RED (row 3 of the file) was deleted"},
                    {"bsp_NewItem 'NEW-1', 'NEW-1'", "NEW-1 (row 4 of the file) was made"}};
    for (const auto& [meanwhile, says] : kChanges) {
        plan(kList);
        const std::string before = everything();
        run("BEGIN TRANSACTION"); // which ends with the writing's own
        run(meanwhile);
        try {
            write();
            ADD_FAILURE() << meanwhile;
        } catch (const StoreChanged& changed) {
            EXPECT_NE(std::string(changed.what()).find(says), std::string::npos) << changed.what();
        }
        EXPECT_EQ(everything(), before);
    }
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM ImportRun SELECT COUNT(*) FROM ImportItem"), "0;0");
}

TEST_F(ItemImport, NamesEveryBadCellAtOnceWithItsReason) {
    plan("SKU,Name,Price,Department,Stock,Supplier,Cost,Active\n"
         "1.23457E+12,Pen,1,,,,,\n"
         "A|B,Pen,free,Nowhere,1.5,Nobody,-1,maybe\n"
         "$DROP,Pen,0,,40000,,,\n"
         "O'NEIL,Pen,1.23456,,,,,\n"
         "DUP,Pen,\"1,5\",,,,,\n"
         "dup,Pen,1,,,,,\n"
         ",Total,99,,,,,\n"
         "BAG,Bags,1,,,,,\n"
         "GOOD,,1,,,,2,\n");
    EXPECT_EQ(bad(),
              "A2 The spreadsheet turned this code into a number, and digits of it are lost. Please type it anew in the file, as a text.\n"
              "A3 The code \"A|B\" cannot be used: a code holds no \"|\".\n"
              "C3 \"free\" is no number.\n"
              "D3 The store has no department \"Nowhere\". A tick on page 2 has it made.\n"
              "E3 \"1.5\" is no whole number.\n"
              "F3 The store has no supplier \"Nobody\". A tick on page 2 has it made.\n"
              "G3 The amount is below 0.\n"
              "H3 \"maybe\" is neither yes nor no.\n"
              "A4 The code \"$DROP\" cannot be used: \"$\" begins the codes of the registers' own items.\n"
              "C4 Price cannot be zero. An empty cell leaves the price alone.\n"
              "E4 \"40000\" is beyond what the field takes, 32,767.\n"
              "A5 A code holds no \"'\" and no \";\".\n"
              "C5 \"1.23456\" has more than four decimals, which is all that money has. A tick on page 2 takes it rounded.\n"
              "A6 Row 7 has the same code dup.\n"
              "C6 " +
                  commaComplaint("1,5") +
                  " Is the decimal sign of the file a comma?\n"
                  "A7 Row 6 has the same code dup.\n"
                  "A8 There is no code in this row.\n"
                  "A9 This is the code of a matrix parent, which is never sold.\n"
                  "B10 A new item wants a name.\n"
                  "G10 Whose is it? On page 2 you choose the column of the supplier, or the supplier of all rows.\n");
    EXPECT_EQ(plan_->count(RowState::Bad), 9);
    EXPECT_EQ(plan_->count(RowState::New), 0);
}

TEST_F(ItemImport, RowsCutIntoOtherCellsThanTheHeadingsAreBad) {
    plan("Code,Name,Price,Stock\nA1,Lamp,12,50,3\nA2,Bag,4,10\n");
    EXPECT_EQ(bad(), "2 This row has 5 cells, the headings 4: a comma within a number or text may want quotes.\n");
    EXPECT_EQ(plan_->count(RowState::New), 1);
    // moved by one although nothing stands behind the last heading; a text that goes on in the next row
    plan("Code,Name,Price,Stock\nA1,Lamp,12,50,\nA2,Bag,4,\nA3,Long\ntext,3,\nA4,Pen,1,5\n");
    EXPECT_EQ(bad().substr(0, bad().find("\n5 ") + 1),
              "2 This row has 5 cells, the headings 4: a comma within a number or text may want quotes.\n4 This row has 2 cells, the "
              "headings 4: a line end within a text may want quotes.\n");
    EXPECT_EQ(plan_->count(RowState::New), 2) << bad();
    // what is no fault: delimiters behind every row, cells left out at the end, a heading that goes nowhere
    plan("Code;Name;Price;Colour\nA1;Lamp;1,50;red;\nA2;Bag;2,50;;\nA3;Pen;2,00;blue;\n");
    EXPECT_EQ(bad(), "");
    plan("Code;Name;Price;Stock\nA1;Lamp;1,50\nA2;Bag;2,50;3\n");
    EXPECT_EQ(bad(), "");
}

TEST_F(ItemImport, AmountsThatCanBeThousandsOrDecimalsWaitForTheUser) {
    const char* const list = "Code;Name;Preis\nA1;x;1.234\nA2;y;2.500 \xE2\x82\xAC\nA3;z;3\n";
    plan(list);
    EXPECT_EQ(plan_->count(RowState::Bad), 2);
    EXPECT_TRUE(bad().starts_with("C2 \"1.234\" can be thousands or have three decimals")) << bad();
    options.reading.decimalsSaid = true;
    plan(list);
    EXPECT_EQ(said(), "new A1: Price $1.2340\nnew A2: Price $2.50\nnew A3: Price $3.00\n") << "what is shown is what is stored";
    options.reading.decimalsSaid = false;
    // one amount tells it for all
    for (const char* telling : {"12.50", "0.125", "1,234.500", "1234.500"}) {
        plan("Code;Name;Preis\nA1;x;1.234\nA2;y;" + std::string(telling) + "\n");
        EXPECT_EQ(bad(), "") << telling;
    }
    for (const char* telling : {"12,50", "1.234.567", "1.234,5"}) {
        plan("Code;Name;Preis\nA1;x;1.234\nA2;y;" + std::string(telling) + "\n");
        EXPECT_EQ(said().substr(0, 24), "new A1: Price $1,234.00\n") << telling << bad();
    }
}

TEST_F(ItemImport, NewItemsWithoutAPriceAreTold) {
    plan("Code,Name,Price\nA5,w,\nLAMP,Lamp,\nA6,v,3\n");
    EXPECT_EQ(bad(), "C2 A new item wants a price.\n");
    EXPECT_EQ(plan_->count(RowState::New), 1);
    plan("Code,Name\nA5,w\nA6,v\nLAMP,Lamp\n");
    EXPECT_EQ(bad(), "");
    EXPECT_EQ(joined(plan_->sums(), " "), "2 new items have no price.");
}

TEST_F(ItemImport, SumsBelowTheListAreNoItems) {
    plan("Code;Name;Preis;Stock\nSUM;A sum that stands higher up;1,00;1\nA1;x;8,00;10\nSubtotal;;8,00;10\n;;;\nTotal;Total;8,00;10\n;Grand "
         "Total:;8,00;\n");
    EXPECT_EQ(bad(),
              "A4 This looks like a sum below the list.\nA6 This looks like a sum below the list.\nB7 This looks like a sum below the "
              "list.\n");
    EXPECT_EQ(plan_->count(RowState::New), 2);
    run("UPDATE Item SET Name = 'Total' WHERE SKU = '00123'");
    plan("Code,Name,Price\nLAMP,Lamp,9\n00123,Total,11\n");
    EXPECT_EQ(bad(), "") << "an item of the store is none";
}

TEST_F(ItemImport, WhatBecomesOfACellsTextIsSaid) {
    plan("Code,Name,Price,Cost,Stock\nLAMP,\"Big\r\nlamp\",,,\nA1,\"a\tb\rc\",2,,\nA2,w,15%,,\nA3,w,2,15.00 %,100%\n");
    EXPECT_EQ(said().substr(0, said().find("bad")),
              "changed LAMP: Name Lamp to Big lamp; line ends and tabs became blanks\nnew A1: Price $2.00; "
              "line ends and tabs became blanks\n");
    EXPECT_EQ(plan_->name(1), "a b c");
    EXPECT_EQ(bad(), "C4 \"15%\" is a percentage, and a number is wanted.\nD5 \"15.00 %\" is a percentage, and a number is wanted.\n"
                     "E5 \"100%\" is a percentage, and a number is wanted.\n");
}

TEST_F(ItemImport, MendsWhatASpreadsheetMadeOfCodesOnlyWhenAsked) {
    const char* list = "Code,Name,Price\n36000291452,Cards,1\n12345.0,Pen,1\n123,Bulb,12\n12345678901,Own code,1\n";
    plan(list);
    EXPECT_EQ(plan_->count(RowState::Bad), 3);
    EXPECT_NE(bad().find("A2 This looks like the product code 036000291452"), std::string::npos) << bad();
    EXPECT_NE(bad().find("A3 The \".0\" looks like a spreadsheet's."), std::string::npos);
    EXPECT_NE(bad().find("A4 The store has the item 00123"), std::string::npos);
    options.codes = ImportOptions::Codes::Mend;
    plan(list);
    EXPECT_EQ(said(), "new 036000291452: Price $1.00\nnew 12345: Price $1.00\nchanged 00123: Price $10.00 to $12.00\nnew "
                      "12345678901: Price $1.00\n"
                      "");
    options.codes = ImportOptions::Codes::Leave;
    plan(list);
    EXPECT_EQ(plan_->count(RowState::New), 4) << bad();
}

TEST_F(ItemImport, MakesDepartmentsAndSuppliersThatAreTickedAndTakesThemBack) {
    const std::string before = everything();
    options.makeDepartments = options.makeSuppliers = true;
    plan("Code;Name;Preis;Abteilung;Lieferant;EK\nX1;Uhr;1.234,50;Uhren;Zeit & Co;800,00\nX2;Wecker;19,95;uhren;Zeit & "
         "Co;8,10\nX2;zwei;1,00;Nur "
         "schlecht;;\n");
    EXPECT_EQ(plan_->newDepartments(), std::vector<std::string>({"Uhren"})) << bad();
    EXPECT_EQ(plan_->count(RowState::Bad), 2);
    const std::int32_t key = write();
    EXPECT_EQ(
        rowsOf("SELECT i.SKU, d.Department, s.Supplier, m.Cost, p.Price FROM Item i INNER JOIN Departments d ON d.DepartmentID = "
               "i.DepartmentID INNER JOIN SupplierMatrixDetail m ON m.SKU = i.SKU INNER JOIN Suppliers s ON s.SupID = m.SupID INNER JOIN "
               "PriceMatrix p ON p.SKU = i.SKU WHERE i.SKU LIKE 'X%'"),
        "X1|Uhren|Zeit & Co|800|1234.5");
    run("UPDATE Item SET DepartmentID = 3 WHERE SKU = 'LAMP'");
    EXPECT_EQ(keptBy(key), "The Department Uhren is used since.\n");
    run("UPDATE Item SET DepartmentID = 2 WHERE SKU = 'LAMP'");
    EXPECT_EQ(keptBy(key), "");
    EXPECT_EQ(everything(), before);
}

TEST_F(ItemImport, TakesTheSupplierOfAllRowsAndLeavesAloneWhatTheFileDoesNotHave) {
    options.supplier = 0;
    plan("Code,Cost\nLAMP,3\n");
    EXPECT_EQ(said(), "changed LAMP: Supplier Empty Supplier; Cost $3.00\n");
    write();
    EXPECT_EQ(rowsOf("SELECT SupID, Cost, Priority FROM SupplierMatrixDetail ORDER BY SupID"), "0|3|2;1|4|1");
    options.supplier.reset();
    plan("Code,Name,Cost\n00123,,4\n");
    EXPECT_NE(bad().find("Whose is it?"), std::string::npos);
    EXPECT_EQ(rowsOf("SELECT Name FROM Item WHERE SKU = '00123'"), "Bulb");
}

TEST_F(ItemImport, RemembersTheColumnsOfAHeadingSet) {
    plan("Code,Name,Price,Alt\nA1,One,1,x\n");
    ColumnMatch match = plan_->match();
    match.set(3, item::PartNo);
    EXPECT_EQ(remembered(Target::Items, match), "A=SKU;B=Name;C=Price;D=PartNo");
    write();
    const std::string key = headingsKey(table_, 0);
    ColumnMatch again = matchedBy(Target::Items, table_, 0);
    recall(Target::Items, rememberedColumns(*session, Target::Items, key), again);
    EXPECT_EQ(again.fields, plan_->match().fields);
    EXPECT_EQ(rememberedColumns(*session, Target::Suppliers, key), "");
}

// Counts what is sent, and ends the process before the statement of that number.
class EndsAt : public db::Session {
public:
    EndsAt(db::Session& inner, int at) : inner_(inner), left_(at) {}
    void execute(std::string_view batch, std::vector<db::Parameter>& parameters, db::ResultSink& sink) override {
        count();
        inner_.execute(batch, parameters, sink);
    }
    void call(std::string_view procedure, std::vector<db::Parameter>& parameters, db::ResultSink& sink) override {
        count();
        inner_.call(procedure, parameters, sink);
    }
    db::TableShape table(std::string_view name) override { return inner_.table(name); }
    void begin() override { inner_.begin(); }
    void commit() override {
        count();
        inner_.commit();
    }
    void rollback() override { inner_.rollback(); }
    int transactionDepth() const override { return inner_.transactionDepth(); }
    Value lastIdentity() const override { return inner_.lastIdentity(); }
    void cancel() override { inner_.cancel(); }
    void setReadOnly(bool readOnly) override { inner_.setReadOnly(readOnly); }
    void setWaiter(db::Waiter* waiter) override { inner_.setWaiter(waiter); }
    void setClock(const Clock* clock) override { inner_.setClock(clock); }

private:
    void count() {
        if (--left_ == 0)
            kill(getpid(), SIGKILL);
    }
    db::Session& inner_;
    int left_;
};

// The process is killed before every so many-th statement, until one import comes through.
TEST_F(ItemImport, KilledAtAnyPointLeavesNothing) {
    std::string list = "Code,Name,Price,Stock,Supplier,Cost\nLAMP,Lantern,11,9,Acme,5\n";
    for (int i = 0; i < 3000; ++i)
        list += "K" + std::to_string(i) + ",Item,1,2,Maker,1\n";
    options.makeSuppliers = true;
    plan(list);
    const std::string before = everything();
    bool through = false;
    int kills = 0;
    // The last statements, which hold the store, are few: each of them is one to be killed at.
    for (int at = 50; !through; at += at < 300 ? 50 : 1) {
        const pid_t child = fork();
        if (child == 0) {
            const auto own = db::Store::open(file)->session();
            EndsAt counting(*own, at);
            write(counting);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
        through = everything() != before; // all of it, by then
        kills += through ? 0 : 1;
        const std::string kept =
            rowsOf("SELECT COUNT(*) FROM ImportRun SELECT COUNT(*) FROM ImportItem SELECT COUNT(*) FROM ImportHeadings");
        ASSERT_EQ(kept, through ? "1;3001;1" : "0;0;0");
    }
    EXPECT_GT(kills, 10);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Item WHERE SKU LIKE 'K%'"), "3000");
    expectSound();
}

} // namespace
} // namespace merchantry::exchange
