#include "app/db/schema/schema.h"

#include "app/db/schema/content.h"
#include "app/db/schema/runfile.h"
#include "app/db/schema/version10.h"
#include "app/db/schema/version9.h"
#include "app/db/work.h"

#include <array>
#include <utility>

namespace merchantry::db {
namespace {

// Each statement finds rows that must not be there; a text in the first one's first column says which it is.
struct Invariant {
    const char* says;
    const char* select;
};

constexpr std::array kInvariants{
    Invariant{"The store options are not one row.", "SELECT 1 WHERE (SELECT COUNT(*) FROM StoreOptions) <> 1"},
    Invariant{"The base tier, department, reason code, tax class, sales message, supplier or manager account is missing.",
              "SELECT 1 WHERE NOT EXISTS (SELECT * FROM TierDefs WHERE TierID = 1) OR NOT EXISTS (SELECT * FROM Departments WHERE "
              "DepartmentID = 1) "
              "OR NOT EXISTS (SELECT * FROM InvReasonCodes WHERE ReasonID = 1) OR NOT EXISTS (SELECT * FROM TaxDef WHERE TaxID = 0) "
              "OR NOT EXISTS (SELECT * FROM SalesMessages WHERE SalesMsgID = 0) OR NOT EXISTS (SELECT * FROM Suppliers WHERE SupID = 0) "
              "OR NOT EXISTS (SELECT * FROM Cashier WHERE ID = 5)"},
    Invariant{"A transaction's entries do not add up to its subtotal.",
              "SELECT TOP 1 'transaction ' + CAST(t.TransactionNumber AS varchar(12)) FROM [Transaction] t WHERE t.SubTotal <> "
              "ISNULL((SELECT SUM(e.FullPrice * e.Quantity - e.Discount) FROM TransactionEntry e WHERE e.TransactionNumber = "
              "t.TransactionNumber), 0)"},
    Invariant{"A transaction's subtotal and tax do not add up to its total.",
              "SELECT TOP 1 'transaction ' + CAST(TransactionNumber AS varchar(12)) FROM [Transaction] WHERE SubTotal + TaxTotal <> Total "
              "ORDER BY TransactionNumber"},
    Invariant{"A customer's balance is not the sum of what is open.",
              "SELECT TOP 1 'customer ' + CAST(c.ID AS varchar(12)) + ', balance ' + CONVERT(varchar(30), c.Balance, 2) + ', open ' + "
              "CONVERT(varchar(30), ISNULL(t.Outstanding, 0), 2) FROM Customer c LEFT JOIN (SELECT CustomerID, SUM(OutstandingBalance) AS "
              "Outstanding FROM "
              "CreditTransaction GROUP BY "
              "CustomerID) t ON t.CustomerID = c.ID WHERE c.Balance <> ISNULL(t.Outstanding, 0) ORDER BY c.ID"},
    Invariant{"An item's newest ledger row does not hold the sum of its movements.",
              "SELECT TOP 1 'item ' + s.MatrixSKU FROM (SELECT SKU, MatrixSKU, SUM(Qty) AS Moved, MAX(LedgerID) AS Newest FROM "
              "InventoryLedger GROUP BY "
              "SKU, MatrixSKU) s "
              "INNER JOIN InventoryLedger l ON l.LedgerID = s.Newest WHERE l.QtyAfter <> s.Moved"},
};

// The first cell of the last row.
class LastCell : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& row) override { value = row.value(0); }
    Value value;
};

void run(Session& session, std::string_view batch) {
    NoResult none;
    session.execute(batch, none);
}

// "triggers/Customer_Phone.sql" is the trigger Customer_Phone; empty for a file of another kind.
std::string objectIn(const SchemaFile& file, std::string_view folder) {
    if (!file.name.starts_with(folder))
        return "";
    const std::string_view name = file.name.substr(folder.size());
    return std::string(name.substr(0, name.find('.')));
}

void noteVersion(Session& session, int version) {
    run(session, "INSERT INTO SchemaVersion (Version) VALUES (" + std::to_string(version) + ")");
}

[[noreturn]] void refuse(const std::string& sentence) {
    throw DbError(DbError::Category::Storage, 0, sentence);
}

// What makes a table of the schema, with its indexes, unless it is there.
std::string newTable(const std::string& table) {
    for (const SchemaFile& file : schemaFiles())
        if (file.name == "tables/" + table + ".sql")
            return "IF OBJECT_ID('" + table + "') IS NULL\nBEGIN\n" + std::string(file.text) + "\nEND\n";
    return "";
}

// What was found, as the sentence that says so goes on.
class Finding : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& row) override {
        if (std::exchange(any, true) || !row.value(0).is<std::string>())
            return;
        which = " The first: " + row.value(0).as<std::string>() + ".";
    }
    bool any = false;
    std::string which;
};

} // namespace

void createSchema(Session& session, const std::function<void(int percent)>& progress) {
    Work work(session);
    const auto files = schemaFiles();
    for (std::size_t i = 0; i < files.size(); ++i) {
        runFile(session, files[i].name, files[i].text);
        if (progress)
            progress(static_cast<int>((i + 1) * 100 / files.size()));
    }
    noteVersion(session, kSchemaVersion);
    noteContent(session);
    work.commit();
}

void createSchemaWith(Session& session, const std::function<void()>& fill) {
    Work work(session);
    bool filled = false;
    for (const SchemaFile& file : schemaFiles()) {
        if (file.name.starts_with("rows/"))
            continue;
        if (!file.name.starts_with("tables/") && !std::exchange(filled, true))
            fill();
        runFile(session, file.name, file.text);
    }
    work.commit();
}

std::vector<std::string> schemaTables() {
    std::vector<std::string> tables;
    for (const SchemaFile& file : schemaFiles())
        if (const std::string table = objectIn(file, "tables/"); !table.empty())
            tables.push_back(table);
    return tables;
}

int schemaVersion(Session& session) {
    LastCell version;
    session.execute("IF OBJECT_ID('SchemaVersion') IS NULL SELECT 0 ELSE SELECT MAX(Version) FROM SchemaVersion", version);
    return static_cast<int>(version.value.toInteger());
}

void refuseNewerSchema(Session& session) {
    const int version = schemaVersion(session);
    if (version > kSchemaVersion)
        refuse("The store was made by a newer version of Merchantry (schema " + std::to_string(version) + ", this program knows " +
               std::to_string(kSchemaVersion) + "). Please update the program.");
}

void checkSchemaVersion(Session& session) {
    refuseNewerSchema(session);
    const int version = schemaVersion(session);
    if (version == 0)
        refuse("This is a database, but not a store of Merchantry: it has no schema version. \"merchantryctl store create\" makes one.");
    if (version < kSchemaVersion)
        refuse("The store is of an older version (schema " + std::to_string(version) + ", this program wants " +
               std::to_string(kSchemaVersion) + "). Run \"merchantryctl store upgrade\" on it; of a store file a copy is kept.");
}

std::span<const UpgradeStep> upgradeSteps() {
    // Views, procedures, triggers and first rows are renewed by every upgrade: a step tells only what happens to tables and what is in
    // them.
    static const std::string priceChanges = newTable("PriceChange") + newTable("PriceChangeItem");
    // The last movement of an item by its posting; the order of what the reports offer as criteria, and the label reports.
    static const std::string fifth =
        "IF NOT EXISTS (SELECT * FROM sys.indexes WHERE name = 'IX_InventoryLedger_Posting') "
        "CREATE INDEX IX_InventoryLedger_Posting ON InventoryLedger (SKU, MatrixSKU, LedgerID)\n"
        "IF COL_LENGTH('reportfieldsmapping', 'position') IS NULL ALTER TABLE reportfieldsmapping ADD position smallint NOT NULL "
        "CONSTRAINT DF_reportfieldsmapping_Position DEFAULT 0\n" +
        newTable("LabelReports");
    // Texts order by rule; a server has its own order. Items have the column that the look-up of serial items compares with.
    static const std::string eighth = "IF SERVERPROPERTY('Edition') = 'Merchantry' EXEC sp_reindextexts\n"
                                      "IF COL_LENGTH('Item', 'True') IS NULL ALTER TABLE Item ADD [True] AS CAST(1 AS bit)";
    static const std::string tenth = newTable("FirstRoad") + kToVersion10;
    static const std::string eleventh = newTable("CreditApplication") + newTable("StatementRun") + newTable("Statement");
    static const std::string twelfth =
        newTable("AccountMap") + newTable("AccountingFile") + newTable("AccountingDay") + newTable("ImportRun") + newTable("ImportItem") +
        newTable("ImportField") + newTable("ImportHeadings") +
        "IF COL_LENGTH('StatementRun', 'LastPosting') IS NULL\nBEGIN\n"
        "ALTER TABLE StatementRun ADD LastPosting int NOT NULL CONSTRAINT DF_StatementRun_LastPosting DEFAULT 0\n"
        "EXEC ('UPDATE StatementRun SET LastPosting = ISNULL((SELECT MAX(t.CreditTransID) FROM CreditTransaction t WHERE t.Time <= "
        "StatementRun.Posted), 0)')\nEND";
    static const std::string content = newTable("SchemaContent");
    static const std::array kSteps{
        UpgradeStep{2, ""},           // the procedures of item catalogue and stock
        UpgradeStep{3, priceChanges}, // changes of many prices, and their undoing
        // which movement takes back which
        UpgradeStep{4, "IF COL_LENGTH('InventoryLedger', 'ReversesID') IS NULL ALTER TABLE InventoryLedger ADD ReversesID int NULL"},
        UpgradeStep{5, fifth},
        // the procedures of orders; the level at which an item is ordered is Restock, which reports took for Reorder
        UpgradeStep{6, "UPDATE reportfieldsmapping SET fieldname = 'Item.Restock', fielddescription = 'Reorder at' "
                       "WHERE fieldname = 'Item.Reorder' AND fielddescription = 'Reorder point'\n"
                       "DELETE FROM reportfieldsmapping WHERE reportname = 'ItemBelowReorder' AND fieldname = 'Item.Active'"},
        UpgradeStep{7, ""}, // the orders as they are listed, once; no line is taken off an order with its receipts
        UpgradeStep{8, eighth}, UpgradeStep{9, kToVersion9}, UpgradeStep{10, tenth},
        UpgradeStep{11, eleventh}, // what credits were applied to, and statements
        // what goes out to accounting, what files were imported, which postings a run of statements knew
        UpgradeStep{12, twelfth}, UpgradeStep{13, content}, // by what views, procedures, triggers and first rows are renewed from then on
    };
    return kSteps;
}

void upgradeSchema(Session& session, std::span<const UpgradeStep> steps) {
    const int from = schemaVersion(session);
    Work work(session);
    std::string doing;
    try {
        for (const UpgradeStep& step : steps) {
            if (step.to <= from)
                continue;
            doing = "version " + std::to_string(step.to);
            run(session, step.batch);
            noteVersion(session, step.to);
        }
        doing.clear();
        putContent(session);
    } catch (const DbError& error) {
        throw DbError(error.category(), error.native(), (doing.empty() ? "" : doing + ": ") + error.what(), error.line());
    }
    work.commit();
}

std::vector<std::string> brokenInvariants(Session& session) {
    std::vector<std::string> broken;
    for (const Invariant& invariant : kInvariants) {
        Finding found;
        session.execute(invariant.select, found);
        if (found.any)
            broken.push_back(invariant.says + found.which);
    }
    return broken;
}

} // namespace merchantry::db
