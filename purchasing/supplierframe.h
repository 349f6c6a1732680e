#pragma once

#include "ui/frame.h"
#include "ui/label.h"
#include "ui/layout.h"

#include <cstdint>
#include <string>

namespace merchantry::purchasing {

// Whom an order goes to, as the order screens head it: name, address, sales person and how to reach them. One per form.
class SupplierFrame {
public:
    struct Supplier {
        std::int16_t SupID = 0;
        std::string Name; // each "&" as " And "
    };

    explicit SupplierFrame(ui::Form& form);

    // Shows the supplier of the order with that number, or, for kNewOrder, of that key, and says who it is. Throws when there is none.
    Supplier load(std::int32_t PONumber, std::int16_t SupplierID);
    // How the frame stands on the window.
    ui::Item item();

private:
    ui::Form& form_;
    ui::Frame fraSupplier;
    ui::Label lblSupplier;
    ui::Label lblAddress1;
    ui::Label lblAddress2;
    ui::Label lblAddress3;
    ui::Label lblCity;
    ui::Label lblSalesPerson;
    ui::Label lblPhone;
    ui::Label lblFax;
    ui::Label lblEmail;
    ui::Label lblWebsite;
};

} // namespace merchantry::purchasing
