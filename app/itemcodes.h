#pragma once

#include <string>

namespace merchantry::app {

// Why a new item cannot have these codes, in a sentence for the user; empty when it can. Between screens both travel as one text with a "|"
// between them, the store compares without the blanks at the end, and "$" marks the registers' own items. The store's trigger Item_Codes
// holds the same rule.
std::string itemCodeComplaint(const std::string& sku, const std::string& matrixSku);

} // namespace merchantry::app
