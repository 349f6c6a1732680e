#pragma once

#include "app/db/embedded/store.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace merchantry::db {

// A test on a store file of its own, which goes with it.
class OnAStore : public testing::Test {
protected:
    OnAStore() {
        store = Store::create(file);
        session = store->session();
    }
    ~OnAStore() override {
        session.reset();
        store.reset();
    }

    void run(const std::string& batch) {
        NoResult none;
        session->execute(batch, none);
    }
    // All rows of a batch, cells joined by "|" and rows by ";".
    std::string rowsOf(const std::string& batch) {
        class Texts : public ResultSink {
        public:
            void beginSet(const std::vector<Column>& columns) override { width_ = static_cast<int>(columns.size()); }
            void row(const RowView& row) override {
                text += text.empty() ? "" : ";";
                for (int i = 0; i < width_; ++i)
                    text += (i > 0 ? "|" : "") + row.value(i).toScriptText();
            }
            std::string text;

        private:
            int width_ = 0;
        } texts;
        session->execute(batch, texts);
        return texts.text;
    }

    ScratchFolder folder;
    std::filesystem::path file = folder / "test.store";
    std::shared_ptr<Store> store;
    std::unique_ptr<Session> session;
};

} // namespace merchantry::db
