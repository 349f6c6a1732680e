#pragma once

#include "app/db/embedded/definition_parts.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/temporary_undo.h"
#include "app/db/embedded/transaction.h"

namespace merchantry::db::embedded {

// Makes tables and drops them: those of the file, temporary ones and table variables. Requires, for all that change the file: a WriteScope.
class TableMaker {
public:
    TableMaker(const DefinitionParts& parts, Identities& identities, Transaction& transaction, TemporaryUndo& undo)
        : parts_(parts), identities_(identities), transaction_(transaction), undo_(undo) {}

    // CREATE TABLE; throws DbError Name 2714 when the name is taken.
    void create(const tsql::ObjectName& name, const tsql::TableBody& body);
    // DECLARE @t TABLE. In a loop the table of the last round stays.
    void declare(const tsql::DeclareTableStatement& statement);
    // A table whose columns are known. One without an id gets the next.
    void make(tsql::TableDef table, bool temporary);
    // DROP TABLE; throws DbError Name 3701 when there is none, unless that does not matter, and Type 3726 when others refer to it.
    void drop(const tsql::ObjectName& name, bool ifExists);
    // The temporary tables that end with a module or text. Throws nothing.
    void dropTablesOf(Frame& frame);

private:
    bool ownsTemporary(const std::string& name) const;
    tsql::TableDef defined(const tsql::ObjectName& name, const tsql::TableBody& body, std::int64_t id);
    void makeTemporary(tsql::TableDef table);
    void makeStored(tsql::TableDef table);
    void dropTemporary(const std::shared_ptr<const tsql::TableDef>& table);

    DefinitionParts parts_;
    Identities& identities_;
    Transaction& transaction_;
    TemporaryUndo& undo_;
};

// Finds the tables and columns that the references of a definition mean; throws DbError Name or Type when they mean none, or no key.
void resolveReferences(tsql::Catalog& catalog, tsql::TableDef& table, int line);

} // namespace merchantry::db::embedded
