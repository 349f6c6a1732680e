#include "reports/engine/exportrows.h"
#include "reports/engine/exports.h"

#include "base/numbers.h"

#include <ostream>

namespace merchantry::reports {
namespace {

constexpr int kRowsBetweenQuestions = 4096;
constexpr std::size_t kBuffer = 1U << 16U;

void append(std::string& line, std::string_view text) {
    const std::string field = withoutFormula(text);
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += field;
        return;
    }
    line += '"';
    for (const char c : field) {
        line += c;
        if (c == '"')
            line += '"';
    }
    line += '"';
}

std::string oneLine(std::string title) {
    for (char& c : title)
        c = c == '\n' ? ' ' : c;
    return title;
}

void appendCell(std::string& line, const Outline& outline, const ExportRows& exported, std::size_t at) {
    const Outline::ShownColumn& column = outline.columns()[at];
    const db::RowStore& rows = outline.rows();
    const int row = exported.row();
    if (column.isComputed()) {
        const auto figure = exported.computed(at);
        line += figure ? figure->toShortText() : "";
        return;
    }
    if (rows.isNull(row, column.source))
        return;
    const db::SqlType& type = rows.columns()[static_cast<std::size_t>(column.source)].type;
    if (type.isText())
        append(line, rows.text(row, column.source));
    else if (type.isWhole())
        line += std::to_string(rows.number(row, column.source));
    else if (type.isDate())
        line += rows.value(row, column.source).as<Date>().toIsoText();
    else if (const auto figure = outline.figure(row, at))
        line += figure->toShortText();
    else
        append(line, rows.value(row, column.source).toText());
}

} // namespace

bool writeCsv(const Report& report, std::ostream& out, const KeepWriting& goOn) {
    const Outline& outline = report.outline();
    requireColumns(outline);
    const std::string& criteria = report.head().criteria;
    ExportRows rows(outline);
    std::string text;
    for (const std::string& title : rows.groupTitles())
        text += title + ",";
    for (std::size_t i = 0; i < outline.columns().size(); ++i) {
        text += i > 0 ? "," : "";
        append(text, oneLine(outline.columns()[i].definition->title));
    }
    text += criteria.empty() ? "\r\n" : ",Criteria\r\n";
    while (rows.next()) {
        for (const std::string& name : rows.groups()) {
            append(text, name);
            text += ',';
        }
        for (std::size_t i = 0; i < outline.columns().size(); ++i) {
            if (i > 0)
                text += ',';
            appendCell(text, outline, rows, i);
        }
        if (!criteria.empty()) {
            text += ',';
            append(text, rows.row() == 0 ? criteria : "");
        }
        text += "\r\n";
        if (text.size() > kBuffer) {
            out << text;
            text.clear();
        }
        if (goOn && rows.row() % kRowsBetweenQuestions == 0 && !goOn(rows.row()))
            return false;
    }
    out << text;
    return true;
}

} // namespace merchantry::reports
