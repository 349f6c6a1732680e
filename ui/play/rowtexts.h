#pragma once

#include "ui/play/step.h"

namespace merchantry::ui::play {

// The rows that a batch gives on the play's own session; the store's refusal fails the line.
std::vector<std::vector<Value>> query(Step& step, const std::string& batch);
// A row as scripts write it: cells joined by "|".
std::string rowText(const std::vector<Value>& row);

} // namespace merchantry::ui::play
