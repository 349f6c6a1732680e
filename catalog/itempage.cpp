#include "catalog/itempage.h"

namespace merchantry::catalog {

using namespace ui;

ItemPage::ItemPage(ItemScreen& screen, const std::string& name, int exit)
    : cmdExit(screen.form(), "cmdExit(" + std::to_string(exit) + ")", "E&xit"), screen_(screen),
      lblPName(screen.form(), "lbl" + name + "PName"), lblSKU(screen.form(), "lbl" + name + "SKU") {}

void ItemPage::showSKU() {
    lblSKU.setCaption(app::modMain().CurrentSKU);
}

Item ItemPage::head() {
    return column({title(lblPName), at(lblSKU)});
}

void selectsAll(TextBox& box) {
    box.gotFocus = [&box] { box.selectAll(); };
}

void pressIfShown(Image& arrow) {
    if (arrow.obstacle().empty())
        arrow.press();
}

} // namespace merchantry::catalog
