#include "ui/play/rowtexts.h"

namespace merchantry::ui::play {

std::vector<std::vector<Value>> query(Step& step, const std::string& batch) {
    try {
        return step.host().query(batch);
    } catch (const std::exception& error) {
        throw LineFailure{"the store to take " + inQuotes(batch), error.what()};
    }
}

std::string rowText(const std::vector<Value>& row) {
    std::string text;
    for (const Value& cell : row)
        text += (&cell == &row.front() ? "" : "|") + cell.toScriptText();
    return text;
}

} // namespace merchantry::ui::play
