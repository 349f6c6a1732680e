#pragma once

#include "app/db/server/odbc.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace merchantry::db::server {

// A thread that makes one call of the driver at a time, so that the session's own thread can look after other things meanwhile. Its end
// waits for the call's.
class Errand {
public:
    Errand();
    ~Errand();
    Errand(const Errand&) = delete;
    Errand& operator=(const Errand&) = delete;

    // Requires: the call before it has ended. What the call uses must outlive it.
    void start(std::function<SQLRETURN()> call);
    bool endsWithin(std::chrono::milliseconds time);
    // Requires: it has ended.
    SQLRETURN result();

private:
    void work();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<SQLRETURN()> call_;
    SQLRETURN result_ = SQL_SUCCESS;
    bool runs_ = false;
    bool over_ = false;
    std::thread thread_; // the last: it begins when all else is there
};

} // namespace merchantry::db::server
