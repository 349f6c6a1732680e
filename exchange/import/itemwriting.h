#pragma once

#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"

#include <functional>
#include <string>
#include <vector>

namespace merchantry::exchange {

// Writes a plan of items. All rows are put into a table of the session first, which keeps nobody waiting; then the store is held for a few
// statements on ranges of rows.
class ItemWriting : public ImportWriting {
public:
    ItemWriting(db::Session& session, const ItemPlan& plan, const ImportFile& file);
    ~ItemWriting() override;
    ItemWriting(const ItemWriting&) = delete;
    ItemWriting& operator=(const ItemWriting&) = delete;

    int step() override;

private:
    enum class Phase { Stage, Open, Write, Done };
    using ValueOf = std::function<Value(const ItemRow&, const StoredItem*)>;
    // A field of the work table, and how a row fills it.
    struct Column {
        const char* name;
        db::SqlType type;
        ValueOf value;
    };

    void chooseColumns();
    void addColumn(const char* name, const db::SqlType& type, ValueOf value);
    void addField(int field, const char* before, const char* after, const db::SqlType& type, std::function<Value(const ItemRow&)> now,
                  std::function<Value(const StoredItem&)> was);
    void addFields();
    void addLinkColumns();
    bool changesItems() const;
    std::string insertOf(std::size_t rows) const;
    void stage();
    void stageRows(const std::vector<const ItemRow*>& rows);
    void open();
    void write();

    const ItemPlan& items_;
    std::vector<Column> columns_;
    std::string insertMany_;
    std::string insertOne_;
    std::vector<db::Parameter> many_;
    std::vector<db::Parameter> one_;
    Phase phase_ = Phase::Stage;
    int next_ = 0; // row of the plan while staging, number of a row of the file while writing
    int last_ = 0; // number of the last row
    std::string columnNames_;
};

} // namespace merchantry::exchange
