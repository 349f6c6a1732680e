#pragma once

#include "exchange/import/importplan.h"
#include "exchange/import/importscreen.h"
#include "exchange/import/importsource.h"
#include "exchange/import/matchedtable.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <memory>
#include <string>

namespace merchantry::exchange {

// The File page of frmExcelImport: chooses the file and how it is read, reads its table and matches the columns.
class FilePage {
public:
    // The table must outlive the page, which fills it.
    FilePage(ImportScreen& screen, MatchedTable& matched);

    ui::Item item();
    // Once as the screen opens: no file yet.
    void load();
    // Null while none is chosen.
    const ImportSource* source() const { return source_.get(); }
    // Shows the decimal sign that is guessed, until the user says it: where the columns of amounts tell nothing, it is asked.
    void showDecimals();
    // Sets what is chosen here.
    void addTo(ImportOptions& chosen) const;

private:
    void cmdBrowse_Click();
    void open(const std::filesystem::path& file);
    void read();
    void showShape();
    void takeShape();
    void lbxTarget_Click();
    void txtHeadings_LostFocus();
    void lbxDecimals_Click();
    void match();
    void showFound();
    std::string found() const;
    void showSample();
    ui::Desk& desk() const { return screen_.form().desk(); }

    ImportScreen& screen_;
    MatchedTable& matched_;
    std::unique_ptr<ImportSource> source_;
    std::string earlier_;       // what there is to tell of an import of the same content
    bool decimalsSaid_ = false; // by the user, of this file
    bool filling_ = false;      // lists are filled by the page itself

    ui::TextBox txtFile;
    ui::Button cmdBrowse;
    ui::ListBox lbxTarget;
    ui::ListBox lbxSheet;
    ui::ListBox lbxEncoding;
    ui::ListBox lbxDelimiter;
    ui::ListBox lbxDecimals;
    ui::TextBox txtHeadings;
    ui::CheckBox chkHidden;
    ui::Label lblFound;
    ui::Grid grdSample;
};

} // namespace merchantry::exchange
