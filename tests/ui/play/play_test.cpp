#include "tests/scratchfolder.h"
#include "tests/ui/play/samplehost.h"

#include "ui/play/verbs.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace merchantry;
using namespace merchantry::ui::sample;

namespace {

// Lines that must hold after the shop opened, one play for each.
TEST(Play, WhatHolds) {
    const char* const scripts[] = {
        // one user at one keyboard: every field is left before the next is entered
        "type txtName \"x\"\nexpect txtName \"x\"\nexpect focus txtName\nclick chkActive\nexpect chkActive on\nexpect focus chkActive\n"
        "expect lblLog \"in name;change;out name=x;\"",
        "append txtName \"ab\"\nexpect txtName \"ab\"\nexpect lblLog \"in name;change;change;\"",
        "enter txtName\nleave txtName\nexpect focus txtPhone",
        "type txtPhone \"5551234567\"\nexpect txtPhone \"(555) 123-4567\"\ntype txtShort \"abcdef\"\nexpect txtShort \"abc\"\nappend "
        "txtShort \"d\"\nexpect txtShort \"abc\"",
        // a field whose procedure keeps the focus: no failure of the line, and the click does not arrive
        "type txtPhone \"5\"\ntype txtPhone \"5\"\nappend txtPhone \"\"\nexpect txtPhone \"(5\"\nclick cmdBeep\nexpect message \"Invalid "
        "phone\" caption \"Shop\" icon exclamation\n"
        "expect no beep\nexpect focus txtPhone\nexpect refused click cmdBeep\nexpect message like \"Inv%\"\ntype txtPhone \"\"",
        "check chkActive on\ncheck chkActive on\nexpect chkActive on\ncheck chkActive off\nexpect chkActive off\ncheck optB on\nexpect "
        "optB on\nexpect optA off",
        "pick lstKind \"Parent\"\nexpect lstKind \"Parent\"\npick lstKind #3\nexpect lstKind \"Split\"\nexpect count lstKind 3\nexpect "
        "entries lstKind \"Standard\" \"Parent\" \"Split\"\n"
        "dblclick lstKind\nexpect lblLog like \"%double Split;\"",
        "pick cboColor \"Blue\"\nexpect cboColor \"Blue\"\ntype cboColor \"Red\"\nexpect cboColor \"Red\"\nexpect refused append cboColor "
        "\"x\"",
        "expect page tabPages \"General\"\ntab tabPages \"Notes\"\nexpect page tabPages \"Notes\"\nexpect hidden cmdAsk\nexpect visible "
        "txtNotes\ntype txtNotes \"n\"\nexpect refused click cmdAsk",
        "type txtName \"stay\"\ntab tabPages \"Notes\"\nexpect page tabPages \"&General\"\nexpect refused tab tabPages \"Notes\"",
        // grids: the row changes before the click, the rows are selected before it
        "row grdItems 2 1\nexpect current grdItems 2\nexpect lblLog \"in name;out name=;row 2;click 2-2;\"",
        "rows grdItems 2-3\nexpect lblLog \"in name;out name=;row 2;click 2-3;\"",
        "dblclick grdItems 3\nexpect lblLog \"in name;out name=;row 3;double;\"",
        "expect rows grdItems 3\nexpect heading grdItems 2 \"Price\"\nexpect cell grdItems 3 2 \"($4.00)\"\nexpect cell grdItems 1 1 like "
        "\"L%p\"\nexpect cell grdItems 0 0 \"Code\"",
        "edit grdItems 1 1 \"Lantern\"\nexpect cell grdItems 1 1 \"Lantern\"\nedit grdItems 1 3 \"0\"\nexpect cell grdItems 1 3 "
        "\"0\"\nedit grdItems 1 0 \"Z\"\nexpect cell grdItems 1 0 \"A1\"\n"
        "expect readonly grdItems 1 0\nexpect refused edit grdItems 1 0 \"Z\"",
        "expect color grdItems 2 0 yellow\nexpect color grdItems 2 0 #ffff00\nexpect color grdItems 1 0 none\nexpect color lblTitle red",
        "header grdItems 1\nexpect current grdItems 1",
        "answer No\nanswer Yes\nclick cmdAsk\nclick cmdAsk\nexpect lblLog \"in name;out name=;no;yes;\"\nexpect message \"Delete it?\" "
        "caption \"Sure?\" "
        "icon question\nexpect message like \"%?\"\nexpect no message",
        "input \"12\"\ninput cancel\nclick cmdInput\nclick cmdInput\nexpect lblLog \"in name;out name=;12;cancelled;\"\nexpect input \"How "
        "many?\" title "
        "\"Count\"",
        "file \"a.txt\"\nfile cancel\nclick cmdFile\nclick cmdFile\nexpect lblLog \"in name;out name=;a.txt;cancelled;\"\nexpect dialog "
        "\"Open\" filter "
        "\"All|*.*\"",
        "click cmdBeep\nexpect beep\nclick chkActive\nexpect no beep",
        "click imgUp\nexpect lblLog \"in name;out name=;up;\"\nexpect tip imgUp \"One up\"\nclick cmdHelp\nexpect browsed like \"help/%\"",
        "expect text \"The shop\"\nexpect text \"Name:\"\nexpect caption \"Shop\"\nexpect enabled cmdBeep\nexpect disabled cmdOff\nexpect "
        "hidden cmdGone\nexpect visible txtName",
        "expect refused click cmdOff\nexpect refused expect closed frmShop\nexpect refused click cmdGone\nexpect refused type txtLocked "
        "\"x\"\nexpect refused type txtNotes "
        "\"x\"\nexpect refused command mnuOff",
        "wait 249\nexpect lblTicks \"0\"\nwait 1\nexpect lblTicks \"1\"\nwait 1000\nexpect lblTicks \"5\"",
        "clock \"2026-11-21 14:30:00\"\nwait 1500\nexpect sql \"now\" \"2026-11-21 14:30:01\"",
        "expect sql \"rows\" \"1|12.5|NULL\" \"x|1|2026-03-04 00:00:00\"\nexpect sql \"none\"\nexpect log \"modItems\" \"Populate\"\nsql "
        "\"none\"",
        "let n = sql \"rows\"\ntype txtName \"<${n}>\"\nexpect txtName \"<1>\"\nlet twice = call frmMain.Double \"ab\"\nexpect caption "
        "\"Shop\"\ntype txtName \"${twice}\"\nexpect txtName \"abab\"",
        "on frmMain expect caption \"Main\"\nexpect Find \"&Find\"\nexpect tip Find \"Find an item\"\ntoolbar \"Find\"\non frmMain expect "
        "caption \"Main Find\"\nexpect mnuShop \"&Shop\"",
        "answer Yes\nclick cmdAsk",
        "key Tab\nexpect focus txtPhone\nkey Alt+A\nexpect chkActive on",
        "type txtName \"abc\"\nkey Ctrl+A\nexpect selection txtName \"abc\"\nkey Ctrl+C\nexpect clipboard \"abc\"\nkey Delete\nexpect "
        "txtName \"\"\nrow grdItems 2 1\nkey Ctrl+C\nexpect clipboard \"Candle\"",
        "key F1\nexpect browsed like \"%Cover2.htm\"\nexpect form frmShop",
        "key Ctrl+Tab\nexpect page tabPages \"Notes\"\nkey Ctrl+Shift+Tab\nexpect page tabPages \"&General\"\nkey Ctrl+PageUp\nexpect page "
        "tabPages \"Notes\"\nkey Ctrl+PageDown\nexpect page tabPages \"&General\"",
        // Tab passes over a locked field
        "click txtShort\nkey Tab\nexpect focus chkActive\nkey Shift+Tab\nexpect focus txtShort",
        "expect no file \"there-is-no-such-file.txt\"\nexpect open frmShop\nexpect closed frmDialog\nexpect form frmShop",
        // a floating panel leaves the list on top, and its controls are found
        "type txtName \"x\"\nclick cmdPanel\nexpect form frmShop\ntype txtText \"find\"\nexpect focus txtText\nclick txtName\nexpect focus "
        "txtName\non frmPanel close\nexpect closed frmPanel",
    };
    for (const char* script : scripts) {
        const Played played = playInShop(script);
        EXPECT_TRUE(played.passed) << script << "\n--- transcript\n" << played.transcript;
    }
}

// Each last line must fail, with these words.
TEST(Play, WhatDoesNotHoldTellsWhatThereWas) {
    const struct {
        const char* script;
        const char* failure;
    } cases[] = {
        {"expect form frmMain", "test.play:3: expected frmMain on top, frmShop is on top"},
        {"expect open frmDialog", "expected frmDialog to be open, open are frmMain, frmShop"},
        {"expect closed frmShop", "expected frmShop to be closed, it is open"},
        {"expect caption \"Shops\"", "expected caption \"Shops\", there was \"Shop\""},
        {"expect text \"Nowhere\"", "expected a label \"Nowhere\", there were \"The shop\""},
        {"expect txtName \"x\"", "expected txtName \"x\", there was \"\""},
        {"expect lblTitle like \"the%\"", "expected lblTitle like \"the%\", there was \"The shop\""},
        {"expect chkActive on", "expected chkActive on, it is off"},
        {"expect txtName on", "expected txtName to be a check box or an option, it is a text box"},
        {"expect page tabPages \"Notes\"", "expected page \"Notes\", there was \"&General\""},
        {"expect enabled cmdOff", "expected cmdOff to be enabled, it is not"},
        {"expect disabled cmdBeep", "expected cmdBeep to be disabled, it is not"},
        {"expect visible txtNotes", "expected txtNotes to be visible, it is not"},
        {"expect hidden txtName", "expected txtName to be hidden, it is not"},
        {"expect focus cmdBeep", "expected the focus on cmdBeep, it is on txtName of frmShop"},
        {"expect count lstKind 2", "expected 2 entries, there were 3"},
        {"expect entries lstKind \"Standard\"", "expected entries \"Standard\", there were \"Standard\" \"Parent\" \"Split\""},
        {"expect rows grdItems 4", "expected 4 rows in grdItems, there are 3"},
        {"expect cell grdItems 1 2 \"12.5\"", "there was \"$12.50\""},
        {"expect cell grdItems 4 0 \"\"", "expected row 4 in grdItems, there are 3 data rows"},
        {"expect heading grdItems 0 \"Name\"", "there was \"Code\""},
        {"expect color grdItems 1 0 yellow", "expected colour yellow, there was none"},
        {"expect color lblTitle none", "expected colour none, there was red"},
        {"expect current grdItems 3", "expected row 3 of grdItems to be current, row 0 is"},
        {"expect readonly grdItems 1 1", "it would be taken"},
        {"expect message \"x\"", "expected message \"x\", there was none"},
        {"answer Yes\nclick cmdAsk\nexpect message \"Delete it?\" icon stop",
         "there was message \"Delete it?\" caption \"Sure?\" icon question buttons YesNo"},
        {"answer Yes\nclick cmdAsk\nexpect message \"Delete it?\" caption \"Sure\"", "test.play:5: expected message"},
        {"answer Yes\nclick cmdAsk\nexpect no message", "expected no message, there was message \"Delete it?\""},
        {"type txtPhone \"(5\"\nleave txtPhone", "test.play:4: expected no unread message at the end"},
        {"click cmdAsk", "test.play:3: expected an answer to the question \"Delete it?\" caption \"Sure?\" icon question buttons YesNo, "
                         "none was given before"},
        {"answer Cancel\nclick cmdAsk", "the next answer is Cancel"},
        {"click cmdInput", "expected an input for the box \"How many?\""},
        {"click cmdFile", "expected a file for the dialogue \"Open\""},
        {"input \"1\"\nclick cmdInput\nexpect input \"How many?\" title \"x\"", "there was \"How many?\" title \"Count\""},
        {"file cancel\nclick cmdFile\nexpect dialog \"Open\" filter \"x\"", "there was \"Open\" filter \"All|*.*\""},
        {"click cmdHelp\nexpect browsed like \"web%\"", "there were \"help/items.html\""},
        {"expect beep", "expected a beep, the last verb did not beep"},
        {"click cmdBeep\nexpect no beep", "expected no beep, the last verb beeped"},
        {"expect sql \"rows\" \"1|12.5|NULL\"", "there were \"1|12.5|NULL\", \"x|1|2026-03-04 00:00:00\""},
        {"expect sql \"other\" \"1\"", "expected the store to take \"other\", Invalid object name"},
        {"sql \"other\"", "expected the store to take \"other\", Invalid object name"},
        {"let n = sql \"none\"", "expected a row from \"none\", there was none"},
        {"type txtName \"${n}\"", "expected a value for ${n}, no line \"let n = ...\" came before"},
        {"expect log \"modItems\" \"Other\"", "it carries \"modItems\" \"Populate\""},
        {"expect statement \"SELECT 1\"", "expected statement \"SELECT 1\", the last verb sent none"},
        {"expect printed \"Items.rpt\" \"A1\"", "the last verb opened none"},
        {"expect clipboard \"x\"", "expected clipboard \"x\", there was \"\""},
        {"expect status \"x\"", "expected status \"x\", there was \"\""},
        {"expect selection txtName \"x\"", "expected selection \"x\", there was \"\""},
        {"expect tip imgUp \"x\"", "expected tool tip \"x\", there was \"One up\""},
        {"expect file \"there-is-no-such-file.txt\" \"x\"", "expected a file \"there-is-no-such-file.txt\", there is none"},
        {"expect ended", "expected the process to have ended, it goes on"},
        {"expect refused click cmdBeep", "expected this to be refused, it was done"},
        {"expect refused click cmdModal\nexpect form frmDialog", "test.play:3: expected this to be refused, it opened a form"},
        {"expect refused click cmdNone", "expected a control cmdNone"},
        {"expect refused expect lblNone \"x\"", "expected a control lblNone"},
        {"expect refused expect closed frmNone", "expected this to be refused, it was done"},
        {"click cmdOff", "expected to click cmdOff, the way is barred: disabled"},
        {"type txtLocked \"x\"", "the way is barred: locked"},
        {"click grdItems", "expected a row of grdItems, a grid is clicked with: row grd n [col]"},
        {"row grdItems 4", "expected a data row 4 in grdItems, there are 3"},
        {"rows grdItems 3-2", "expected data rows of grdItems"},
        {"edit grdItems 1 3 \"yes\"", "expected \"1\" or \"0\" for a check cell"},
        {"edit grdItems 1 4 \"9\"", "expected a column that is shown, column 4 is hidden"},
        {"pick lstKind \"None\"", "expected an entry \"None\" in lstKind, there are \"Standard\", \"Parent\", \"Split\""},
        {"pick lstKind #4", "expected an entry from #1 to #3, there was #4"},
        {"tab tabPages \"Other\"", "expected a page \"Other\""},
        {"command mnuOff", "the way is barred: disabled"},
        {"command mnuNone", "expected a control mnuNone"},
        {"toolbar \"None\"", "expected a control None"},
        {"call frmMain.Triple \"a\"", "expected an operation Triple, frmMain offers none of that name"},
        {"call frmOther.Double", "expected a form frmOther, the program has none of that name"},
        {"config server=\"x\"", "expected a configuration before the start-up"},
        {"on frmDialog click cmdOK", "expected frmDialog to be open, it is not"},
        {"type txtName", "expected a text to type (type ctl \"text\"), the line ends before it"},
        {"check chkActive maybe", "expected on or off (check ctl on|off), there was maybe"},
        {"click cmdBeep twice", "expected the end of the line (click ctl), there was twice"},
        {"clock \"soon\"", "expected a date and time"},
    };
    for (const auto& one : cases) {
        const Played played = playInShop(one.script);
        EXPECT_FALSE(played.passed) << one.script;
        EXPECT_NE(played.transcript.find(one.failure), std::string::npos) << one.script << "\n--- transcript\n" << played.transcript;
    }
}

// What is written down of a password is dots: failures, prints, and the statements that held it.
TEST(Play, TellsNoPassword) {
    const Played held =
        playInShop("type txtSecret \"s3cret\"\nexpect txtSecret \"s3cret\"\nexpect dots txtSecret\nhold cmdHeld\n"
                   "expect refused expect dots txtSecret\nrelease cmdHeld\nexpect dots txtSecret\nprint txtSecret\nprint form");
    EXPECT_TRUE(held.passed) << held.transcript;
    EXPECT_EQ(held.transcript.find("s3cret"), std::string::npos) << held.transcript;
    EXPECT_NE(held.transcript.find("txtSecret \"••••••••\""), std::string::npos) << held.transcript;
    for (const char* wrong : {"expect txtSecret \"x\"", "key Ctrl+A\nexpect selection txtSecret \"x\""}) {
        const Played failed = playInShop(std::string("type txtSecret \"s3cret\"\n") + wrong);
        EXPECT_FALSE(failed.passed);
        EXPECT_EQ(failed.transcript.find("s3cret"), std::string::npos) << failed.transcript;
    }
    std::ostringstream out;
    merchantry::ui::play::Transcript transcript(out, true);
    merchantry::ui::play::PlayDesk desk(transcript);
    desk.statementSent("SELECT 's3cret'", "SELECT '…'");
    EXPECT_EQ(out.str(), "statement \"SELECT '…'\"\n");
    EXPECT_EQ(desk.doings.statements.front(), "SELECT 's3cret'");
}

TEST(Play, AHintStandsBesideTheStatus) {
    std::ostringstream out;
    merchantry::ui::play::Transcript transcript(out);
    merchantry::ui::play::PlayDesk desk(transcript);
    desk.hint("Change it.");
    desk.status("Saved.");
    desk.pass(merchantry::ui::play::PlayDesk::kStatusMs, [] {});
    EXPECT_EQ(desk.statusText, "");
    EXPECT_EQ(desk.hintText, "Change it.");
}

TEST(Play, ProceduresWaitWhileTheirModalFormIsOpen) {
    const Played closed =
        playInShop("click cmdModal\nexpect form frmDialog\nexpect refused click cmdBeep\nexpect refused command mnuShop\n"
                   "type txtAnswer \"one\"\nclick cmdAgain\ntype txtAnswer \"two\"\nclick cmdOK\nexpect txtAnswer \"one\"\nclick cmdOK\n"
                   "expect form frmShop\nexpect lblLog \"in name;out name=;got one;\"");
    EXPECT_TRUE(closed.passed) << closed.transcript;
    const Played hidden = playInShop(
        "click cmdModal\ntype txtAnswer \"a\"\nkey Escape\nexpect form frmShop\nexpect closed frmDialog\nexpect lblLog like \"%got a;\"\n"
        "click cmdModal\nexpect txtAnswer \"\"\nkey Enter\nexpect form frmShop");
    EXPECT_TRUE(hidden.passed) << hidden.transcript;
}

TEST(Play, OpeningAFormTakesTheFocusAndClosingItGivesItBack) {
    const Played played =
        playInShop("type txtName \"x\"\non frmMain command mnuDialog\nexpect focus txtAnswer\nclick cmdOK\nexpect focus txtName\n"
                   "expect lblLog \"in name;change;out name=x;in name;\"");
    EXPECT_TRUE(played.passed) << played.transcript;
}

TEST(Play, AScriptThatEndsInsideModalFormsIsUnwound) {
    const Played played = playInShop("click cmdModal\nclick cmdAgain\nclick cmdAgain");
    EXPECT_TRUE(played.passed) << played.transcript;
    const Played failing = playInShop("click cmdModal\nclick cmdAgain\nexpect form frmShop\nclick cmdOK");
    EXPECT_FALSE(failing.passed);
    EXPECT_EQ(failing.transcript.find("closed frmDialog"), std::string::npos) << "no line is done after a failed one";
}

TEST(Play, EndsOfTheProcess) {
    EXPECT_TRUE(playInShop("command mnuCrash\nexpect ended \"Object required\"\nexpect closed frmMain").passed);
    EXPECT_TRUE(playInShop("command mnuExit\nexpect ended\nexpect sql \"none\"").passed);
    EXPECT_TRUE(
        playInShop("click cmdModal\non frmMain expect refused command mnuCrash\nclick cmdOK\ncommand mnuCrash\nexpect ended").passed);
    EXPECT_TRUE(playText("click cmdLogin(1)\nexpect ended").passed);
    EXPECT_TRUE(playText("config none\nexpect ended").passed);
    const Played unexpected = playInShop("command mnuCrash\nexpect no message");
    EXPECT_FALSE(unexpected.passed);
    EXPECT_NE(unexpected.transcript.find("test.play:3: expected the process to go on, it ended with \"Object required\""),
              std::string::npos);
    EXPECT_NE(playInShop("command mnuCrash\nclick cmdBeep").transcript.find("expected a form to be open, the process ended with"),
              std::string::npos);
    EXPECT_FALSE(playInShop("command mnuCrash\nexpect ended \"Overflow\"").passed);
}

TEST(Play, LoginNeedsTheMainWindow) {
    const Played refused = playText("login \"nobody\" \"x\"\nexpect form frmLogin");
    EXPECT_FALSE(refused.passed);
    EXPECT_NE(refused.transcript.find("test.play:1: expected the main window to open, there was message \"Invalid User Name"),
              std::string::npos)
        << refused.transcript;
    EXPECT_FALSE(playText("login \"nobody\" \"x\"").passed) << "also as the last line";
    EXPECT_TRUE(playText("login \"manager\" \"x\"\nexpect form frmMain").passed);
}

TEST(Play, StartUpWaitsForTheFirstLineThatNeedsIt) {
    const Played played = playText(
        "config name=\"a\" server=\"@store\"\nanswer Yes\nclock \"2026-01-02\"\nexpect statement \"open the.store\"\n"
        "expect statements like \"open%\" \"%1%\" \"%2%\"\nexpect statement like \"%1 FROM Item\"\nexpect no statement like \"%3%\"\n"
        "expect printed \"Items.rpt\" \"A1\" \"2026\"\nexpect printed like \"Items%\" \"A%\" \"%\"",
        true);
    EXPECT_TRUE(played.passed) << played.transcript;
    EXPECT_NE(played.transcript.find("statement \"open the.store\"\nstatement \"SELECT 1 FROM Item\"\n"), std::string::npos);
    EXPECT_FALSE(playText("expect statements like \"%2%\" \"%1%\"").passed) << "they came the other way round";
    EXPECT_FALSE(playText("expect no statement like \"%1%\"").passed);
    EXPECT_FALSE(playText("expect printed \"Items.rpt\" \"A1\"").passed);
}

TEST(Play, TheTranscriptTellsEventsInOrder) {
    const Played played = playInShop("answer Yes\nclick cmdAsk\nclick cmdBeep\nprint txtName\nprint chkActive\nprint grdItems\nprint "
                                     "\"done\"\nexpect message \"Delete it?\"");
    EXPECT_EQ(played.transcript,
              "printed \"Items.rpt\" \"A1\" \"2026\"\nopened frmLogin\nclosed frmLogin\nopened frmMain\nopened frmShop\n"
              "asked \"Delete it?\" caption \"Sure?\" icon question buttons YesNo answered Yes\nbeep\ntxtName \"\"\nchkActive off\n"
              "grdItems 0 | Code | Name | Price | On\ngrdItems 1 | A1 | Lamp | $12.50 | 1\ngrdItems 2 | B2 | Candle | $3.00 | 0\n"
              "grdItems 3 | C3 | Bag | ($4.00) | 0\ndone\n");
}

TEST(Play, SeveralScriptsAreCounted) {
    const ScratchFolder folder;
    const auto write = [&](const char* name, const char* text) {
        std::ofstream(folder / name) << text;
        return folder / name;
    };
    ui::play::PlayOptions options;
    options.scripts = {write("good.play", "login \"manager\" \"x\"\n"), write("bad.play", "expect form frmMain\n"),
                       write("unknown.play", "login \"manager\" \"x\"\n\ndance\n"), folder / "missing.play"};
    std::ostringstream out;
    const auto makeHost = [](const auto&) { return std::make_unique<SampleHost>(); };
    EXPECT_EQ(ui::play::runPlays(options, makeHost, out), 1);
    EXPECT_TRUE(out.str().ends_with("\n1 passed, 3 failed\n")) << out.str();
    EXPECT_NE(out.str().find("unknown.play:3: expected a verb, there was dance"), std::string::npos) << out.str();
    options.scripts.resize(1);
    EXPECT_EQ(ui::play::runPlays(options, makeHost, out), 0);
}

// The page that teaches the language and the tables that carry it out must not part.
TEST(Play, ThePageTeachesEveryWord) {
    std::ifstream in("docs/plays.md");
    const std::string page{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    using namespace merchantry::ui::play;
    for (const auto* table : {&fieldVerbs(), &gridVerbs(), &worldVerbs()})
        for (const Entry& verb : *table)
            EXPECT_NE(page.find("`" + std::string(verb.word)), std::string::npos) << verb.form;
    for (const auto* table : {&fieldExpectations(), &gridExpectations(), &worldExpectations()})
        for (const Entry& entry : *table)
            EXPECT_TRUE(page.find("`expect " + std::string(entry.word)) != std::string::npos ||
                        page.find("`" + std::string(entry.word) + "`") != std::string::npos)
                << entry.form;
}

TEST(Play, FilesAreComparedLineByLine) {
    const ScratchFolder folder;
    const auto file = folder / "lines.txt";
    std::ofstream(file, std::ios::binary) << "one\r\n\r\nthree\n";
    const std::string start = "let n = sql \"rows\"\nexpect file \"" + file.string() + "\" ";
    EXPECT_TRUE(playInShop(start + "\"one\" \"\" \"three\"").passed);
    EXPECT_FALSE(playInShop(start + "\"one\" \"\"").passed);
    EXPECT_FALSE(playInShop("expect no file \"" + file.string() + "\"").passed);
}

} // namespace
