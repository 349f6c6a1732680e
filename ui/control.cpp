#include "ui/control.h"

#include "ui/form.h"
#include "ui/tabset.h"

namespace merchantry::ui {

Control::Control(Form& form, std::string_view name) : form_(form), name_(name) {
    form_.add(*this);
}

Control::~Control() {
    form_.remove(*this);
}

void Control::setEnabled(bool on) {
    if (enabled_ == on)
        return;
    enabled_ = on;
    changed(Aspect::State);
}

void Control::setVisible(bool on) {
    if (visible_ == on)
        return;
    visible_ = on;
    changed(Aspect::State);
}

void Control::setToolTip(std::string text) {
    toolTip_ = std::move(text);
    changed(Aspect::Look);
}

void Control::setForeColor(Color color) {
    foreColor_ = color;
    changed(Aspect::Look);
}

void Control::setPlace(const Place& place) {
    if (place_ == place)
        return;
    place_ = place;
    changed(Aspect::Place);
}

void Control::putInto(Control* container, int page) {
    container_ = container;
    page_ = page;
}

std::string Control::obstacle() const {
    if (!visible_)
        return "hidden";
    if (!enabled_)
        return "disabled";
    if (container_ == nullptr)
        return "";
    if (const auto* tabs = dynamic_cast<const TabSet*>(container_); tabs != nullptr && tabs->current() != page_)
        return "on another page";
    return container_->obstacle();
}

void Control::setFocus() {
    form_.focus(this);
}

void Control::changed(Aspect aspect) {
    if (FormView* view = form_.view())
        view->controlChanged(*this, aspect);
}

} // namespace merchantry::ui
