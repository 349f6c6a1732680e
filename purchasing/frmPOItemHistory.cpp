#include "purchasing/frmPOItemHistory.h"

#include "app/modMain.h"
#include "base/numbers.h"
#include "ui/desk.h"

#include <array>
#include <cstdio>
#include <optional>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "frmPOItemHistory";
enum Column { kDate, kTime, kReceived, kCancelled, kOpen };

// "02:05 PM"
std::string timeOfDay(Date when) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d %s", when.hour() % 12 == 0 ? 12 : when.hour() % 12, when.minute(),
                  when.hour() < 12 ? "AM" : "PM");
    return text.data();
}

} // namespace

struct frmPOItemHistory::Event {
    std::string type; // R a receipt, C a cancellation
    std::optional<Date> when;
    std::int16_t quantity = 0; // 0 for any other type
};

frmPOItemHistory::frmPOItemHistory(Desk& desk) : Form(desk, "frmPOItemHistory", "Item History") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdPO.setColumns({{.heading = "Date", .characters = 12},
                      {.heading = "Time", .characters = 10},
                      {.heading = "Received Qty", .format = Format::Number},
                      {.heading = "Cancelled Qty", .format = Format::Number},
                      {.heading = "Open Qty", .format = Format::Number}});
    grdPO.editable = false;
    cmdExit.isCancel = true;
    cmdExit.isDefault = true;
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch(), figure("Ordered", lblCommitedQty), figure("Open", lblOpenQty)}),
        fields({field("PO number:", lblPONumber), field("SKU:", lblSKU), field("Name:", lblName)}),
        at(lblPONothing).stretched(),
        at(grdPO).high(10).wide(70).stretched(),
        buttons({stretch(), at(cmdExit)}),
    }));
    // Number of the order, both codes of the item.
    offer("ShowPOItemHistory", [](const auto& arguments) {
        ShowPOItemHistory(toInt32(numericPrefix(arguments.at(0))), arguments.at(1), arguments.at(2));
        return std::string();
    });
}

void frmPOItemHistory::Form_Load() {
    lblPONumber.setCaption(std::to_string(PONumber));
    lblSKU.setCaption(MatrixSKU);
    lblPONothing.setVisible(false); // until it is known
    guarded({kTag, "Form_Load"}, [this] {
        std::vector<Event> events;
        auto history = openDirect(db::Sql("sp_GetPOItemHistory ") + PONumber + ", '" + SKU + "', '" + MatrixSKU + "'");
        for (bool first = true; !history->Eof(); history->MoveNext(), first = false) {
            db::Recordset& row = *history;
            if (first) {
                committed_ = row["CommitedQty"].Value().toInt16();
                lblName.setCaption(row["Name"].text());
                lblCommitedQty.setCaption(std::to_string(committed_));
                lblOpenQty.setCaption(std::to_string(row["OpenQty"].Value().toInt16()));
            }
            if (row["Count"].Value().toInteger() <= 0)
                continue;
            Event event{row["OperationType"].text(), {}, 0};
            if (const Value when = row["OperationDateTime"].Value(); when.is<Date>())
                event.when = when.as<Date>();
            if (event.type == "R" || event.type == "C")
                event.quantity = row["Quantity"].Value().toInt16();
            events.push_back(std::move(event));
        }
        show(events);
    });
}

void frmPOItemHistory::show(const std::vector<Event>& events) {
    lblPONothing.setVisible(events.empty());
    grdPO.setVisible(!events.empty());
    grdPO.setDataRows(static_cast<int>(events.size()));
    int open = committed_;
    for (int row = 1; const Event& event : events) {
        open -= event.quantity;
        if (event.when) {
            grdPO.setText(row, kDate, event.when->toStatementText());
            grdPO.setText(row, kTime, timeOfDay(*event.when));
        }
        if (event.type == "R" || event.type == "C")
            grdPO.setText(row, event.type == "R" ? kReceived : kCancelled, std::to_string(event.quantity));
        grdPO.setText(row++, kOpen, std::to_string(open));
    }
}

void ShowPOItemHistory(std::int32_t PONumber, const std::string& SKU, const std::string& MatrixSKU) {
    auto& history = modMain().desk->form<frmPOItemHistory>();
    history.PONumber = PONumber;
    history.SKU = SKU;
    history.MatrixSKU = MatrixSKU;
    modMain().desk->showModal(history);
}

} // namespace merchantry::purchasing
