#include "base/text.h"
#include "exchange/flat/flatfile.h"

#include "app/db/schema/schema.h"
#include "app/db/work.h"
#include "tests/db/teststore.h"

#include <random>
#include <sstream>

namespace merchantry::exchange {
namespace {

class FlatFiles : public db::OnAStore {
protected:
    FlatFiles() { db::createSchema(*session); }

    std::string exported(const char* package) {
        std::ostringstream out;
        EXPECT_TRUE(exportRows(*session, flatPackage(package), out, goOn));
        return out.str();
    }
    void import(const char* package, const std::string& text) {
        std::istringstream in(text);
        const auto rows = readRows(*session, flatPackage(package), in, goOn);
        db::Work work(*session);
        ASSERT_TRUE(appendRows(*session, flatPackage(package), *rows, goOn));
        work.commit();
    }
    // Source and description of the failure.
    std::string refusal(const char* package, const std::string& text) {
        try {
            import(package, text);
            return "";
        } catch (const FlatError& error) {
            return error.source() + ": " + error.what();
        }
    }
    FlatProgress goOn = [](int) { return true; };
};

TEST_F(FlatFiles, OfCustomersItemsAndSuppliersHaveTheirColumnsAndQuotes) {
    run("INSERT INTO Customer (FirstName, LastName, Company, PhoneNumber) VALUES ('Ann', 'Ash', 'Ash \"Elm\"', '')");
    EXPECT_EQ(exported("CustomerExport"),
              "\"FirstName\",\"LastName\",\"Company\",\"Address\",\"Address2\",\"City\",\"State\",\"Zip\",\"Email\","
              "\"PhoneNumber\",\"FaxNumber\"\r\n\"Ann\",\"Ash\",\"Ash \"\"Elm\"\"\",,,,,,,\"\",\r\n");
    run("DELETE FROM Item INSERT INTO Item (SKU, MatrixSKU, Name, Notes, Reorder, DateLastSold) VALUES ('7', '007', 'Tea, green', 'hot', "
        "2.5, "
        "'2026-03-01 10:30:00')");
    const std::string items = exported("dts_StockExport");
    EXPECT_EQ(items.substr(items.find("\r\n") + 2),
              ",\"Tea, green\",0,0,\"hot\",1,\"7\",\"007\",0,0,6,2.5,0,,,1,,2026-03-01 10:30:00,0\r\n");
    EXPECT_EQ(split(items.substr(0, items.find("\r\n")), ",").size(), 19U);
    EXPECT_EQ(exported("SupplierExport").substr(0, 18), "\"Empty Supplier\",,") << "no heading";
}

TEST_F(FlatFiles, BringBackEveryTextThatWasWritten) {
    const std::vector<std::string> pieces{"'", "\"", ",", "\r\n", "\n", "\t", "é", "🛒", "a", "9", " x"};
    std::mt19937 random(8);
    std::vector<db::Parameter> texts(3);
    for (int i = 0; i < 200; ++i) {
        for (std::size_t c = 0; c < texts.size(); ++c) {
            std::string text;
            for (std::size_t piece = random() % 6; piece > 0; --piece)
                text += pieces[random() % pieces.size()];
            texts[c] = {std::string(1, static_cast<char>('a' + c)),
                        {db::TypeKind::VarChar, 50},
                        c > 0 && random() % 5 == 0 ? Value() : Value(text)};
        }
        db::NoResult none;
        session->execute("INSERT INTO Customer (FirstName, LastName, City) VALUES (@a, @b, @c)", texts, none);
    }
    const std::string first = exported("CustomerExport");
    run("DELETE FROM Customer");
    import("ImportCust", first);
    EXPECT_EQ(exported("CustomerExport"), first) << "texts that are empty and texts that are not there stay apart";
}

TEST_F(FlatFiles, NameRowAndColumnOfWhatTheStoreCannotHold) {
    const std::string heading = "SKU,MatrixSKU,Name,Notes,Reorder\r\n";
    const struct {
        const char* package;
        std::string text;
        const char* refusal;
    } kCases[] = {
        {"dts_TillmarkItemImport", "SKU,Name\r\nA,B\r\n", "Text file: Row 1: the heading names no column Notes."},
        {"dts_TillmarkItemImport", heading + "A,A,B,C,1\r\nB,B,C\r\n", "Text file: Row 3 has 3 cells in place of 5."},
        {"dts_TillmarkItemImport", heading + "A,A,\"B,C,1\r\n", "Text file: Row 2: A quote is opened and never closed."},
        {"dts_TillmarkItemImport", heading + "A,A,B,C,1e3\r\n", "Text file: Row 2, column Reorder: \"1e3\" is no number."},
        {"dts_TillmarkItemImport", heading + "A,A,B,C,nan\r\n", "Text file: Row 2, column Reorder: \"nan\" is no number."},
        {"dts_TillmarkItemImport", heading + "A,A,caf\xE9,C,1\r\n",
         "Text file: Row 2, column Name: it holds a byte that is no UTF-8. Please save the file as UTF-8."},
        {"dts_TillmarkItemImport", heading + "A,A," + std::string(256, 'x') + ",C,1\r\n", nullptr},
        {"dts_StockImport", "SKU,MatrixSKU,Qty\r\nA,A,1.5\r\n", "Text file: Row 2, column Qty: \"1.5\" is no whole number."},
        {"ImportSupp", "A,B\r\n", "Text file: Row 1 has 2 cells in place of 10."},
        {"ImportSupp", "Supplier,Address1,Address2,Address3,City,State,Zip,Phone,Fax,Email\r\n",
         "Text file: Row 1 names the columns. Please take it out: a file of suppliers has no heading."},
    };
    for (const auto& one : kCases) {
        const std::string refused = refusal(one.package, one.text);
        if (one.refusal != nullptr)
            EXPECT_EQ(refused, one.refusal);
        else
            EXPECT_NE(refused.find("is longer than 255 characters."), std::string::npos) << refused;
    }
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Item WHERE SKU IN ('A', 'B') SELECT COUNT(*) FROM Suppliers"), "0;1");
}

TEST_F(FlatFiles, AddNothingWhereOneKeyIsTaken) {
    run("INSERT INTO Item (SKU, MatrixSKU, Name) VALUES ('b', 'B', 'old')");
    const std::string refused =
        refusal("dts_TillmarkItemImport", "\xEF\xBB\xBFname,NOTES,Reorder,MatrixSKU,SKU\nNew,,,A,A\n\nNewer,,,B,B\nNewest,,,C,C\n");
    EXPECT_TRUE(refused.starts_with("Store: Row 4: Violation of PRIMARY KEY constraint")) << refused;
    EXPECT_EQ(rowsOf("SELECT SKU, Name FROM Item WHERE SKU IN ('A', 'B', 'C')"), "b|old");
}

TEST_F(FlatFiles, CanBeStoppedAndThenLeaveNothing) {
    std::string text = "SKU,MatrixSKU,Name,Notes,Reorder\r\n";
    for (int i = 0; i < 2000; ++i)
        text += "S" + std::to_string(i) + ",S" + std::to_string(i) + ",Name,,\r\n";
    std::istringstream in(text);
    const FlatPackage& items = flatPackage("dts_TillmarkItemImport");
    const auto rows = readRows(*session, items, in, goOn);
    ASSERT_EQ(rows->size(), 2000U);
    {
        db::Work work(*session);
        EXPECT_FALSE(appendRows(*session, items, *rows, [](int done) { return done < 1000; }));
    }
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Item WHERE SKU LIKE 'S%'"), "0");
}

} // namespace
} // namespace merchantry::exchange
