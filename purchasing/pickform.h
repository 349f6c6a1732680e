#pragma once

#include "base/rows.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::purchasing {

// What frmPOFrom and frmPOPickItems share: a list with a tick in column 0, the counts above it, a box that finds a row, all or none at
// once. OK hides the form with DialogResult true; Cancel, Escape and the close box leave it false.
class PickForm : public ui::Form {
public:
    bool DialogResult = false;

protected:
    PickForm(ui::Desk& desk, const char* name, const char* caption, ui::Grid& grid);

    // Shows the entries and counts them; the box looks into columns 1 to lastFound. Without ticks one row is chosen by standing on it.
    void show(Rows& rows, int lastFound, bool ticks);
    void Form_Unload(bool& cancel) override;
    ui::Item layoutAround(ui::Label& heading, int characters);
    // Whether the entry may be left with OK; says so when not.
    virtual bool accepts() = 0;
    int selectedCount() const { return selected_; }
    void cmdOK_Click();

    ui::TextBox txtFind;
    ui::Label lblItems;
    ui::Label lblSelected;
    ui::Grid& grid_;
    ui::Button cmdSelectAll;
    ui::Button cmdClearAll;
    ui::Button cmdCancel;
    ui::Button cmdOK;

private:
    void setAll(bool on);
    void afterTick();
    // To the first row that begins with the box's text; false when there is none.
    bool find();
    void stand(int row);
    void txtFind_KeyDown(const std::string& key, bool& swallow);

    Rows* rows_ = nullptr;
    int lastFound_ = 1;
    int selected_ = 0;
    bool ticks_ = true;
};

} // namespace merchantry::purchasing
