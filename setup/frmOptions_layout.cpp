#include "setup/frmOptions.h"

// How the options stand on the window, but for the pages that are classes of their own.
namespace merchantry::setup {

using namespace ui;

void frmOptions::buildLayout() {
    setLayout(column({
        title(lblHeading),
        pages(tabOptions, {generalPage(), storePage(), customFields_.item(), creditPage(), layawayPage(), charge_.item(), voucherPage()}),
        buttons({stretch(), note("Every field is saved as you leave it"), at(cmdExit)}),
    }));
}

Item frmOptions::generalPage() {
    return column({
        row({
            box("Sales", column({at(cbxCustData), at(cbxRegGrid), at(cbxItemSerial), at(cbxItemSerialRec), at(cbxBackOrder), at(cbxLogOff),
                                 at(cbxRec)}))
                .stretched(),
            group(fraTax, column({at(optTax), at(Option1), fields({field(lblVAT, txtVAT).wide(20)})})).stretched(),
        }),
        fields({
            field("Manage &Override Code:", txtMgrOverride, {at(cmdShowOverride)}).wide(24),
            field("&Quickbooks Version:", lbxQB).wide(12),
        }),
    });
}

Item frmOptions::storePage() {
    return column({
        fields({field(lblName, txtName).wide(48)}),
        row({
            box("Address", fields({
                               field(lblAddress1, txtAddress1),
                               field("Address &2:", txtAddress2),
                               field("Address &3:", txtAddress3),
                               field(lblCity, txtCity),
                               field(lblState, lbxState).wide(10),
                               field(lblZip, txtZip).wide(10),
                           }))
                .stretched(),
            box("Contact", fields({
                               field(lblPhone, txtPhone),
                               field("&Fax:", txtFax),
                               field("&Email:", txtEmail),
                           }))
                .stretched(),
        }),
        at(lblIncomplete),
    });
}

Item frmOptions::creditPage() {
    return fields({
        field("&Billing Cycle", cboBillingCycle, {note("day of the month")}).wide(10),
        field("&Grace Period (Default)", cboGracePeriod, {note("days")}).wide(10),
        field("&APR (Default)", txtAPR, {note("percent a year")}).wide(10),
        field("&Minimum Finance Charge", txtMinFinChg).wide(10),
        at(chkFinCharge),
    });
}

Item frmOptions::layawayPage() {
    return fields({
        field("Layaway &Period", txtPeriod, {note("days")}).wide(10),
        field("&Required Deposit", txtDeposit, {note("percent")}).wide(10),
        field("&Minimum Deposit", txtMinDeposit).wide(10),
        at(chkPrintTickets),
        at(chkCommitItems),
    });
}

Item frmOptions::voucherPage() {
    return column({
        fields({field("Expi&ration", txtGVExpiration, {at(lblDays)}).wide(10)}),
        at(lblVoucherNote),
    });
}

} // namespace merchantry::setup
