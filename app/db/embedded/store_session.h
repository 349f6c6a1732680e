#pragma once

#include "app/db/embedded/engine.h"
#include "app/db/embedded/store.h"
#include "app/db/session.h"

namespace merchantry::db::embedded {

// A session on a store file: an engine, borrowed from the store as long as the session lives.
class StoreSession : public Session {
public:
    StoreSession(std::shared_ptr<Store> store, std::unique_ptr<Engine> engine) : store_(std::move(store)), engine_(std::move(engine)) {}
    ~StoreSession() override;

    using Session::execute;
    void execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) override {
        engine_->execute(batch, parameters, sink);
    }
    void call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) override {
        engine_->call(procedure, parameters, sink);
    }
    TableShape table(std::string_view name) override { return engine_->tableShape(name); }
    void begin() override { engine_->begin(); }
    void commit() override { engine_->commit(); }
    void rollback() override { engine_->rollback(); }
    int transactionDepth() const override { return engine_->transactionDepth(); }
    Value lastIdentity() const override { return engine_->lastIdentity(); }
    void cancel() override { engine_->cancel(); }
    void setReadOnly(bool readOnly) override { engine_->setReadOnly(readOnly); }
    void setWaiter(Waiter* waiter) override { engine_->connection().waiter = waiter; }
    void setClock(const Clock* clock) override { engine_->setClock(clock); }

private:
    std::shared_ptr<Store> store_;
    std::unique_ptr<Engine> engine_;
};

} // namespace merchantry::db::embedded
