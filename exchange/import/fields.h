#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::exchange {

// What the rows of a file become.
enum class Target { Items, Suppliers, Customers };

struct TargetName {
    Target target;
    const char* key;     // in the store
    const char* caption; // for the user
};
std::span<const TargetName> targets();
const TargetName& nameOf(Target target);

// How the text of a field is read and checked.
enum class FieldKind { Code, Text, Notes, Money, Whole, Flag, Day, Phone, State, Zip, Name };

// A field that a column of a file can go to. Its key is the column of the store, or what stands for one.
struct Field {
    const char* key;
    const char* caption;
    FieldKind kind;
    int most;             // characters, or the greatest number
    const char* synonyms; // headings that mean it, as foldedHeading gives them, with blanks between
};
std::span<const Field> fieldsOf(Target target);
// The position of a field by its key; -1 for none.
int fieldNamed(Target target, std::string_view key);

// The fields of items by their positions.
namespace item {
enum Position { Code, Parent, Name, Price, Department, Tax, Stock, Supplier, Cost, PartNo, Restock, Reorder, Active, Notes, Count };
}

// A heading without case, blanks and signs: "Item No." is "itemno".
std::string foldedHeading(std::string_view heading);
// The field that a heading means, -1 for none: by its caption, its key or a synonym.
int fieldMeant(Target target, std::string_view heading);

} // namespace merchantry::exchange
