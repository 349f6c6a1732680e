#pragma once

#include "app/db/ado/command.h"
#include "app/db/ado/filter.h"
#include "app/db/ado/rowstore.h"
#include "base/rows.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::db {

enum class CursorType { Unspecified = -1, ForwardOnly = 0, Keyset = 1, Dynamic = 2, Static = 3 };
enum class LockType { Unspecified = -1, ReadOnly = 1, Pessimistic = 2, Optimistic = 3 };

class Recordset;

// One column of the current row.
class Field {
public:
    Field(Recordset& rows, int column) : rows_(rows), column_(column) {}
    const std::string& Name() const;
    const SqlType& Type() const;
    // Throws DbError kNoCurrentRow when the recordset stands on no row.
    merchantry::Value Value() const;
    std::string text() const { return Value().toText(); } // null as ""
    bool isNull() const { return Value().isNull(); }
    // Pending until Update. A value equal to the one that stands there changes nothing; one that is not of the column's type throws
    // kTypeMismatch.
    void setValue(const merchantry::Value& value);
    Field& operator=(const merchantry::Value& value) {
        setValue(value);
        return *this;
    }

private:
    Recordset& rows_;
    int column_;
};

// The rows of a statement, all in memory, with a current row. Sort and Filter work on row numbers and copy nothing.
// With an optimistic lock, changes are written by Update to the base tables of the columns, under the condition that the row still holds
// the old values of the changed columns; a row that someone else changed in those is error kConflict. As Rows (for grids) it counts the
// visible rows from 0, and writes each cell at once.
class Recordset : public Rows {
public:
    Recordset() = default;
    ~Recordset() override;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    void Open(const Sql& source, const ConnectionPtr& connection, CursorType cursor = CursorType::ForwardOnly,
              LockType lock = LockType::ReadOnly);
    void Open(Command& command, CursorType cursor = CursorType::ForwardOnly, LockType lock = LockType::ReadOnly);
    // Runs the source again; the filter and sort stay.
    void Requery();
    void Close();
    int State() const { return store_ != nullptr ? 1 : 0; }

    // Before the first row, behind the last. (The customary capitals are a macro of the C library.)
    bool Bof() const { return view_.empty() || position_ < 0; }
    bool Eof() const { return view_.empty() || position_ >= static_cast<int>(view_.size()); }
    bool onRow() const { return State() != 0 && !Bof() && !Eof(); }
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    // From 1; 0 when there is no current row.
    int AbsolutePosition() const { return onRow() ? position_ + 1 : 0; }
    int RecordCount() const { return static_cast<int>(view_.size()); }

    int FieldCount() const { return columnCount(); }
    // Throws DbError kNotInCollection for a column that is not there.
    Field operator[](const std::string& name);
    Field operator[](int column);

    void AddNew();
    void Update();
    void CancelUpdate();
    // The current row.
    void Delete();
    bool editing() const { return mode_ != Mode::None; }

    // Moves to the next row, from the current one on, that the single condition holds for; to Eof when there is none.
    void Find(const std::string& criterion);
    // Empty for all rows. Throws kInvalidArgument for a text that is no filter; the old one stays in force then.
    void setFilter(const std::string& filter);
    const std::string& Filter() const { return filterText_; }
    void setSort(const std::string& sort);
    const std::string& Sort() const { return sortText_; }

    // Rows
    int columnCount() const override;
    std::string columnName(int column) const override;
    int rowCount() const override { return RecordCount(); }
    Value cell(int row, int column) const override;
    std::string_view cellText(int row, int column) const override;
    std::optional<RowOrder> sortedBy() const override;
    bool canChange() const override { return lock_ == LockType::Optimistic || lock_ == LockType::Pessimistic; }
    void setCell(int row, int column, const Value& value) override;
    void addRow(const std::vector<Value>& cells) override;
    void removeRow(int row) override;
    int listen(std::function<void()> changed) override;
    void stopListening(int listener) override;

private:
    friend class Field;
    enum class Mode { None, Edit, Add };

    void run();
    std::shared_ptr<RowStore> asked(const Sql& text);
    std::shared_ptr<RowStore> takenAhead(const Sql& text);
    void arrange();
    void notify();
    void needRow() const;
    void needOpen() const;
    int storeRow() const { return view_[static_cast<std::size_t>(position_)]; }
    Value current(int column) const;
    void pend(int column, const Value& value);
    void insertPending();
    void updatePending();

    ConnectionPtr connection_;
    Sql source_;
    std::optional<Command> command_;
    LockType lock_ = LockType::ReadOnly;
    std::shared_ptr<RowStore> store_;
    std::vector<int> view_; // visible rows of the store in their order
    int position_ = -1;
    Mode mode_ = Mode::None;
    std::map<int, Value> pending_; // by column
    std::string filterText_;
    std::string sortText_;
    std::map<int, std::function<void()>> listeners_;
    int nextListener_ = 1;
    mutable std::string scratch_;
};

} // namespace merchantry::db
