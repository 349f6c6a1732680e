// What a statement leaves for the next one, and a procedure, trigger or function for who ran it.

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

class Flow : public OnAStore {
protected:
    Flow() {
        run("CREATE TABLE T (ID int IDENTITY(1, 1), N int CHECK (N < 100)) CREATE TABLE Log (ID int IDENTITY(100, 1), S varchar(30))");
    }

    // The numbers of all errors of a batch, then its rows.
    std::string told(const std::string& batch) {
        class Answers : public ResultSink {
        public:
            void beginSet(const std::vector<Column>&) override {}
            void row(const RowView& row) override {
                text += text.empty() ? "" : ";";
                for (int i = 0; i < row.size(); ++i)
                    text += (i > 0 ? "|" : "") + row.value(i).toScriptText();
            }
            void changed(std::int64_t rows) override { counts += std::to_string(rows) + " "; }
            void error(const DbError& error) override { errors += "," + std::to_string(error.native()); }
            std::string text, errors, counts;
        } answers;
        std::string first;
        try {
            session->execute(batch, answers);
        } catch (const DbError& error) {
            first = std::to_string(error.native());
        }
        counts = answers.counts;
        return first + answers.errors + (first.empty() || answers.text.empty() ? "" : ": ") + answers.text;
    }
    std::string logged() { return rowsOf("SELECT S FROM Log ORDER BY ID"); }

    std::string counts; // that the last batch told
};

// A procedure that sets XACT_ABORT for itself, as bsp_NewItem does, left it on: the next error in a transaction took all of it.
TEST_F(Flow, WhatAProcedureSetsEndsWithIt) {
    run("CREATE PROCEDURE Sets AS SET XACT_ABORT ON SET ROWCOUNT 1 SET NOCOUNT ON SET DATEFIRST 1 SET ANSI_NULLS OFF");
    run("CREATE PROCEDURE SetsAndFails AS SET XACT_ABORT ON RAISERROR('no', 16, 1)");
    run("CREATE TRIGGER SetsToo ON Log AFTER INSERT AS SET XACT_ABORT ON SET ROWCOUNT 1");
    std::vector<Parameter> none;
    NoResult ignored;
    session->call("Sets", none, ignored);
    run("INSERT INTO T (N) VALUES (1), (2)");
    for (const char* sets :
         {"EXEC Sets", "EXEC ('SET XACT_ABORT ON SET ROWCOUNT 1')", "EXEC SetsAndFails", "INSERT INTO Log (S) VALUES ('x')"}) {
        told(sets);
        EXPECT_EQ(told("SELECT N, @@DATEFIRST FROM T ORDER BY ID"), "1|7;2|7") << sets;
        EXPECT_EQ(told("SELECT COUNT(*) WHERE NULL = NULL"), "0") << sets;
        EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (500) SELECT @@TRANCOUNT ROLLBACK"), "547: 1") << sets;
    }
    run("SET XACT_ABORT ON"); // a batch's own choice stays
    EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (500) SELECT 'goes on'"), "547");
    EXPECT_EQ(told("SELECT @@TRANCOUNT"), "0");
}

TEST_F(Flow, CountsAreToldUnlessTheyAreSwitchedOff) {
    run("CREATE PROCEDURE Quiet AS SET NOCOUNT ON INSERT INTO T (N) VALUES (1) SELECT @@ROWCOUNT");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (1), (2) EXEC Quiet UPDATE T SET N = N"), "1");
    EXPECT_EQ(counts, "2 3 ");
    told("SET NOCOUNT ON DELETE FROM T");
    EXPECT_EQ(counts, "");
}

} // namespace
} // namespace merchantry::db
