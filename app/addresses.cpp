#include "app/addresses.h"

#include "base/text.h"
#include "ui/label.h"

namespace merchantry::app {

void CollapseAddress(ui::Form& form) {
    auto& second = dynamic_cast<ui::Label&>(*form.find("lblAddress2"));
    auto& third = dynamic_cast<ui::Label&>(*form.find("lblAddress3"));
    auto& city = dynamic_cast<ui::Label&>(*form.find("lblCity"));
    if (!third.caption().empty())
        return;
    (second.caption().empty() ? second : third).setCaption(city.caption());
    city.setCaption("");
}

std::string cityStateZip(const Value& city, const Value& state, const Value& zip) {
    const std::string town(trimmed(city.toText()));
    const std::string land(trimmed(state.toText()));
    const std::string code(trimmed(zip.toText()));
    const std::string place = town.empty() || land.empty() ? town + land : town + ", " + land;
    return code.empty() ? place : place + " " + code;
}

std::string FormatCityStateZip(const db::Field& cityField, const db::Field& stateField, const db::Field& zipField) {
    return cityStateZip(cityField.Value(), stateField.Value(), zipField.Value());
}

} // namespace merchantry::app
