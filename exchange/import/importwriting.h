#pragma once

#include "app/db/work.h"
#include "exchange/import/importplan.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace merchantry::exchange {

// The store is no longer what a plan was reckoned from; the sentence says where.
class StoreChanged : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What an import cannot be taken back for: what was changed behind it, a sentence each.
class ImportKept : public std::runtime_error {
public:
    explicit ImportKept(std::vector<std::string> reasons);
    const std::vector<std::string>& reasons() const { return reasons_; }

private:
    std::vector<std::string> reasons_;
};

struct ImportFile {
    std::string name; // without its folder
    std::string hash;
};

// Writes a plan in one transaction, some rows at a time: each row is compared with the store as it is now before it is written. Made for a
// plan that was checked, asked for steps until 100; gone before that, nothing is written. The session and the plan must outlive it; the
// session is its own meanwhile. A step throws StoreChanged, or DbError as every statement does.
class ImportWriting {
public:
    virtual ~ImportWriting() = default;
    virtual int step() = 0;
    // The key of the import once it is written.
    std::int32_t run() const { return run_; }

protected:
    ImportWriting(db::Session& session, const ImportPlan& plan, ImportFile file);
    void begin();
    void commit();
    // Adds departments or suppliers that the plan makes; their keys in the same order.
    std::vector<int> makeNamed(const std::string& kind, const std::vector<std::string>& names);
    void keepField(const std::string& kind, int record, const std::string& field, const Value& before, const Value& after);

    db::Session& session_;
    const ImportPlan& plan_;

private:
    ImportFile file_;
    std::unique_ptr<db::Work> work_;
    std::int32_t run_ = 0;
};

std::unique_ptr<ImportWriting> writingOf(db::Session& session, const ImportPlan& plan, const ImportFile& file);

// Takes an import back in one transaction, some rows at a time; gone before 100, nothing is taken back. A step throws ImportKept, naming
// what was changed since, and DbError.
class ImportUndoing {
public:
    ImportUndoing(db::Session& session, std::int32_t run);
    int step();

private:
    void begin();
    void takeItems();
    void takeFields();

    db::Session& session_;
    std::int32_t run_;
    std::unique_ptr<db::Work> work_;
    std::vector<std::string> kept_;
    int next_ = 0;
    int last_ = 0;
    bool fields_ = false;
    bool checking_ = true;
};

// An earlier import of the same content that stands: what to tell of it; empty where there is none.
std::string earlierImport(db::Session& session, Target target, const std::string& hash);
// What the columns of files with these headings went to last; empty where nothing is remembered.
std::string rememberedColumns(db::Session& session, Target target, const std::string& headings);

} // namespace merchantry::exchange
