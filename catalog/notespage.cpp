#include "catalog/notespage.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

NotesPage::NotesPage(ItemScreen& screen) : ItemPage(screen, "Notes", 4), txtNotes(screen.form(), "txtNotes") {
    txtNotes.multiline = true;
    txtNotes.lostFocus = [this] {
        if (!neverFilled(screen_, txtNotes))
            writeField("txtNotes_LostFocus", "Notes", [this] { return Value(txtNotes.text()); });
    };
}

Item NotesPage::item() {
    return column({
        row({head(), stretch()}),
        at(txtNotes).high(12).stretched(),
        buttons({stretch(), note("Notes are saved as you leave them"), at(cmdExit)}),
    });
}

void NotesPage::populate() {
    showSKU();
    const std::string notes = (*modMain().ItemRecordset)["Notes"].text();
    if (!notes.empty())
        txtNotes.setText(notes);
}

} // namespace merchantry::catalog
