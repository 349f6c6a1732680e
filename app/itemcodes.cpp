#include "app/itemcodes.h"

#include "base/characters.h"

namespace merchantry::app {
namespace {

// What looks like nothing: blanks, tabs, line ends, and the no-break space that is pasted from pages.
bool isBlank(std::string_view character) {
    return character.size() == 1 ? static_cast<unsigned char>(character[0]) <= ' ' : character == "\xC2\xA0";
}

bool hasBlankEnds(const std::string& code) {
    const std::size_t count = characterCount(code);
    return count > 0 && (isBlank(characters(code, 0, 1)) || isBlank(characters(code, count - 1, 1)));
}

std::string complaintAbout(const std::string& code) {
    const std::string named = "The code \"" + code + "\" cannot be used: ";
    if (code.find('|') != std::string::npos)
        return named + "a code holds no \"|\".";
    if (hasBlankEnds(code))
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
