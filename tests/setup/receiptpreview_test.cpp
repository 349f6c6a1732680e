#include "setup/receiptpreview.h"

#include "base/characters.h"

#include <gtest/gtest.h>

#include <sstream>

namespace merchantry::setup {
namespace {

std::vector<std::string> linesOf(const std::string& preview) {
    std::vector<std::string> lines;
    std::istringstream in(preview);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

TEST(ReceiptPreview, BreaksAtWordsToTheWidthOfThePrinter) {
    const std::string message = "Thank you for shopping with us, and come again soon";
    EXPECT_EQ(linesOf(receiptPreview(message, "Impact", "")).front(), "Thank you for shopping with us, and come");
    EXPECT_EQ(linesOf(receiptPreview(message, "Epson Thermal", "")).front(), "Thank you for shopping with us, and come");
    EXPECT_EQ(linesOf(receiptPreview(message, "Thermal", "")).front(), "Thank you for shopping with us, and come again");
    EXPECT_EQ(linesOf(receiptPreview(message, "Impact", ""))[1], "again soon");
}

TEST(ReceiptPreview, KeepsTheLinesOfTheMessageAndNoLineIsTooLong) {
    const auto lines = linesOf(receiptPreview("Öffnungszeiten:\r\n\r\n" + std::string(95, 'x') + " end", "Impact", "27"));
    EXPECT_EQ(lines[0], "Öffnungszeiten:");
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(lines[2], std::string(40, 'x'));
    EXPECT_EQ(lines[4], std::string(15, 'x') + " end");
    for (const std::string& line : lines)
        EXPECT_LE(characterCount(line), 40U) << line;
}

TEST(ReceiptPreview, SaysWhereThePaperIsCutOrTorn) {
    for (const std::string& type : printerTypes()) {
        const auto cut = linesOf(receiptPreview("Bye", type, "27,105"));
        EXPECT_NE(cut.back().find(" cut here "), std::string::npos) << type;
        EXPECT_EQ(characterCount(cut.back()), static_cast<std::size_t>(receiptColumns(type))) << type;
        EXPECT_NE(linesOf(receiptPreview("Bye", type, "  ")).back().find(" tear off here "), std::string::npos) << type;
    }
}

} // namespace merchantry::setup
