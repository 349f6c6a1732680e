#include "purchasing/openlines.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"

#include <cmath>
#include <utility>

namespace merchantry::purchasing {

using app::modMain;
using app::openDirect;

namespace {

constexpr int kTold = 10; // lines that a box has room for

// "CUP: Open Qty is 4 now.", a line for each difference.
std::string differences(const OpenLine& shown, const OpenLine& now) {
    std::string lines;
    const auto tell = [&](const char* what, const std::string& value) {
        lines += shown.MatrixSKU + ": " + what + " is " + value + " now.\n";
    };
    if (now.OpenQty != shown.OpenQty)
        tell("Open Qty", std::to_string(now.OpenQty));
    if (now.OrderedCost != shown.OrderedCost)
        tell("Cost", now.OrderedCost.toDisplay());
    if (now.OrderedPartNo != shown.OrderedPartNo)
        tell("Supplier Part #", now.OrderedPartNo.empty() ? "empty" : now.OrderedPartNo);
    return lines;
}

} // namespace

void ToldChanges::add(const std::string& sentences) {
    if (!sentences.empty() && ++lines_ <= kTold)
        sentences_ += sentences;
}

std::string ToldChanges::text() const {
    return lines_ > kTold ? sentences_ + "And " + counted(lines_ - kTold, "more line") + ".\n" : sentences_;
}

void OpenLine::renew(const OpenLine& now) {
    const OpenLine typed = std::exchange(*this, now);
    if (typed.PartNo != typed.OrderedPartNo)
        PartNo = typed.PartNo;
    if (typed.Cost != typed.OrderedCost)
        Cost = typed.Cost;
}

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
                      row["Cost"].Value().toCurrency(),
                      {},
                      {}};
        line.OpenQty = static_cast<std::int16_t>(line.Qty - line.QtyRecvd - line.QtyCanceled);
        line.OrderedPartNo = line.PartNo;
        line.OrderedCost = line.Cost;
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

void requireAsShown(std::int32_t PONumber, const std::vector<OpenLine>& shown) {
    std::map<std::string, OpenLine> now;
    for (OpenLine& line : openLines(PONumber))
        now.emplace(itemKey(line.SKU, line.MatrixSKU), line);
    ToldChanges told;
    for (const OpenLine& line : shown) {
        const auto found = now.find(itemKey(line.SKU, line.MatrixSKU));
        told.add(found == now.end() ? line.MatrixSKU + ": nothing is open any more.\n" : differences(line, found->second));
    }
    if (told.any())
        throw OrderChanged(told.text());
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
