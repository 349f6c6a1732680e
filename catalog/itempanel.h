#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/chart.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"

#include <functional>

namespace merchantry::catalog {

// The panel beside the item: its price breaks by tier, its stock over the last year, and its movements with the undo of an adjustment.
// Can be hidden, which is remembered; a hidden panel asks the store nothing. A member of the item's screen, which tells it when there is
// something new to show.
class ItemPanel {
public:
    explicit ItemPanel(ui::Form& form);

    ui::Item item();
    // Shows what the store has of the current item, if anybody looks.
    void refresh();
    // Only the picture of the prices; the movement that is chosen stays chosen.
    void pricesChanged();
    void toggle();
    bool shown() const { return fraPanel.visible(); }
    // Lets go of the rows, before the screen is left.
    void release();

    // After the stock was moved: the screen populates itself anew, and so refreshes this.
    std::function<void()> moved;

    ui::Button cmdPanel; // shows and hides it; stands on the screen

private:
    static constexpr ui::Twips kWidth = 460 * ui::kTwipsPerPixel;
    void present(bool on);
    void showPrices();
    void showStock();
    void showMovements();
    void cmdUndo_Click();
    void choose();

    ui::Form& form_;
    ui::Frame fraPanel;
    ui::Chart chtPrices;
    ui::Chart chtStock;
    ui::Grid grdLedger;
    ui::Button cmdHidePanel;
    ui::Button cmdUndo;
    db::RecordsetPtr movements_;
    ui::Twips gained_ = kWidth; // by which the window grew for the panel; less where the screen ends
};

} // namespace merchantry::catalog
