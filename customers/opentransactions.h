#pragma once

#include "base/currency.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::customers {

// The grid of what is open on a customer's account, with its totals. The column of applied amounts is a scratch pad until it is posted.
class OpenTransactions {
public:
    explicit OpenTransactions(ui::Form& form);

    ui::Item item();
    ui::Item totals();

    struct Sums {
        Currency debits;
        Currency credits;
    };
    // Shows what is open, with nothing applied. Throws DbError.
    Sums load(std::int32_t customer);
    void clearApplied();
    // Applies credits to debits: each credit, from the top of the list, takes the first debits that are left.
    void proposePairs();
    // Whether what is applied can be posted: no more than is open, in sum nothing, no amount with the wrong sign. Says what does not fit.
    bool appliedFits();
    bool signsFit();

    struct Applied {
        std::int64_t number; // of the transaction
        Currency amount;
    };
    std::vector<Applied> applied() const;
    // The number of the transaction that is marked; empty for none.
    std::string marked() const;

private:
    void showTotals(Currency total, Currency open);
    void showApplied();
    void grdTrans_AfterEdit(int row, int column);
    bool appliedWithinOpen(Currency& sum);
    bool anyFractions() const;
    Currency amountAt(int row, int column) const;
    Currency GetAppliedAmount(int row) const;
    void ApplyPair(int credit, int debit, Currency amount);
    void say(const std::string& words, const std::string& title);

    ui::Grid grdTrans;
    ui::Label lbTotalTA;
    ui::Label lbTotalBA;
    ui::Label lbTotalAA;

    bool autoApply_ = false; // pairs were proposed once
};

} // namespace merchantry::customers
