#pragma once

#include "app/ADOUtilities.h"

#include <string>

namespace merchantry::customers {

// Before a screen writes its row over: gives the row as somebody else may have left it meanwhile to the screen's controls. What the user
// did not change is shown anew. False, after a message, when the row is gone or the user changed what somebody else changed, too: nothing
// is lost then, and the next try is the user's word. `what` names the row in messages ("customer").
bool takeMeanwhile(ui::Form& form, app::DataControl& data, db::RecordsetPtr now, const std::string& what);

} // namespace merchantry::customers
