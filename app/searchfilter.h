#pragma once

#include "app/db/ado/recordset.h"

#include <string>

namespace merchantry::app {

// The filter that a list screen's search put on its rows, kept over every new reading of the list.
class SearchFilter {
public:
    const std::string& text() const { return text_; }
    // Puts a search on the rows, if there are any yet. One that is no filter (an apostrophe ends its text) leaves all rows shown and is not
    // tried again by reapply; DbError is thrown for the first one only, until a search succeeds: nobody is told at every letter.
    void apply(db::Recordset* rows, const std::string& text);
    // After the list was read anew.
    void reapply(db::Recordset& rows);
    void clear();
    // What stands under the list: "3 customers found by the search". `counted` is the number with its noun.
    std::string words(int count, const std::string& counted) const;

private:
    std::string text_;
    bool failed_ = false;
};

} // namespace merchantry::app
