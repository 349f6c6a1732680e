#pragma once

#include "app/db/embedded/executor.h"
#include "app/db/embedded/session_host.h"
#include "app/db/embedded/shared_state.h"

#include <filesystem>
#include <memory>

namespace merchantry::db::embedded {

// One connection to a store file that runs T-SQL: it keeps the compiled batches and modules, the transaction and the settings.
// The store lends it to one session after another. One thread, but for cancel.
//
// It is the parts that the members name, each of which knows only those that it is given; they stand in the order of what needs what.
class Engine {
public:
    Engine(const std::filesystem::path& file, bool durable, std::shared_ptr<SharedState> shared);
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    void execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink);
    void call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink);
    TableShape tableShape(std::string_view name);
    void begin() { transaction_.begin(); }
    void commit() { transaction_.commit(); }
    void rollback() { transaction_.rollback(); }
    int transactionDepth() const { return transaction_.count(); }
    Value lastIdentity() const;
    void cancel();
    void setReadOnly(bool readOnly) { connection_.setReadOnly(readOnly); }
    void setClock(const Clock* clock) { session_.clock = clock; }
    // Makes it as new for the next session: rolls back, drops temporary tables, puts the settings back.
    void reset();

    Connection& connection() { return connection_; }

private:
    void run(ResultSink& sink, const std::function<void()>& body);
    std::vector<DbError> errorsOf(ResultSink& sink, const std::function<void()>& body);

    // the file
    RowsetRegistry rows_; // before the connection, which it outlives
    Connection connection_;
    StoreCatalog store_{connection_};
    SchemaVersion schema_{connection_, store_};

    // the session
    TemporaryTables temporaries_;
    SessionCatalog catalog_{store_, temporaries_, rows_};
    SessionState session_;
    BatchState batch_{session_};
    Identities identities_;
    TableBuilder builder_{connection_, catalog_};
    TemporaryUndo temporaryUndo_{connection_, temporaries_, builder_};
    Transaction transaction_{connection_, batch_, schema_, identities_, temporaryUndo_};

    // from a text to values
    CodeCache code_{catalog_, schema_, session_};
    Plans plans_{batch_, catalog_, schema_, temporaries_};
    BatchCheck check_{batch_, plans_, schema_};
    SystemValues systemValues_{batch_, transaction_, identities_, catalog_};
    Evaluator evaluator_{connection_, batch_, transaction_, plans_, systemValues_};

    // statements
    DefinitionParts definitions_{connection_, store_, temporaries_, catalog_, builder_, schema_, batch_};
    TableMaker tables_{definitions_, identities_, transaction_, temporaryUndo_};
    TableChanger changer_{definitions_, evaluator_};
    Definer definer_{definitions_, tables_, changer_, transaction_};
    ChangeCapture capture_{connection_};
    TriggerRunner triggers_{batch_, store_, schema_, code_, rows_, transaction_, executor_};
    Queries queries_{definitions_, transaction_, identities_, plans_, evaluator_, tables_};
    Changes changes_{connection_, batch_, store_, catalog_, transaction_, identities_, plans_, evaluator_, capture_, triggers_, executor_};
    Calls calls_{batch_, store_, code_, plans_, evaluator_, transaction_, executor_};
    SystemProcedures systemProcedures_{batch_, catalog_, schema_, calls_, definer_, transaction_, identities_};
    Cursors cursors_{batch_, transaction_, plans_, evaluator_};
    Messages messages_{batch_, transaction_, plans_, evaluator_};
    Options options_{session_, catalog_, schema_, plans_, evaluator_};
    Executor executor_{{queries_, changes_, calls_, systemProcedures_, cursors_, messages_, options_, definer_, tables_},
                       batch_,
                       catalog_,
                       temporaries_,
                       transaction_,
                       plans_,
                       evaluator_,
                       check_};

    // what SQLite asks back
    CatalogFunctions catalogFunctions_{store_, catalog_};
    SessionHost host_{batch_, identities_, catalogFunctions_, systemValues_, calls_, cursors_};
};

} // namespace merchantry::db::embedded
