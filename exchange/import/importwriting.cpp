#include "exchange/import/importwriting.h"

#include "base/lettercase.h"
#include "base/numbers.h"
#include "exchange/import/itemsinstore.h"
#include "exchange/import/itemwriting.h"
#include "exchange/import/recordplan.h"
#include "exchange/import/recordwriting.h"
#include "exchange/import/statements.h"

namespace merchantry::exchange {
namespace {

constexpr int kUndoneAStep = 2000;
constexpr std::size_t kMostReasons = 100;

std::string words(const ImportPlan& plan) {
    const int leftOut = plan.count(RowState::Bad);
    return withThousands(plan.count(RowState::New)) + " new, " + withThousands(plan.count(RowState::Changed)) + " changed, " +
           withThousands(plan.count(RowState::Same)) + " as they were" + (leftOut > 0 ? ", " + withThousands(leftOut) + " left out" : "");
}

} // namespace

ImportKept::ImportKept(std::vector<std::string> reasons)
    : std::runtime_error(reasons.empty() ? "The import cannot be taken back." : reasons.front()), reasons_(std::move(reasons)) {}

ImportWriting::ImportWriting(db::Session& session, const ImportPlan& plan, ImportFile file)
    : session_(session), plan_(plan), file_(std::move(file)) {}

void ImportWriting::begin() {
    work_ = std::make_unique<db::Work>(session_);
    const auto made =
        called(session_, "bsp_NewImportRun",
               {parameter("Target", kName, Value(nameOf(plan_.target()).key)), parameter("FileName", kName, Value(file_.name)),
                parameter("FileHash", kName, Value(file_.hash)), parameter("Words", kName, Value(words(plan_)))});
    run_ = made.at(0).at(0).toInt32();
}

void ImportWriting::commit() {
    const std::string headings = headingsKey(plan_.table(), plan_.match().headingRow);
    if (!headings.empty())
        called(session_, "bsp_KeepImportHeadings",
               {parameter("Target", kName, Value(nameOf(plan_.target()).key)), parameter("Headings", kName, Value(headings)),
                parameter("Fields", kLongText, Value(remembered(plan_.target(), plan_.match())))});
    work_->commit();
}

std::vector<int> ImportWriting::makeNamed(const std::string& kind, const std::vector<std::string>& names) {
    const bool supplier = kind == "Supplier";
    const std::string table = supplier ? "Suppliers (Supplier)" : "Departments (Department)";
    const std::string there = supplier ? "Suppliers WHERE Supplier" : "Departments WHERE Department";
    std::vector<int> keys;
    for (const std::string& name : names) {
        const std::vector<db::Parameter> called{parameter("name", kName, Value(name))};
        if (!ran(session_, "SELECT 1 FROM " + there + " = @name", called).empty())
            throw StoreChanged("Somebody else works on the store: the " + lowerCase(kind) + " \"" + name +
                               "\" was made meanwhile. Nothing was written. Please check again.");
        const auto key = ran(session_, "INSERT INTO " + table + " VALUES (@name) SELECT CAST(SCOPE_IDENTITY() AS int)", called);
        keys.push_back(key.at(0).at(0).toInt32());
        keepField(kind, keys.back(), "", Value(), Value(name));
    }
    return keys;
}

void ImportWriting::keepField(const std::string& kind, int record, const std::string& field, const Value& before, const Value& after) {
    ran(session_,
        "INSERT INTO ImportField (ImportID, Kind, RecordID, Field, OldValue, NewValue) VALUES (@run, @kind, @record, @field, @before, "
        "@after)",
        {parameter("run", kWhole, Value(run_)), parameter("kind", kName, Value(kind)), parameter("record", kWhole, Value(record)),
         parameter("field", kName, Value(field)), parameter("before", kLongText, before), parameter("after", kLongText, after)});
}

std::unique_ptr<ImportWriting> writingOf(db::Session& session, const ImportPlan& plan, const ImportFile& file) {
    if (plan.target() == Target::Items)
        return std::make_unique<ItemWriting>(session, dynamic_cast<const ItemPlan&>(plan), file);
    return std::make_unique<RecordWriting>(session, dynamic_cast<const RecordPlan&>(plan), file);
}

ImportUndoing::ImportUndoing(db::Session& session, std::int32_t run) : session_(session), run_(run) {}

int ImportUndoing::step() {
    if (work_ == nullptr)
        begin();
    else if (next_ <= last_)
        takeItems();
    else if (checking_) {
        if (!kept_.empty())
            throw ImportKept(kept_);
        checking_ = false;
        next_ = 1;
    } else if (!fields_) {
        takeFields();
        fields_ = true;
        work_->commit();
    }
    if (fields_)
        return 100;
    const int half = last_ == 0 ? 0 : static_cast<int>(static_cast<std::int64_t>(std::min(next_, last_)) * 49 / last_);
    return (checking_ ? 0 : 49) + half;
}

void ImportUndoing::begin() {
    work_ = std::make_unique<db::Work>(session_);
    const auto marked = called(session_, "bsp_UndoImportRun", {parameter("ImportID", kWhole, Value(run_))});
    if (marked.empty() || marked[0][0].toInteger() == 0)
        throw ImportKept({"This import was undone before."});
    const auto last =
        ran(session_, "SELECT ISNULL(MAX(RowNo), 0) FROM ImportItem WHERE ImportID = @run", {parameter("run", kWhole, Value(run_))});
    last_ = last.at(0).at(0).toInt32();
    next_ = 1;
}

void ImportUndoing::takeItems() {
    const int end = std::min(last_, next_ + kUndoneAStep - 1);
    const std::vector<db::Parameter> range{parameter("ImportID", kWhole, Value(run_)), parameter("First", kWhole, Value(next_)),
                                           parameter("Last", kWhole, Value(end))};
    if (checking_) {
        for (const auto& row : called(session_, "bsp_ImportItemsKept", range))
            if (kept_.size() < kMostReasons)
                kept_.push_back("The item " + row[1].toText() + " " + row[2].toText() + ".");
    } else {
        called(session_, "bsp_UndoImportItems", range);
    }
    next_ = end + 1;
}

void ImportUndoing::takeFields() {
    const std::vector<std::string> reasons = takenBackFields(session_, run_);
    if (!reasons.empty())
        throw ImportKept(reasons);
}

std::string earlierImport(db::Session& session, Target target, const std::string& hash) {
    const auto found = called(session, "bsp_ImportLike",
                              {parameter("Target", kName, Value(nameOf(target).key)), parameter("FileHash", kName, Value(hash))});
    if (found.empty())
        return "";
    return "A file with exactly this content was imported on " + found[0][1].as<Date>().toShortText() + " already (" +
           found[0][2].toText() + ").";
}

std::string rememberedColumns(db::Session& session, Target target, const std::string& headings) {
    const auto found = ran(session, "SELECT Fields FROM ImportHeadings WHERE Target = @target AND Headings = @headings",
                           {parameter("target", kName, Value(nameOf(target).key)), parameter("headings", kName, Value(headings))});
    return found.empty() ? "" : found[0][0].toText();
}

} // namespace merchantry::exchange
