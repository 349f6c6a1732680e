#pragma once

#include "base/value.h"
#include "reports/engine/definition.h"
#include "reports/engine/figure.h"

#include <string>

namespace merchantry::reports {

// The format that a column of this type has when its definition names none.
struct ColumnKind {
    Format format = Format::Text;
    bool isNumber = false; // stands at the right
};
ColumnKind kindOf(const Value& sample, Format wanted);

// A cell as the page shows it; null is empty. Money is "$1,234.50" and "($1,234.50)", a percentage of 0.25 "25.0%".
std::string cellText(const Value& value, Format format);
// A figure in the format of its column; Format::Auto as it is.
std::string figureText(Figure figure, Format format);

} // namespace merchantry::reports
