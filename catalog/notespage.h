#pragma once

#include "catalog/itempage.h"

namespace merchantry::catalog {

// The Notes page of frmItems.
class NotesPage : public ItemPage {
public:
    explicit NotesPage(ItemScreen& screen);

    ui::Item item() override;
    void populate() override;

private:
    ui::TextBox txtNotes;
};

} // namespace merchantry::catalog
