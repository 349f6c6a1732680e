#pragma once

#include <string>
#include <vector>

namespace merchantry::setup {

// The kinds of receipt printers that a register may have, in the order in which they are offered.
const std::vector<std::string>& printerTypes();

// Characters that a printer of that kind prints on a line; an unknown kind is taken for the narrowest.
int receiptColumns(const std::string& printerType);

// The end of a receipt as such a printer prints it: the message broken at words to its width, and below it where the paper is cut, or the
// edge where it is torn when there is no code to cut it. Lines end in "\n".
std::string receiptPreview(const std::string& message, const std::string& printerType, const std::string& cutCode);

} // namespace merchantry::setup
