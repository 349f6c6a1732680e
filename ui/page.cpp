#include "ui/page.h"

#include "base/characters.h"

namespace merchantry::ui {

int FixedMeasure::width(const std::string& text, int halfPoints, bool /*bold*/) const {
    return static_cast<int>(characterCount(text)) * halfPoints * 5;
}

} // namespace merchantry::ui
