#pragma once

#include "app/db/embedded/definition_parts.h"
#include "app/db/embedded/table_changer.h"
#include "app/db/embedded/table_maker.h"
#include "app/db/embedded/transaction.h"

namespace merchantry::db::embedded {

// Carries out what changes definitions: CREATE, ALTER and DROP. Each is all of it or nothing, and counts the number of the file's schema
// up.
class Definer {
public:
    Definer(const DefinitionParts& parts, TableMaker& tables, TableChanger& changer, Transaction& transaction)
        : parts_(parts), tables_(tables), changer_(changer), transaction_(transaction) {}

    void run(const tsql::Statement& statement);

private:
    void define(const tsql::Statement& statement);
    void createIndex(const tsql::CreateIndexStatement& statement);
    void createView(const tsql::CreateViewStatement& statement);
    void createTrigger(const tsql::CreateTriggerStatement& statement);
    void createType(const tsql::CreateTypeStatement& statement);
    void createModule(const tsql::ObjectName& name, bool alter, const char* kind, const std::string& text, std::int64_t parent, int line);
    void drop(const tsql::DropStatement& statement);
    void dropObject(const tsql::DropStatement& statement, const tsql::ObjectName& name);
    void dropIndex(const tsql::DropStatement& statement);
    void store(const std::string& name, const char* kind, std::int64_t parent, const std::string& source);

    DefinitionParts parts_;
    TableMaker& tables_;
    TableChanger& changer_;
    Transaction& transaction_;
};

} // namespace merchantry::db::embedded
