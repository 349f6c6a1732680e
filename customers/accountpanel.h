#pragma once

#include "app/db/tsql/sql.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"

#include <cstdint>

namespace merchantry::customers {

// The panel beside a customer: the age of what is open, the last sales and what was paid last. Hidden at first unless it was left shown; a
// hidden one asks the store nothing. Where the window has no room for both, it stands instead of the customer's fields. A member of the
// customer's screen, which tells it whose account it is.
class AccountPanel {
public:
    // The frame holds all that gives way to the panel.
    AccountPanel(ui::Form& form, ui::Frame& fields);

    ui::Item item();
    // Reads the account of the customer, if anybody looks.
    void refresh(std::int32_t customer);
    void toggle();
    // After the window got another size.
    void arrange();

private:
    static constexpr ui::Twips kWidth = 340 * ui::kTwipsPerPixel;
    static constexpr ui::Twips kBoth = 1200 * ui::kTwipsPerPixel; // the least width for fields and panel side by side
    void showAges();
    void showLast(ui::Grid& grid, const db::Sql& select);

    ui::Form& form_;
    ui::Frame& fields_;
    ui::Frame fraPanel;
    ui::Grid grdAges;
    ui::Grid grdSales;
    ui::Grid grdPayments;
    std::int32_t customer_ = 0;
    ui::Control* held_ = nullptr; // had the focus before the panel was shown
    ui::Twips gained_ = kWidth;   // by which the window grew for the panel; less where the screen ends
};

} // namespace merchantry::customers
