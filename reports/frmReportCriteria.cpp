#include "reports/frmReportCriteria.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/platform/platform.h"
#include "base/text.h"
#include "reports/frmReport_Generate.h"
#include "reports/reporttable.h"
#include "ui/desk.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace merchantry::reports {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmPrintCustLabels";
constexpr const char* kLoadTag = "MR_frmPrintCustlabels";
constexpr int kRows = 50; // of the grid, used or not
constexpr Twips kSelWidth = 8100;
constexpr Twips kWidth = 800 * kTwipsPerPixel;
constexpr Twips kHeight = 780 * kTwipsPerPixel;

const std::string kSkuField = "Item.MatrixSKU";

CriteriaStore keptCriteria() {
    const std::filesystem::path& config = modMain().configFile;
    return CriteriaStore((config.empty() ? platform::configurationFolder() : config.parent_path()) / "criteria.toml");
}

db::RecordsetPtr rowsOf(const db::Sql& statement) {
    return modMain().Conn->Execute(statement);
}

} // namespace

frmReportCriteria::frmReportCriteria(Desk& desk) : Form(desk, "frmReportCriteria", "Report") {
    setIcon("report");
    setSize(kWidth, kHeight);
    lbxFields.dropDown = lbxOperator.dropDown = lbxKept.dropDown = false;
    lbxOperator.setToolTip("Like takes the wildcards % and _, and does not work on dates.");
    txtCondition.setToolTip("A date as month/day/year covers the whole day.");
    optAnd.group = optOr.group = "connector";
    optAsc.group = optDesc.group = "order";
    grdSel.setColumns({{.heading = "Conditions", .width = kSelWidth}});
    grdSel.editable = false;
    grdSel.setToolTip("Add on an empty row makes a condition of its own; on a filled one it is joined to that row, whose words then show "
                      "the new part as the store reads it.");
    txtQty.alignRight = true;
    cmdGen.isDefault = true;
    cmdExit.isCancel = true;
    cmdCount.setToolTip("How many rows the report would have with these conditions");

    wire();
    offer("LoadForm", [this](const std::vector<std::string>& arguments) {
        LoadForm(arguments.at(0));
        return std::string();
    });

    asksBeforeLeaving({&tabCriteria, &lbxFields, &lbxOperator, &lbxSortBy, &lbxKept, &optAnd, &optOr, &optAsc, &optDesc, &grdSel, &cboQty,
                       &cboPrn, &txtQty});
    setLayout(column({
        pages(tabCriteria,
              {
                  column({
                      row({column({at(lblFields), at(lbxFields).wide(34).high(3)}),
                           column({at(lblOperator), at(lbxOperator).wide(10).high(3)}),
                           column({at(lblCondition), at(txtCondition),
                                   row({at(optAnd), at(optOr), stretch(), at(cmdAdd), gap(), at(cmdDelete)}), stretch()})
                               .stretched()})
                          .stretched(3),
                      at(grdSel).high(7).stretched(2),
                      group(fraSort, row({at(lblSort), at(lbxSortBy).wide(34), gap(), at(optAsc), at(optDesc), stretch()})),
                      group(fraLabels, fields({field("&Quantity:", cboQty, {at(lblQtyN), at(txtQty).wide(10)}).wide(22),
                                               field("&Label size and printer:", cboPrn).wide(44)})),
                  }),
                  column({
                      at(lblKept),
                      at(lbxKept).high(6).stretched(),
                      row({at(cmdKeep), gap(), at(cmdForget), stretch(), at(cmdRecall)}),
                  }),
              }),
        buttons({at(cmdCount), at(lblCount), stretch(), at(cmdExit), at(cmdGen)}),
        undoLine.item(),
    }));
}

void frmReportCriteria::wire() {
    cmdAdd.click = [this] { cmdAdd_Click(); };
    txtCondition.keyDown = [this](const std::string& key, bool& swallow) {
        swallow = key == "Enter" && !txtCondition.text().empty();
        if (swallow)
            cmdAdd_Click();
    };
    cmdDelete.isDanger = cmdForget.isDanger = true;
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cboQty.click = [this] { cboQty_Click(); };
    cmdCount.click = [this] { cmdCount_Click(); };
    cmdKeep.click = [this] { cmdKeep_Click(); };
    cmdRecall.click = [this] { cmdRecall_Click(); };
    lbxKept.dblClick = [this] { cmdRecall_Click(); };
    cmdForget.click = [this] { cmdForget_Click(); };
    cmdGen.click = [this] { cmdGen_Click(); };
    cmdExit.click = [this] { unload(); };
}

void frmReportCriteria::say(const std::string& text) {
    desk().message(text, kProduct);
}

void frmReportCriteria::LoadForm(const std::string& key) {
    ReportKey = key;
    if (loadedOnce_)
        guarded({kLoadTag, "SelectionCriteria_Load"}, [this] { Initialise(); });
    desk().show(*this);
}

void frmReportCriteria::Form_Load() {
    guarded({kLoadTag, "SelectionCriteria_Load"}, [this] { Initialise(); });
    loadedOnce_ = true;
}

void frmReportCriteria::Initialise() {
    setCaption(ReportKey + " Report");
    criteria_.clear();
    InitListBoxes();
    for (ListBox* list : {&lbxFields, &lbxOperator, &lbxSortBy})
        if (list->count() > 0)
            list->setListIndex(0);
    optAsc.setValue(true);
    optAnd.setValue(true);
    tabCriteria.setCurrent(0);
    grdSel.setDataRows(0);
    grdSel.setDataRows(kRows);
    grdSel.setCurrent(1, 0);
    txtCondition.setText("");
    txtQty.setText("");
    conditionsChanged();
    listKept();
}

void frmReportCriteria::InitListBoxes() {
    guarded({kTag, "InitListBoxes"}, [this] {
        lbxFields.clear();
        lbxSortBy.clear();
        lbxOperator.clear();
        Fields.clear();
        for (const char* one : {"=", "<>", ">", "<", ">=", "<=", "Like"})
            lbxOperator.add(one);
        const bool labels = isLabels();
        fraSort.setVisible(!labels);
        lblSort.setVisible(!labels);
        fraLabels.setVisible(labels);
        if (!Custom) {
            const auto mapping = rowsOf(db::Sql("bsp_GetReportFieldsMapping '") + ReportKey + "'");
            for (; !mapping->Eof(); mapping->MoveNext()) {
                Fields.push_back({(*mapping)["FieldName"].text(), (*mapping)["FieldDescription"].text(),
                                  (*mapping)["DateConvert"].Value().toNumber() != 0});
                lbxFields.add(Fields.back().FieldDescription, static_cast<int>(Fields.size()));
                lbxSortBy.add(Fields.back().FieldDescription, static_cast<int>(Fields.size()));
            }
        }
        if (ReportKey == "Customer") {
            const auto names = rowsOf("SELECT CustFieldName, count(*) as RecCnt FROM CustomFields GROUP BY CustFieldName");
            for (; !names->Eof(); names->MoveNext())
                lbxFields.add((*names)["CustFieldName"].text());
        }
        cboPrn.clear();
        cboQty.clear();
        cboQty_Click();
        if (!labels)
            return;
        const auto fill = [](ComboBox& box, const db::RecordsetPtr& rows, const char* column) {
            for (; !rows->Eof(); rows->MoveNext())
                if (!(*rows)[column].isNull())
                    box.add((*rows)[column].text());
        };
        fill(cboPrn, rowsOf("sp_GetLabelPrinters"), "Printer");
        fill(cboQty, rowsOf("sp_GetLabelQty"), "Quantity");
    });
}

void frmReportCriteria::cboQty_Click() {
    const bool wanted = cboQty.listIndex() >= 0 && cboQty.text() != "Stock";
    txtQty.setEnabled(wanted);
    lblQtyN.setEnabled(wanted);
    if (wanted)
        txtQty.setFocus();
}

void frmReportCriteria::setRow(int row, const std::string& text) {
    grdSel.setText(row, 0, text);
}

// A count that was made holds for the conditions that it was made with.
void frmReportCriteria::conditionsChanged() {
    const int count = criteria_.count();
    grdSel.setStatusText(count == 0   ? "No conditions: the whole report"
                         : count == 1 ? "1 condition"
                                      : std::to_string(count) + " conditions");
    lblCount.setCaption("");
    undoLine.dismiss();
    if (count == 0 && txtCondition.text().empty())
        nothingUnsaved();
}

void frmReportCriteria::cmdAdd_Click() {
    guarded({kTag, "AddCrit"}, [this] { AddCrit(); });
}

void frmReportCriteria::AddCrit() {
    if (txtCondition.text().empty())
        return say("Please enter a condition");
    if (criteria_.count() > Criteria::kMost - 1)
        return say("Too many criteria. Please remove one.");
    if (lbxFields.listIndex() < 0)
        return say("Please choose a field");
    // A field that the store added to its customers has no column here; it is asked for by its name.
    const CriteriaField field = lbxFields.itemData() > 0 ? Fields[static_cast<std::size_t>(lbxFields.itemData()) - 1]
                                                         : CriteriaField{lbxFields.text(), lbxFields.text(), false};
    if (isLabels() && field.FieldName == kSkuField) {
        const auto item = rowsOf(db::Sql("select * from Item where MatrixSKU = '") + std::string(trimmed(txtCondition.text())) + "'");
        if (item->Eof())
            return say("You have entered an invalid SKU. Please reenter.");
    }
    Criteria::Addition addition;
    addition.expression = expressionFor(field, lbxFields.text(), lbxOperator.text(), txtCondition.text());
    if (lbxFields.text() == "TaxExempt")
        txtCondition.setText(upperCase(trimmed(txtCondition.text())) == "NO" ? "0" : "1");
    addition.shown = lbxFields.text() + " " + lbxOperator.text() + " " + txtCondition.text();
    addition.useAnd = optAnd.value();
    addition.row = std::max(1, grdSel.row());
    addition.rowText = grdSel.text(addition.row, 0);
    const Criteria::Placed placed = criteria_.add(addition);
    setRow(placed.row, placed.text);
    touched(cmdAdd);
    grdSel.setCurrent(std::min(placed.row + 1, grdSel.dataRows()), 0);
    conditionsChanged();
}

void frmReportCriteria::cmdDelete_Click() {
    const int row = grdSel.row();
    if (row < 1 || rowText().empty())
        return say("This row is already blank");
    const std::string condition = rowText();
    const auto before = [this, criteria = criteria_, shown = shownRows()] {
        criteria_ = criteria;
        for (int at = 1; at <= grdSel.dataRows(); ++at)
            setRow(at, shown[static_cast<std::size_t>(at - 1)]);
        conditionsChanged();
        return std::string();
    };
    grdSel.removeRow(row);
    grdSel.addRow({""});
    if (criteria_.remove(row))
        setRow(1, criteria_.sql(0));
    grdSel.setCurrent(std::min(row, grdSel.dataRows()), 0);
    conditionsChanged();
    undoLine.offer("Condition \"" + condition + "\" removed.", before);
}

std::vector<std::string> frmReportCriteria::shownRows() const {
    std::vector<std::string> rows;
    for (int row = 1; row <= grdSel.dataRows(); ++row)
        rows.push_back(grdSel.text(row, 0));
    return rows;
}

std::string frmReportCriteria::sortField() const {
    if (lbxSortBy.listIndex() < 0)
        return "";
    const auto found = rowsOf(db::Sql("select fieldname FROM reportfieldsmapping where reportname = '") + ReportKey +
                              "' and fielddescription = '" + lbxSortBy.text() + "'");
    return found->Eof() ? "" : (*found)["fieldname"].text();
}

void frmReportCriteria::cmdGen_Click() {
    guarded({kTag, "cmdGen_Click"}, [this] {
        if (isLabels())
            generateLabels();
        else
            generateReport();
    });
}

void frmReportCriteria::generateReport() {
    const std::string sort = sortField();
    auto& window = desk().newForm<frmReport_Generate>();
    const auto& slots = criteria_.sqlSlots();
    window.Generate(ReportKey, {slots.begin(), slots.end()}, criteria_.count(), optAsc.value(), sort);
    window.setCriteria(criteria_.words());
    nothingUnsaved();
    desk().show(window);
}

// The number in the quantity field when it is whole and not below 0.
std::optional<double> frmReportCriteria::wholeQuantity() const {
    const auto number = isNumeric(txtQty.text()) ? numberOf(txtQty.text()) : std::nullopt;
    return number && *number >= 0 && *number == std::floor(*number) ? number : std::nullopt;
}

bool frmReportCriteria::orderExists(double number) const {
    return number <= std::numeric_limits<std::int32_t>::max() && !rowsOf(db::Sql("sp_GetPO ") + number)->Eof();
}

bool frmReportCriteria::checkLabels() {
    txtQty.setText(std::string(trimmed(txtQty.text())));
    const auto refuse = [this](const char* why, Control& missing) {
        say(why);
        tabCriteria.setCurrent(0);
        missing.setFocus();
        return false;
    };
    if (cboQty.listIndex() < 0)
        return refuse("Please select a label quantity option", cboQty);
    const bool specific = cboQty.text() == "Specific Quantity";
    const bool order = cboQty.text() == "PO #";
    if (specific && txtQty.text().empty())
        return refuse("Please input a static amount", txtQty);
    if (order && txtQty.text().empty())
        return refuse("Please input a purchase order number", txtQty);
    if (specific && !wholeQuantity())
        return refuse("Please input a whole number greater than zero in the quantity field", txtQty);
    if (order && (!wholeQuantity() || !orderExists(*wholeQuantity())))
        return refuse("That purchase order number was not found.  Please input a valid purchase order number", txtQty);
    if (cboPrn.listIndex() < 0)
        return refuse("Please select a label size and printer type", cboPrn);
    return true;
}

RptFilePtr frmReportCriteria::labelReport() {
    std::string clause;
    for (int i = 0; i < criteria_.count(); ++i)
        clause += (i == 0 ? "WHERE " : " ") + criteria_.sql(i);
    const auto named = rowsOf(db::Sql("sp_GetLabelRpt '") + cboPrn.text() + "', '" + cboQty.text() + "'");
    const std::string file = named->Eof() ? "" : (*named)["Report"].text();
    RptFilePtr report = openReport(desk(), reportFolder(desk()) / file);
    if (report == nullptr)
        return nullptr;
    report->criteria = criteria_.words();
    if (cboQty.text() == "Stock") {
        report->setParameter(1, clause);
    } else if (cboQty.text() == "Specific Quantity") {
        report->setParameter(1, shortestDecimal(*wholeQuantity()));
        report->setParameter(2, clause);
    } else if (cboQty.text() == "PO #") {
        clause += (clause.empty() ? "WHERE " : " AND ");
        report->setParameter(1, clause + "purchaseorder_items.poid = " + shortestDecimal(*wholeQuantity()));
    }
    return report;
}

void frmReportCriteria::generateLabels() {
    if (!checkLabels())
        return;
    const RptFilePtr report = labelReport();
    if (report == nullptr)
        return;
    auto& window = desk().newForm<frmReport_Generate>();
    window.GenerateFromRpt(report);
    nothingUnsaved();
    desk().show(window);
}

// The report as the present choices have it, without a window.
RptFilePtr frmReportCriteria::preparedReport() {
    if (isLabels())
        return checkLabels() ? labelReport() : nullptr;
    const auto known = reportKey(ReportKey);
    const RptFilePtr report = openReport(desk(), reportFolder(desk()) / (known ? known->file : ""));
    if (report == nullptr)
        return nullptr;
    std::string where;
    for (int i = 0; i < criteria_.count(); ++i)
        where += (i == 0 ? "WHERE " : "") + criteria_.sql(i);
    report->setParameter(1, where);
    return report;
}

void frmReportCriteria::cmdCount_Click() {
    lblCount.setCaption("");
    try {
        const RptFilePtr report = preparedReport();
        if (report == nullptr)
            return;
        const auto rows = report->countRows(desk());
        lblCount.setCaption(rows ? counted(*rows, "row") : "Stopped");
    } catch (const db::DbError& error) {
        lblCount.setCaption((error.isOfTheStore() ? "" : "These conditions cannot be used. ") + std::string(error.what()));
    } catch (const std::exception& error) {
        lblCount.setCaption(std::string("These conditions cannot be used. ") + error.what());
    }
}

void frmReportCriteria::listKept(const std::string& chosen) {
    lbxKept.clear();
    try {
        for (const KeptCriteria& one : keptCriteria().of(ReportKey))
            lbxKept.add(one.name);
    } catch (const std::exception& error) {
        lblKept.setCaption(error.what());
    }
    if (lbxKept.count() > 0)
        lbxKept.setListIndex(std::max(0, lbxKept.indexOf(chosen)));
    for (Button* button : {&cmdRecall, &cmdForget})
        button->setEnabled(lbxKept.count() > 0);
}

void frmReportCriteria::cmdKeep_Click() {
    const auto typed = desk().input({"Keep these criteria under the name:", "Keep Criteria", lbxKept.text()});
    const std::string name(trimmed(typed.value_or("")));
    if (name.empty())
        return;
    try {
        CriteriaStore store = keptCriteria();
        if (lbxKept.indexOf(name) >= 0 && desk().message("There are criteria of that name. Replace them?", "Keep Criteria",
                                                         MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
            return;
        KeptCriteria kept{ReportKey, name, {}, {}, lbxSortBy.text(), optAsc.value()};
        for (int i = 0; i < criteria_.count(); ++i) {
            kept.sql.push_back(criteria_.sql(i));
            kept.display.push_back(criteria_.display(i));
        }
        store.put(kept);
        nothingUnsaved();
    } catch (const std::exception& error) {
        say(error.what());
    }
    listKept(name);
}

void frmReportCriteria::cmdRecall_Click() {
    const std::string wanted = lbxKept.text();
    try {
        for (const KeptCriteria& one : keptCriteria().of(ReportKey)) {
            if (one.name != wanted)
                continue;
            criteria_.assign(one.sql, one.display);
            for (int row = 1; row <= grdSel.dataRows(); ++row)
                setRow(row, row <= criteria_.count() ? criteria_.display(row - 1) : "");
            grdSel.setCurrent(criteria_.count() + 1, 0);
            if (const int at = lbxSortBy.indexOf(one.sortBy); at >= 0)
                lbxSortBy.setListIndex(at);
            (one.ascending ? optAsc : optDesc).setValue(true);
            conditionsChanged();
            tabCriteria.setCurrent(0);
        }
    } catch (const std::exception& error) {
        say(error.what());
    }
}

void frmReportCriteria::cmdForget_Click() {
    if (lbxKept.listIndex() < 0 || desk().message("Forget the criteria \"" + lbxKept.text() + "\"?", "Kept Criteria", MessageIcon::Question,
                                                  MessageButtons::YesNo) != Answer::Yes)
        return;
    try {
        keptCriteria().remove(ReportKey, lbxKept.text());
    } catch (const std::exception& error) {
        say(error.what());
    }
    listKept();
}

} // namespace merchantry::reports
