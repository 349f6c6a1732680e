#include "app/states.h"

#include <algorithm>
#include <iterator>

namespace merchantry::app {
namespace {

constexpr const char* kStates[] = {"AK", "AL", "AR", "AS", "AZ", "CA", "CO", "CT", "DC", "DE", "FL", "GA", "HI", "IA",
                                   "ID", "IL", "IN", "KS", "KY", "LA", "MA", "MD", "ME", "MI", "MN", "MO", "MS", "MT",
                                   "NC", "ND", "NE", "NH", "NJ", "NM", "NV", "NY", "OH", "OK", "OR", "PA", "PR", "RI",
                                   "SC", "SD", "TN", "TX", "UT", "VA", "VT", "WA", "WI", "WV", "WY"};

template <class List> void fill(List& list) {
    list.clear();
    for (const char* state : kStates)
        list.add(state);
}

} // namespace

void fillStates(ui::ListBox& list) {
    fill(list);
}

void fillStates(ui::ComboBox& list) {
    fill(list);
}

bool isState(const std::string& code) {
    return std::find(std::begin(kStates), std::end(kStates), code) != std::end(kStates);
}

std::string stateEntry(ui::ComboBox& list, const std::string& stored) {
    if (stored.empty())
        return "";
    if (list.indexOf(stored) < 0)
        list.add(stored);
    return list.entries()[static_cast<std::size_t>(list.indexOf(stored))].text;
}

} // namespace merchantry::app
