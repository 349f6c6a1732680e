#pragma once

#include "purchasing/pickform.h"
#include "purchasing/pickrows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// A department or a supplier of a pick list.
struct SourcePick {
    std::int16_t Key = 0; // DepartmentID or SupID
    std::string Name;
    bool Selected = false;
};

// Chooses departments or suppliers for an order run, or one supplier. The caller sets the public members before it shows the form, reads
// them back afterwards and unloads it; PickSources and PickSupplier do all that.
class frmPOFrom : public PickForm {
public:
    explicit frmPOFrom(ui::Desk& desk);

    std::vector<SourcePick> Sources; // the list; Selected is the user's
    std::int16_t From = 1;           // kDepartments or kSuppliers
    bool ManualPO = false;           // exactly one row, without ticks
    std::string Title;               // in place of the heading, where it is not empty

    static constexpr std::int16_t kDepartments = 1;
    static constexpr std::int16_t kSuppliers = 2;

private:
    void Form_Load() override;
    bool accepts() override;

    ui::Label lblHeading{*this, "lblHeading"};
    ui::Grid grdFrom{*this, "grdFrom"};
    PickRows<SourcePick> rows_;
};

// The keys that the user ticks among all departments or suppliers, by name; those given are ticked beforehand. Empty when there are none,
// which is said, or on Cancel. Throws DbError.
std::vector<std::int16_t> PickSources(ui::Desk& desk, std::int16_t from, const std::vector<std::int16_t>& ticked = {});
// The one supplier that the user picks, the Empty Supplier (0) among them; nothing when there are none, which is said, or on Cancel. An
// empty title leaves the heading of a manual order. Throws DbError.
std::optional<std::int16_t> PickSupplier(ui::Desk& desk, const std::string& title);

} // namespace merchantry::purchasing
