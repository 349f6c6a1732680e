#include "reports/letterfiles.h"

#include "app/db/embedded/store.h"
#include "tests/scratchfolder.h"
#include "ui/play/playdesk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace merchantry::reports {
namespace {

std::vector<std::string> namesOf(const std::vector<std::string>& words) {
    std::vector<Letter> letters;
    for (const std::string& one : words)
        letters.push_back({0, 0, one});
    std::vector<std::string> names;
    for (const LetterFile& file : letterFiles(letters))
        names.push_back(file.name);
    return names;
}

TEST(LetterFiles, HaveNamesThatEveryComputerTakesAndNoTwoAlike) {
    EXPECT_EQ(namesOf({"17 Ann Ash 3/20/2026", "A/C: 5\\6 \"Bob\"", "../../etc", "  ", "", "x"}),
              (std::vector<std::string>{"17 Ann Ash 3-20-2026.pdf", "A-C  5 6  Bob.pdf", "-  -etc.pdf", "Letter.pdf", "Letter (2).pdf",
                                        "x.pdf"}));
    // one account number for two, in whatever letters; a name that looks like the second's
    EXPECT_EQ(namesOf({"7 ann", "7 ANN", "7 ann (2)", "7 Ann"}),
              (std::vector<std::string>{"7 ann.pdf", "7 ANN (2).pdf", "7 ann (2) (2).pdf", "7 Ann (3).pdf"}));
    std::string accents;
    for (int i = 0; i < 200; ++i)
        accents += "\xc3\xa9";
    const std::string shortened = namesOf({"7" + accents, "7" + accents})[1];
    EXPECT_EQ(shortened, "7" + accents.substr(0, 118) + " (2).pdf");
}

// Takes pages as lines of a file; there is no more room after so many letters.
class Paper : public ui::PageSink {
public:
    Paper(std::filesystem::path file, bool full) : file_(std::move(file)), full_(full) {}
    void put(const ui::Page& page) override {
        if (full_)
            throw std::runtime_error("There is no more room.");
        for (const ui::PageItem& item : page.items)
            if (item.text.starts_with("Page "))
                text_ += item.text + ";";
    }
    void finish() override { std::ofstream(file_) << text_; }

private:
    std::filesystem::path file_;
    bool full_;
    std::string text_;
};

class Papers : public ui::play::Stage {
public:
    void prepared(ui::Form&) override {}
    void opened(ui::Form&) override {}
    void vanished(ui::Form&) override {}
    void settle() override {}
    void picture(ui::Form&, const std::string&) override {}
    std::unique_ptr<ui::PageSink> pdf(const std::filesystem::path& file, const std::string&) override {
        return std::make_unique<Paper>(file, written++ == room);
    }
    int written = 0;
    int room = 1000;
};

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(LetterFiles, EachLetterIsWrittenWithItsPagesAndAFailureNamesTheFile) {
    const auto store = db::Store::scratch();
    const auto session = store->session();
    db::NoResult none;
    session->execute("CREATE TABLE StoreOptions (Name varchar(20)) CREATE TABLE Posted (Name varchar(20), Line int) INSERT INTO Posted "
                     "VALUES ('Bob', 1), ('Cy', 1)",
                     none);
    for (int line = 0; line < 80; ++line)
        session->execute("INSERT INTO Posted VALUES ('Ann', " + std::to_string(line) + ")", none);
    const Definition definition = parseDefinition(R"(title = "Statement"
[query]
sql = "SELECT Name, Line FROM Posted ORDER BY Name, Line"
[[column]]
field = "Line"
[[group]]
field = "Name"
header = "{Name}"
page_break = true
letter = "{Name}"
)",
                                                  "letters.rpt");
    std::ostringstream told;
    ui::play::Transcript transcript(told);
    Papers papers;
    ui::play::PlayDesk desk(transcript, &papers);
    ReportPages report(Report::run(*session, definition, {}), desk.textMeasure());
    while (!report.layOut(std::chrono::milliseconds(100))) {
    }
    ASSERT_TRUE(hasLetters(definition));
    const std::vector<LetterFile> files = letterFiles(report.letters());
    const ScratchFolder folder;
    EXPECT_EQ(writeLetters(desk, report, files, folder / "."), 3);
    EXPECT_EQ(contents(folder / "Ann.pdf"), "Page 1 of 2;Page 2 of 2;");
    EXPECT_EQ(contents(folder / "Bob.pdf"), "Page 1 of 1;");
    EXPECT_EQ(contents(folder / "Cy.pdf"), "Page 1 of 1;");

    papers.room = papers.written + 1;
    try {
        writeLetters(desk, report, files, folder / ".");
        ADD_FAILURE() << "written";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Bob.pdf: There is no more room. Written before it: 1 of 3.");
    }
}

} // namespace
} // namespace merchantry::reports
