#include "base/text.h"
#include "exchange/import/workbook.h"

#include "tests/exchange/import/madeworkbook.h"
#include "tests/exchange/import/readwhole.h"
#include "tests/scratchfolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace merchantry::exchange {
namespace {

const std::filesystem::path kFolder = "tests/exchange/import";

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

class Workbooks : public testing::Test {
protected:
    std::string read(const MadeWorkbook& made) {
        writeParts(file, made.parts());
        return shown(readSheet(file));
    }
    // Why it is refused; empty when it is read.
    std::string refusal() {
        try {
            readSheet(file);
            return "";
        } catch (const FileRefused& refused) {
            return refused.what();
        }
    }
    std::string refusalOf(const MadeWorkbook& made) {
        writeParts(file, made.parts());
        return refusal();
    }

    ScratchFolder folder;
    std::filesystem::path file = folder / "made.xlsx";
};

// What every sheet of every file begins with, beside what it did when somebody looked.
TEST_F(Workbooks, OfManyOtherProgramsAreRead) {
    std::string found;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder / "workbooks"))
        if (entry.path().extension() == ".xlsx")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files.size(), 38U);
    for (const auto& one : files) {
        Workbook book(one);
        for (std::size_t i = 0; i < book.sheets().size(); ++i) {
            const SheetTable table = readWhole(SheetReading(book, i));
            found += "== " + one.filename().string() + " / " + book.sheets()[i].name + (book.sheets()[i].hidden ? " (hidden)" : "") + ": " +
                     std::to_string(table.rows()) + " x " + std::to_string(table.columns()) + ", " + std::to_string(table.merged) +
                     " merged\n" + shown(table, 8, 9);
        }
    }
    if (std::getenv("MERCHANTRY_RECORD") != nullptr)
        write(kFolder / "workbooks.txt", found);
    EXPECT_EQ(found, contentOf(kFolder / "workbooks.txt"));
}

TEST_F(Workbooks, HoldTextsNumbersDatesFlagsAndErrorsInEveryFormThatCellsHave) {
    const std::string styles = "<numFmts><numFmt numFmtId=\"200\" formatCode=\"d\\.m\\.yy\"/></numFmts>"
                               "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"14\"/><xf numFmtId=\"200\"/></cellXfs>";
    const std::string cells =
        "<sheetData><row r=\"2\"><c r=\"A2\" t=\"s\"><v>0</v></c><c r=\"B2\" t=\"s\"><v>1</v></c>"
        "<c r=\"D2\" t=\"inlineStr\"><is><r><t>red </t></r><r><t>box</t></r><rPh sb=\"0\" eb=\"1\"><t>no</t></rPh></is></c></row>"
        "<row><c><v>12.100000000000001</v></c><c s=\"1\"><v>46347</v></c><c s=\"2\"><v>1.5</v></c><c t=\"b\"><v>1</v></c>"
        "<c t=\"e\"><v>#N/A</v></c><c t=\"str\"><f>A1&amp;\"x\"</f><v>a&lt;b_x000D_</v></c><c><f>1/3</f><v>0.33333333333333331</v></c>"
        "<c s=\"1\"><v>60</v></c><c s=\"1\"/></row><row r=\"7\" hidden=\"1\"><c r=\"C7\" t=\"d\"><v>2026-11-21T08:30:00</v></c></row>"
        "</sheetData>";
    const std::string shared = "<si><t>Lamp</t></si><si><r><t>big</t></r><r><t xml:space=\"preserve\"> </t></r><r><t>box</t></r></si>";
    const std::string wanted = "2:Lamp|big box|-|red box|\n"
                               "3:#12.1|@2026-11-21|@1900-01-01 12:00:00|?TRUE|!#N/A|a<b\\r|#0.333333333333333|!60 (no day)|\n"
                               "7 hidden:-|-|@2026-11-21 08:30:00|\n";
    EXPECT_EQ(read({cells, shared, styles}), wanted);
    const std::string prefixed = replaced(replaced(replaced(cells, "<", "<x:"), "<x:/", "</x:"), "<x:x:", "<x:");
    EXPECT_EQ(read({prefixed, replaced(replaced(shared, "<", "<x:"), "<x:/", "</x:"), styles, "", "x:"}), wanted);
    EXPECT_EQ(read({"<sheetData><row><c s=\"1\"><v>0</v></c></row></sheetData>", "", styles, "date1904=\"1\""}), "1:@1904-01-01|\n");
}

TEST_F(Workbooks, ShowPercentagesAsSuch) {
    const std::string styles =
        "<numFmts><numFmt numFmtId=\"200\" formatCode=\"0.0%\"/><numFmt numFmtId=\"201\" formatCode=\"0&quot;%&quot;\"/>"
        "</numFmts><cellXfs><xf numFmtId=\"9\"/><xf numFmtId=\"200\"/><xf numFmtId=\"201\"/></cellXfs>";
    EXPECT_EQ(read({"<sheetData><row><c s=\"0\"><v>0.15</v></c><c s=\"1\"><v>8.2500000000000004E-2</v></c><c s=\"2\"><v>0.15</v></c></row>"
                    "</sheetData>",
                    "", styles}),
              "1:%15%|%8.25%|#0.15|\n");
}

TEST_F(Workbooks, TellWhatIsHiddenAndMerged) {
    writeParts(file,
               MadeWorkbook{"<cols><col min=\"2\" max=\"2\" hidden=\"1\"/><col min=\"5\" max=\"16384\" hidden=\"true\"/></cols>"
                            "<sheetData><row><c><v>1</v></c><c><v>2</v></c><c><v>3</v></c></row><row><c><v>4</v></c></row></sheetData>"
                            "<mergeCells><mergeCell ref=\"A1:B2\"/><mergeCell ref=\"A9:XFD1048576\"/></mergeCells>"}
                   .parts());
    const SheetTable table = readSheet(file);
    EXPECT_EQ(shown(table), "1:#1|-|#3|\n2:-|\n");
    EXPECT_EQ(table.merged, 2);
    EXPECT_EQ(table.hiddenColumns, std::vector<bool>({false, true, false}));
}

TEST_F(Workbooks, ThatCannotBeReadAreRefusedInASentence) {
    const auto refusedWith = [&](const char* words) {
        const std::string why = refusal();
        EXPECT_NE(why.find(words), std::string::npos) << why;
    };
    write(file, "");
    refusedWith("is empty");
    write(file, "Code,Name\n1,Lamp\n");
    refusedWith("no workbook");
    write(file, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(600, '\0'));
    refusedWith("old format (.xls)");
    write(file, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32));
    refusedWith("protected by a password");
    const MadeWorkbook good{"<sheetData><row><c><v>1</v></c></row></sheetData>"};
    writeParts(file, good.parts(), "secret");
    refusedWith("protected by a password");
    writeParts(file, {{"content.xml", "<office/>"}});
    refusedWith("another format");
    writeParts(file, {{"readme.txt", "hello"}});
    refusedWith("holds no workbook");
    write(file, contentOf(file).substr(0, 60));
    refusedWith("damaged");
    std::filesystem::remove(file);
    refusedWith("could not be opened");
    EXPECT_NE(refusalOf({"<sheetData><row><c><v>1</v></c></row>"}).find("damaged"), std::string::npos) << "the rows have no end";
    EXPECT_NE(refusalOf({"<sheetData><row><c t=\"s\"><v>3</v></c></row></sheetData>"}).find("row 1"), std::string::npos);
    EXPECT_NE(refusalOf({"<sheetData><row r=\"2\"/><row r=\"2\"/></sheetData>"}).find("comes behind row 2"), std::string::npos);
    EXPECT_NE(refusalOf({"<sheetData><row r=\"1048577\"/></sheetData>"}).find("more than 1,048,576 rows"), std::string::npos);
    EXPECT_NE(refusalOf({"<sheetData><row r=\"1\"><c r=\"XFE1\"><v>1</v></c></row></sheetData>"}).find("columns"), std::string::npos);
    EXPECT_EQ(read({"<sheetData/>"}), "");
}

TEST_F(Workbooks, ThatUnpackToMoreThanTheyMayAreStopped) {
    MadeWorkbook bomb{"<sheetData>" + std::string(101 * 1024 * 1024, ' ') + "</sheetData>"};
    EXPECT_NE(refusalOf(bomb).find("larger than 100 MB"), std::string::npos);
    // One that lies about its size: the figures of the directory and of the part's head are made small.
    std::string packed = contentOf(file);
    const std::uint32_t real = static_cast<std::uint32_t>(bomb.parts().at("xl/worksheets/sheet1.xml").size());
    const std::string size(reinterpret_cast<const char*>(&real), 4);
    write(file, replaced(packed, size, std::string("\x10\0\0\0", 4)));
    EXPECT_NE(refusal(), "");
}

TEST_F(Workbooks, AreReadInPiecesHoweverTheRowsAreCut) {
    std::string rows;
    std::string wanted;
    for (int i = 1; i <= 30'000; ++i) {
        rows += i % 1000 == 0 ? "<row r=\"" + std::to_string(i) + "\" spans=\"1:2\"/>"
                              : "<row><c><v>" + std::to_string(i) + "</v></c><c t=\"inlineStr\"><is><t>row " + std::string(i % 50, 'x') +
                                    "</t></is></c></row>";
        wanted += std::to_string(i) + (i % 1000 == 0 ? ":\n" : ":#" + std::to_string(i) + "|row " + std::string(i % 50, 'x') + "|\n");
    }
    writeParts(file, MadeWorkbook{"<sheetData>" + rows + "</sheetData><rowBreaks count=\"1\"/>"}.parts());
    EXPECT_TRUE(shown(readSheet(file), 30'000) == wanted);
}

// A hundred good workbooks with bytes turned over, cut off or doubled: read or refused in a sentence, never anything else.
TEST_F(Workbooks, ThatAreDamagedAreReadOrRefusedPlainly) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder / "workbooks"))
        if (entry.path().extension() == ".xlsx")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::mt19937 random(20040301);
    int refused = 0;
    for (int i = 0; i < 100; ++i) {
        std::string bytes = contentOf(files[static_cast<std::size_t>(i) % files.size()]);
        const auto anywhere = [&] { return static_cast<std::size_t>(random()) % bytes.size(); };
        switch (i % 4) {
        case 0:
            bytes.resize(anywhere());
            break;
        case 1:
            for (int k = 0; k < 20; ++k)
                bytes[anywhere()] = static_cast<char>(random());
            break;
        case 2:
            bytes.erase(anywhere(), 50);
            break;
        default:
            bytes.insert(anywhere(), bytes.substr(anywhere(), 100));
        }
        write(file, bytes);
        const std::string why = refusal();
        refused += why.empty() ? 0 : 1;
        EXPECT_TRUE(why.empty() || why.ends_with(".")) << why;
    }
    EXPECT_GT(refused, 70);
}

// The parts themselves damaged, under a packing that is sound.
TEST_F(Workbooks, WhosePartsAreDamagedAreReadOrRefusedPlainly) {
    const MadeWorkbook good{"<cols><col min=\"1\" max=\"2\" hidden=\"1\"/></cols><sheetData><row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c>"
                            "<c r=\"B1\" s=\"1\"><v>46347</v></c></row><row r=\"2\"><c r=\"A2\" t=\"inlineStr\"><is><t>x</t></is></c></row>"
                            "</sheetData><mergeCells><mergeCell ref=\"A1:B2\"/></mergeCells>",
                            "<si><t>Lamp</t></si>", "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"14\"/></cellXfs>"};
    std::mt19937 random(1904);
    for (int i = 0; i < 300; ++i) {
        auto parts = good.parts();
        auto victim = std::next(parts.begin(), static_cast<std::ptrdiff_t>(random() % parts.size()));
        std::string& text = victim->second;
        if (i % 5 == 0)
            parts.erase(victim);
        else if (i % 5 == 1)
            text.resize(random() % text.size());
        else
            for (int k = 0; k < 3; ++k)
                text[random() % text.size()] = "<>/\"&;0 r9\0\xFF"[random() % 12];
        writeParts(file, parts);
        const std::string why = refusal();
        EXPECT_TRUE(why.empty() || why.ends_with(".")) << why;
    }
}

} // namespace
} // namespace merchantry::exchange
