#include "app/db/server/serversession.h"

#include "app/db/eachrow.h"
#include "app/db/messages.h"
#include "app/db/server/batchtext.h"
#include "app/db/server/link.h"
#include "app/db/server/scratchstore.h"
#include "base/guard.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

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

constexpr std::string_view kBegin = "BEGIN TRANSACTION";

// What the server says when others are in the way; a user who gave up waiting has no number.
bool isBusy(const DbError& error) {
    return error.category() == Category::Busy && error.native() != 0;
}

// Whether it is known what became of a request whose connection was lost: nothing of a transaction that it does not end itself, and nothing
// was to be saved by a select.
bool endsKnown(const Request& request, bool inTransaction) {
    if (request.isCall)
        return inTransaction;
    return request.text == kBegin || (inTransaction ? !touchesTransactions(request.text) : isOneSelect(request.text));
}

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
    const bool inTransaction = depth_.value_or(0) > 0;
    traces_ = traces_ || (!request.isCall && leavesTraces(request.text));
    if (!request.isCall && touchesTransactions(request.text))
        depth_.reset();
    std::optional<NamingSink> naming;
    if (sink.wantsTables())
        naming.emplace(sink, setsOf(*server_, open, request));
    std::vector<DbError> errors;
    open.run(request, naming ? static_cast<ResultSink&>(*naming) : sink, errors);
    if (!errors.empty())
        fail(errors, request, inTransaction, sink);
}

// An error may have ended the transaction: the server is asked after each.
void ServerSession::fail(const std::vector<DbError>& errors, const Request& request, bool inTransaction, ResultSink& sink) {
    const bool isLost = link_->isLost();
    const std::exception_ptr failure = failureOf(errors.front(), isLost && endsKnown(request, inTransaction));
    depth_.reset();
    if (isLost)
        depth_ = 0;
    const int begun = begun_;
    if (transactionDepth() == 0 && begun > 0 && (isLost || isBusy(errors.front()))) {
        begun_ = begun;
        ended_ = failure;
    }
    for (std::size_t i = 1; i < errors.size() && !isLost; ++i)
        sink.error(errors[i]);
    std::rethrow_exception(failure);
}

std::exception_ptr ServerSession::failureOf(const DbError& first, bool isKnown) const {
    if (link_->isLost())
        return std::make_exception_ptr(lostError(server_->address(), isKnown));
    return isBusy(first) ? std::make_exception_ptr(TryAgain(first)) : std::make_exception_ptr(DbError(first));
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
    runAlone(kBegin);
    ++begun_;
    if (before)
        depth_ = *before + 1;
}

void ServerSession::commit() {
    const std::optional<int> before = depth_;
    runAlone("COMMIT TRANSACTION");
    begun_ = std::max(0, begun_ - 1);
    if (before)
        depth_ = *before - 1;
}

void ServerSession::rollback() {
    begun_ = 0;
    if (std::exchange(ended_, nullptr) == nullptr)
        runAlone("ROLLBACK TRANSACTION");
    depth_ = 0;
}

void ServerSession::runAlone(std::string_view batch) {
    NoResult none;
    std::vector<Parameter> noParameters;
    run({batch, noParameters}, none);
}

int ServerSession::transactionDepth() const {
    if (ended_ != nullptr)
        return begun_;
    if (!depth_)
        depth_ = static_cast<int>(single("SELECT @@TRANCOUNT").toInteger());
    if (*depth_ == 0)
        begun_ = 0;
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
    refuseRest();
    if (link_ == nullptr || link_->isLost() || (mayBeReplaced() && !link_->stillStands())) {
        auto fresh = server_->link();
        const std::lock_guard lock(linkMutex_);
        link_ = std::move(fresh);
        depth_ = 0;
        begun_ = 0;
        traces_ = false;
    }
    link_->setWaiter(waiter_, [server = server_.get()](int process) { return server->isBlocked(process); });
    return *link_;
}

void ServerSession::refuseRest() {
    if (ended_ == nullptr && begun_ > 0 && link_->isLost())
        ended_ = std::make_exception_ptr(lostError(server_->address(), true));
    if (ended_ != nullptr)
        std::rethrow_exception(ended_);
}

// Nothing is open on the connection that another would lack.
bool ServerSession::mayBeReplaced() const {
    return depth_ == 0 && !traces_;
}

void ServerSession::cancel() {
    const std::lock_guard lock(linkMutex_);
    if (link_ != nullptr)
        link_->cancel();
}

} // namespace merchantry::db::server
