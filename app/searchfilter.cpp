#include "app/searchfilter.h"

#include "app/db/dberror.h"

#include <utility>

namespace merchantry::app {

void SearchFilter::apply(db::Recordset* rows, const std::string& text) {
    text_ = text;
    if (rows == nullptr)
        return;
    try {
        rows->setFilter(text_);
        failed_ = false;
    } catch (const db::DbError&) {
        text_.clear();
        rows->setFilter("");
        if (!std::exchange(failed_, true))
            throw;
    }
}

void SearchFilter::reapply(db::Recordset& rows) {
    if (!text_.empty())
        apply(&rows, std::string(text_));
}

void SearchFilter::clear() {
    text_.clear();
    failed_ = false;
}

std::string SearchFilter::words(int count, const std::string& counted) const {
    if (failed_)
        return "All " + counted + ": the search could not be made";
    if (text_.empty())
        return counted;
    return (count == 0 ? "Nothing was found: " : "") + counted + " found by the search";
}

} // namespace merchantry::app
