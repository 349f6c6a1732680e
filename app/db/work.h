#pragma once

#include "app/db/session.h"

namespace merchantry::db {

// A session's transaction from here to the end of the block: rolled back unless told that the work is done. What ended it before (a full
// disk rolls back by itself) is left alone, so that the first error is the one that is told. The session must outlive it.
class Work {
public:
    explicit Work(Session& session) : session_(session) { session_.begin(); }
    ~Work() {
        try {
            if (!done_ && session_.transactionDepth() > 0)
                session_.rollback();
        } catch (const std::exception&) {
            // The store does so itself when the session goes.
        }
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void commit() {
        session_.commit();
        done_ = true;
    }

private:
    Session& session_;
    bool done_ = false;
};

} // namespace merchantry::db
