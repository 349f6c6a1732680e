#pragma once

#include "app/db/sql.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"

#include <cstdint>

namespace merchantry::customers {

// The panel beside a customer: the age of what is open, the last sales and what was paid last. Hidden at first unless it was left shown; a
// hidden one asks the store nothing. A member of the customer's screen, which tells it whose account it is.
class AccountPanel {
public:
    explicit AccountPanel(ui::Form& form);

    ui::Item item();
    // Reads the account of the customer, if anybody looks.
    void refresh(std::int32_t customer);
    void toggle();

private:
    static constexpr ui::Twips kWidth = 340 * ui::kTwipsPerPixel;
    void showAges();
    void showLast(ui::Grid& grid, const db::Sql& select);

    ui::Form& form_;
    ui::Frame fraPanel;
    ui::Grid grdAges;
    ui::Grid grdSales;
    ui::Grid grdPayments;
    std::int32_t customer_ = 0;
    ui::Twips gained_ = kWidth; // by which the window grew for the panel; less where the screen ends
};

} // namespace merchantry::customers
