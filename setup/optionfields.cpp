#include "setup/optionfields.h"

#include "base/numbers.h"
#include "base/text.h"

#include <cmath>

namespace merchantry::setup {
namespace {

using Check = OptionCheck;
constexpr const char* kForm = kOptionsTag;

// clang-format off
constexpr OptionField kFields[] = {
    // General Options
    {"cbxCustData", "ReqCustDataTOS", nullptr, nullptr, Check::None, "cbxCustData_Click", kForm},
    {"cbxRegGrid", "GridLocked", nullptr, nullptr, Check::None, "cbxRegGrid_Click", kForm},
    {"cbxItemSerial", "ReqSerialTOS", nullptr, nullptr, Check::None, "cbxItemSerial_Click", kForm},
    {"cbxItemSerialRec", "ReqSerREC", nullptr, nullptr, Check::None, "cbxItemSerialRec_Click", kForm},
    {"cbxBackOrder", "BackOrderEnable", nullptr, nullptr, Check::None, "cbxBackOrder_Click", kForm},
    {"cbxLogOff", "LogoffPostSale", "LogOffPostSale", nullptr, Check::None, "cbxLogOff_Click", kForm},
    {"cbxRec", "RecptPrintPostSale", nullptr, nullptr, Check::None, "cbxRec_Click", kForm},
    {"optTax", "TaxStatus", nullptr, nullptr, Check::None, "optTax_Click", kForm},
    {"txtVAT", "VatNo", "VATNo", nullptr, Check::None, "txtVat_Update", kForm},
    {"txtMgrOverride", "MgrOverride", nullptr, nullptr, Check::None, "txtMgrOverride", kForm},
    {"lbxQB", "QBVer", "QBver", nullptr, Check::None, "lbxQB_Click", kForm},
    // Store Info
    {"txtName", "Name", nullptr, nullptr, Check::Name, "txtName", kForm},
    {"txtAddress1", "Address1", nullptr, nullptr, Check::None, "txtAddress1_Update", kForm},
    {"txtAddress2", "Address2", nullptr, nullptr, Check::None, "txtAddress2_Update", kForm},
    {"txtAddress3", "Address3", nullptr, nullptr, Check::None, "txtAddress3_Update", kForm},
    {"txtCity", "City", nullptr, nullptr, Check::None, "txtCity_Update", kForm},
    {"lbxState", "State", nullptr, nullptr, Check::None, "lbxState_Update", kForm},
    {"txtZip", "Zip", nullptr, nullptr, Check::None, "txtZip_Update", kForm},
    {"txtPhone", "Phone", nullptr, nullptr, Check::None, "txtPhone_Update", kForm},
    {"txtFax", "Fax", nullptr, nullptr, Check::None, "txtFax_Update", kForm},
    {"txtEmail", "Email", nullptr, nullptr, Check::None, "txtEmail_Update", kForm},
    // Store Credit
    {"cboBillingCycle", "ReminderPrior", nullptr, "5", Check::None, "cboBillingCycle_Click", kForm},
    {"cboGracePeriod", "OverdueAfter", nullptr, "15", Check::None, "cboGracePeriod_Click", kForm},
    {"txtAPR", "FinAPR", nullptr, "20", Check::Percent, "txtAPR_LostFocus", "txtAPR"},
    {"txtMinFinChg", "MinFinChg", nullptr, "5", Check::AtMost100, "txtMinFinChg", kForm},
    {"chkFinCharge", "FinChargeDefault", nullptr, "1", Check::None, "chkFinCharge_Click", kForm},
    // Layaway
    {"txtPeriod", "LayawayPeriod", nullptr, "90", Check::Whole, "txtMinFinChg_LostFocus", "txtPeriod"},
    {"txtDeposit", "MinDepositPct", nullptr, "10", Check::Percent, "txtDeposit_LostFocus", "txtDeposit"},
    {"txtMinDeposit", "MinDepositAmt", nullptr, "20", Check::Amount, "txtMinFinChg_LostFocus", "txtMinFinChg"},
    {"chkPrintTickets", "PrintTickets", nullptr, "0", Check::None, "chkPrintTickets_Click", kForm},
    {"chkCommitItems", "CommitItems", nullptr, "1", Check::None, "chkCommitItems_Click", kForm},
    // PC Charge
    {"cbxPCCHG", "PCChg", nullptr, nullptr, Check::None, "cbxPCCHG_Click", kForm},
    {"txtPCCHG", "PCCHGPath", "PCChgPath", nullptr, Check::None, "txtPCCHG_LostFocus", kForm},
    {"PCChgMerch", "PCChgMerch", nullptr, nullptr, Check::None, "PCChgMerch_Click", kForm},
    {"PCChgMerchActNum", "PCChgMerchActNum", nullptr, nullptr, Check::None, "PCChgMerchActNum_LostFocus", kForm},
    {"PCChgPinPadCom", "PCChgPinPadCom", nullptr, nullptr, Check::Port, "PCChgPinPadCom_LostFocus", kForm},
    // Gift Vouchers
    {"txtGVExpiration", "GiftExpire", nullptr, nullptr, Check::Whole, "txtGVExpiration_LostFocus", "frmOptions"},
};
// clang-format on

bool isGood(Check check, const std::string& entry) {
    if (check == Check::None)
        return true;
    if (check == Check::Name)
        return !trimmed(entry).empty();
    const std::optional<double> number = numberOf(entry);
    if (!number)
        return false;
    switch (check) {
    case Check::Percent:
        return *number >= 0 && *number <= 100;
    case Check::AtMost100:
        return *number <= 100;
    case Check::Amount:
        return *number >= 0;
    case Check::Whole:
        return *number >= 0 && *number == std::floor(*number);
    default:
        return *number >= 1;
    }
}

const char* sentenceFor(Check check) {
    switch (check) {
    case Check::Name:
        return "Please enter a name for your store!";
    case Check::Percent:
        return "Please enter a positive value for this field <= 100!";
    case Check::AtMost100:
        return "Please enter a positive value for this field! <= 100";
    case Check::Amount:
        return "Please enter a positive value for this field";
    case Check::Whole:
        return "Please enter a positive integral value for this field";
    case Check::Port:
        return "Please enter a valid com port number or leave the default of 1.";
    case Check::None:
        break;
    }
    return "";
}

} // namespace

std::span<const OptionField> optionFields() {
    return kFields;
}

std::string complaintAbout(OptionCheck check, const std::string& entry) {
    return isGood(check, entry) ? "" : sentenceFor(check);
}

std::optional<std::string> afterWrong(OptionCheck check) {
    if (check == Check::AtMost100 || check == Check::Port)
        return "1";
    return {};
}

Value storedValue(OptionCheck check, const std::string& entry) {
    switch (check) {
    case Check::Percent:
    case Check::Whole:
        return std::abs(*numberOf(entry));
    case Check::AtMost100:
    case Check::Amount: {
        const Currency amount = *amountOf(entry);
        return amount < Currency() ? -amount : amount;
    }
    default:
        return std::string(trimmed(entry));
    }
}

} // namespace merchantry::setup
