#pragma once

#include "app/db/embedded/connection.h"
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

// What a store calls its database.
inline constexpr const char* kDatabase = "Tillmark2k";

// The catalogue that a store's file holds, read once for each version of the schema. Changing members write the file and must run inside a
// write transaction.
class StoreCatalog : public tsql::Catalog {
public:
    explicit StoreCatalog(Connection& connection) : connection_(connection) {}

    // Makes the engine's own tables in a new file.
    static void create(Connection& connection);
    // Reads the file anew.
    void load();

    std::shared_ptr<const tsql::TableDef> table(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::ViewDef> view(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::FunctionDef> function(const tsql::ObjectName& name) override;
    bool userType(std::string_view name, SqlType& type, bool& nullable) override;
    bool identityInsert(const tsql::TableDef&) override { return false; }
    bool hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) override;

    // Whether a name, where it names a database, names this one.
    static bool isOwnDatabase(const tsql::ObjectName& name);
    std::shared_ptr<const tsql::TableDef> tableNamed(const std::string& name);
    std::shared_ptr<const tsql::ViewDef> viewNamed(const std::string& name);
    std::shared_ptr<const tsql::FunctionDef> functionNamed(const std::string& name);

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

private:
    std::shared_ptr<const tsql::TableDef> tableOf(const StoredObject& object);

    Connection& connection_;
    std::map<std::string, StoredObject> byName_; // lower case; triggers and indexes too
    std::map<std::int64_t, StoredObject> byId_;
    std::map<std::int64_t, std::shared_ptr<const tsql::TableDef>> tables_;
    std::map<std::int64_t, std::shared_ptr<const tsql::ViewDef>> views_;
    std::map<std::int64_t, std::shared_ptr<const tsql::FunctionDef>> functions_;
    bool hasTriggers_ = false;
    int hasReferences_ = -1;                    // not yet known
    std::map<std::int64_t, int> insteadEvents_; // bits: insert 1, update 2, delete 4
};

// Gives the computed columns of a definition their types. Requires: a table whose other columns have types.
void typeComputed(tsql::Catalog& catalog, tsql::TableDef& table);

} // namespace merchantry::db::embedded
