#pragma once

#include "app/db/server/address.h"
#include "app/db/server/errand.h"
#include "app/db/server/odbc.h"
#include "app/db/servererrors.h"
#include "app/db/session.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace merchantry::db::server {

// What is sent at once: a batch, or the name of a procedure that is called with the parameters, none of which gives a result back.
struct Request {
    std::string_view text;
    std::vector<Parameter>& parameters; // of a batch; results come back into them
    bool isCall = false;
};

// One open connection to a server. One thread, but for cancel.
class Link {
public:
    // Throws DbError Storage with a sentence that names the cause: the name, the port, the login, the database, encryption.
    explicit Link(const Address& address);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    // Runs a request to its end and gives all that comes to the sink, but its errors to `errors`, in their order. What the sink throws
    // stops it and passes through.
    void run(const Request& request, ResultSink& sink, std::vector<DbError>& errors);
    void cancel();
    // The connection is gone: nothing can be run on it any more.
    bool isLost() const { return lost_; }
    const Address& address() const { return address_; }
    // Who is asked while a statement waits for others, and how to learn whether it does (from another connection; it gets the process's
    // number at the server). Without a waiter the server gives a statement up after twenty seconds of waiting. Requires: nothing is
    // running.
    void setWaiter(Waiter* waiter, std::function<bool(int process)> isBlocked);
    // Whether the connection still stands after nothing was run on it for a while. The server is asked only where that cannot be seen from
    // here, or a minute has passed. Requires: nothing is running.
    bool stillStands();

private:
    class Results;

    void connect();
    void setUp();
    void runRequest(const Request& request, ResultSink& sink, std::vector<DbError>& errors);
    void runCall(const Request& request, Results& results);
    void runBatch(std::string_view text, std::vector<Parameter>& parameters, Results& results);
    SQLRETURN patiently(const std::function<SQLRETURN()>& call);
    void ask(std::chrono::steady_clock::time_point since);
    void giveUp();
    void tellHowLongToWait();
    bool isDead() const;
    bool answers();
    DbError errorOf(const Diagnostic& diagnostic) const;

    const Address address_;
    Handle<SQL_HANDLE_DBC> connection_;
    Handle<SQL_HANDLE_STMT> statement_;
    std::atomic<bool> cancelled_ = false;
    bool lost_ = false;
    std::chrono::steady_clock::time_point lastUsed_;
    int process_ = 0; // the connection's number at the server
    Waiter* waiter_ = nullptr;
    std::function<bool(int process)> isBlocked_;
    bool waitsLong_ = false; // as the server was told
    bool gaveUp_ = false;    // the user, in the request that runs
    std::unique_ptr<Errand> errand_;
};

// What a failed connection is told as.
NotConnected connectError(const Address& address, const std::vector<Diagnostic>& diagnostics);

// What a lost connection is told as. Whether what ran last was saved is known, where it was part of a transaction that did not end or only
// read; or it is not.
NotConnected lostError(const Address& address, bool isKnown);

} // namespace merchantry::db::server
