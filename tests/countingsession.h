#pragma once

#include "app/db/session.h"

#include <memory>

namespace merchantry {

// A session that counts the ways to its store and back: each batch, call and step of a transaction is one.
class CountingSession : public db::Session {
public:
    CountingSession(std::unique_ptr<db::Session> inner, int& count) : inner_(std::move(inner)), count_(count) {}
    void execute(std::string_view batch, std::vector<db::Parameter>& parameters, db::ResultSink& sink) override {
        ++count_;
        inner_->execute(batch, parameters, sink);
    }
    void call(std::string_view procedure, std::vector<db::Parameter>& parameters, db::ResultSink& sink) override {
        ++count_;
        inner_->call(procedure, parameters, sink);
    }
    db::TableShape table(std::string_view name) override { return inner_->table(name); }
    void begin() override {
        ++count_;
        inner_->begin();
    }
    void commit() override {
        ++count_;
        inner_->commit();
    }
    void rollback() override {
        ++count_;
        inner_->rollback();
    }
    int transactionDepth() const override { return inner_->transactionDepth(); }
    Value lastIdentity() const override { return inner_->lastIdentity(); }
    void cancel() override { inner_->cancel(); }
    void setReadOnly(bool readOnly) override { inner_->setReadOnly(readOnly); }
    void setWaiter(db::Waiter* waiter) override { inner_->setWaiter(waiter); }
    void setClock(const Clock* clock) override { inner_->setClock(clock); }

private:
    std::unique_ptr<db::Session> inner_;
    int& count_;
};

} // namespace merchantry
