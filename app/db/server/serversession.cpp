#include "app/db/server/serversession.h"

#include "app/db/eachrow.h"
#include "app/db/nativeerrors.h"
#include "app/db/server/batchtext.h"
#include "app/db/server/link.h"
#include "app/db/server/scratchstore.h"
#include "base/guard.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::server {
namespace {

using Category = DbError::Category;

// Hands everything on.
class PassingSink : public ResultSink {
public:
    explicit PassingSink(ResultSink& to) : to_(to) {}
    void beginSet(const std::vector<Column>& columns) override { to_.beginSet(columns); }
    void row(const RowView& row) override { to_.row(row); }
    void endSet() override { to_.endSet(); }
    void changed(std::int64_t rows) override { to_.changed(rows); }
    void message(const std::string& text) override { to_.message(text); }

private:
    ResultSink& to_;
};

// Gives the columns of a recordset their tables.
class NamingSink : public PassingSink {
public:
    NamingSink(ResultSink& to, std::vector<std::vector<Column>> sets) : PassingSink(to), sets_(std::move(sets)) {}
    void beginSet(const std::vector<Column>& columns) override {
        std::vector<Column> named = columns;
        nameTables(named, sets_);
        PassingSink::beginSet(named);
    }

private:
    std::vector<std::vector<Column>> sets_;
};

// Notes whether anything was changed.
class ChangeSink : public PassingSink {
public:
    using PassingSink::PassingSink;
    void changed(std::int64_t rows) override { changedRows += rows; }
    std::int64_t changedRows = 0;
};

[[noreturn]] void refuseChange() {
    throw serverError(3906, "Failed to update database because the database is read-only.");
}

// "EXEC sp_x @name = @p0 OUTPUT, @p1": a call as a batch, its parameters under the batch's own names.
std::string batchOf(std::string_view procedure, std::vector<Parameter>& parameters) {
    std::string text = "EXEC " + std::string(procedure);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const std::string own = "p" + std::to_string(i);
        const std::string& name = parameters[i].name;
        text += (i == 0 ? " " : ", ") + (name.empty() ? "" : (name.starts_with('@') ? "" : "@") + name + " = ") + "@" + own +
                (parameters[i].output ? " OUTPUT" : "");
        parameters[i].name = own;
    }
    return text;
}

std::vector<std::vector<Column>> setsOf(Server& server, Link& link, const Request& request) {
    if (!request.isCall)
        return server.setsOf(link, request.text, request.parameters);
    std::vector<Parameter> named = request.parameters;
    const std::string batch = batchOf(request.text, named);
    return server.setsOf(link, batch, named);
}

} // namespace

ServerSession::ServerSession(std::shared_ptr<Server> server, std::unique_ptr<Link> link)
    : server_(std::move(server)), link_(std::move(link)), depth_(0) {}

ServerSession::~ServerSession() {
    try {
        if (traces_ || link_ == nullptr || link_->isLost())
            return;
        if (transactionDepth() > 0)
            rollback();
        server_->giveBack(std::move(link_));
    } catch (const std::exception&) { // a connection that cannot be put right is let go
    }
}

void ServerSession::execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) {
    runAny({batch, parameters, false}, sink);
}

// Compatible servers mistake results of parameters that are called in another order than the procedure's: these go as a batch.
void ServerSession::call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) {
    if (std::none_of(parameters.begin(), parameters.end(), [](const Parameter& parameter) { return parameter.output; })) {
        runAny({trimmed(procedure), parameters, true}, sink);
        return;
    }
    std::vector<Parameter> named = parameters;
    execute(batchOf(trimmed(procedure), named), named, sink);
    for (std::size_t i = 0; i < named.size(); ++i)
        parameters[i].value = std::move(named[i].value);
}

void ServerSession::runAny(const Request& request, ResultSink& sink) {
    if (readOnly_)
        runReading(request, sink);
    else
        run(request, sink);
}

void ServerSession::run(const Request& request, ResultSink& sink) {
    Link& open = link();
    traces_ = traces_ || (!request.isCall && leavesTraces(request.text));
    if (!request.isCall && touchesTransactions(request.text))
        depth_.reset();
    std::optional<NamingSink> naming;
    if (sink.wantsTables())
        naming.emplace(sink, setsOf(*server_, open, request));
    std::vector<DbError> errors;
    open.run(request, naming ? static_cast<ResultSink&>(*naming) : sink, errors);
    if (errors.empty())
        return;
    depth_.reset();
    if (open.isLost())
        depth_ = 0;
    for (const DbError& error : errors)
        if (&error != &errors.front())
            sink.error(error);
    throw DbError(errors.front());
}

// Whatever is called may write: it does so in a transaction that is taken back.
void ServerSession::runReading(const Request& request, ResultSink& sink) {
    if (!request.isCall && !isOneReading(request.text))
        refuseChange();
    begin();
    const AtEnd back([&] {
        try {
            if (transactionDepth() > 0)
                rollback();
        } catch (const std::exception&) { // the server does so itself when the connection goes
        }
    });
    ChangeSink watching(sink);
    run(request, watching);
    if (watching.changedRows > 0)
        refuseChange();
}

TableShape ServerSession::table(std::string_view name) {
    return server_->table(link(), name);
}

void ServerSession::begin() {
    const std::optional<int> before = depth_;
    runAlone("BEGIN TRANSACTION");
    if (before)
        depth_ = *before + 1;
}

void ServerSession::commit() {
    const std::optional<int> before = depth_;
    runAlone("COMMIT TRANSACTION");
    if (before)
        depth_ = *before - 1;
}

void ServerSession::rollback() {
    runAlone("ROLLBACK TRANSACTION");
    depth_ = 0;
}

void ServerSession::runAlone(std::string_view batch) {
    NoResult none;
    std::vector<Parameter> noParameters;
    run({batch, noParameters}, none);
}

int ServerSession::transactionDepth() const {
    if (!depth_)
        depth_ = static_cast<int>(single("SELECT @@TRANCOUNT").toInteger());
    return *depth_;
}

Value ServerSession::lastIdentity() const {
    const Value identity = single("SELECT CAST(@@IDENTITY AS bigint)");
    return identity.isNull() ? identity : Value(identity.toInteger());
}

Value ServerSession::single(std::string_view select) const {
    if (link_ == nullptr || link_->isLost())
        return {};
    Value found;
    EachRow one([&](const RowView& row) { found = row.value(0); });
    runOn(*link_, select, one);
    return found;
}

Link& ServerSession::link() {
    if (link_ == nullptr || link_->isLost()) {
        auto fresh = server_->link();
        const std::lock_guard lock(linkMutex_);
        link_ = std::move(fresh);
        depth_ = 0;
        traces_ = false;
    }
    return *link_;
}

void ServerSession::cancel() {
    const std::lock_guard lock(linkMutex_);
    if (link_ != nullptr)
        link_->cancel();
}

} // namespace merchantry::db::server
