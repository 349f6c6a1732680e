#include "app/db/embedded/scopes.h"

#include "app/db/messages.h"

namespace merchantry::db::embedded {
namespace {

constexpr int kDeepestLevel = 32;

} // namespace

Frame* FrameScope::below(const BatchState& batch, Frame& frame) {
    frame.caller = batch.frame;
    frame.level = batch.level;
    return &frame;
}

int LevelScope::deeper(int level) {
    if (level >= kDeepestLevel)
        throw serverMessage(Message::NestingLevel).withSeverity(16, 1);
    return level + 1;
}

ShownRowsScope::ShownRowsScope(RowsetRegistry& rows, std::string name, std::shared_ptr<const Rowset> shown)
    : rows_(rows), name_(std::move(name)), before_(rows.get(name_)) {
    rows_.set(name_, std::move(shown));
}

OpenReferencesScope::OpenReferencesScope(Connection& connection) : connection_(connection) {
    connection_.run("PRAGMA defer_foreign_keys=ON");
}

OpenReferencesScope::~OpenReferencesScope() {
    sqlite3_exec(connection_.handle(), "PRAGMA defer_foreign_keys=OFF", nullptr, nullptr, nullptr);
}

TrialScope::TrialScope(Connection& connection, BatchState& batch, Identities& identities, ChangeCapture& capture)
    : connection_(connection), identities_(identities), numbers_(identities.numbers()), variables_(batch.frame->variables),
      captured_(capture.pause()) {
    sqlite3_exec(connection_.handle(), "SAVEPOINT ts_trial; PRAGMA defer_foreign_keys=ON", nullptr, nullptr, nullptr);
}

TrialScope::~TrialScope() {
    sqlite3_exec(connection_.handle(), "ROLLBACK TO ts_trial; RELEASE ts_trial; PRAGMA defer_foreign_keys=OFF", nullptr, nullptr, nullptr);
    identities_.putBack(std::move(numbers_));
}

WriteScope::WriteScope(Transaction& transaction, bool temporaryOnly, bool undoesItself)
    : transaction_(transaction), endings_(transaction.endings()) {
    const bool own = !transaction_.isOpen();
    if (own && temporaryOnly) {
        transaction_.endRead(); // SQLite's own statement is enough; the file is not locked
    } else {
        transaction_.beforeWrite();
        mode_ = own ? Mode::Own : undoesItself ? Mode::Itself : Mode::SavePoint;
    }
    if (mode_ == Mode::SavePoint)
        transaction_.beginStatement();
}

void WriteScope::finish() {
    if (isOver())
        return;
    if (mode_ == Mode::Own)
        transaction_.commitStatement();
    else if (mode_ == Mode::SavePoint)
        transaction_.keepStatement();
    mode_ = Mode::Done;
}

WriteScope::~WriteScope() {
    if (isOver())
        return;
    if (mode_ == Mode::Own)
        transaction_.rollbackAll();
    else if (mode_ == Mode::SavePoint)
        transaction_.undoStatement();
}

TriggerCount::TriggerCount(Transaction& transaction, bool own)
    : transaction_(transaction), own_(own && transaction.count() == 0), endings_(transaction.endings()) {
    if (own_)
        transaction_.begin();
}

TriggerCount::~TriggerCount() {
    if (own_ && endings_ == transaction_.endings())
        transaction_.endCount();
}

} // namespace merchantry::db::embedded
