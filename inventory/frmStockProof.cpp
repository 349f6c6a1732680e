#include "inventory/frmStockProof.h"

#include "app/modMain.h"
#include "base/numbers.h"
#include "ui/desk.h"

namespace merchantry::inventory {

using namespace app;
using namespace ui;

frmStockProof::frmStockProof(Desk& desk) : Form(desk, "frmStockProof", "Proof of Stock") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdFound.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 16},
                         {.heading = "MatrixSKU", .fixedWidth = true, .characters = 16},
                         {.heading = "What", .characters = 14},
                         {.heading = "Ledger Row", .format = Format::Number, .characters = 12},
                         {.heading = "Found", .format = Format::Number, .characters = 12},
                         {.heading = "By Its Movements", .format = Format::Number, .characters = 16}});
    grdFound.editable = false;
    grdFound.emptyText = "Press Prove to compare.";
    prgProof.setVisible(false);
    cmdStop.setEnabled(false);
    cmdProve.isDefault = true;
    cmdExit.isCancel = true;
    cmdProve.click = [this] { cmdProve_Click(); };
    cmdStop.click = [this] { stop_ = true; };
    cmdExit.click = [this] { unload(); };
    setLayout(column({
        title(lblHeading),
        at(lblWhat),
        at(grdFound).high(12).stretched(),
        at(lblState),
        at(prgProof),
        buttons({at(cmdStop), stretch(), at(cmdExit), at(cmdProve)}),
    }));
}

void frmStockProof::Form_Unload(bool& cancel) {
    cancel = working_;
    stop_ = leave_ = working_;
}

void frmStockProof::cmdProve_Click() {
    if (working_)
        return;
    working_ = true;
    stop_ = false;
    cmdProve.setEnabled(false);
    cmdStop.setEnabled(true);
    prgProof.set(0);
    prgProof.setVisible(true);
    lblState.setCaption("");
    grdFound.setDataRows(0);
    guarded({"MR_frmStockProof", "cmdProve_Click"}, [this] { show(proved()); });
    prgProof.setVisible(false);
    cmdStop.setEnabled(false);
    cmdProve.setEnabled(true);
    working_ = false;
    if (leave_)
        unload();
}

// On a connection of its own: while the ledger is read, the program goes on with the shared one.
Proof frmStockProof::proved() {
    db::Connection own(*modMain().provider);
    own.Open(modMain().Conn->ConnectionString());
    return proveStock(own.session(), [this](int percent) {
        prgProof.set(percent);
        desk().yield();
        return !stop_;
    });
}

void frmStockProof::show(const Proof& proof) {
    for (const auto* findings : {&proof.ledger, &proof.stock})
        for (const ProofFinding& finding : *findings) {
            grdFound.addRow({finding.sku, finding.matrixSku, finding.title(), finding.ledgerId == 0 ? "" : std::to_string(finding.ledgerId),
                             finding.found, finding.expected});
            if (finding.ledgerId != 0)
                grdFound.setCellColor(grdFound.dataRows(), 2, Color::Red);
        }
    grdFound.emptyText = "Everything agrees.";
    const auto counted = [](std::size_t number) { return withThousands(static_cast<std::int64_t>(number)); };
    lblState.setCaption((proof.stopped ? "Stopped after " : "Proved ") + withThousands(proof.rows) + " movements of " +
                        withThousands(proof.items) + " items: " + counted(proof.ledger.size()) + " with a faulty ledger, " +
                        counted(proof.stock.size()) + " whose stock differs from it.");
}

} // namespace merchantry::inventory
