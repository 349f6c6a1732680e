#include "customers/frmCreditAdjCodes.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/text.h"
#include "base/textorder.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmCreditAdjCodes";
constexpr const char* kNewCode = "Credit Adjustment Code";
constexpr const char* kOther = "Other";
constexpr int kCode = 1;
constexpr int kApplicationId = 2;
constexpr std::size_t kCodeRoom = 25; // characters
constexpr std::size_t kDescriptionRoom = 255;

// The next free key, a 16-bit number. Throws when there is no code at all.
Value nextKey() {
    const Value key = (*openDirect("SELECT MAX(CreditID)+1 FROM CreditCodes"))[0].Value();
    if (key.isNull())
        throw RunTimeError(94, "Invalid use of Null");
    return std::int64_t{key.toInt16()};
}

} // namespace

frmCreditAdjCodes::frmCreditAdjCodes(Desk& desk) : Form(desk, "frmCreditAdjCodes", "Credit Adjustment Codes") {
    setIcon("items");
    grdCodes.setColumns({{.heading = "ID", .hidden = true}, {.heading = "Code", .width = 2500}, {.heading = "Description", .width = 5200}});
    grdCodes.emptyText = "No codes could be loaded.";
    grdCodes.setToolTip("Type over a code or its description to change it. \"Other\" and \"application\" stand as they are.");
    cmdDelete.isDanger = true;
    CmdExit.isCancel = true;

    grdCodes.validateEdit = [this](int, int column, const std::string& text, bool& cancel) {
        const std::size_t room = column == kCode ? kCodeRoom : kDescriptionRoom;
        cancel = characterCount(text) > room;
        if (cancel)
            this->desk().message((column == kCode ? "A code has room for " : "A description has room for ") + std::to_string(room) +
                                     " characters; these are " + std::to_string(characterCount(text)) + ". Please shorten it.",
                                 kProduct);
    };
    grdCodes.endEdit = [](int, int, std::string& text) { text = trimmed(text).empty() ? kNewCode : text; };
    cmdAdd.click = [this] { codes_.add(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    CmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdCodes).high(10).wide(72).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each text is saved as you leave its cell"), at(CmdExit)}),
    }));
}

// The code under which credits are applied to debits, which the store must have.
bool frmCreditAdjCodes::isApplication(int row) const {
    return codes_.key(row) == kApplicationId;
}

CodeTable frmCreditAdjCodes::table() {
    return {.procedure = "bsp_CreditAdjCodes",
            .newRow =
                [] {
                    return std::vector<Value>{nextKey(), std::string(kNewCode)};
                },
            .fixed = [this](int row) { return grdCodes.text(row, kCode) == kOther || isApplication(row); },
            .stays = [](int) { return false; }, // asked before the question
            .question = "Are you certain you wish to delete this Credit Adjustment Code?",
            .questionCaption = "Delete Credit Adjustment Code?",
            .loading = {kTag, "Form_Load"},
            .adding = {kTag, "Add Credit Code"},
            .removing = {.tag = kTag, .procedure = "Delete_Click", .plain = "The code was not deleted."}};
}

void frmCreditAdjCodes::Form_Load() {
    codes_.load();
}

void frmCreditAdjCodes::Form_Unload(bool& /*cancel*/) {
    codes_.release();
}

void frmCreditAdjCodes::cmdDelete_Click() {
    const int row = grdCodes.row();
    if (grdCodes.selected() && (sameText(grdCodes.text(row, kCode), kOther) || isApplication(row)))
        desk().message("That Credit Adjustment Code cannot be deleted!", kProduct);
    else
        codes_.remove();
}

} // namespace merchantry::customers
