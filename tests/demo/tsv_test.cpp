#include "demo/tsv.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <fstream>

using merchantry::demo::Tsv;

namespace {

std::filesystem::path fileOf(const std::string& text) {
    static const merchantry::ScratchFolder folder;
    const auto file = folder / "test.tsv";
    std::ofstream(file, std::ios::binary) << text;
    return file;
}

TEST(TsvFiles, GiveCellsByColumn) {
    const Tsv file(fileOf("sku\tname\tcount\nA1\tLamp \"big\"\t3\nB2\t\t-4\n"));
    ASSERT_EQ(file.size(), 2U);
    EXPECT_EQ(file.at(0, "name"), "Lamp \"big\"");
    EXPECT_EQ(file.at(1, "name"), "");
    EXPECT_EQ(file.number(1, "count"), -4);
}

TEST(TsvFiles, TellWhatIsWrong) {
    EXPECT_THROW(Tsv("there-is-no-such-file.tsv"), std::runtime_error);
    EXPECT_THROW(Tsv(fileOf("")), std::runtime_error);
    EXPECT_THROW(Tsv(fileOf("a\tb\n1\n")), std::runtime_error);
    const Tsv file(fileOf("a\tb\n1\t2x\n"));
    EXPECT_THROW(file.at(0, "c"), std::runtime_error);
    EXPECT_THROW(file.number(0, "b"), std::runtime_error);
    EXPECT_THROW(file.at(1, "a"), std::out_of_range);
}

} // namespace
