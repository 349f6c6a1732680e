#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/code_cache.h"
#include "app/db/embedded/evaluator.h"
#include "app/db/embedded/plans.h"
#include "app/db/embedded/runner.h"
#include "app/db/embedded/transaction.h"

#include <optional>

namespace merchantry::db::embedded {

// What is passed to a procedure.
struct Argument {
    std::string name; // with @; empty for one by its place
    tsql::Cell cell;
    SqlType type;
    bool isDefault = false;
    int outputSlot = -1; // of the caller's variable that takes what comes back
};
using Arguments = std::vector<Argument>;

// Calls procedures and functions, and runs texts as batches of their own.
class Calls {
public:
    Calls(BatchState& batch, StoreCatalog& store, CodeCache& code, Plans& plans, Evaluator& evaluator, const Transaction& transaction,
          Runner& runner)
        : batch_(batch), store_(store), code_(code), plans_(plans), evaluator_(evaluator), transaction_(transaction), runner_(runner) {}

    // From outside: a batch, and a procedure. Parameters that give back hold what they gave.
    void runBatch(std::string_view text, std::vector<Parameter>& parameters);
    void callProcedure(const std::string& name, std::vector<Parameter>& parameters);

    // EXEC of a procedure or function of the store. False when there is none of that name.
    bool execute(const tsql::ExecuteStatement& statement);
    std::string nameOf(const tsql::ExecuteStatement& statement);
    Arguments argumentsOf(const tsql::ExecuteStatement& statement);
    // EXEC ('...'), and what sp_executesql runs.
    void executeText(const std::string& text, std::vector<Parameter>& parameters);
    // Puts a value into a variable of the running frame, in its type.
    void give(int slot, const tsql::Cell& cell, const SqlType& type);
    // A function within a statement; an error of it is an error of that statement.
    tsql::Cell callFunction(std::int64_t id, const std::vector<tsql::CellView>& arguments);

private:
    struct Result {
        std::shared_ptr<Code> code;
        bool ended = false; // by an error of its scope
        std::int64_t status = 0;
        std::vector<tsql::Cell> outputs; // by parameter
        std::vector<int> parameterOf;    // by argument: the parameter, when that gives something back; else -1
    };
    Result call(const StoredObject& procedure, const Arguments& arguments);
    void bind(const Code& code, const Arguments& arguments, Frame& frame, std::vector<int>& parameterOf);
    void bindDefaults(const Code& code, const std::vector<bool>& given, Frame& frame);
    void copyOutputs(const Result& result, const Arguments& arguments);
    tsql::Cell executeFunction(const StoredObject& object, const Arguments& arguments, SqlType& type);
    std::optional<DbError> runDeeper(Frame& frame);
    void checkCount(int before);

    BatchState& batch_;
    StoreCatalog& store_;
    CodeCache& code_;
    Plans& plans_;
    Evaluator& evaluator_;
    const Transaction& transaction_;
    Runner& runner_;
};

} // namespace merchantry::db::embedded
