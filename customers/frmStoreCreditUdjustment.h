#pragma once

#include "base/currency.h"
#include "customers/opentransactions.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>
#include <functional>

namespace merchantry::customers {

// One customer's account: posts an adjustment to it, and applies open credits to open debits.
class frmStoreCreditUdjustment : public ui::Form {
public:
    explicit frmStoreCreditUdjustment(ui::Desk& desk);

    // What the customer owes; 0 when there is no such customer.
    Currency GetCustomerBalance(std::int32_t customer);
    // Opens a batch, and takes the highest number for it.
    void AddBatch();
    void CloseBatch();

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void fillCodes();
    void fillCustomers();
    void chooseCustomer();
    void loadTransactions();
    bool hasCustomer();
    void cmdPostAdjustment_Click();
    void postAdjustment(Currency amount);
    void cmdPostApplAmounts_Click();
    void cmdAutoApply_Click();
    void postApplied();
    bool PostAppliedRow(const OpenTransactions::Applied& applied); // false when it was said why not
    bool hasBatch();
    bool postedWhole(const std::function<void()>& post);
    void cmdDetail_Click();
    void cmdAddCode_Click();
    void showDetail();

    ui::Label lblHeading{*this, "lblHeading", "Store Credit Adjustment"};
    ui::ComboBox cbCustomers{*this, "cbCustomers"};
    ui::TextBox txtOutBalance{*this, "txtOutBalance"};
    ui::TextBox txtDebits{*this, "txtDebits"};
    ui::TextBox txtCredits{*this, "txtCredits"};
    OpenTransactions open_{*this};
    ui::Button cmdDetail{*this, "cmdDetail", "&Details..."};
    ui::Button mdClearAll{*this, "mdClearAll", "C&lear All"};
    ui::Button cmdAutoApply{*this, "cmdAutoApply", "A&uto Apply"};
    ui::Button cmdPostApplAmounts{*this, "cmdPostApplAmounts", "&Post Applied Amounts"};
    ui::TextBox txtAmount{*this, "txtAmount"};
    ui::ComboBox cbCreditCodes{*this, "cbCreditCodes"};
    ui::Button cmdAddCode{*this, "cmdAddCode", "&Codes..."};
    ui::Button cmdPostAdjustment{*this, "cmdPostAdjustment", "Post Ad&justment"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    std::int32_t CustomerID = -1; // none chosen
    std::int16_t StoreId = 1;
    std::int16_t CashierId = 5;
    int customerCount_ = 0;
    std::int32_t BatchNumber = -1; // none open
    bool activated_ = false;
};

} // namespace merchantry::customers
