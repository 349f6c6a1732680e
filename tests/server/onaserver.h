#pragma once

#include "app/db/schema/schema.h"
#include "app/db/server/database.h"
#include "tests/server/testserver.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace merchantry::db {

// A test in a database of its own on the server that MERCHANTRY_TEST_SERVER names, one for all tests of a file.
class OnAServer : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (testServer().empty())
            return;
        const server::Address address = ownDatabase("test");
        database = std::make_unique<server::NewDatabase>(address);
        host = std::make_shared<server::Server>(address);
    }
    // The same with a store in the database, and in that what the batch puts there.
    static void setUpStore(const std::string& goods) {
        OnAServer::SetUpTestSuite();
        if (host == nullptr)
            return;
        const auto session = host->session();
        createSchema(*session, [](int) {});
        NoResult none;
        session->execute(goods, none);
    }
    static void TearDownTestSuite() {
        host.reset();
        database.reset();
    }

    void SetUp() override {
        if (testServer().empty())
            GTEST_SKIP() << "skipped, no server";
        session = host->session();
    }
    void TearDown() override { session.reset(); }

    void run(const std::string& batch) const {
        NoResult none;
        session->execute(batch, none);
    }
    // All rows of a batch, cells joined by "|", rows by ";", sets by "/".
    std::string rowsOf(const std::string& batch, std::vector<Parameter> parameters = {}) const {
        class Texts : public ResultSink {
        public:
            void beginSet(const std::vector<Column>&) override {
                text += sets_++ > 0 ? "/" : "";
                rows_ = 0;
            }
            void row(const RowView& row) override {
                text += rows_++ > 0 ? ";" : "";
                for (int i = 0; i < row.size(); ++i)
                    text += (i > 0 ? "|" : "") + row.value(i).toScriptText();
            }
            std::string text;

        private:
            int sets_ = 0;
            int rows_ = 0;
        } texts;
        session->execute(batch, parameters, texts);
        return texts.text;
    }
    // The number of the error that a batch fails with; 0 when it does not.
    DbError errorOf(const std::string& batch) const {
        try {
            run(batch);
        } catch (const DbError& error) {
            return error;
        }
        return {DbError::Category::Other, 0, "no error"};
    }
    // Makes a table anew, also when an earlier test left it.
    void table(const std::string& name, const std::string& columns) const {
        run("IF OBJECT_ID('" + name + "') IS NOT NULL DROP TABLE " + name);
        run("CREATE TABLE " + name + " (" + columns + ")");
    }

    static inline std::unique_ptr<server::NewDatabase> database;
    static inline std::shared_ptr<server::Server> host;
    std::unique_ptr<Session> session;
};

} // namespace merchantry::db
