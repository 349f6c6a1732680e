#include "exchange/import/columnspage.h"

#include "app/modMain.h"
#include "base/characters.h"
#include "base/guard.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kLeftAside = "(left aside)";

enum ColumnsColumn { kLetter, kHeading, kValues, kField };

// The first values below the headings, to know a column by.
std::string firstValues(const SheetTable& table, int headingRow, int column) {
    std::vector<std::string> values;
    for (int row = headingRow + 1; row < std::min(table.rows(), headingRow + 50) && values.size() < 3; ++row)
        if (const auto text = trimmed(table.cell(row, column).text); !text.empty())
            values.emplace_back(characters(text, 0, kSampleText));
    return joined(values, ", ");
}

std::string headingOf(const MatchedTable& matched, int column) {
    const int row = matched.match.headingRow;
    return row < 0 ? "" : std::string(characters(trimmed(matched.table.cell(row, column).text), 0, kSampleText));
}

} // namespace

ColumnsPage::ColumnsPage(ImportScreen& screen, MatchedTable& matched)
    : screen_(screen), matched_(matched), grdColumns(screen.form(), "grdColumns"), lbxCodes(screen.form(), "lbxCodes"),
      lbxSupplier(screen.form(), "lbxSupplier"), lbxReason(screen.form(), "lbxReason"),
      chkDepartments(screen.form(), "chkDepartments", "Make new &departments"),
      chkSuppliers(screen.form(), "chkSuppliers", "Make new &suppliers"), chkRound(screen.form(), "chkRound", "&Round amounts to cents") {
    grdColumns.setColumns({{.heading = "Column", .characters = 7},
                           {.heading = "Heading", .characters = 22},
                           {.heading = "First Values", .characters = 34},
                           {.heading = "Goes To", .editor = GridColumn::Editor::Combo, .characters = 20}});
    grdColumns.emptyText = "Choose a file first.";
    grdColumns.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kField; };
    grdColumns.afterEdit = [this](int row, int) { grdColumns_AfterEdit(row); };
    for (const char* one : {"Tell them as bad cells", "Mend them", "Take them as they are"})
        lbxCodes.add(one);
    lbxCodes.setToolTip("Codes that a spreadsheet took for numbers: zeros dropped in front, \".0\" behind.");
    lbxSupplier.setToolTip("Whose costs and part numbers these are, where a row names no supplier.");
    lbxReason.setToolTip("The adjustment code under which stock is posted.");
    chkRound.setToolTip(
        "Amounts of more than two decimals are rounded as the spreadsheet shows them. Without the tick, those of more than four are bad "
        "cells.");
    for (ListBox* one : {&lbxCodes, &lbxSupplier, &lbxReason})
        one->click = [this] { choice_Click(); };
    for (CheckBox* one : {&chkDepartments, &chkSuppliers, &chkRound})
        one->click = [this] { choice_Click(); };
}

Item ColumnsPage::item() {
    return row({
        at(grdColumns).high(6).wide(60).stretched(3),
        column({
            fields({field("Changed codes:", lbxCodes).wide(20), field("Su&pplier of all rows:", lbxSupplier).wide(20),
                    field("Adjustm&ent code:", lbxReason).wide(20)}),
            gap(),
            at(chkDepartments),
            at(chkSuppliers),
            at(chkRound),
            stretch(),
        }),
    });
}

void ColumnsPage::load() {
    const Restore filling(filling_, true);
    lbxCodes.setListIndex(0);
    loadChoices();
}

void ColumnsPage::loadChoices() {
    lbxSupplier.add("(told by the rows)", -1);
    const auto suppliers = openDirect("SELECT SupID, Supplier FROM Suppliers ORDER BY SupID");
    for (; !suppliers->Eof(); suppliers->MoveNext())
        lbxSupplier.add((*suppliers)[1].text(), static_cast<int>((*suppliers)[0].Value().toInteger()));
    lbxSupplier.setListIndex(0);
    const auto reasons = openDirect("SELECT ReasonCode FROM InvReasonCodes ORDER BY ReasonID");
    for (; !reasons->Eof(); reasons->MoveNext())
        lbxReason.add((*reasons)[0].text());
    if (lbxReason.count() > 0)
        lbxReason.setListIndex(0);
}

void ColumnsPage::show() {
    GridColumn goesTo = grdColumns.column(kField);
    goesTo.choices = {{kLeftAside, "-1"}};
    const auto fields = fieldsOf(matched_.target);
    for (std::size_t i = 0; i < fields.size(); ++i)
        goesTo.choices.emplace_back(fields[i].caption, std::to_string(i));
    grdColumns.setDataRows(0);
    grdColumns.setColumn(kField, goesTo);
    for (int column = 0; column < matched_.table.columns(); ++column)
        grdColumns.addRow({columnLetters(column), headingOf(matched_, column),
                           firstValues(matched_.table, matched_.match.headingRow, column),
                           std::to_string(matched_.match.fields[static_cast<std::size_t>(column)])});
    const bool items = matched_.target == Target::Items;
    for (Control* one : std::initializer_list<Control*>{&lbxSupplier, &lbxReason, &chkDepartments, &chkSuppliers, &chkRound})
        one->setEnabled(items);
}

void ColumnsPage::grdColumns_AfterEdit(int row) {
    const int wanted = static_cast<int>(Value(grdColumns.rawText(row, kField)).toInteger());
    matched_.match.set(row - 1, wanted);
    for (int other = 1; other <= grdColumns.dataRows(); ++other) // one that had the field is left aside now
        grdColumns.setText(other, kField, std::to_string(matched_.match.fields[static_cast<std::size_t>(other - 1)]));
    screen_.columnMoved();
}

void ColumnsPage::choice_Click() {
    if (!filling_)
        screen_.outdated();
}

void ColumnsPage::addTo(ImportOptions& chosen) const {
    chosen.reading.roundMoney = chkRound.value();
    chosen.codes = static_cast<ImportOptions::Codes>(std::max(0, lbxCodes.listIndex()));
    chosen.makeDepartments = chkDepartments.value();
    chosen.makeSuppliers = chkSuppliers.value();
    if (lbxSupplier.listIndex() > 0)
        chosen.supplier = static_cast<std::int16_t>(lbxSupplier.itemData());
    chosen.reason = lbxReason.text();
}

} // namespace merchantry::exchange
