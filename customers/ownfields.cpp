#include "customers/ownfields.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/date.h"
#include "base/text.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

enum FieldsColumn { kField, kFieldValue };

} // namespace

OwnFields::OwnFields(Form& form) : vsfCustomFields(form, "vsfCustomFields") {
    vsfCustomFields.setColumns({{.heading = "Field", .characters = 12}, {.heading = "Value", .characters = 14}});
    vsfCustomFields.emptyText = "The store has no fields of its own. Store, General Options makes them.";
    vsfCustomFields.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kField; };
    vsfCustomFields.validateEdit = [this](int row, int, const std::string& text, bool& cancel) { cancel = refuseField(row, text); };
    vsfCustomFields.afterEdit = [this](int row, int) { writeField(row); };
}

void OwnFields::load(std::int32_t customer) {
    customer_ = customer;
    modMain().Conn->Execute(Sql("bsp_CustomerFields ") + customer_);
    show();
}

void OwnFields::release() {
    closeRows(fields_);
}

// The statement that lists them lacks half of their key, so a cell is written by rows of its own.
void OwnFields::show() {
    const auto listed =
        openDirect(Sql("Select CustFieldName As Field, FieldValue As [Value] from CustomFieldValues where CustID = ") + customer_,
                   CursorType::Keyset, LockType::Optimistic);
    dateFields_.clear();
    for (const auto dates = openDirect("SELECT CustFieldName FROM CustomFields WHERE CustFieldType = 'Date'"); !dates->Eof();
         dates->MoveNext())
        dateFields_.insert((*dates)[0].text());
    closeRows(fields_);
    fields_ = openDirect(Sql("Select * from CustomFieldValues where CustID = ") + customer_, CursorType::Keyset, LockType::Optimistic);
    vsfCustomFields.setDataRows(0);
    for (; !listed->Eof(); listed->MoveNext())
        vsfCustomFields.addRow({(*listed)["Field"].text(), (*listed)["Value"].text()});
}

// A date must be one, and a text must go into its column; an empty one is no value.
bool OwnFields::refuseField(int row, const std::string& text) {
    constexpr std::size_t kRoom = 255; // of the store's column
    const std::string name = vsfCustomFields.text(row, kField);
    std::string refusal;
    if (dateFields_.contains(name) && !trimmed(text).empty() && !Date::fromText(trimmed(text)))
        refusal = name + " is a date, as 5/1/1970; \"" + text + "\" is none.";
    else if (characterCount(text) > kRoom)
        refusal = "A field has room for " + std::to_string(kRoom) + " characters; these are " + std::to_string(characterCount(text)) +
                  ". Please shorten it.";
    if (!refusal.empty())
        vsfCustomFields.form().desk().message(refusal, kProduct);
    return !refusal.empty();
}

// What the store refuses is reported, and the grid shows what it holds.
void OwnFields::writeField(int row) {
    const bool written = guarded({.tag = kCustomerTag, .procedure = "CustomFields_AfterEdit", .plain = "The field was not saved."}, [&] {
        fields_->MoveFirst();
        while (!fields_->Eof() && (*fields_)["CustFieldName"].text() != vsfCustomFields.text(row, kField))
            fields_->MoveNext();
        const std::string text = vsfCustomFields.text(row, kFieldValue);
        (*fields_)["FieldValue"] = text.empty() ? Value() : Value(text);
        fields_->Update();
    });
    if (!written)
        guarded({kCustomerTag, "CustomFields_AfterEdit"}, [this] { show(); });
}

} // namespace merchantry::customers
