#pragma once

#include <string>
#include <string_view>

namespace merchantry::db::server {

// A batch as it is sent. The driver loses every later result of a response that begins with an error: an empty message in front keeps
// them. It stands on the batch's own first line, so that errors name the lines as written.
struct SentBatch {
    std::string text;
    bool opened = false; // an empty message comes first, which nobody asked for
};

// A procedure that is called without the word EXEC gets it, since it no longer stands first. A definition of a module stays as it is: it
// must be alone in its batch. So does one call and nothing else, for which the message would be a statement more: what comes behind an
// error that it begins with is lost to the driver, as it is with Session::call.
SentBatch sentBatch(std::string_view batch);

// Whether the batch is one select, or one call of a procedure, and nothing else. False for one that is not understood.
bool isOneReading(std::string_view batch);

// Whether the batch is one select that makes no table.
bool isOneSelect(std::string_view batch);

// Whether the batch may leave something behind in its connection: settings or temporary tables.
bool leavesTraces(std::string_view batch);

// Whether the batch begins or ends transactions by its own words.
bool touchesTransactions(std::string_view batch);

} // namespace merchantry::db::server
