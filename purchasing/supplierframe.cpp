#include "purchasing/supplierframe.h"

#include "app/addresses.h"
#include "app/modMain.h"
#include "base/text.h"
#include "ui/form.h"

namespace merchantry::purchasing {

SupplierFrame::SupplierFrame(ui::Form& form)
    : form_(form), fraSupplier(form, "fraSupplier", "Supplier"), lblSupplier(form, "lblSupplier"), lblAddress1(form, "lblAddress1"),
      lblAddress2(form, "lblAddress2"), lblAddress3(form, "lblAddress3"), lblCity(form, "lblCity"), lblSalesPerson(form, "lblSalesPerson"),
      lblPhone(form, "lblPhone"), lblFax(form, "lblFax"), lblEmail(form, "lblEmail"), lblWebsite(form, "lblWebsite") {}

ui::Item SupplierFrame::item() {
    using namespace ui;
    return group(fraSupplier,
                 row({
                     column({at(lblSupplier), at(lblAddress1), at(lblAddress2), at(lblAddress3), at(lblCity)}).stretched(),
                     fields({field("Sales person:", lblSalesPerson), field("Phone:", lblPhone), field("Fax:", lblFax)}).stretched(),
                     fields({field("Email:", lblEmail), field("Web site:", lblWebsite)}).stretched(),
                 }));
}

SupplierFrame::Supplier SupplierFrame::load(std::int32_t PONumber, std::int16_t SupplierID) {
    const auto rows = app::openDirect(db::Sql("sp_GetSupplierInfo ") + PONumber + ", " + int{SupplierID});
    auto& supplier = *rows;
    const Supplier found{supplier["SupID"].Value().toInt16(), replaced(supplier["Supplier"].text(), "&", " And ")};

    const Value account = supplier["AccountNumber"].Value();
    fraSupplier.setCaption(account.isNull() ? "Supplier" : "Acct #: " + account.toText());
    lblSupplier.setCaption(found.Name);
    lblAddress1.setCaption(supplier["Address1"].text());
    lblAddress2.setCaption(supplier["Address2"].text());
    lblAddress3.setCaption(supplier["Address3"].text());
    lblCity.setCaption(app::FormatCityStateZip(supplier["City"], supplier["State"], supplier["Zip"]));
    app::CollapseAddress(form_);
    lblSalesPerson.setCaption(supplier["SalesRep"].text());
    lblPhone.setCaption(supplier["Phone"].text());
    lblFax.setCaption(supplier["Fax"].text());
    lblEmail.setCaption(supplier["Email"].text());
    lblWebsite.setCaption(supplier["Website"].text());
    return found;
}

} // namespace merchantry::purchasing
