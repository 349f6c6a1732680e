#include "app/itemcodes.h"

#include "base/text.h"

namespace merchantry::app {
namespace {

std::string complaintAbout(const std::string& code) {
    const std::string named = "The code \"" + code + "\" cannot be used: ";
    if (code.find('|') != std::string::npos)
        return named + "a code holds no \"|\".";
    if (trimmed(code) != code)
        return named + "a code neither begins nor ends with a blank.";
    if (code.starts_with('$'))
        return named + "\"$\" begins the codes of the registers' own items.";
    return "";
}

} // namespace

std::string itemCodeComplaint(const std::string& sku, const std::string& matrixSku) {
    const std::string own = complaintAbout(matrixSku);
    return own.empty() ? complaintAbout(sku) : own;
}

} // namespace merchantry::app
