#include "app/db/schema/tableparts.h"

#include "base/lettercase.h"

#include <array>
#include <span>

namespace merchantry::db {
namespace {

// The part's name, then what it is; indexes last.
constexpr std::array kSelects{
    "SELECT 'column ' + c.COLUMN_NAME + ' of the table ' + c.TABLE_NAME, c.DATA_TYPE, CASE WHEN c.DATA_TYPE NOT IN ('text', 'ntext', "
    "'image') THEN c.CHARACTER_MAXIMUM_LENGTH END, c.NUMERIC_PRECISION, "
    "c.NUMERIC_SCALE, c.IS_NULLABLE, s.is_identity, s.is_computed "
    "FROM information_schema.columns c INNER JOIN sys.columns s ON s.object_id = OBJECT_ID('[' + c.TABLE_NAME + ']') AND s.name = "
    "c.COLUMN_NAME "
    "INNER JOIN sys.tables t ON t.object_id = s.object_id",
    "SELECT 'key or check ' + o.name + ' of the table ' + t.name, o.type_desc "
    "FROM sys.objects o INNER JOIN sys.tables t ON t.object_id = o.parent_object_id "
    "WHERE o.type_desc IN ('PRIMARY_KEY_CONSTRAINT', 'UNIQUE_CONSTRAINT', 'FOREIGN_KEY_CONSTRAINT', 'CHECK_CONSTRAINT')",
    "SELECT 'index ' + i.name + ' of the table ' + t.name, i.is_unique FROM sys.indexes i INNER JOIN sys.tables t ON t.object_id = "
    "i.object_id "
    "WHERE i.name IS NOT NULL AND i.is_primary_key = 0 AND i.is_unique_constraint = 0"};

class Parts : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView& row) override {
        std::string definition;
        for (int i = 1; i < row.size(); ++i)
            definition += (row.isNull(i) ? "-" : row.value(i).toText()) + ' ';
        parts[row.value(0).toText()] = std::move(definition);
    }
    std::map<std::string, std::string> parts;
};

} // namespace

std::map<std::string, std::string> tableParts(Session& session, bool withIndexes) {
    Parts found;
    for (const char* select : std::span(kSelects).first(kSelects.size() - (withIndexes ? 0 : 1)))
        session.execute(select, found);
    return std::move(found.parts);
}

std::vector<std::string> changedTables(const std::map<std::string, std::string>& stored, const std::map<std::string, std::string>& own) {
    std::map<std::string, std::string_view> byName;
    for (const auto& [name, definition] : stored)
        byName[lowerCase(name)] = definition;
    std::vector<std::string> changed;
    for (const auto& [name, definition] : own) {
        const auto found = byName.find(lowerCase(name));
        if (found == byName.end())
            changed.push_back("The store lacks the " + name + '.');
        else if (found->second != definition)
            changed.push_back("The " + name + " is not as this program makes it.");
    }
    return changed;
}

} // namespace merchantry::db
