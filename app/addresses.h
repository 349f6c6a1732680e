#pragma once

#include "app/db/ado/recordset.h"
#include "ui/form.h"

#include <string>

namespace merchantry::app {

// For the order print screens: closes the gap of empty address lines. When lblAddress2 and lblAddress3 are both empty, lblCity's caption
// moves into lblAddress2; when only lblAddress3 is empty, into lblAddress3; lblCity is emptied then. A filled lblAddress3 moves nothing.
// Requires: the form has these three labels.
void CollapseAddress(ui::Form& form);

// "City, ST 12345" of three fields, each of which may be null; nothing is invented for what is missing.
std::string FormatCityStateZip(const db::Field& cityField, const db::Field& stateField, const db::Field& zipField);
std::string cityStateZip(const Value& city, const Value& state, const Value& zip);

} // namespace merchantry::app
