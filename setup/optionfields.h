#pragma once

#include "base/value.h"

#include <optional>
#include <span>
#include <string>

namespace merchantry::setup {

// Under which the screen of the options reports failures.
constexpr const char* kOptionsTag = "MR_frmOptions";

// What an entry must be before it is written.
enum class OptionCheck {
    None,
    Name,      // filled
    Percent,   // a number from 0 to 100
    AtMost100, // a number of money up to 100
    Amount,    // a number of money from 0
    Whole,     // a whole number from 0
    Port,      // a number from 1
};

// One setting of the store: the control of frmOptions that shows it, the column of StoreOptions that keeps it (spelt as it is written, and
// as it is read where that differs), what stands in it while the store has none, the check, and the names under which a failure of its
// writing is reported.
struct OptionField {
    const char* control;
    const char* column;
    const char* readAs;
    const char* initial; // null for none
    OptionCheck check;
    const char* procedure;
    const char* tag;
};

// In the order of the window; the defaults are put in in this order, too.
std::span<const OptionField> optionFields();

// What is wrong with an entry, in a sentence for the user; empty when it may be written.
std::string complaintAbout(OptionCheck check, const std::string& entry);
// What stands in the box after a wrong entry; nothing when the entry stays.
std::optional<std::string> afterWrong(OptionCheck check);
// What is written of a good entry. Throws OverflowError for money that cannot be held.
Value storedValue(OptionCheck check, const std::string& entry);

} // namespace merchantry::setup
