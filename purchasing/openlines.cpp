#include "purchasing/openlines.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"

#include <cmath>

namespace merchantry::purchasing {

using app::modMain;
using app::openDirect;

std::vector<OpenLine> openLines(std::int32_t PONumber) {
    const auto rows = openDirect(db::Sql("sp_GetPOItemToReceive ") + PONumber);
    auto& row = *rows;
    const auto quantity = [&row](const char* column) { return row[column].Value().toInt16(); };
    std::vector<OpenLine> lines;
    for (; !row.Eof(); row.MoveNext()) {
        OpenLine line{row["SKU"].text(),
                      row["MatrixSKU"].text(),
                      row["PartNo"].text(),
                      row["Name"].text(),
                      quantity("Qty"),
                      quantity("QtyRecvd"),
                      quantity("QtyCanceled"),
                      0,
                      row["Cost"].Value().toCurrency()};
        line.OpenQty = static_cast<std::int16_t>(line.Qty - line.QtyRecvd - line.QtyCanceled);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string openLinesInWords(std::size_t lines, std::int64_t pieces, const char* what) {
    return counted(static_cast<std::int64_t>(lines), "open line") + ", " + counted(pieces, "piece") + " to " + what;
}

std::string itemKey(const std::string& SKU, const std::string& MatrixSKU) {
    return lowerCase(trimmedRight(SKU)) + '\0' + lowerCase(trimmedRight(MatrixSKU));
}

std::optional<std::int16_t> wholeQuantity(const std::string& text) {
    const auto number = numberOf(text);
    if (!number || *number < 0 || *number != std::trunc(*number))
        return std::nullopt;
    return toInt16(*number);
}

bool breaksStatement(const std::string& text) {
    try {
        (db::Sql("'") + text + "'").check();
        return false;
    } catch (const db::DbError&) {
        return true;
    }
}

std::int32_t postedNumber(const db::Sql& statement, const char* column) {
    const auto answer = modMain().Conn->Execute(statement);
    return (*answer)[column].Value().toInt32();
}

void changeStatus(std::int32_t PONumber, bool anyOpen) {
    const std::string status = anyOpen ? "P" : "C";
    modMain().Conn->Execute(db::Sql("sp_ChangePOStatus ") + PONumber + ", '" + status + "'");
}

} // namespace merchantry::purchasing
