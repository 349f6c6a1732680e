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

} // namespace merchantry::db::embedded
