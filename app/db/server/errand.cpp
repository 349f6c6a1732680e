#include "app/db/server/errand.h"

#include <utility>

namespace merchantry::db::server {

Errand::Errand() : thread_([this] { work(); }) {}

Errand::~Errand() {
    {
        const std::lock_guard lock(mutex_);
        over_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void Errand::start(std::function<SQLRETURN()> call) {
    {
        const std::lock_guard lock(mutex_);
        call_ = std::move(call);
        runs_ = true;
    }
    changed_.notify_all();
}

bool Errand::endsWithin(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return !runs_; });
}

SQLRETURN Errand::result() {
    const std::lock_guard lock(mutex_);
    return result_;
}

void Errand::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return runs_ || over_; });
        if (!runs_)
            return;
        lock.unlock();
        const SQLRETURN result = call_();
        lock.lock();
        result_ = result;
        runs_ = false;
        changed_.notify_all();
    }
}

} // namespace merchantry::db::server
