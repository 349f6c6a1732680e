#pragma once

#include "app/db/embedded/definition_parts.h"
#include "app/db/embedded/evaluator.h"

namespace merchantry::db::embedded {

// ALTER TABLE. The rows stay where they are; SQLite's own text of the table is replaced. Requires: a WriteScope.
class TableChanger {
public:
    TableChanger(const DefinitionParts& parts, Evaluator& evaluator) : parts_(parts), evaluator_(evaluator) {}

    void alter(const tsql::AlterTableStatement& statement);

private:
    void add(const tsql::AlterTableStatement& statement, tsql::TableDef table);
    void addColumn(const tsql::TableDef& table, const tsql::ColumnDef& column, bool hasRows, int line);
    void fillWithDefault(const tsql::TableDef& table, const tsql::ColumnDef& column);
    void fillWithNumbers(const tsql::TableDef& table, const tsql::ColumnDef& column);
    void addKeys(const tsql::TableDef& table, std::size_t first);
    void verifyChecks(const tsql::TableDef& table, std::size_t first);
    void verifyReferences(const tsql::TableDef& table, std::size_t first);
    void changeColumn(const tsql::AlterTableStatement& statement, tsql::TableDef table);
    void convertCells(const tsql::TableDef& table, const tsql::ColumnDef& column, const SqlType& from);
    void dropColumns(const tsql::AlterTableStatement& statement, tsql::TableDef table);
    void dropConstraints(const tsql::AlterTableStatement& statement, tsql::TableDef table);
    bool dropKey(tsql::TableDef& table, const std::string& name, int line);
    void enableTriggers(const tsql::AlterTableStatement& statement, const tsql::TableDef& table);
    // Puts the definition in the place of the one that the file has. Requires: the rows fit.
    void rewrite(const tsql::TableDef& table);
    bool any(const std::string& rows);

    DefinitionParts parts_;
    Evaluator& evaluator_;
};

} // namespace merchantry::db::embedded
