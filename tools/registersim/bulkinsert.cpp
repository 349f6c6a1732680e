#include "tools/registersim/bulkinsert.h"

#include <utility>

namespace merchantry::registersim {

BulkInsert::BulkInsert(db::Session& session, const std::string& table, const std::string& columns, const std::string& types, bool identity)
    : session_(session), types_(types) {
    before_ = "INSERT INTO " + table + " (" + columns + ") VALUES ";
    if (identity) {
        before_ = "SET IDENTITY_INSERT " + table + " ON\n" + before_;
        after_ = "\nSET IDENTITY_INSERT " + table + " OFF";
    }
    fullStatement_ = statement(kLoad);
}

std::string BulkInsert::statement(std::size_t rows) const {
    std::string text = before_;
    std::size_t parameter = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        text += row == 0 ? "(" : ", (";
        for (std::size_t column = 0; column < types_.size(); ++column)
            text += (column == 0 ? "@p" : ", @p") + std::to_string(++parameter);
        text += ")";
    }
    return text + after_;
}

void BulkInsert::insert(std::size_t first, std::size_t count) {
    Row values;
    std::string types;
    values.reserve(count * types_.size());
    for (std::size_t row = first; row < first + count; ++row) {
        for (Value& value : waiting_[row])
            values.push_back(std::move(value));
        types += types_;
    }
    run(session_, count == kLoad ? fullStatement_ : statement(count), types, std::move(values));
}

void BulkInsert::flush() {
    std::size_t done = 0;
    for (; waiting_.size() - done >= kLoad; done += kLoad)
        insert(done, kLoad);
    waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(done));
}

void BulkInsert::finish() {
    flush();
    if (!waiting_.empty())
        insert(0, waiting_.size());
    waiting_.clear();
}

} // namespace merchantry::registersim
