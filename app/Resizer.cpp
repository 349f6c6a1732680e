#include "app/Resizer.h"

#include "base/text.h"

#include <algorithm>

namespace merchantry::app {

void Resizer::Initialize(ui::Form& form) {
    form_ = &form;
    baseHeight_ = leastHeight_ = form.height();
    baseWidth_ = leastWidth_ = form.width();
    heights_.assign(form.controls().size(), -1);
}

void Resizer::Resize() {
    if (busy_ || form_ == nullptr || form_->minimised())
        return;
    busy_ = true;
    form_->setSize(std::max(form_->width(), leastWidth_), std::max(form_->height(), leastHeight_));
    const int higher = form_->height() - baseHeight_;
    const int wider = form_->width() - baseWidth_;
    const auto& controls = form_->controls();
    for (std::size_t i = 0; i < controls.size() && i < heights_.size(); ++i)
        if (!controls[i]->tag.empty())
            move(*controls[i], i, wider, higher);
    baseHeight_ = form_->height();
    baseWidth_ = form_->width();
    busy_ = false;
}

void Resizer::move(ui::Control& control, std::size_t index, int wider, int higher) {
    for (const std::string& word : split(control.tag, " ")) {
        ui::Place place = control.place();
        if (word == "Top") {
            place.top += higher;
        } else if (word == "Left") {
            place.left += wider;
        } else if (word == "Width") {
            place.width += wider;
        } else if (word == "Height") {
            if (heights_[index] < 0)
                heights_[index] = place.height;
            heights_[index] += higher;
            place.height = heights_[index];
        }
        control.setPlace(place);
        // Some controls round their height upwards; then it is lowered, at most twice.
        for (int i = 0; word == "Height" && i < 2 && control.place().height > heights_[index]; ++i) {
            place.height = control.place().height - 10;
            control.setPlace(place);
        }
    }
}

} // namespace merchantry::app
