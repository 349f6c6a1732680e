#pragma once

#include "app/db/server/server.h"
#include "app/db/session.h"

#include <exception>
#include <mutex>
#include <optional>

namespace merchantry::db::server {

struct Request;

// A session on a server: a connection, borrowed as long as the session lives. One that was lost is replaced at the next command; so is one
// that ended while nothing was open on it, before the command is sent. Where a transaction was open, all is refused until its rollback,
// since what followed would be saved without what came before.
class ServerSession : public Session {
public:
    ServerSession(std::shared_ptr<Server> server, std::unique_ptr<Link> link);
    ~ServerSession() override;

    using Session::execute;
    void execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) override;
    void call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) override;
    TableShape table(std::string_view name) override;
    void begin() override;
    void commit() override;
    void rollback() override;
    int transactionDepth() const override;
    Value lastIdentity() const override;
    void cancel() override;
    void setReadOnly(bool readOnly) override { readOnly_ = readOnly; }
    void setWaiter(Waiter* waiter) override { waiter_ = waiter; }
    // A server has its own clock.
    void setClock(const Clock*) override {}

private:
    void runAny(const Request& request, ResultSink& sink);
    void run(const Request& request, ResultSink& sink);
    void runAlone(std::string_view batch);
    void runReading(const Request& request, ResultSink& sink);
    Link& link();
    Value single(std::string_view select) const;
    [[noreturn]] void fail(const std::vector<DbError>& errors, const Request& request, bool inTransaction, ResultSink& sink);
    std::exception_ptr failureOf(const DbError& first, bool isKnown) const;
    bool mayBeReplaced() const;
    void refuseRest();

    std::shared_ptr<Server> server_;
    std::mutex linkMutex_; // for cancel, which comes from another thread
    std::unique_ptr<Link> link_;
    bool readOnly_ = false;
    Waiter* waiter_ = nullptr;
    bool traces_ = false;              // the connection is no longer as new
    mutable int begun_ = 0;            // transactions, by begin()
    std::exception_ptr ended_;         // what ended them all before their time; told again until the rollback
    mutable std::optional<int> depth_; // of transactions, where it is known
};

} // namespace merchantry::db::server
