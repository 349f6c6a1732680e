#include "setup/boundrow.h"

#include "app/db/dberror.h"

namespace merchantry::setup {

bool writeBound(app::DataControl& data, app::FailurePlace place, const std::function<void(db::Recordset& row)>& beside) {
    return app::guarded(place, [&] {
        db::Recordset& row = *data.Recordset();
        try {
            data.collect();
            if (beside)
                beside(row);
            row.Update();
        } catch (const db::DbError& error) {
            row.CancelUpdate();
            if (error.category() == db::DbError::Category::Conflict)
                place.plain =
                    "Someone else changed this meanwhile, and what you see here was not saved. Cancel and open it again to see the "
                    "change.";
            throw;
        }
    });
}

} // namespace merchantry::setup
