#include "purchasing/frmOtherCost.h"

#include "app/failure.h"
#include "app/titles.h"
#include "base/numbers.h"
#include "purchasing/openlines.h"
#include "ui/desk.h"

#include <cctype>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

constexpr int kDescriptionLength = 255;

// Digits behind the point beyond the cents, or an exponent that makes less than a cent.
bool tooFine(const std::string& text, Currency amount) {
    const std::size_t point = text.find('.');
    std::size_t digits = 0;
    if (point != std::string::npos)
        while (point + 1 + digits < text.size() && std::isdigit(static_cast<unsigned char>(text[point + 1 + digits])) != 0)
            ++digits;
    return digits > 2 || amount.rounded(2) != amount;
}

} // namespace

frmOtherCost::frmOtherCost(Desk& desk) : Form(desk, "frmOtherCost", "Receive Purchase Order") {
    setIcon("items");
    txtAmount.alignRight = true;
    txtDesc.maxLength = kDescriptionLength;
    for (TextBox* box : {&txtAmount, &txtDesc})
        box->gotFocus = [box] { box->selectAll(); };
    txtAmount.setToolTip(
        "A number with at most two decimals. A negative one is a rebate: it is spread too, but not kept with the order as a cost.");
    txtDesc.setToolTip("What the costs are for, such as Freight");
    lblWarning.setForeColor(Color::Red);
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;
    txtDesc.change = [this] { txtDesc_Change(); };
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        at(lblNote),
        fields({field("&Amount:", txtAmount).wide(14), field("&Description:", txtDesc).wide(40)}),
        at(lblWarning),
        stretch(),
        buttons({stretch(), at(cmdCancel), at(cmdOK)}),
    }));
}

void frmOtherCost::Form_Load() {
    lblHeading.setCaption("Other Costs - PO No. " + std::to_string(PONumber));
    txtAmount.setText(OtherCost.toText());
    txtDesc.setText(Description);
}

// The description goes into the statement as it is.
void frmOtherCost::txtDesc_Change() {
    lblWarning.setCaption(breaksStatement(txtDesc.text()) ? "An apostrophe makes the posting fail and the program end, with nothing booked."
                                                          : "");
}

bool frmOtherCost::refused(const char* message) {
    desk().message(message, kProduct);
    txtAmount.setFocus();
    return true;
}

void frmOtherCost::cmdOK_Click() {
    guarded({"frmOtherCost", "cmdOK_Click"}, [this] {
        const std::string& text = txtAmount.text();
        const auto amount = amountOf(text);
        if (!amount && refused("Amount must be numeric."))
            return;
        if (tooFine(text, *amount) && refused("Too many decimal digits."))
            return;
        OtherCost = *amount;
        Description = txtDesc.text();
        DialogResult = true;
        unload();
    });
}

} // namespace merchantry::purchasing
