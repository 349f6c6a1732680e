#include "app/db/embedded/batch_state.h"

namespace merchantry::db::embedded {

Date SessionState::now() const {
    static const Clock kComputer;
    return (clock ? *clock : kComputer).now();
}

void SessionState::reset() {
    cursors.clear();
    settings = {};
    rowCount = 0;
    error = 0;
    fetchStatus = 0;
    clock = nullptr;
}

void BatchState::note(const DbError& error) {
    if (!errors.empty() && sink)
        sink->error(error);
    errors.push_back(error);
    session.error = error.native();
}

void BatchState::noting(const std::function<void()>& what) {
    try {
        what();
    } catch (const DbError& error) {
        note(error);
    }
}

bool BatchState::inTrigger() const {
    for (const Frame* one = frame; one; one = one->caller) {
        if (one->isTrigger)
            return true;
    }
    return false;
}

bool BatchState::isUpdated(int column) const {
    const Frame* trigger = frame;
    while (trigger && !trigger->isTrigger)
        trigger = trigger->caller;
    const auto place = static_cast<std::size_t>(column);
    return trigger && trigger->updated && place < trigger->updated->size() && (*trigger->updated)[place];
}

} // namespace merchantry::db::embedded
