#include "reports/engine/querytext.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "reports/engine/report.h"

#include <gtest/gtest.h>

namespace merchantry::reports {
namespace {

Definition reportOf(const std::string& sql,
                    std::vector<ParameterKind> kinds = {ParameterKind::Where, ParameterKind::Sort, ParameterKind::Direction}) {
    Definition definition;
    definition.file = "r.rpt";
    definition.query.sql = sql;
    definition.query.parameters = std::move(kinds);
    definition.query.order = "Item.Name";
    return definition;
}

std::string refusalOf(const Definition& definition, const ParameterTexts& parameters) {
    try {
        queryText(definition, parameters);
        return "";
    } catch (const DefinitionError& error) {
        return error.what();
    }
}

TEST(QueryText, ConditionsAndOrderStandInTheirPlaces) {
    Definition report = reportOf("SELECT * FROM Item {where}{order}");
    EXPECT_EQ(queryText(report, {}), "SELECT * FROM Item  ORDER BY Item.Name");
    EXPECT_EQ(queryText(report, {"WHERE (Item.Active = 1)", "Item.SKU", " DESC"}),
              "SELECT * FROM Item WHERE (Item.Active = 1) ORDER BY Item.SKU DESC");
    report.query.sort["item.sku"] = "Code";
    report.groups.resize(2);
    report.groups[0].order = "Departments.Department";
    report.groups[1].field = "Kind";
    EXPECT_EQ(queryText(report, {"", "Item.SKU", " ASC"}), "SELECT * FROM Item  ORDER BY Departments.Department, [Kind], Code ASC");
    EXPECT_EQ(queryText(report, {"", "Departments.Department", " DESC"}),
              "SELECT * FROM Item  ORDER BY Departments.Department DESC, [Kind]");
    // A column among those that order a group comes first there; a sort may name several.
    report.groups[1].order = "Item.Name, ISNULL(Item.SKU, 'a, b')";
    report.query.sort["item.notes"] = "ISNULL(Item.SKU, 'a, b'), Code";
    EXPECT_EQ(queryText(report, {"", "Item.Notes", " DESC"}),
              "SELECT * FROM Item  ORDER BY Departments.Department, ISNULL(Item.SKU, 'a, b') DESC, Item.Name, Code DESC");
    report = reportOf("SELECT 1 AS A FROM Item WHERE TypeID <> 4{and}");
    EXPECT_EQ(queryText(report, {"where (A = 1) OR (B = 2)", "", ""}),
              "SELECT 1 AS A FROM Item WHERE TypeID <> 4 AND ((A = 1) OR (B = 2))");
    EXPECT_EQ(queryText(report, {}), "SELECT 1 AS A FROM Item WHERE TypeID <> 4");
}

TEST(QueryText, WhatTellsRowsApartFollowsEveryOrder) {
    Definition report = reportOf("SELECT * FROM Item {order}");
    report.query.then = "Item.SKU, Item.MatrixSKU";
    EXPECT_EQ(queryText(report, {}), "SELECT * FROM Item  ORDER BY Item.Name, Item.SKU, Item.MatrixSKU");
    EXPECT_EQ(queryText(report, {"", "Item.SKU", " DESC"}), "SELECT * FROM Item  ORDER BY Item.SKU DESC, Item.MatrixSKU");
    report.query.order = "";
    EXPECT_EQ(queryText(report, {}), "SELECT * FROM Item  ORDER BY Item.SKU, Item.MatrixSKU");
}

TEST(QueryText, AParameterCannotBecomeMoreThanItIs) {
    const Definition numbered = reportOf("EXEC sp_Order {1}, {2}", {ParameterKind::Number, ParameterKind::Text});
    EXPECT_EQ(queryText(numbered, {"17", "it's"}), "EXEC sp_Order 17, 'it''s'");
    EXPECT_EQ(queryText(numbered, {}), "EXEC sp_Order 0, ''");
    EXPECT_NE(refusalOf(numbered, {"1; DROP TABLE Item", ""}).find("must be a number"), std::string::npos);
    EXPECT_NE(refusalOf(numbered, {"0x10", ""}).find("must be a number"), std::string::npos);
    const Definition filtered = reportOf("SELECT * FROM Item {where}");
    EXPECT_NE(refusalOf(filtered, {"WHERE 1 = 1 DELETE FROM Item"}).find("one SELECT or one call"), std::string::npos);
    EXPECT_NE(refusalOf(filtered, {"WHERE Name = 'it's'"}).find("r.rpt"), std::string::npos);
    EXPECT_NE(refusalOf(reportOf("SELECT {3x}"), {}).find("{3x}"), std::string::npos);
    EXPECT_NE(refusalOf(reportOf("SELECT {4}"), {}).find("{4}"), std::string::npos);
    EXPECT_NE(refusalOf(reportOf("SELECT {where"), {}).find("not closed"), std::string::npos);
    EXPECT_NE(refusalOf(reportOf("UPDATE Item SET Name = ''"), {}).find("one SELECT or one call"), std::string::npos);
}

// What only the store can tell, and what only the rows can, is told with the line of the file as well.
TEST(QueryText, AMistakeInTheStatementIsToldWithItsLine) {
    const auto store = db::Store::scratch();
    db::createSchema(*store->session());
    const auto refusal = [&](const std::string& statement, const std::string& rest, const ParameterTexts& parameters = {}) -> std::string {
        const std::string text = "title = 'T'\n[query]\nsql = \"\"\"\nSELECT Department AS Name, DepartmentID AS Number\n" + statement +
                                 "\"\"\"\n" + (rest.empty() ? "[[column]]\nfield = 'Name'\n" : rest);
        try {
            Report::run(*store->session(), parseDefinition(text, "own.rpt"), parameters);
            return "";
        } catch (const std::exception& error) {
            return error.what();
        }
    };
    EXPECT_EQ(refusal("FROM Departments {where}\n", ""), "");
    EXPECT_EQ(refusal("FROM Departments\n{were}\n", ""), "own.rpt:6: The place {were} means nothing here.");
    EXPECT_EQ(refusal("FORM Departments\n", "").substr(0, 11), "own.rpt:5: ");
    EXPECT_EQ(refusal("FROM Departments\nWHERE Depratment = ''\n", ""), "own.rpt:6: Invalid column name 'Depratment'.");
    EXPECT_EQ(refusal("FROM Departments {where}\n", "", {"WHERE Nothing = 1"}), "Invalid column name 'Nothing'.");
    const std::string column = "[[column]]\nfield = 'Name'\n";
    for (const auto& [rest, reason] :
         {std::pair<std::string, std::string>{column + "total = 'sum'\n", "7: \"Name\" is no number."},
          {column + "[[column]]\nexpression = 'Number * Name'\n", "9: \"Name\" is no number."},
          {column + "[[chart]]\nlabel = 'Name'\nvalue = 'Name'\n", "9: \"Name\" is no number."},
          {column + "[[group]]\nfield = 'Name'\nheader = 'In {Name'\n", "9: A brace is opened and not closed in \"In {Name\"."}})
        EXPECT_EQ(refusal("FROM Departments\n", rest), "own.rpt:" + reason) << rest;
}

TEST(ReportRows, ComeFromASessionThatOnlyReads) {
    const auto store = db::Store::scratch();
    db::createSchema(*store->session());
    {
        const auto session = store->session();
        session->setReadOnly(true);
        EXPECT_EQ(readRows(*session, "SELECT DepartmentID FROM Departments")->rowCount(), 1);
        for (const char* change :
             {"INSERT INTO Departments (Department) VALUES ('Toys')", "SELECT * INTO Copied FROM Departments", "EXEC bsp_NewItem 'a', 'a'"})
            EXPECT_THROW(readRows(*session, change), db::DbError) << change;
        int asked = 0;
        try {
            readRows(*session, "SELECT a.object_id FROM sys.objects a, sys.objects b, sys.objects c", [&](int) { return ++asked < 2; });
            ADD_FAILURE() << "was not stopped";
        } catch (const db::DbError& error) {
            EXPECT_EQ(error.category(), db::DbError::Category::Cancelled);
        }
        EXPECT_EQ(asked, 2);
    }
    // The next user of the connection may write again.
    db::NoResult none;
    store->session()->execute("INSERT INTO Departments (Department) VALUES ('Toys')", none);
}

} // namespace
} // namespace merchantry::reports
