#include "app/db/embedded/scopes.h"

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
        throw DbError(DbError::Category::Other, 217,
                      "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).")
            .withSeverity(16, 1);
    return level + 1;
}

WriteScope::WriteScope(Transaction& transaction, bool temporaryOnly, bool undoesItself)
    : transaction_(transaction), rollbacks_(transaction.rollbacks()) {
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
    : transaction_(transaction), own_(own && transaction.count() == 0), rollbacks_(transaction.rollbacks()) {
    if (own_)
        transaction_.begin();
}

TriggerCount::~TriggerCount() {
    if (own_ && rollbacks_ == transaction_.rollbacks())
        transaction_.endCount();
}

} // namespace merchantry::db::embedded
