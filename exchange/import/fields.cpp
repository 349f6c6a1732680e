#include "exchange/import/fields.h"

#include "base/lettercase.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>

namespace merchantry::exchange {
namespace {

constexpr int kQuantityMost = 32'767;
constexpr int kNotesMost = 8000;

constexpr std::array kTargets{TargetName{Target::Items, "Items", "Items, prices and stock"},
                              TargetName{Target::Suppliers, "Suppliers", "Suppliers"},
                              TargetName{Target::Customers, "Customers", "Customers"}};

constexpr std::array kItemFields{
    Field{"SKU", "Code", FieldKind::Code, 100,
          "code itemcode itemno itemnumber item itemid sku matrixsku upc upccode ean barcode gtin plu article articleno articlenumber "
          "artikel "
          "artikelnr artikelnummer productcode productno productid stockcode stockno ref reference id"},
    Field{"ParentSKU", "Parent SKU", FieldKind::Code, 100, "parent parentsku parentcode style styleno styleno"},
    Field{"Name", "Name", FieldKind::Text, 255,
          "name description itemname itemdescription desc product productname title bezeichnung artikelbezeichnung beschreibung"},
    Field{"Price", "Price", FieldKind::Money, 0,
          "price retail retailprice sellprice sellingprice saleprice unitprice listprice msrp rrp srp price1 pricea preis vk vkpreis "
          "verkaufspreis regularprice"},
    Field{"Department", "Department", FieldKind::Name, 50,
          "department dept category group productgroup class section warengruppe abteilung"},
    Field{"TaxClass", "Tax class", FieldKind::Name, 50, "taxclass tax taxcode taxtype vat vatcode steuer steuersatz"},
    Field{"Stock", "Stock", FieldKind::Whole, kQuantityMost,
          "stock qty quantity onhand qtyonhand quantityonhand instock stocklevel inventory count bestand lagerbestand menge"},
    Field{"Supplier", "Supplier", FieldKind::Name, 100, "supplier vendor suppliername vendorname distributor manufacturer lieferant"},
    Field{"Cost", "Cost", FieldKind::Money, 0,
          "cost unitcost costprice buyprice purchaseprice wholesale wholesaleprice netcost net ek ekpreis einkaufspreis dealerprice"},
    Field{"PartNo", "Part number", FieldKind::Text, 50,
          "partno partnumber part supplierpartno suppliercode suppliersku vendorsku vendoritem vendorpartno vendorcode mpn bestellnummer"},
    Field{"Restock", "Reorder at", FieldKind::Whole, kQuantityMost,
          "reorderat reorderpoint reorderlevel minstock min minimum minqty restock mindestbestand"},
    Field{"Reorder", "Reorder quantity", FieldKind::Whole, kQuantityMost,
          "reorderquantity reorderqty reorder orderqty orderquantity max maxstock"},
    Field{"Active", "Active", FieldKind::Flag, 0, "active isactive enabled aktiv"},
    Field{"Notes", "Notes", FieldKind::Notes, kNotesMost, "notes note comment comments remark remarks longdescription bemerkung"},
};
static_assert(kItemFields.size() == item::Count);

constexpr std::array kSupplierFields{
    Field{"Supplier", "Name", FieldKind::Name, 100, "name supplier vendor suppliername vendorname company lieferant firma"},
    Field{"Address1", "Address", FieldKind::Text, 100, "address address1 street addressline1 strasse"},
    Field{"Address2", "Address 2", FieldKind::Text, 100, "address2 addressline2"},
    Field{"Address3", "Address 3", FieldKind::Text, 100, "address3 addressline3"},
    Field{"City", "City", FieldKind::Text, 50, "city town ort stadt"},
    Field{"State", "State", FieldKind::State, 2, "state st region province"},
    Field{"Zip", "Zip", FieldKind::Zip, 20, "zip zipcode postalcode postcode plz"},
    Field{"Phone", "Phone", FieldKind::Phone, 30, "phone phonenumber telephone tel telefon"},
    Field{"Fax", "Fax", FieldKind::Phone, 30, "fax faxnumber"},
    Field{"Email", "Email", FieldKind::Text, 100, "email mail emailaddress"},
    Field{"AccountNumber", "Account number", FieldKind::Text, 50, "accountnumber account accountno acct customerno ourno"},
    Field{"SalesRep", "Sales person", FieldKind::Text, 100, "salesrep salesperson contact contactname rep"},
    Field{"Website", "Website", FieldKind::Text, 255, "website web url homepage"},
};

constexpr std::array kCustomerFields{
    Field{"AccountNumber", "Account number", FieldKind::Code, 50,
          "accountnumber account accountno customerno customernumber customerid id"},
    Field{"FirstName", "First name", FieldKind::Text, 50, "firstname first givenname vorname"},
    Field{"LastName", "Last name", FieldKind::Text, 50, "lastname last surname name familyname nachname customername"},
    Field{"Company", "Company", FieldKind::Text, 100, "company companyname business firma organization"},
    Field{"Address", "Address", FieldKind::Text, 100, "address address1 street addressline1 strasse"},
    Field{"Address2", "Address 2", FieldKind::Text, 100, "address2 addressline2"},
    Field{"City", "City", FieldKind::Text, 50, "city town ort stadt"},
    Field{"State", "State", FieldKind::State, 2, "state st region province"},
    Field{"Zip", "Zip", FieldKind::Zip, 20, "zip zipcode postalcode postcode plz"},
    Field{"PhoneNumber", "Phone", FieldKind::Phone, 30, "phone phonenumber telephone tel mobile cell telefon"},
    Field{"FaxNumber", "Fax", FieldKind::Phone, 30, "fax faxnumber"},
    Field{"Email", "Email", FieldKind::Text, 100, "email mail emailaddress"},
    Field{"ResaleNo", "Resale no.", FieldKind::Text, 50, "resaleno resale resalenumber taxid vatno"},
    Field{"TaxExempt", "Tax exempt", FieldKind::Flag, 0, "taxexempt exempt"},
    Field{"Active", "Active", FieldKind::Flag, 0, "active isactive enabled aktiv"},
    Field{"AccountOpened", "Customer since", FieldKind::Day, 0, "accountopened customersince since opened created datecreated"},
    Field{"Notes", "Notes", FieldKind::Notes, kNotesMost, "notes note comment comments remark remarks"},
};

bool isAmong(std::string_view words, std::string_view word) {
    for (std::size_t at = words.find(word); at != std::string_view::npos; at = words.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || words[at - 1] == ' ') && (end == words.size() || words[end] == ' '))
            return true;
    }
    return false;
}

} // namespace

std::span<const TargetName> targets() {
    return kTargets;
}

const TargetName& nameOf(Target target) {
    return kTargets.at(static_cast<std::size_t>(target));
}

std::span<const Field> fieldsOf(Target target) {
    switch (target) {
    case Target::Items:
        return kItemFields;
    case Target::Suppliers:
        return kSupplierFields;
    case Target::Customers:
        break;
    }
    return kCustomerFields;
}

int fieldNamed(Target target, std::string_view key) {
    const auto fields = fieldsOf(target);
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& field) { return key == field.key; });
    return found == fields.end() ? -1 : static_cast<int>(found - fields.begin());
}

std::string foldedHeading(std::string_view heading) {
    std::string folded;
    for (const char c : lowerCase(heading))
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || static_cast<unsigned char>(c) >= 0x80)
            folded += c;
    return folded;
}

int fieldMeant(Target target, std::string_view heading) {
    const std::string folded = foldedHeading(heading);
    const auto fields = fieldsOf(target);
    for (std::size_t i = 0; !folded.empty() && i < fields.size(); ++i)
        if (folded == foldedHeading(fields[i].caption) || folded == lowerCase(fields[i].key) || isAmong(fields[i].synonyms, folded))
            return static_cast<int>(i);
    return -1;
}

} // namespace merchantry::exchange
