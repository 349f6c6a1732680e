#include "reports/engine/outline.h"

namespace merchantry::reports {

FieldText::FieldText(const std::string& text, const db::RowStore& rows, const std::string& file, int line) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t open = text.find('{', at);
        if (open == std::string::npos) {
            pieces_.push_back({text.substr(at), -1, Format::Auto});
            return;
        }
        const std::size_t close = text.find('}', open);
        if (close == std::string::npos)
            throw DefinitionError(file, line, "A brace is opened and not closed in \"" + text + "\".");
        Piece piece;
        piece.text = text.substr(at, open - at);
        std::string name = text.substr(open + 1, close - open - 1);
        if (const std::size_t colon = name.find(':'); colon != std::string::npos) {
            const auto format = formatNamed(name.substr(colon + 1));
            if (!format)
                throw DefinitionError(file, line, "\"" + name.substr(colon + 1) + "\" is no format.");
            piece.format = *format;
            name.resize(colon);
        }
        piece.column = rows.columnOf(name);
        if (piece.column < 0)
            throw DefinitionError(file, line, "The query has no column \"" + name + "\".");
        pieces_.push_back(std::move(piece));
        at = close + 1;
    }
}

std::string FieldText::in(const db::RowStore& rows, int row) const {
    std::string result;
    for (const Piece& piece : pieces_) {
        result += piece.text;
        if (piece.column < 0)
            continue;
        const Value value = rows.value(row, piece.column);
        result += cellText(value, kindOf(value, piece.format).format);
    }
    return result;
}

} // namespace merchantry::reports
