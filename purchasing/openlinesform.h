#pragma once

#include "purchasing/openlines.h"
#include "purchasing/supplierframe.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <cstdint>
#include <functional>
#include <string>

namespace merchantry::purchasing {

// What frmPurchaseOrders_Recv and frmPOCancel share: the open lines of one order, each with the quantity that is posted of it. Set the
// members, show it modally, read DialogResult.
class OpenLinesForm : public ui::Form {
public:
    std::int32_t PONumber = 0;
    std::int16_t SupplierID = 0;
    bool DialogResult = false; // something was posted

protected:
    // What is named otherwise in each: the texts, and where the grid shows the quantity to post.
    struct Words {
        const char* tag;
        const char* heading;   // the order's number goes behind it
        const char* operation; // offered to scripts: takes the order's number, "True" when something was posted
        const char* nothing;   // said when no line has a quantity to post
    };
    struct Columns {
        int quantity;
        int extended;
        int index; // hidden
    };
    OpenLinesForm(ui::Desk& desk, const char* name, const char* caption, const char* cancelCaption, const Words& words, Columns columns);

    void Form_Load() override;
    // Reads the order's lines and shows them.
    virtual void loadLines() = 0;
    virtual void showTotals() = 0;
    // The line of a data row; nothing for the heading or no row.
    virtual OpenLine* lineAt(int row) = 0;
    // Nothing of the line of this row is posted.
    virtual void clearLine(int row) = 0;
    // The button that does that to all selected rows.
    void clearsSelected(ui::Button& button);
    // Whether a line has something to post; says so when not.
    template <class Line> bool anything(const std::vector<Line>& lines, std::int16_t Line::*posted) const {
        for (const Line& line : lines)
            if (line.*posted > 0)
                return true;
        return sayNothing();
    }
    // After the posting: the papers of the screen's own, then the report of that kind on the posting of that number, and the screen is
    // left. What goes wrong with them in passing is told and keeps nobody here, who would post it again.
    void reportAndLeave(std::int16_t report, std::int32_t number, const std::function<void()>& papers = {});

    ui::Label lblHeading;
    SupplierFrame supplier_;
    ui::Grid grdPOItems;
    ui::Label lblTotal;
    ui::Button cmdViewHist;
    ui::Button cmdCancel;
    ui::Button cmdOK;

    std::string saved_; // the cell before its edit

private:
    void ShowSupplier();
    void clearSelected();
    void cmdViewHist_Click();
    bool sayNothing() const; // false

    Words words_;
    Columns columns_;
};

} // namespace merchantry::purchasing
