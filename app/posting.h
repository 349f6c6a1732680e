#pragma once

#include <functional>
#include <string>

namespace merchantry::db {
class DbError;
} // namespace merchantry::db
namespace merchantry::ui {
class Desk;
} // namespace merchantry::ui

namespace merchantry::app {

// Whether a failure has nothing to do with what stands on the screen, which can be tried again as it is: another program was saving and was
// not waited for, or the connection was lost.
bool isPassing(const db::DbError& error);

// Runs a part of a screen's work. A passing failure of it is told under that title: false. Others pass through.
bool carriedOut(ui::Desk& desk, const std::string& title, const std::function<void()>& work);

// Runs a posting on Conn that is one whole transaction, and once more when the server gave it up because others were in the way. A
// passing failure is told under that title, and the screen stays as it was: false. Others pass through.
// Requires: the posting keeps nothing of a run that failed.
bool posted(ui::Desk& desk, const std::string& title, const std::function<void()>& post);

} // namespace merchantry::app
