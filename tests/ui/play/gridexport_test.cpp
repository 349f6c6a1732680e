#include "tests/scratchfolder.h"

#include "ui/form.h"
#include "ui/gridcopy.h"
#include "ui/gridexport.h"
#include "ui/longwork.h"
#include "ui/play/playdesk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

using namespace merchantry;
using namespace merchantry::ui;

namespace {

class frmTable : public Form {
public:
    explicit frmTable(Desk& desk) : Form(desk, "frmTable", "Table") {
        using Format = GridColumn::Format;
        grdTable.setColumns({{.heading = "Code"},
                             {.heading = "Secret", .hidden = true},
                             {.heading = "Name, long"},
                             {.heading = "Price", .format = Format::Currency},
                             {.heading = "On", .editor = GridColumn::Editor::Check},
                             {.heading = "Kind", .editor = GridColumn::Editor::Combo, .choices = {{"Standard", "6"}}}});
        grdTable.addRow({"007", "x", "say \"hi\"", "1234.5", "1", "6"});
        grdTable.addRow({"A,B", "x", "two\nlines", "-4", "0", "6"});
        setLayout(at(grdTable));
    }
    Grid grdTable{*this, "grdTable"};
};

class GridExports : public testing::Test {
protected:
    GridExports() {
        desk.loop = [](const std::function<bool()>& done) { ASSERT_TRUE(done()); };
        desk.show(form);
    }
    static std::string content(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    ScratchFolder folder;
    std::ostringstream told;
    play::Transcript transcript{told};
    play::PlayDesk desk{transcript};
    frmTable& form = desk.form<frmTable>();
    Grid& grid = form.grdTable;
};

TEST_F(GridExports, WriteWhatIsSeenAsRfc4180) {
    desk.queueFile(folder / "table"); // gets its ending
    exportCsv(grid);
    EXPECT_EQ(content(folder / "table.csv"), "Code,\"Name, long\",Price,On,Kind\r\n007,\"say \"\"hi\"\"\",\"$1,234.50\",Yes,Standard\r\n"
                                             "\"A,B\",\"two\nlines\",($4.00),No,Standard\r\n");
    EXPECT_NE(desk.statusText.find("Wrote 2 rows"), std::string::npos);
}

TEST_F(GridExports, LeaveTheOldFileWholeWhenTheyDoNotReachTheEnd) {
    std::filesystem::create_directories(folder / "taken.csv" / "inside");
    std::filesystem::create_directories(folder / "taken.xlsx" / "inside");
    for (const auto& [use, name] : {std::pair{&exportCsv, "taken.csv"}, std::pair{&exportWorkbook, "taken.xlsx"}}) {
        desk.queueFile(folder / name);
        use(grid);
        ASSERT_EQ(desk.messages.size(), 1U) << name;
        EXPECT_NE(desk.messages.front().text.find("could not be written; nothing was changed."), std::string::npos);
        EXPECT_TRUE(std::filesystem::is_directory(folder / name / "inside"));
        desk.messages.clear();
    }
    std::ofstream(folder / "old.xlsx") << "old";
    workbookWriter(grid, folder / "old.xlsx")->step(); // and no further
    EXPECT_EQ(content(folder / "old.xlsx"), "old");
    desk.queueFile(folder / "old.xlsx");
    exportWorkbook(grid);
    EXPECT_EQ(content(folder / "old.xlsx").substr(0, 2), "PK");
    EXPECT_FALSE(std::filesystem::exists(folder / "old.xlsx.part"));
}

TEST_F(GridExports, AreCopiedAsATableWithoutBreakingItsCells) {
    copyAll(grid);
    EXPECT_EQ(desk.clipboard,
              "Code\tName, long\tPrice\tOn\tKind\n007\tsay \"hi\"\t$1,234.50\tYes\tStandard\nA,B\ttwo lines\t($4.00)\tNo\tStandard");
}

// A long work has a window over all others that goes with it, whether it ends or fails.
TEST_F(GridExports, ShowALongWorkInAWindow) {
    const auto slow = [&](int until) {
        int done = 0;
        return longWork(desk, "Slow", [&, until] {
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            if (done > until)
                throw std::runtime_error("no more");
            return done += 15;
        });
    };
    EXPECT_TRUE(slow(1000));
    EXPECT_NE(told.str().find("opened frmProgress\nclosed frmProgress"), std::string::npos);
    EXPECT_THROW(slow(70), std::runtime_error);
    EXPECT_EQ(desk.top(), &form);
}

} // namespace
