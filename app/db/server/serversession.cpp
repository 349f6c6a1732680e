#include "app/db/server/serversession.h"

#include "app/db/eachrow.h"
#include "app/db/server/batchtext.h"
#include "app/db/server/link.h"
#include "app/db/server/scratchstore.h"
#include "base/guard.h"
#include "base/text.h"

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
    throw DbError(Category::Storage, 3906, "Failed to update database because the database is read-only.");
}

// "EXEC sp_x @name = @p0 OUTPUT, @p1": a call as a batch, its parameters under the batch's own names.
std::string callText(std::string_view procedure, std::vector<Parameter>& parameters) {
    std::string text = "EXEC " + std::string(trimmed(procedure));
    bool first = true;
    int number = 0;
    for (Parameter& parameter : parameters) {
        const std::string name = parameter.name.starts_with('@') ? parameter.name.substr(1) : parameter.name;
        const std::string own = "p" + std::to_string(number++);
        text += (std::exchange(first, false) ? " " : ", ") + (name.empty() ? "" : "@" + name + " = ") + "@" + own +
                (parameter.output ? " OUTPUT" : "");
        parameter.name = own;
    }
    return text;
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
    if (readOnly_)
        runReading(batch, parameters, sink);
    else
        run(batch, parameters, sink);
}

void ServerSession::run(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) {
    Link& open = link();
    traces_ = traces_ || leavesTraces(batch);
    if (touchesTransactions(batch))
        depth_.reset();
    std::optional<NamingSink> naming;
    if (sink.wantsTables())
        naming.emplace(sink, server_->setsOf(open, batch, parameters));
    std::vector<DbError> errors;
    open.run(batch, parameters, naming ? static_cast<ResultSink&>(*naming) : sink, errors);
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
void ServerSession::runReading(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) {
    if (!isOneReading(batch))
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
    run(batch, parameters, watching);
    if (watching.changedRows > 0)
        refuseChange();
}

void ServerSession::call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) {
    std::vector<Parameter> sent = parameters;
    const std::string text = callText(procedure, sent);
    execute(text, sent, sink);
    for (std::size_t i = 0; i < sent.size(); ++i)
        if (sent[i].output)
            parameters[i].value = std::move(sent[i].value);
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
    run(batch, noParameters, none);
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
