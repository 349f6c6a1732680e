#pragma once

#include "reports/engine/definition.h"

#include <string>
#include <vector>

namespace merchantry::reports {

// The parameters' texts by number, the first being number 1; those that nobody set are missing or empty.
using ParameterTexts = std::vector<std::string>;

// The statement of a report with its places filled. Throws DefinitionError for a place that means nothing, a number that is none, and for a
// text that is not one SELECT or one call; what the parameters bring is at fault as well as what the file says.
std::string queryText(const Definition& definition, const ParameterTexts& parameters);

// A mistake in a line of the report's statement, which counts from 1; 0 where no line is to blame.
DefinitionError statementError(const Definition& definition, int line, const std::string& reason);

// The conditions of a WHERE clause without the word: "Item.Active = 1"; empty when there are none.
std::string conditionsOf(const std::string& where);

} // namespace merchantry::reports
