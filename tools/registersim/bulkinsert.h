#pragma once

#include "tools/registersim/query.h"

#include <string>

namespace merchantry::registersim {

// Gathers rows of one table and inserts them many at a time, with one statement text for all full loads.
//
//   BulkInsert lines(session, "TransactionEntry", "TransactionNumber, SKU", "it");
//   lines.add({1, "A1"}); ... lines.flush();   // full loads only
//   lines.finish();                            // the rest too
class BulkInsert {
public:
    // `types` has one letter a column, as typeOf reads them. With identity, the columns name the identity column and give its values.
    BulkInsert(db::Session& session, const std::string& table, const std::string& columns, const std::string& types, bool identity = false);

    void add(Row row) { waiting_.push_back(std::move(row)); }
    bool full() const { return waiting_.size() >= kLoad; }
    // Inserts what makes full loads; the rest waits.
    void flush();
    void finish();

private:
    static constexpr std::size_t kLoad = 64;
    void insert(std::size_t first, std::size_t count);
    std::string statement(std::size_t rows) const;

    db::Session& session_;
    std::string before_;
    std::string after_;
    std::string types_;
    std::string fullStatement_;
    std::vector<Row> waiting_;
};

} // namespace merchantry::registersim
