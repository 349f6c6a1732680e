#pragma once

#include "app/db/tsql/sql.h"
#include "app/failure.h"
#include "base/value.h"
#include "ui/undoline.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::app {

// A table and the columns that tell one of its rows.
struct KeyedTable {
    std::string name;
    std::vector<std::string> key;
};

// Rows of a table that a procedure is about to delete or change, so that it can offer to put them back. Made before the procedure writes,
// and asked to compare right after:
//
//   WrittenRows rows({"PriceMatrix", {"SKU", "MatrixSKU", "Tier", "Quantity"}}, Sql("SKU = '") + sku + "'");
//   ... the write ...
//   if (rows.compare())
//       offerUndo(undoLine, place, "Price changed from " + ..., rows, [this] { showPrice(); });
//
// Reading is no part of the procedure: where it fails there is nothing to offer, and nobody hears of it.
class WrittenRows {
public:
    // The condition must hold for the rows before and after the write.
    WrittenRows(KeyedTable table, const db::Sql& condition);

    // Looks what became of the rows. False when none went and none changed, or when that cannot be told.
    bool compare();
    // A cell of the first row that went or changed, before and now. Null for a row that went, and for a column that there is not.
    Value was(const std::string& column) const;
    Value now(const std::string& column) const;

    // Puts them back as they were, in one transaction: a row that went is added with all its columns, but for a number that the store
    // gives; a row that changed gets what it had in the columns that changed. Gives why it cannot be when somebody wrote those meanwhile
    // or the store refuses it, in a sentence, and changes nothing then; empty when it was done.
    // Throws DbError as every statement does.
    std::string takeBack() const;

private:
    using Row = std::vector<Value>; // in the order of the columns
    struct Change {
        Row before;
        std::optional<Row> after; // nothing for a row that went
    };

    std::optional<std::vector<Row>> read();
    int columnAt(const std::string& name) const;
    bool sameKey(const Row& one, const Row& other) const;
    void pair(const std::vector<Row>& gone, std::vector<Row> fresh);
    bool putBack(const Change& change) const;
    std::string putAllBack() const;

    KeyedTable table_;
    db::Sql source_;
    std::vector<std::string> columns_;
    std::optional<std::vector<Row>> before_;
    std::vector<Change> changes_;
};

// Offers to take back what became of the rows; `shown` shows the store's rows on the screen again afterwards, also when it was refused.
void offerUndo(ui::UndoLine& line, const FailurePlace& place, const std::string& sentence, const WrittenRows& rows,
               std::function<void()> shown);

} // namespace merchantry::app
