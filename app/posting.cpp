#include "app/posting.h"

#include "app/db/again.h"
#include "app/modMain.h"
#include "ui/desk.h"

namespace merchantry::app {

bool isPassing(const db::DbError& error) {
    return error.category() == db::DbError::Category::Busy || dynamic_cast<const db::NotConnected*>(&error) != nullptr;
}

bool carriedOut(ui::Desk& desk, const std::string& title, const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const db::DbError& error) {
        if (!isPassing(error))
            throw;
        desk.message(error.what(), title, ui::MessageIcon::Exclamation);
        return false;
    }
}

bool posted(ui::Desk& desk, const std::string& title, const std::function<void()>& post) {
    return carriedOut(desk, title, [&] { db::againWhenBusy(modMain().Conn->session(), post); });
}

} // namespace merchantry::app
