// 100,000 new items from a price list, read, checked and written as the import screen does, beside the same rows inserted by statements
// prepared once in one transaction: from delimited text, and from a workbook beside the same sheet read bare by pugixml.

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "bench/barestore.h"
#include "bench/ratio.h"
#include "exchange/import/delimitedfile.h"
#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"
#include "exchange/import/workbook.h"
#include "exchange/import/zipfile.h"

#include <pugixml.hpp>
#include <xlsxwriter.h>

#include <charconv>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace merchantry;
using namespace merchantry::bench;
using namespace merchantry::exchange;

namespace {

constexpr int kRows = 100'000;
constexpr int kRuns = 5;
constexpr int kDepartments = 20;
constexpr const char* kHeadings[] = {"Code", "Name", "Price", "Department", "Stock", "Supplier", "Cost", "Part No"};

struct Made {
    std::string code, name, department, part;
    int cents, stock, costCents;
};

Made made(int row) {
    return {"C" + std::to_string(1'000'000 + row),
            "Item number " + std::to_string(row) + " of the list",
            "Department " + std::to_string(row % kDepartments),
            "P-" + std::to_string(row * 7),
            199 + row % 90'000,
            1 + row % 50,
            99 + row % 40'000};
}

std::string amount(int cents) {
    const std::string rest = std::to_string(cents % 100);
    return std::to_string(cents / 100) + "." + (rest.size() < 2 ? "0" : "") + rest;
}

void writeText(const std::filesystem::path& file) {
    std::ofstream out(file);
    for (const char* heading : kHeadings)
        out << heading << (heading == kHeadings[7] ? "\n" : ",");
    for (int row = 0; row < kRows; ++row) {
        const Made one = made(row);
        out << one.code << ',' << one.name << ',' << amount(one.cents) << ',' << one.department << ',' << one.stock << ",Acme,"
            << amount(one.costCents) << ',' << one.part << '\n';
    }
}

void writeWorkbook(const std::filesystem::path& file) {
    lxw_workbook* book = workbook_new(file.c_str());
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    for (int i = 0; i < 8; ++i)
        worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(i), kHeadings[i], nullptr);
    for (int row = 0; row < kRows; ++row) {
        const Made one = made(row);
        const auto at = static_cast<lxw_row_t>(row + 1);
        worksheet_write_string(sheet, at, 0, one.code.c_str(), nullptr);
        worksheet_write_string(sheet, at, 1, one.name.c_str(), nullptr);
        worksheet_write_number(sheet, at, 2, one.cents / 100.0, nullptr);
        worksheet_write_string(sheet, at, 3, one.department.c_str(), nullptr);
        worksheet_write_number(sheet, at, 4, one.stock, nullptr);
        worksheet_write_string(sheet, at, 5, "Acme", nullptr);
        worksheet_write_number(sheet, at, 6, one.costCents / 100.0, nullptr);
        worksheet_write_string(sheet, at, 7, one.part.c_str(), nullptr);
    }
    workbook_close(book);
}

void copyStore(const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const char* beside : {"", "-wal", "-shm"})
        std::filesystem::remove(to.string() + beside);
    std::filesystem::copy_file(from, to);
}

template <class Reading> SheetTable wholeOf(Reading&& reading) {
    while (reading.step() < 100) {
    }
    return reading.take();
}

SheetTable readFile(const std::filesystem::path& file) {
    if (file.extension() == ".xlsx") {
        Workbook book(file);
        return wholeOf(SheetReading(book, 0));
    }
    const DelimitedFile text(file);
    return wholeOf(DelimitedReading(text, text.guessed()));
}

struct Preview {
    SheetTable table;
    std::unique_ptr<ItemsInStore> store;
    std::unique_ptr<ItemPlan> plan;
};

std::unique_ptr<Preview> preview(db::Session& session, const std::filesystem::path& file) {
    auto made = std::make_unique<Preview>();
    made->table = readFile(file);
    const ColumnMatch match = matched(Target::Items, made->table);
    made->store = std::make_unique<ItemsInStore>(session, match);
    made->plan = std::make_unique<ItemPlan>(made->table, match, ImportOptions(), *made->store);
    while (made->plan->step() < 100) {
    }
    if (made->plan->count(RowState::New) != kRows)
        std::printf("DIFFERENT: %d new items\n", made->plan->count(RowState::New));
    return made;
}

void import(const std::filesystem::path& store, const std::filesystem::path& file) {
    const auto session = db::Store::open(store)->session();
    const auto checked = preview(*session, file);
    const auto writing = writingOf(*session, *checked->plan, {"list", "hash"});
    while (writing->step() < 100) {
    }
}

// A statement prepared once.
class Prepared {
public:
    Prepared(const BareStore& store, const char* sql) : statement_(store.prepare(sql)) {}
    ~Prepared() { sqlite3_finalize(statement_); }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
    Prepared& operator<<(std::int64_t number) {
        sqlite3_bind_int64(statement_, ++bound_, number);
        return *this;
    }
    Prepared& operator<<(std::string_view text) {
        sqlite3_bind_text(statement_, ++bound_, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        return *this;
    }
    void run() {
        int code = sqlite3_step(statement_);
        while (code == SQLITE_ROW)
            code = sqlite3_step(statement_);
        if (code != SQLITE_DONE)
            std::printf("DIFFERENT: %s\n", sqlite3_errmsg(sqlite3_db_handle(statement_)));
        sqlite3_reset(statement_);
        bound_ = 0;
    }

private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

// The rows that an import of new items writes, without their language: what is kept to undo it, and the item with all that belongs to it.
class BareImport {
public:
    explicit BareImport(const BareStore& store)
        : begin_(store, "BEGIN IMMEDIATE"), commit_(store, "COMMIT"),
          run_(store,
               "INSERT INTO ImportRun (ImportID, MadeAt, Target, FileName, FileHash, Words) VALUES (1, 0, 'Items', 'list', 'hash', '')"),
          kept_(store, "INSERT INTO ImportItem (ImportID, RowNo, SKU, MatrixSKU, Made, NewName, NewPrice, NewDepartmentID, NewStock, "
                       "Cost_ea, SupID, LinkMade, "
                       "NewCost, NewPartNo) VALUES (1, ?1, ?2, ?2, 1, ?3, ?4, ?5, ?6, ?7, 1, 1, ?7, ?8)"),
          item_(store, "INSERT INTO Item (SKU, MatrixSKU, Name, DepartmentID, TaxID, TypeID, Reorder, Restock, Active, FoodStampFlag, "
                       "SalesMsgID, SaleFlag, "
                       "TagAlongQty, DateLastSold, MatrixFlag, SerialFlag) VALUES (?1, ?1, ?2, ?3, 0, 6, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0)"),
          stock_(store, "INSERT INTO Stock (SKU, MatrixSKU, Quantity, QtyCommitt) VALUES (?1, ?1, ?2, 0)"),
          price_(store, "INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier, Quantity, Price) VALUES (?1, ?1, 1, 1, ?2)"),
          link_(store, "INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, PartNo, Priority) VALUES (?1, ?1, 1, ?2, "
                       "1, ?3, 1)"),
          ledger_(store, "INSERT INTO InventoryLedger (LedgerID, SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter, PostDate, Kind) "
                         "VALUES (?1, ?2, ?2, "
                         "'Adjustment', ?3, ?4, ?4, ?3, 0, 'Adjustment')") {}

    void begin() {
        begin_.run();
        run_.run();
    }
    void commit() { commit_.run(); }
    void write(int row, std::string_view code, std::string_view name, std::int64_t price, int department, int stock, std::int64_t cost,
               std::string_view part) {
        (kept_ << row << code << name << price << department << stock << cost << part).run();
        (item_ << code << name << department).run();
        (stock_ << code << stock).run();
        (price_ << code << price).run();
        (link_ << code << cost << part).run();
        (ledger_ << row << code << stock << cost).run();
    }

private:
    Prepared begin_, commit_, run_, kept_, item_, stock_, price_, link_, ledger_;
};

void setUp(const BareStore& store) {
    for (const char* pragma : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=FULL", "PRAGMA foreign_keys=ON"})
        Prepared(store, pragma).run();
}

void bareText(const std::filesystem::path& file, const std::vector<Made>& rows) {
    const BareStore store(file);
    setUp(store);
    BareImport bare(store);
    bare.begin();
    int number = 0;
    for (const Made& one : rows) {
        ++number;
        bare.write(number, one.code, one.name, one.cents * 100LL, 2 + (number - 1) % kDepartments, one.stock, one.costCents * 100LL,
                   one.part);
    }
    bare.commit();
}

std::string_view textOf(const pugi::xml_node& cell, const std::vector<std::string>& strings) {
    return strings[static_cast<std::size_t>(cell.child("v").text().as_int())];
}

void bareWorkbook(const std::filesystem::path& file, const std::filesystem::path& list) {
    const BareStore store(file);
    setUp(store);
    BareImport bare(store);
    ZipFile zip(list);
    std::string shared = zip.text("xl/sharedStrings.xml");
    std::string sheet = zip.text("xl/worksheets/sheet1.xml");
    pugi::xml_document sharedTree;
    pugi::xml_document tree;
    if (!sharedTree.load_buffer_inplace(shared.data(), shared.size()) || !tree.load_buffer_inplace(sheet.data(), sheet.size()))
        std::printf("DIFFERENT: not read\n");
    std::vector<std::string> strings;
    for (const auto item : sharedTree.child("sst").children("si"))
        strings.emplace_back(item.child("t").child_value());
    bare.begin();
    int number = -1;
    for (const auto row : tree.child("worksheet").child("sheetData").children("row")) {
        if (++number == 0)
            continue;
        std::array<pugi::xml_node, 8> cells;
        std::size_t at = 0;
        for (const auto cell : row.children("c"))
            cells.at(at++) = cell;
        bare.write(number, textOf(cells[0], strings), textOf(cells[1], strings),
                   static_cast<std::int64_t>(cells[2].child("v").text().as_double() * 10'000), 2 + (number - 1) % kDepartments,
                   cells[4].child("v").text().as_int(), static_cast<std::int64_t>(cells[6].child("v").text().as_double() * 10'000),
                   textOf(cells[7], strings));
    }
    bare.commit();
}

// How much a process of its own needed at most, in kilobytes, for what it does.
long peakOf(const std::function<void()>& work) {
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    const pid_t child = fork();
    if (child == 0) {
        malloc_trim(0);                                // what was freed before would be taken again
        std::ofstream("/proc/self/clear_refs") << "5"; // counts anew from here
        const auto peak = [] {
            std::ifstream in("/proc/self/status");
            std::string word;
            long value = 0;
            while (in >> word)
                if (word == "VmHWM:")
                    in >> value;
            return value;
        };
        const long before = peak();
        work();
        const long grown = peak() - before;
        if (write(ends[1], &grown, sizeof grown) != sizeof grown)
            _exit(1);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    long grown = 0;
    if (read(ends[0], &grown, sizeof grown) != sizeof grown)
        std::printf("DIFFERENT: not measured\n");
    return grown;
}

} // namespace

int main() {
    std::string name = (std::filesystem::temp_directory_path() / "merchantry-bench-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(name.data());
    const auto empty = folder / "empty.store";
    const auto ours = folder / "ours.store";
    const auto theirs = folder / "theirs.store";
    const auto list = folder / "list.csv";
    const auto book = folder / "list.xlsx";
    {
        const auto store = db::Store::create(empty);
        const auto session = store->session();
        db::createSchema(*session);
        db::NoResult none;
        for (int i = 0; i < kDepartments; ++i)
            session->execute("INSERT INTO Departments (Department) VALUES ('Department " + std::to_string(i) + "')", none);
        session->execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme')", none);
    }
    writeText(list);
    writeWorkbook(book);
    const long sheetKb = static_cast<long>(ZipFile(book).sizeOf("xl/worksheets/sheet1.xml") / 1024);
    const long readKb = peakOf([&] {
        Workbook opened(book);
        const SheetTable table = wholeOf(SheetReading(opened, 0));
        if (table.rows() != kRows + 1)
            std::printf("DIFFERENT: %d rows\n", table.rows());
    });
    std::printf("memory of a sheet of 100,000 rows: %.1f MB, unpacked %.1f MB: ratio %.2f\n", static_cast<double>(readKb) / 1024,
                static_cast<double>(sheetKb) / 1024, static_cast<double>(readKb) / static_cast<double>(sheetKb));
    std::vector<Made> rows;
    for (int row = 0; row < kRows; ++row)
        rows.push_back(made(row));
    for (const auto& file : {list, book}) {
        std::vector<double> mine;
        std::vector<double> bare;
        std::vector<double> looks;
        for (int i = 0; i < kRuns; ++i) {
            copyStore(empty, theirs);
            bare.push_back(msOf([&] { file == list ? bareText(theirs, rows) : bareWorkbook(theirs, book); }));
            copyStore(empty, ours);
            {
                const auto session = db::Store::open(ours)->session();
                looks.push_back(msOf([&] { preview(*session, file); }));
            }
            mine.push_back(msOf([&] { import(ours, file); }));
        }
        const std::string what = "100,000 items from " + file.filename().string();
        print((what + " / bare").c_str(), median(mine), median(bare));
        std::printf("  %.0f rows a second\n", kRows / median(mine) * 1000);
        print((what + ": preview / import").c_str(), median(looks), median(mine));
    }
    std::filesystem::remove_all(folder);
    return 0;
}
