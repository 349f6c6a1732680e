#pragma once

#include "app/db/server/address.h"
#include "app/db/server/odbc.h"
#include "app/db/session.h"

#include <atomic>
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

private:
    class Results;

    void connect();
    void setUp();
    void runRequest(const Request& request, ResultSink& sink, std::vector<DbError>& errors);
    void runCall(const Request& request, Results& results);
    void runBatch(std::string_view text, std::vector<Parameter>& parameters, Results& results);
    bool isDead() const;
    DbError lostError() const;
    DbError errorOf(const Diagnostic& diagnostic) const;

    const Address address_;
    Handle<SQL_HANDLE_DBC> connection_;
    Handle<SQL_HANDLE_STMT> statement_;
    std::atomic<bool> cancelled_ = false;
    bool lost_ = false;
};

// What a failed connection is told as.
DbError connectError(const Address& address, const std::vector<Diagnostic>& diagnostics);

} // namespace merchantry::db::server
