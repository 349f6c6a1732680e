#pragma once

#include "ui/form.h"

#include <vector>

namespace merchantry::app {

// Moves and stretches a form's controls as the form is resized, by the words in each control's tag: "Top", "Left", "Width", "Height".
// A control keeps its distance from the form's edges. Sizes are twips.
class Resizer {
public:
    // Remembers the form's size as base and minimum. The form must outlive the resizer.
    void Initialize(ui::Form& form);
    // Called from the form's resize step. A form smaller than its minimum is brought back to it.
    void Resize();

private:
    void move(ui::Control& control, std::size_t index, int wider, int higher);

    ui::Form* form_ = nullptr;
    int baseHeight_ = 0;
    int baseWidth_ = 0;
    int leastHeight_ = 0;
    int leastWidth_ = 0;
    bool busy_ = false;
    std::vector<int> heights_; // remembered per control; -1 until first needed
};

} // namespace merchantry::app
