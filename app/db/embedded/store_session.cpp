#include "app/db/embedded/store_session.h"

namespace merchantry::db::embedded {

StoreSession::~StoreSession() {
    try {
        engine_->reset();
        engine_->connection().waiter = nullptr;
        store_->giveBack(std::move(engine_));
    } catch (const std::exception&) { // an engine that cannot be put right is let go
        engine_.reset();
    }
}

} // namespace merchantry::db::embedded
