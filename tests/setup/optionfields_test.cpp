#include "setup/optionfields.h"

#include "app/storefile.h"
#include "programs/storehost.h"
#include "tests/scratchfolder.h"
#include "ui/play/player.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace merchantry::setup {
namespace {

constexpr const char* kPercent = "Please enter a positive value for this field <= 100!";
constexpr const char* kCharge = "Please enter a positive value for this field! <= 100";
constexpr const char* kAmount = "Please enter a positive value for this field";
constexpr const char* kWhole = "Please enter a positive integral value for this field";
constexpr const char* kPort = "Please enter a valid com port number or leave the default of 1.";

// What a user does in a field, and what the column holds or which sentence is said after it. The entry of a box, a list's choice, or on or
// off. A sentence: nothing is written. What the field shows then, when that is not the entry.
struct Case {
    const char* control;
    const char* entry;
    const char* holds;
    const char* says = "";
    const char* shows = nullptr;
};

// By page, in the order of the window.
const std::pair<const char*, std::vector<Case>> kPages[] = {
    {"General Options",
     {{"cbxCustData", "on", "1"},
      {"cbxRegGrid", "on", "1"},
      {"cbxItemSerial", "on", "1"},
      {"cbxItemSerialRec", "on", "1"},
      {"cbxBackOrder", "on", "1"},
      {"cbxLogOff", "on", "1"},
      {"cbxRec", "off", "0"},
      {"cbxRec", "on", "1"},
      {"txtVAT", " DE 123 ", "DE 123"},
      {"txtMgrOverride", " 42 ", "42"},
      {"lbxQB", "2002", "2002"},
      {"lbxQB", "2003", "2003"}}},
    {"Store Info",
     {{"txtName", "Hearth & Home", "Hearth & Home"},
      {"txtName", "", "Hearth & Home", "Please enter a name for your store!"},
      {"txtName", "O'Hara's ", "O'Hara's"},
      {"txtAddress1", " 1 Main St", "1 Main St"},
      {"txtAddress2", "Rear", "Rear"},
      {"txtAddress3", "Floor 2", "Floor 2"},
      {"txtCity", "Akron", "Akron"},
      {"txtCity", "", ""},
      {"lbxState", "AS", "AS"},
      {"lbxState", "WV", "WV"},
      {"txtZip", "44301", "44301"},
      {"txtPhone", "5551234567", "(555) 123-4567", "", "(555) 123-4567"},
      {"txtPhone", "+49 89 1234 x5", "+49 89 1234 x5"},
      {"txtPhone", "", ""},
      {"txtFax", " 12 ", "12"},
      {"txtEmail", "a@b.c", "a@b.c"}}},
    {"Store Credit",
     {{"cboBillingCycle", "25", "25"},
      {"cboGracePeriod", "0", "0"},
      {"txtAPR", "100", "100"},
      {"txtAPR", "100.01", "100", kPercent},
      {"txtAPR", "-1", "100", kPercent},
      {"txtAPR", "", "100", kPercent},
      {"txtAPR", "much", "100", kPercent},
      {"txtAPR", "12.75", "12.75"},
      {"txtMinFinChg", "100", "100"},
      {"txtMinFinChg", "100.01", "100", kCharge, "1"},
      {"txtMinFinChg", "", "100", kCharge, "1"},
      {"txtMinFinChg", "-2.5", "2.5"},
      {"chkFinCharge", "off", "0"},
      {"chkFinCharge", "on", "1"}}},
    {"Layaway",
     {{"txtPeriod", "30", "30"},
      {"txtPeriod", "1.5", "30", kWhole},
      {"txtPeriod", "-1", "30", kWhole},
      {"txtPeriod", "", "30", kWhole},
      {"txtPeriod", "0", "0"},
      {"txtDeposit", "100", "100"},
      {"txtDeposit", "101", "100", kPercent},
      {"txtDeposit", "0", "0"},
      {"txtMinDeposit", "1,250.75", "1250.75"},
      {"txtMinDeposit", "-1", "1250.75", kAmount},
      {"txtMinDeposit", "x", "1250.75", kAmount},
      {"txtMinDeposit", "0.1", "0.1"},
      {"chkPrintTickets", "on", "1"},
      {"chkCommitItems", "off", "0"}}},
    {"PC Charge",
     {{"cbxPCCHG", "on", "1"},
      {"txtPCCHG", "C:\\Charge", "C:\\Charge"},
      {"PCChgMerch", "VISA", "VISA"},
      {"PCChgMerch", "FDCN", "FDCN"},
      {"PCChgMerchActNum", "4111 222", "4111 222"},
      {"PCChgPinPadCom", "3", "3"},
      {"PCChgPinPadCom", "0", "3", kPort, "1"}}},
    {"Gift Vouchers",
     {{"txtGVExpiration", "", "NULL", ""},
      {"txtGVExpiration", "7.5", "NULL", kWhole},
      {"txtGVExpiration", "365", "365"},
      {"txtGVExpiration", "", "365", kWhole}}},
};

const OptionField& fieldOf(const std::string& control) {
    for (const OptionField& field : optionFields())
        if (control == field.control)
            return field;
    throw std::invalid_argument(control + " is not in the table");
}

std::string quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '\\' || c == '"' ? std::string("\\") + c : std::string(1, c);
    return quoted + "\"";
}

bool isFlag(const std::string& entry) {
    return entry == "on" || entry == "off";
}

std::string doing(const Case& one) {
    const std::string control = one.control;
    if (isFlag(one.entry))
        return "check " + control + " " + one.entry;
    if (control.starts_with("lbx") || control.starts_with("cbo") || control == "PCChgMerch")
        return "pick " + control + " " + quoted(one.entry);
    return "type " + control + " " + quoted(one.entry) + "\nleave " + control;
}

// The case as a script; a wrong entry is put right again, since the field keeps the user.
std::string scriptOf(const Case& one) {
    const std::string select = quoted(std::string("SELECT ") + fieldOf(one.control).column + " FROM StoreOptions");
    std::string script = doing(one) + "\n";
    script += *one.says == '\0' ? "expect no message\n" : "expect message " + quoted(one.says) + "\n";
    script += "expect sql " + select + " " + quoted(one.holds) + "\n";
    if (one.shows != nullptr)
        script += std::string("expect ") + one.control + " " + quoted(one.shows) + "\n";
    if (*one.says != '\0' && fieldOf(one.control).check != OptionCheck::Name)
        script += std::string("expect focus ") + one.control + "\n";
    return script;
}

} // namespace

TEST(OptionFields, EveryFieldHoldsWhatWasTypedOrSaysWhyNot) {
    const ScratchFolder folder;
    const std::filesystem::path store = folder / "empty.store";
    const std::filesystem::path script = folder / "options.play";
    app::createStoreFile(store, {}, [](int) {});
    std::ofstream out(script);
    out << "login \"manager\" \"manager\"\ncommand mnuStoreGeneraloptions\n";
    std::set<std::string> seen{"optTax"}; // its two buttons have a play of their own
    for (const auto& [page, cases] : kPages) {
        out << "tab tabOptions " << quoted(page) << "\n";
        for (const Case& one : cases) {
            out << scriptOf(one);
            seen.insert(one.control);
        }
    }
    out.close();
    std::ostringstream transcript;
    ui::play::PlayOptions options;
    options.scripts = {script};
    EXPECT_EQ(ui::play::runPlays(
                  options, [&](const auto&) { return std::make_unique<programs::StoreHost>(store, true); }, transcript),
              0)
        << transcript.str();
    for (const OptionField& field : optionFields())
        EXPECT_TRUE(seen.contains(field.control)) << field.control << " is tried nowhere";
}

} // namespace merchantry::setup
