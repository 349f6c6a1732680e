#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/tsql/catalog.h"

#include <string>
#include <vector>

namespace merchantry::db::embedded {

// How a table of T-SQL stands in SQLite: a strict table with its checks and references, and an index for each key.
class TableBuilder {
public:
    TableBuilder(Connection& connection, tsql::Catalog& catalog) : connection_(connection), catalog_(catalog) {}

    // Makes the table with its indexes. Requires: a definition with its storage.
    void build(const tsql::TableDef& table);
    // An index for these columns. Where a unique one has columns that may be null a second one keeps the nulls unique as well. Throws
    // DbError Integrity 1505 when rows are there that break it.
    void addKey(const tsql::TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns, bool unique);
    void dropKey(const tsql::TableDef& table, const std::string& name);
    // What stands between the brackets of CREATE TABLE.
    std::string tableSql(const tsql::TableDef& table);
    // How SQLite keeps the cells of a type.
    static const char* storageClass(const SqlType& type);

private:
    void buildKey(const tsql::TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns, bool unique);
    std::string columnSql(const tsql::TableDef& table, const tsql::ColumnDef& column);
    static std::string referenceSql(const tsql::ForeignKeyDef& key);
    static std::string indexName(const tsql::TableDef& table, const std::string& name);

    Connection& connection_;
    tsql::Catalog& catalog_;
};

} // namespace merchantry::db::embedded
