#pragma once

#include "app/db/embedded/batch_check.h"
#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/catalog_functions.h"
#include "app/db/embedded/code_cache.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/definer.h"
#include "app/db/embedded/evaluator.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/plans.h"
#include "app/db/embedded/rowset.h"
#include "app/db/embedded/schema_version.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/table_builder.h"
#include "app/db/embedded/temporary_undo.h"
#include "app/db/embedded/transaction.h"
#include "app/db/session.h"
#include "base/guard.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <list>
#include <memory>
#include <tuple>
#include <unordered_map>

namespace merchantry::db::embedded {

class WriteScope;

// One connection to a store file that runs T-SQL: it keeps the compiled batches and modules, the transaction and the settings.
// The store lends it to one session after another. One thread, but for cancel.
class Engine : public FunctionHost {
public:
    Engine(const std::filesystem::path& file, bool durable, std::shared_ptr<SharedState> shared);

    void execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink);
    void call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink);
    TableShape tableShape(std::string_view name);
    void begin();
    void commit();
    void rollback();
    int transactionDepth() const { return transaction_.count(); }
    Value lastIdentity() const;
    void cancel();
    void setReadOnly(bool readOnly) { connection_.setReadOnly(readOnly); }
    void setClock(const Clock* clock) { session_.clock = clock; }
    // Makes it as new for the next session: rolls back, drops temporary tables, puts the settings back.
    void reset();

    Connection& connection() { return connection_; }

    // FunctionHost
    const Cell& variable(int slot) override { return batch_.value(slot); }
    void setVariable(int slot, Cell cell) override { batch_.assign(slot, std::move(cell)); }
    Identities& identities() override { return identities_; }
    CatalogFunctions& catalog() override { return catalogFunctions_; }
    Cell callFunction(std::int64_t id, const std::vector<CellView>& arguments) override;
    bool isUpdated(int column) override { return batch_.isUpdated(column); }
    int cursorStatus(std::string_view name) override;
    Cell systemValue(tsql::SystemValue value) override { return systemValues_.of(value); }

private:
    enum class Flow { Next, Break, Continue, Return, Goto };
    struct Captured {
        std::shared_ptr<const tsql::TableDef> table;
        std::shared_ptr<Rowset> inserted = std::make_shared<Rowset>();
        std::shared_ptr<Rowset> deleted = std::make_shared<Rowset>();
    };

    // batches
    void runTop(ResultSink& sink, const std::function<void()>& body);
    std::vector<DbError> errorsOf(ResultSink& sink, const std::function<void()>& body);
    void runCode(const std::shared_ptr<Code>& code, std::vector<Parameter>& parameters);
    BatchEnd failedByCancel();

    // flow
    Flow runBlock(const tsql::Block& block);
    Flow runStatement(const tsql::Statement& statement);
    Flow runOne(const tsql::Statement& statement);
    Flow failed(DbError error, const tsql::Statement& statement);
    Flow runIf(const tsql::IfStatement& statement);
    Flow runWhile(const tsql::WhileStatement& statement);
    Flow runTry(const tsql::TryStatement& statement);
    Flow runReturn(const tsql::ReturnStatement& statement);
    void runDeclare(const tsql::DeclareStatement& statement);
    void runSet(const tsql::SetVariableStatement& statement);
    void runTransaction(const tsql::TransactionStatement& statement);
    void runOption(const tsql::SetOptionStatement& statement);
    void setOption(const std::string& option, const tsql::SetOptionStatement& statement);
    void runRaise(const tsql::RaiseStatement& statement);
    void runThrow(const tsql::ThrowStatement& statement);
    void runPrint(const tsql::PrintStatement& statement);
    std::optional<DbError> runTried(const tsql::Block& block, Flow& flow);
    Flow runHandler(const tsql::TryStatement& statement, const DbError& error);
    std::string raisedMessage(StatementPlan& plan, const std::string& format);
    void runWait(const tsql::WaitForStatement& statement);
    void runCursor(const tsql::CursorStatement& statement);
    void fetch(const tsql::CursorStatement& statement);
    Cursor* findCursor(const std::string& name);
    Cursor& cursorOf(const tsql::CursorStatement& statement);
    void openCursor(Cursor& cursor, const tsql::CursorStatement& statement);

    // queries and changes
    void runSelect(const tsql::SelectStatement& statement);
    void runQuery(StatementPlan& plan, ResultSink& sink);
    void selectInto(StatementPlan& plan, const tsql::Statement& statement);
    void runInsert(const tsql::InsertStatement& statement);
    void insertFromExecute(const tsql::InsertStatement& statement);
    void runUpdate(const tsql::UpdateStatement& statement);
    void runDelete(const tsql::DeleteStatement& statement);
    void runTruncate(const tsql::TruncateStatement& statement);
    void runChange(const PlanPtr& plan);
    bool undoesItself(const tsql::ChangePlan& change);
    void change(StatementPlan& plan, WriteScope& scope);
    std::int64_t runChangeSql(StatementPlan& plan);
    void noteScopeIdentity(const tsql::TableDef& table, std::int64_t rows);
    std::int64_t moveKeys(StatementPlan& plan);
    void runInstead(StatementPlan& plan);
    void runOutput(StatementPlan& plan);
    void insertRows(const tsql::ChangePlan& plan, const Rowset& rows);
    void refreshForWrite();
    using CapturedTables = std::map<std::string, Captured>;
    void fireFor(const tsql::ChangePlan& plan, const CapturedTables& captured, char event);
    DbError refined(const DbError& error, const tsql::TableDef& table, tsql::ChangePlan::Kind kind);
    DbError conflict(StatementPlan& plan, const DbError& error);
    std::optional<DbError> brokenReference(const tsql::ChangePlan& change);

    // triggers
    using Tables = std::vector<std::shared_ptr<const tsql::TableDef>>;
    void startCapture(const std::shared_ptr<const tsql::TableDef>& table, char event, bool always);
    const Tables& watchedTables(const std::shared_ptr<const tsql::TableDef>& table, char event);
    CapturedTables captureOf(const std::shared_ptr<const tsql::TableDef>& table, char event, bool always,
                             const std::function<void()>& change);
    void capture(int operation, const char* schema, const char* name);
    static void captureHook(void* engine, sqlite3*, int operation, const char* schema, const char* name, sqlite3_int64, sqlite3_int64);
    void fireTriggers(const std::shared_ptr<const tsql::TableDef>& table, char event, const std::shared_ptr<const Rowset>& inserted,
                      const std::shared_ptr<const Rowset>& deleted, const std::vector<bool>& updated, bool insteadOf);
    void runTrigger(const StoredObject& trigger, const std::shared_ptr<const tsql::TableDef>& table,
                    const std::shared_ptr<const Rowset>& inserted, const std::shared_ptr<const Rowset>& deleted,
                    const std::vector<bool>& updated);
    using Triggers = std::vector<const StoredObject*>;
    const Triggers& triggersOf(std::int64_t table, char event, bool insteadOf);
    std::string pseudoName(const char* which, std::int64_t table) const;
    std::shared_ptr<const tsql::TableDef> pseudoTable(const char* which, const tsql::TableDef& table);

    // procedures
    void runExecute(const tsql::ExecuteStatement& statement);
    void runExecuteText(const std::string& text, std::vector<Parameter>* parameters = nullptr);
    void runSystemProcedure(const tsql::ExecuteStatement& statement, const std::string& name);
    void executeSql(const tsql::ExecuteStatement& statement);
    void addType(const tsql::ExecuteStatement& statement);
    void reindexTexts();
    void runShell(const tsql::ExecuteStatement& statement);
    struct BoundArgument {
        std::string name;
        Cell cell;
        SqlType type;
        bool isDefault = false;
        int outputSlot = -1;
    };
    std::vector<BoundArgument> argumentsOf(const tsql::ExecuteStatement& statement);
    struct CallResult {
        std::int64_t status = 0;
        std::vector<Cell> outputs; // by parameter
        std::shared_ptr<Code> code;
        bool ended = false; // by an error of its scope
    };
    CallResult callModule(const StoredObject& object, const std::vector<BoundArgument>& arguments, std::vector<int>& outputOf);
    void bindArguments(const Code& code, const std::vector<BoundArgument>& arguments, Frame& frame, std::vector<int>& outputOf);
    void copyOutputs(const CallResult& result, const std::vector<BoundArgument>& arguments, const std::vector<int>& outputOf);
    Flow runFrame(Frame& frame);
    // Runs it one level below its caller. The error that ended its scope, for the caller to note; thrown where a TRY waits for it.
    std::optional<DbError> runDeeper(Frame& frame);

    RowsetRegistry rows_; // before the connection, which it outlives
    Connection connection_;
    StoreCatalog store_;
    TemporaryTables temporaries_;
    SessionCatalog catalog_;
    Identities identities_;
    TableBuilder builder_{connection_, catalog_};
    TemporaryUndo temporaryUndo_{connection_, temporaries_, builder_};
    SchemaVersion schema_{connection_, store_};
    SessionState session_;
    BatchState batch_{session_};
    CodeCache code_{catalog_, schema_, session_};
    Plans plans_{batch_, catalog_, schema_, temporaries_};
    BatchCheck check_{batch_, plans_, schema_};
    Transaction transaction_{connection_, batch_, schema_, identities_, temporaryUndo_};
    SystemValues systemValues_{batch_, transaction_, identities_, catalog_};
    Evaluator evaluator_{connection_, batch_, transaction_, plans_, systemValues_};
    CatalogFunctions catalogFunctions_{store_, catalog_};
    DefinitionParts definitions_{connection_, store_, temporaries_, catalog_, builder_, schema_, batch_};
    TableMaker tables_{definitions_, identities_, transaction_, temporaryUndo_};
    TableChanger changer_{definitions_, evaluator_};
    Definer definer_{definitions_, tables_, changer_, transaction_};

    // By table, event and whether they stand in place of it; found anew for each version of the schema.
    struct Triggering {
        std::uint64_t version = 0;
        Triggers triggers;
    };
    std::map<std::tuple<std::int64_t, char, bool>, Triggering> triggering_;
    // By table and event, those whose changed rows a trigger wants to see; likewise.
    struct Watched {
        std::uint64_t version = 0;
        Tables tables;
    };
    std::map<std::pair<std::int64_t, char>, Watched> watched_;
    bool hooked_ = false; // SQLite tells of each changed row

    // rows captured for triggers and OUTPUT
    struct CaptureState {
        bool active = false;
        std::map<std::string, Captured> tables;
    };
    CaptureState capture_;
};

} // namespace merchantry::db::embedded
