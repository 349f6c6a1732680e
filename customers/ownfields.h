#pragma once

#include "app/db/ado/recordset.h"
#include "ui/form.h"
#include "ui/grid.h"

#include <cstdint>
#include <set>
#include <string>

namespace merchantry::customers {

constexpr const char* kCustomerTag = "frmCustomer";

// The grid of the fields that the store keeps of its customers beside its own columns. A cell is saved as it is left.
class OwnFields {
public:
    explicit OwnFields(ui::Form& form);

    // Gives the customer the fields that it lacks, and shows all. Throws DbError.
    void load(std::int32_t customer);
    void release();

    ui::Grid vsfCustomFields;

private:
    void show();
    bool refuseField(int row, const std::string& text);
    void writeField(int row);

    std::int32_t customer_ = 0;
    db::RecordsetPtr fields_;
    std::set<std::string> dateFields_; // those of fields_ that are dates
};

} // namespace merchantry::customers
