#pragma once

#include "ui/form.h"

namespace merchantry::exchange {

constexpr const char* kImportTag = "MR_frmExcelImport";

// What the pages of the import's screen may ask of it and tell it.
class ImportScreen {
public:
    virtual ui::Form& form() = 0;
    // The columns were matched anew: every page is to show it.
    virtual void columnsMatched() = 0;
    // The user let a column go elsewhere, by a page that shows it already.
    virtual void columnMoved() = 0;
    // What was checked holds no more.
    virtual void outdated() = 0;

protected:
    ~ImportScreen() = default;
};

} // namespace merchantry::exchange
