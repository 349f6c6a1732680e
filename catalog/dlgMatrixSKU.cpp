#include "catalog/dlgMatrixSKU.h"

#include "app/modMain.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

dlgMatrixSKU::dlgMatrixSKU(Desk& desk) : Form(desk, "dlgMatrixSKU", "Matrix SKU") {
    setIcon("item");
    setFixedSize();
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };
    setLayout(column({fields({field("&Matrix SKU:", cboMatrixSKU).wide(32)}), buttons({stretch(), at(cmdCancel), at(cmdOK)})}));
    offer("GetMatrixSKU", [this](const auto& arguments) {
        GetMatrixSKU(arguments.empty() ? "" : arguments[0], arguments.size() > 1 && arguments[1] == "on");
        return modMain().CurrentMatrixSKU;
    });
}

void dlgMatrixSKU::GetMatrixSKU(const std::string& SKU, bool Show) {
    sku_ = SKU;
    ensureLoaded();
    if (Show)
        desk().showModal(*this);
}

void dlgMatrixSKU::Form_Load() {
    guarded({"MR_dlgMatrixSKU", "Form_Load"}, [this] {
        const auto children = openDirect(Sql("SELECT MatrixSKU From Item where SKU = '") + sku_ + "' ORDER BY MatrixSKU");
        for (; !children->Eof(); children->MoveNext())
            if (const std::string code = (*children)["MatrixSKU"].text(); !code.starts_with('$'))
                cboMatrixSKU.add(code);
        if (cboMatrixSKU.count() > 0)
            cboMatrixSKU.setListIndex(0);
    });
}

void dlgMatrixSKU::cmdOK_Click() {
    if (cboMatrixSKU.listIndex() >= 0)
        modMain().CurrentMatrixSKU = cboMatrixSKU.text();
    unload();
}

} // namespace merchantry::catalog
