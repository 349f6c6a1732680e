#pragma once

#include "app/db/session.h"
#include "exchange/import/importplan.h"

#include <unordered_map>

namespace merchantry::exchange {

// The table that records of a target stand in.
struct RecordTable {
    const char* name;
    const char* key;  // the column of its number
    const char* kind; // as imports keep it
};
const RecordTable& tableOf(Target target);

// Suppliers or customers as the store has them: the fields that a file gives, as texts (see textOf), and what tells them apart.
class RecordsInStore {
public:
    RecordsInStore(db::Session& session, Target target, const ColumnMatch& match);

    struct Record {
        int id = 0;
        std::vector<std::string> values; // by field
        std::vector<bool> nothing;       // by field: null, and not an empty text
        std::string name;
    };
    static constexpr int kNone = -1;
    static constexpr int kSeveral = -2;

    const std::vector<Record>& records() const { return records_; }
    // The position of the record that has the text in what tells records apart.
    int find(const std::string& key) const;

private:
    void note(const std::string& key, int record);

    std::vector<Record> records_;
    std::unordered_map<std::string, int> keys_;
};

// What a supplier or customer with these values is told by, the surest first: a supplier by the name; a customer by the account number, the
// email, the phone number, or else by name, company and zip together. Empty texts are left out.
std::vector<std::string> keysOf(Target target, const std::vector<std::string>& values);

// The plan of a file of suppliers or customers. What the store has must outlive it.
class RecordPlan : public ImportPlan {
public:
    struct Row {
        std::int32_t tableRow = 0;
        std::int32_t existing = RecordsInStore::kNone;
        RowState state = RowState::Bad;
        bool flattened = false;          // a text had line ends or tabs
        std::vector<std::string> values; // by field; empty where the file leaves it alone
        std::vector<int> changed;        // fields that are written
    };

    RecordPlan(const SheetTable& table, const ColumnMatch& match, Target target, const ImportOptions& options, const RecordsInStore& store);

    int rows() const override { return static_cast<int>(rows_.size()); }
    RowState state(int row) const override { return at(row).state; }
    int tableRow(int row) const override { return at(row).tableRow; }
    std::string key(int row) const override;
    std::string name(int row) const override;
    std::vector<std::string> sums() const override { return {}; }

    const Row& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    const RecordsInStore::Record* stored(const Row& row) const;

private:
    void checkRow(int tableRow) override;
    void setState(int row, RowState state) override { rows_[static_cast<std::size_t>(row)].state = state; }
    std::string changesOf(int row) const override;
    bool takeField(Row& row, int field);
    bool takeZip(const SheetCell& cell, std::string_view& text, Refusal& refusal);
    bool findRecord(Row& row, bool good);
    void noteTwice(int rowIndex);

    ImportOptions options_;
    const RecordsInStore& store_;
    CellReader reader_;
    std::vector<Row> rows_;
    std::unordered_map<std::string, int> seen_;
};

} // namespace merchantry::exchange
