#include "exchange/import/recordwriting.h"

#include "base/lettercase.h"
#include "exchange/import/statements.h"

#include <algorithm>
#include <iterator>

namespace merchantry::exchange {
namespace {

constexpr int kRowsOfAStep = 50;
constexpr const char* kUpdated = "LastUpdated"; // of customers

struct Kept {
    std::string kind;
    int record = 0;
    std::string field;
    std::string before;
    bool nothingBefore = false;
    std::string after;
};

struct Kind {
    const char* kind;
    const char* table;
    const char* key;
    const char* name; // column
    const char* used; // rows that are there when something belongs to the record @id
};

constexpr Kind kKinds[] = {
    {"Supplier", "Suppliers", "SupID", "Supplier",
     "SELECT 1 FROM SupplierMatrixDetail WHERE SupID = @id UNION ALL SELECT 1 FROM PurchaseOrder WHERE SupID = @id"},
    {"Customer", "Customer", "ID", "LastName",
     "SELECT 1 FROM CreditTransaction WHERE CustomerID = @id UNION ALL SELECT 1 FROM [Transaction] WHERE CustomerID = @id UNION ALL SELECT "
     "1 "
     "FROM ShipAddresses WHERE CustomerID = @id UNION ALL SELECT 1 FROM Layaway WHERE CustomerID = @id UNION ALL SELECT 1 FROM GiftVoucher "
     "WHERE CustomerID = @id UNION ALL SELECT 1 FROM CustomFieldValues WHERE CustID = @id"},
    {"Department", "Departments", "DepartmentID", "Department", "SELECT 1 FROM Item WHERE DepartmentID = @id"},
};

const Kind& kindNamed(const std::string& kind) {
    return *std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& one) { return kind == one.kind; });
}

// The column as a text that can be compared with what an import kept of it.
std::string asText(const std::string& column, FieldKind kind) {
    if (kind == FieldKind::Flag)
        return "CASE WHEN " + column + " = 1 THEN '1' ELSE '0' END";
    if (kind == FieldKind::Day)
        return "ISNULL(CONVERT(varchar(19), " + column + ", 120), '')";
    if (kind == FieldKind::Notes)
        return "ISNULL(CAST(" + column + " AS varchar(8000)), '')";
    return "ISNULL(" + column + ", '')";
}

FieldKind kindOf(const std::string& kind, const std::string& field) {
    if (field == kUpdated)
        return FieldKind::Day;
    const Target target = kind == "Supplier" ? Target::Suppliers : Target::Customers;
    const int at = fieldNamed(target, field);
    return at < 0 ? FieldKind::Text : fieldsOf(target)[static_cast<std::size_t>(at)].kind;
}

// Puts a value into a field that is as it is thought to be; false when it is not.
bool put(db::Session& session, const Kind& kind, int id, const std::string& field, const std::string& thought, const Value& value) {
    const auto rows =
        ran(session,
            "UPDATE " + std::string(kind.table) + " SET " + field + " = @value WHERE " + kind.key + " = @id AND " +
                asText(field, kindOf(kind.kind, field)) + " = @thought SELECT @@ROWCOUNT",
            {parameter("value", kLongText, value), parameter("id", kWhole, Value(id)), parameter("thought", kLongText, Value(thought))});
    return rows.at(0).at(0).toInteger() == 1;
}

bool holds(db::Session& session, const Kind& kind, const Kept& kept) {
    const std::string column = kept.field.empty() ? kind.name : kept.field;
    return !ran(session,
                "SELECT 1 FROM " + std::string(kind.table) + " WHERE " + kind.key + " = @id AND " +
                    asText(column, kindOf(kind.kind, column)) + " = @after",
                {parameter("id", kWhole, Value(kept.record)), parameter("after", kLongText, Value(kept.after))})
                .empty();
}

std::vector<Kept> keptOf(db::Session& session, std::int32_t run) {
    std::vector<Kept> all;
    for (const auto& row :
         ran(session,
             "SELECT Kind, RecordID, Field, ISNULL(OldValue, ''), ISNULL(NewValue, ''), CASE WHEN OldValue IS NULL THEN 1 "
             "ELSE 0 END FROM ImportField WHERE ImportID = @run ORDER BY Kind, RecordID, Field",
             {parameter("run", kWhole, Value(run))}))
        all.push_back({row[0].toText(), row[1].toInt32(), row[2].toText(), row[3].toText(), row[5].toInteger() == 1, row[4].toText()});
    return all;
}

std::string nameOf(db::Session& session, const Kind& kind, int id) {
    const std::string words =
        kind.kind == std::string("Customer") ? "ISNULL(FirstName, '') + ' ' + ISNULL(LastName, ISNULL(Company, ''))" : kind.name;
    const auto rows =
        ran(session, "SELECT " + words + " FROM " + kind.table + " WHERE " + kind.key + " = @id", {parameter("id", kWhole, Value(id))});
    return std::string(kind.kind) + " " + (rows.empty() ? std::to_string(id) : rows[0][0].toText());
}

// The sentence why the record cannot go; empty when it went.
std::string deleted(db::Session& session, const Kind& kind, int id) {
    const std::vector<db::Parameter> key{parameter("id", kWhole, Value(id))};
    if (!ran(session, kind.used, key).empty())
        return "The " + nameOf(session, kind, id) + " is used since.";
    ran(session, "DELETE FROM " + std::string(kind.table) + " WHERE " + kind.key + " = @id", key);
    return "";
}

} // namespace

RecordWriting::RecordWriting(db::Session& session, const RecordPlan& plan, const ImportFile& file)
    : ImportWriting(session, plan, file), records_(plan) {}

int RecordWriting::step() {
    if (!open_)
        begin();
    open_ = true;
    const int end = std::min(records_.rows(), next_ + kRowsOfAStep);
    for (; next_ < end; ++next_) {
        const RecordPlan::Row& row = records_.at(next_);
        if (row.state == RowState::New || row.state == RowState::Changed)
            writeRow(row);
    }
    if (next_ < records_.rows())
        return static_cast<int>(static_cast<std::int64_t>(next_) * 99 / records_.rows());
    if (!done_)
        commit();
    done_ = true;
    return 100;
}

void RecordWriting::writeRow(const RecordPlan::Row& row) {
    const RecordsInStore::Record* before = records_.stored(row);
    const int id = before != nullptr ? before->id : made(row);
    for (const int field : row.changed)
        writeField(id, field, row.values[static_cast<std::size_t>(field)], before);
    if (plan_.target() == Target::Customers)
        noteUpdate(id);
}

// Its name comes with it, so that there is never one without.
int RecordWriting::made(const RecordPlan::Row& row) {
    const bool supplier = plan_.target() == Target::Suppliers;
    const int nameField = fieldNamed(plan_.target(), supplier ? "Supplier" : "LastName");
    const std::string& name = row.values[static_cast<std::size_t>(nameField)];
    const std::string table = supplier ? "Suppliers (Supplier)" : "Customer (LastName)";
    if (supplier && !ran(session_, "SELECT 1 FROM Suppliers WHERE Supplier = @name", {parameter("name", kName, Value(name))}).empty())
        throw StoreChanged("Somebody else works on the store: the supplier \"" + name +
                           "\" was made meanwhile. Nothing was written. Please check again.");
    const auto key = ran(session_, "INSERT INTO " + table + " VALUES (@name) SELECT CAST(SCOPE_IDENTITY() AS int)",
                         {parameter("name", kName, name.empty() ? Value() : Value(name))});
    const int id = key.at(0).at(0).toInt32();
    keepField(tableOf(plan_.target()).kind, id, "", Value(), Value(name));
    return id;
}

void RecordWriting::writeField(int id, int field, const std::string& after, const RecordsInStore::Record* stored) {
    const RecordTable& table = tableOf(plan_.target());
    const Field& shape = fieldsOf(plan_.target())[static_cast<std::size_t>(field)];
    const auto at = static_cast<std::size_t>(field);
    if (stored == nullptr) // made a moment ago
        ran(session_, "UPDATE " + std::string(table.name) + " SET " + shape.key + " = @value WHERE " + table.key + " = @id",
            {parameter("value", kLongText, Value(after)), parameter("id", kWhole, Value(id))});
    else if (!put(session_, kindNamed(table.kind), id, shape.key, stored->values[at], Value(after)))
        throw StoreChanged("Somebody else works on the store: " + stored->name + " has another " + lowerCase(shape.caption) +
                           " meanwhile. Nothing was written. Please check again.");
    keepField(table.kind, id, shape.key, stored == nullptr || stored->nothing[at] ? Value() : Value(stored->values[at]), Value(after));
}

void RecordWriting::noteUpdate(int id) {
    const std::string text = "CONVERT(varchar(19), LastUpdated, 120)";
    const std::vector<db::Parameter> key{parameter("id", kWhole, Value(id))};
    const auto was = ran(session_, "SELECT " + text + " FROM Customer WHERE ID = @id", key);
    const auto now =
        ran(session_, "UPDATE Customer SET LastUpdated = GETDATE() WHERE ID = @id SELECT " + text + " FROM Customer WHERE ID = @id", key);
    keepField("Customer", id, kUpdated, was.at(0).at(0), now.at(0).at(0));
}

std::vector<std::string> takenBackFields(db::Session& session, std::int32_t run) {
    std::vector<std::string> reasons;
    const std::vector<Kept> all = keptOf(session, run);
    for (auto one = all.begin(); one != all.end();) {
        const Kind& kind = kindNamed(one->kind);
        const auto end =
            std::find_if(one, all.end(), [&](const Kept& other) { return other.record != one->record || other.kind != one->kind; });
        const bool wasMade = one->field.empty();
        const int id = one->record;
        bool same = true;
        for (; one != end; ++one) {
            if (wasMade)
                same = same && holds(session, kind, *one);
            else
                same = put(session, kind, id, one->field, one->after, one->nothingBefore ? Value() : Value(one->before)) && same;
        }
        std::string reason = same ? "" : "The " + nameOf(session, kind, id) + " was changed since.";
        if (same && wasMade)
            reason = deleted(session, kind, id);
        if (!reason.empty())
            reasons.push_back(reason);
    }
    return reasons;
}

} // namespace merchantry::exchange
