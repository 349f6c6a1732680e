#include "customers/accountterms.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/currency.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/desk.h"

#include <cmath>
#include <memory>
#include <string>

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

// The amount of a text as currency; an empty text and what is no amount stay.
void showAsCurrency(TextBox& box) {
    if (const auto amount = amountOf(box.text()))
        box.setText(amount->toDisplay());
}

// What a term of the account can be, and what is said of anything else.
struct Term {
    enum class Kind { Money, Percent, Days };
    const char* noNumber;
    const char* outside;
    Kind kind;
};

bool isWithin(double number, Term::Kind kind) {
    constexpr double kMostMoney = 999'999'999.99;
    constexpr double kMostPercent = 100;
    constexpr double kMostDays = 9'999;
    const double most = kind == Term::Kind::Money ? kMostMoney : kind == Term::Kind::Percent ? kMostPercent : kMostDays;
    return number >= 0 && number <= most && (kind != Term::Kind::Days || number == std::floor(number));
}

// Null for what the term can be.
const char* refusalOf(const std::string& text, const Term& term) {
    const auto number = numberOf(text);
    return !number ? term.noNumber : isWithin(*number, term.kind) ? nullptr : term.outside;
}

// As the field is left. One that is empty as the store has it can be passed: the store's own terms count then.
void checkAsLeft(TextBox& box, const Term& term) {
    const auto before = std::make_shared<std::string>();
    box.gotFocus = [&box, before] {
        *before = box.text();
        box.selectAll();
    };
    box.validate = [&box, term, before](bool& cancel) {
        const char* refusal = box.text().empty() && before->empty() ? nullptr : refusalOf(box.text(), term);
        cancel = refusal != nullptr;
        if (cancel)
            box.form().desk().message(refusal, kProduct);
        else if (term.kind == Term::Kind::Money)
            showAsCurrency(box);
    };
}

} // namespace

AccountTerms::AccountTerms(Form& form)
    : chkCharge(form, "chkCharge", "Charge Account"), chkFinCharge(form, "chkFinCharge", "Assess Finance Charge"),
      lblCreditLimitT(form, "lblCreditLimitT", "Credit Limit:"), txtCreditLimit(form, "txtCreditLimit"),
      lblAcctBalanceT(form, "lblAcctBalanceT", "Account Balance:"), txtAcctBalance(form, "txtAcctBalance"),
      lblAPRT(form, "lblAPRT", "APR:"), txtAPR(form, "txtAPR"), lblMinFinChgT(form, "lblMinFinChgT", "Min. Finance Charge:"),
      txtMinFinChg(form, "txtMinFinChg"), lblGracePeriodT(form, "lblGracePeriodT", "Grace Period:"),
      txtGracePeriod(form, "txtGracePeriod") {
    chkCharge.dataField = "ChargeAccount";
    chkFinCharge.dataField = "AssessFinanceCharges";
    txtCreditLimit.dataField = "AccountLimit";
    txtAcctBalance.dataField = "Balance";
    txtAPR.dataField = "APR";
    txtMinFinChg.dataField = "MinFinChg";
    txtGracePeriod.dataField = "OverdueAfter";
    for (TextBox* box : {&txtCreditLimit, &txtAcctBalance, &txtAPR, &txtMinFinChg, &txtGracePeriod})
        box->alignRight = true;
    txtAcctBalance.setLocked(true);
    txtGracePeriod.setToolTip("Days after the due day.");
    txtAPR.setToolTip("Percent a year.");
    txtAcctBalance.setToolTip("The sum of what is open; Store Credit Adjustment changes it.");
    checkAsLeft(txtCreditLimit,
                {"You must enter a cedit limit amount", "A credit limit is an amount from $0.00 to $999,999,999.99.", Term::Kind::Money});
    checkAsLeft(txtAPR, {"You must enter a valid APR", "An APR is a percentage from 0 to 100.", Term::Kind::Percent});
    checkAsLeft(txtGracePeriod,
                {"You must enter a valid Grace Period", "A grace period is a whole number of days, from 0 to 9,999.", Term::Kind::Days});
    checkAsLeft(txtMinFinChg, {"You must enter a valid minimum finance charge",
                               "A minimum finance charge is an amount from $0.00 to $999,999,999.99.", Term::Kind::Money});
}

Item AccountTerms::item() {
    return box("Account",
               row({column({fields({field(lblCreditLimitT, txtCreditLimit), field(lblAcctBalanceT, txtAcctBalance)}), at(chkFinCharge)}),
                    fields({field(lblAPRT, txtAPR), field(lblMinFinChgT, txtMinFinChg), field(lblGracePeriodT, txtGracePeriod)})}));
}

void AccountTerms::enable() {
    Control* const terms[] = {&chkFinCharge, &lblCreditLimitT, &txtCreditLimit, &txtAcctBalance,  &lblAcctBalanceT, &lblAPRT,
                              &txtAPR,       &lblMinFinChgT,   &txtMinFinChg,   &lblGracePeriodT, &txtGracePeriod};
    for (Control* control : terms)
        control->setEnabled(chkCharge.value());
}

void AccountTerms::loadDefaults(std::int32_t customer) {
    const auto options = openDirect(Sql("bsp_GetStoreCreditOptions 1, ") + customer);
    const auto given = [&](const char* column) { return !options->Eof() && !(*options)[column].isNull(); };
    const std::int16_t finCharge = given("FinChargeDefault") ? (*options)["FinChargeDefault"].Value().toInt16() : std::int16_t{1};
    const double apr = given("FinAPR") ? (*options)["FinAPR"].Value().toNumber() : 20;
    const std::int16_t overdue = given("OverdueAfter") ? (*options)["OverdueAfter"].Value().toInt16() : std::int16_t{15};
    const double minFinChg = given("MinFinChg") ? (*options)["MinFinChg"].Value().toNumber() : 5;
    chkFinCharge.setValue(finCharge != 0);
    if (txtAPR.text().empty())
        txtAPR.setText(Value(apr).toText());
    if (txtGracePeriod.text().empty())
        txtGracePeriod.setText(std::to_string(overdue));
    if (txtMinFinChg.text().empty())
        txtMinFinChg.setText(Currency::fromDouble(minFinChg).toDisplay());
}

void AccountTerms::showAmounts(DataControl& data) {
    for (TextBox* box : {&txtCreditLimit, &txtAcctBalance, &txtMinFinChg})
        if (!data.isChanged(*box)) {
            showAsCurrency(*box);
            data.settle(*box);
        }
}

} // namespace merchantry::customers
