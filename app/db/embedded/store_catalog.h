#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/rowset.h"
#include "app/db/tsql/catalog.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::embedded {

// A row of the store's own table of objects. Kinds: U table, V view, P procedure, FN and IF function, TR trigger, IX index, TY type.
struct StoredObject {
    std::int64_t id = 0;
    std::string name;
    std::string kind;
    std::int64_t parent = 0;
    std::string source; // T-SQL
    bool enabled = true;
    std::int64_t createdMs = 0;
};

// The catalogue of a store as one session sees it: what is in the file, read once for each version of the schema, and the session's own
// temporary tables. Changing members write the file and must run inside a write transaction.
class StoreCatalog : public tsql::Catalog {
public:
    StoreCatalog(Connection& connection, RowsetRegistry& rows) : connection_(connection), rows_(rows) {}

    // Makes the engine's own tables in a new file.
    static void create(Connection& connection);
    // Reads the file anew.
    void load();

    std::shared_ptr<const tsql::TableDef> table(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::ViewDef> view(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::FunctionDef> function(const tsql::ObjectName& name) override;
    bool userType(std::string_view name, SqlType& type, bool& nullable) override;
    bool identityInsert(const tsql::TableDef& table) override { return identityInsertTable == table.id; }
    bool hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) override;

    const StoredObject* find(std::string_view name) const;
    const StoredObject* findById(std::int64_t id) const;
    std::vector<const StoredObject*> all() const;
    std::vector<const StoredObject*> childrenOf(std::int64_t parent, std::string_view kind) const;
    std::shared_ptr<const tsql::TableDef> tableById(std::int64_t id);
    std::shared_ptr<const tsql::FunctionDef> functionById(std::int64_t id);
    // Foreign keys of other tables that refer to this one, with their tables.
    std::vector<std::pair<std::shared_ptr<const tsql::TableDef>, tsql::ForeignKeyDef>> referencesTo(const std::string& table);

    // Whether any foreign key of the store changes or deletes rows that refer to others.
    bool hasReferences();
    bool hasTriggers() const { return hasTriggers_; }

    std::int64_t nextId();
    void add(const StoredObject& object);
    void setSource(std::int64_t id, const std::string& name, const std::string& source);
    void setEnabled(std::int64_t id, bool enabled);
    void remove(std::int64_t id);

    // Temporary tables and table variables; a name may be taken again further in.
    void pushTemporary(std::shared_ptr<const tsql::TableDef> table);
    void replaceTemporary(std::shared_ptr<const tsql::TableDef> table);
    void popTemporary(const std::string& name);
    std::vector<std::shared_ptr<const tsql::TableDef>> temporaries() const;

    // The table or view whose instead-of trigger runs: what it writes there is written.
    std::int64_t inInstead = 0;
    std::int64_t scope = 0; // of the running batch or module
    std::int64_t identityInsertTable = 0;
    std::string databaseName = "Tillmark2k";
    // Set when a name of a temporary table was asked for.
    bool sawTemporary = false;
    std::int64_t nowMs = 0;

    // Makes the tables of a definition's computed columns' types known. Requires: a table whose other columns have types.
    void typeComputed(tsql::TableDef& table);

private:
    std::shared_ptr<const tsql::TableDef> tableOf(const StoredObject& object);
    std::shared_ptr<const tsql::TableDef> systemTable(const tsql::ObjectName& name);
    bool isOwnDatabase(const tsql::ObjectName& name) const;
    std::string temporaryKey(const std::string& name) const;

    Connection& connection_;
    RowsetRegistry& rows_;
    std::map<std::string, StoredObject> byName_; // lower case; triggers and indexes too
    std::map<std::int64_t, StoredObject> byId_;
    std::map<std::int64_t, std::shared_ptr<const tsql::TableDef>> tables_;
    std::map<std::int64_t, std::shared_ptr<const tsql::ViewDef>> views_;
    std::map<std::int64_t, std::shared_ptr<const tsql::FunctionDef>> functions_;
    bool hasTriggers_ = false;
    int hasReferences_ = -1;                    // not yet known
    std::map<std::int64_t, int> insteadEvents_; // bits: insert 1, update 2, delete 4
    std::map<std::string, std::vector<std::shared_ptr<const tsql::TableDef>>> temporaries_;
    std::map<std::string, std::shared_ptr<const tsql::TableDef>> system_;
};

// The catalogue views (sys.objects, INFORMATION_SCHEMA.TABLES, ...): shapes and rows.
struct SystemView {
    const char* name; // "sys.objects", lower case
    std::vector<std::pair<const char*, SqlType>> columns;
    Rowset (*rows)(StoreCatalog& catalog);
};
const std::vector<SystemView>& systemViews();

} // namespace merchantry::db::embedded
