#include "exchange/import/recordplan.h"

#include "app/modPhone.h"
#include "app/states.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "exchange/import/itemsinstore.h"

#include <algorithm>
#include <iterator>

namespace merchantry::exchange {
namespace {

constexpr RecordTable kSuppliers{"Suppliers", "SupID", "Supplier"};
constexpr RecordTable kCustomers{"Customer", "ID", "Customer"};
constexpr std::size_t kShortZip = 4;

std::string digitsOf(std::string_view text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

// A cell of the store as a plan compares it: flags 1 and 0, moments as they are written in scripts.
std::string textOf(const db::RowView& row, int column, FieldKind kind) {
    if (row.isNull(column))
        return "";
    if (kind == FieldKind::Flag || kind == FieldKind::Day)
        return row.value(column).toScriptText();
    return std::string(trimmedRight(row.text(column)));
}

std::string valueOf(Target target, const std::vector<std::string>& values, const char* field) {
    const int at = fieldNamed(target, field);
    return at < 0 ? "" : values[static_cast<std::size_t>(at)];
}

// What a user reads of a value.
std::string shownValue(FieldKind kind, const std::string& value) {
    if (kind == FieldKind::Flag && !value.empty())
        return value == "1" ? "yes" : "no";
    const auto day = kind == FieldKind::Day ? Date::fromText(value) : std::nullopt;
    return day ? day->toShortText() : value;
}

std::string wholeName(Target target, const std::vector<std::string>& values) {
    if (target == Target::Suppliers)
        return valueOf(target, values, "Supplier");
    const std::string name(trimmed(valueOf(target, values, "FirstName") + " " + valueOf(target, values, "LastName")));
    return name.empty() ? valueOf(target, values, "Company") : name;
}

} // namespace

const RecordTable& tableOf(Target target) {
    return target == Target::Suppliers ? kSuppliers : kCustomers;
}

std::vector<std::string> keysOf(Target target, const std::vector<std::string>& values) {
    std::vector<std::string> keys;
    const auto add = [&](const char* mark, const std::string& text) {
        if (!text.empty())
            keys.push_back(mark + storeKey(text));
    };
    if (target == Target::Suppliers) {
        add("", valueOf(target, values, "Supplier"));
        return keys;
    }
    add("number ", valueOf(target, values, "AccountNumber"));
    add("email ", valueOf(target, values, "Email"));
    add("phone ", digitsOf(valueOf(target, values, "PhoneNumber")));
    const std::string name =
        valueOf(target, values, "FirstName") + "\n" + valueOf(target, values, "LastName") + "\n" + valueOf(target, values, "Company");
    if (keys.empty() && name.size() > 2)
        add("name ", name + "\n" + valueOf(target, values, "Zip"));
    return keys;
}

RecordsInStore::RecordsInStore(db::Session& session, Target target, const ColumnMatch& match) {
    const auto fields = fieldsOf(target);
    std::string select = "SELECT " + std::string(tableOf(target).key);
    for (const Field& field : fields)
        select += ", " + std::string(field.key);
    readRows(session, select + " FROM " + tableOf(target).name + " ORDER BY " + tableOf(target).key, [&](const db::RowView& row) {
        Record one;
        one.id = static_cast<int>(row.number(0));
        for (std::size_t i = 0; i < fields.size(); ++i) {
            one.values.push_back(textOf(row, static_cast<int>(i) + 1, fields[i].kind));
            one.nothing.push_back(row.isNull(static_cast<int>(i) + 1));
        }
        one.name = wholeName(target, one.values);
        // By each of what a file may tell it by: those of its columns alone.
        std::vector<std::string> told = one.values;
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (match.columnOf(static_cast<int>(i)) < 0)
                told[i].clear();
        for (const std::string& key : keysOf(target, told))
            note(key, static_cast<int>(records_.size()));
        records_.push_back(std::move(one));
    });
}

void RecordsInStore::note(const std::string& key, int record) {
    const auto [entry, fresh] = keys_.emplace(key, record);
    if (!fresh && entry->second != record)
        entry->second = kSeveral;
}

int RecordsInStore::find(const std::string& key) const {
    const auto found = keys_.find(key);
    return found == keys_.end() ? kNone : found->second;
}

RecordPlan::RecordPlan(const SheetTable& table, const ColumnMatch& match, Target target, const ImportOptions& options,
                       const RecordsInStore& store)
    : ImportPlan(table, match, target, options.hiddenRows), options_(options), store_(store), reader_(options.reading) {}

const RecordsInStore::Record* RecordPlan::stored(const Row& row) const {
    return row.existing < 0 ? nullptr : &store_.records()[static_cast<std::size_t>(row.existing)];
}

std::string RecordPlan::key(int row) const {
    const RecordsInStore::Record* before = stored(at(row));
    if (target() == Target::Suppliers)
        return before != nullptr ? std::to_string(before->id) : "";
    const std::string number = valueOf(target(), at(row).values, "AccountNumber");
    return number.empty() && before != nullptr ? "No. " + std::to_string(before->id) : number;
}

std::string RecordPlan::name(int row) const {
    const std::string given = wholeName(target(), at(row).values);
    const RecordsInStore::Record* before = stored(at(row));
    return given.empty() && before != nullptr ? before->name : given;
}

void RecordPlan::checkRow(int tableRow) {
    Row row;
    row.tableRow = tableRow;
    const auto fields = fieldsOf(target());
    row.values.resize(fields.size());
    bool good = true;
    const std::int64_t flattened = reader_.flattened();
    for (std::size_t i = 0; i < fields.size(); ++i)
        good = takeField(row, static_cast<int>(i)) && good;
    row.flattened = reader_.flattened() != flattened;
    const bool named = findRecord(row, good);
    good = good && named;
    const RecordsInStore::Record* before = stored(row);
    for (std::size_t i = 0; good && i < fields.size(); ++i) {
        const bool isName = before != nullptr && fields[i].kind == FieldKind::Name; // by which it was found
        if (!row.values[i].empty() && !isName && (before == nullptr || row.values[i] != before->values[i]))
            row.changed.push_back(static_cast<int>(i));
    }
    if (good)
        row.state = before == nullptr ? RowState::New : row.changed.empty() ? RowState::Same : RowState::Changed;
    countState(row.state, 1);
    rows_.push_back(std::move(row));
    if (named)
        noteTwice(rows() - 1);
}

bool RecordPlan::takeField(Row& row, int index) {
    const SheetCell cell = cellOf(row.tableRow, index);
    if (trimmed(cell.text).empty())
        return true;
    const Field& field = fieldsOf(target())[static_cast<std::size_t>(index)];
    std::string& into = row.values[static_cast<std::size_t>(index)];
    Refusal refusal;
    std::string_view text;
    bool flag = false;
    Date day;
    if (field.kind == FieldKind::Flag) {
        reader_.flag(cell, flag, refusal);
        into = flag ? "1" : "0";
    } else if (field.kind == FieldKind::Day) {
        reader_.day(cell, day, refusal);
        into = day.toIsoText();
    } else if (reader_.text(cell, field.most, field.kind == FieldKind::Notes, text, refusal)) {
        if (field.kind == FieldKind::Code)
            doubtOf(cell, text, refusal);
        else if (field.kind == FieldKind::Zip)
            takeZip(cell, text, refusal);
        into = field.kind == FieldKind::Phone ? app::phoneLaidOut(std::string(text)) : std::string(text);
        if (field.kind == FieldKind::State) {
            into = upperCase(into);
            if (!app::isState(into))
                refusal = {FindingKind::Text, "\"" + std::string(text) + "\" is none of the states' codes, such as CA."};
        }
    }
    if (refusal) {
        refuse(row.tableRow, index, refusal);
        into.clear();
    }
    return !refusal;
}

bool RecordPlan::takeZip(const SheetCell& cell, std::string_view& text, Refusal& refusal) {
    const bool short4 = text.size() == kShortZip && digitsOf(text).size() == kShortZip && cell.kind != CellKind::Date;
    if (!short4 || options_.codes == ImportOptions::Codes::Leave)
        return true;
    const std::string mended = "0" + std::string(text);
    if (options_.codes == ImportOptions::Codes::Mend)
        text = reader_.keep(mended);
    else
        refusal = {
            FindingKind::Code,
            "This looks like the zip " + mended +
                ", whose zero in front a spreadsheet dropped. On page 2 you choose whether such codes are mended or taken as they are."};
    return !refusal;
}

// A row with bad cells is looked for by the others; what it lacks says nothing then.
bool RecordPlan::findRecord(Row& row, bool good) {
    const std::vector<std::string> keys = keysOf(target(), row.values);
    const bool nameless = wholeName(target(), row.values).empty();
    for (const std::string& key : keys) {
        row.existing = store_.find(key);
        if (row.existing == RecordsInStore::kSeveral) {
            refuse(row.tableRow, -1,
                   {FindingKind::Twice, "The store has several that this row may mean, by the " + key.substr(0, key.find(' ')) + "."});
            return false;
        }
        if (row.existing >= 0)
            return true;
    }
    if (nameless && good)
        refuse(row.tableRow, target() == Target::Suppliers ? 0 : -1, {FindingKind::Text, "There is no name in this row."});
    return !nameless || !good;
}

void RecordPlan::noteTwice(int rowIndex) {
    const Row& row = at(rowIndex);
    std::vector<std::string> keys = keysOf(target(), row.values);
    if (row.existing >= 0)
        keys = {"id " + std::to_string(row.existing)};
    else if (keys.size() > 1)
        keys.resize(1);
    for (const std::string& key : keys) {
        const auto [entry, fresh] = seen_.emplace(key, rowIndex);
        if (fresh)
            continue;
        const int first = entry->second;
        const auto twice = [&](int other) {
            return Refusal{FindingKind::Twice, "Row " + withThousands(table().number(tableRow(other))) + " is for the same one."};
        };
        spoil(rowIndex, -1, twice(first));
        spoil(first, -1, twice(rowIndex));
    }
}

std::string RecordPlan::changesOf(int index) const {
    const Row& row = at(index);
    const RecordsInStore::Record* before = stored(row);
    std::string words;
    for (const int field : row.changed) {
        const Field& shape = fieldsOf(target())[static_cast<std::size_t>(field)];
        const auto at = static_cast<std::size_t>(field);
        appendChange(words, shape.caption, before != nullptr ? std::optional(shownValue(shape.kind, before->values[at])) : std::nullopt,
                     shownValue(shape.kind, row.values[at]));
    }
    if (row.flattened && !row.changed.empty())
        appendFlattened(words);
    return words;
}

} // namespace merchantry::exchange
