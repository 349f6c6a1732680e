#include "exchange/import/columns.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace merchantry::exchange {
namespace {

constexpr int kLookAt = 30; // rows from the top that may hold the headings

int headingsMeant(Target target, const SheetTable& table, int row) {
    int count = 0;
    for (const int field : matchedBy(target, table, row).fields)
        count += field >= 0 ? 1 : 0;
    return count;
}

bool isHiddenColumn(const SheetTable& table, int column) {
    return static_cast<std::size_t>(column) < table.hiddenColumns.size() && table.hiddenColumns[static_cast<std::size_t>(column)];
}

} // namespace

int ColumnMatch::columnOf(int field) const {
    const auto found = std::find(fields.begin(), fields.end(), field);
    return found == fields.end() ? -1 : static_cast<int>(found - fields.begin());
}

void ColumnMatch::set(int column, int field) {
    if (field >= 0)
        std::replace(fields.begin(), fields.end(), field, -1);
    fields.at(static_cast<std::size_t>(column)) = field;
}

ColumnMatch matchedBy(Target target, const SheetTable& table, int headingRow) {
    ColumnMatch match;
    match.headingRow = headingRow;
    match.fields.assign(static_cast<std::size_t>(table.columns()), -1);
    for (int column = 0; headingRow >= 0 && column < table.cells(headingRow); ++column) {
        const SheetCell cell = table.cell(headingRow, column);
        const int field = cell.kind == CellKind::Text && !isHiddenColumn(table, column) ? fieldMeant(target, cell.text) : -1;
        if (field >= 0 && match.columnOf(field) < 0)
            match.fields[static_cast<std::size_t>(column)] = field;
    }
    return match;
}

ColumnMatch matched(Target target, const SheetTable& table) {
    int best = -1;
    int most = 0;
    for (int row = 0; row < std::min(kLookAt, table.rows()); ++row) {
        const int meant = headingsMeant(target, table, row);
        if (meant > most)
            best = row;
        most = std::max(most, meant);
    }
    return matchedBy(target, table, best);
}

std::string headingsKey(const SheetTable& table, int headingRow) {
    if (headingRow < 0)
        return "";
    std::string all;
    for (int column = 0; column < table.cells(headingRow); ++column)
        all += foldedHeading(table.cell(headingRow, column).text) + "\n";
    return fingerprint(all);
}

std::string remembered(Target target, const ColumnMatch& match) {
    std::vector<std::string> parts;
    for (std::size_t column = 0; column < match.fields.size(); ++column)
        if (const int field = match.fields[column]; field >= 0)
            parts.push_back(columnLetters(static_cast<int>(column)) + "=" + fieldsOf(target)[static_cast<std::size_t>(field)].key);
    return joined(parts, ";");
}

void recall(Target target, const std::string& text, ColumnMatch& match) {
    std::fill(match.fields.begin(), match.fields.end(), -1);
    for (const std::string& part : split(text, ";")) {
        const std::size_t sign = part.find('=');
        const int field = sign == std::string::npos ? -1 : fieldNamed(target, part.substr(sign + 1));
        for (std::size_t column = 0; field >= 0 && column < match.fields.size(); ++column)
            if (columnLetters(static_cast<int>(column)) == part.substr(0, sign))
                match.set(static_cast<int>(column), field);
    }
}

std::string fingerprint(std::string_view text) {
    constexpr std::array<std::uint64_t, 2> kFactors{0x9E3779B97F4A7C15ULL, 0xC2B2AE3D27D4EB4FULL};
    std::array<std::uint64_t, 2> state{text.size() + 1, ~text.size()};
    for (std::size_t at = 0; at < text.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, std::min(sizeof word, text.size() - at));
        for (std::size_t i = 0; i < state.size(); ++i) {
            state[i] = (state[i] ^ word) * kFactors[i];
            state[i] ^= state[i] >> 29;
        }
    }
    std::array<char, 33> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx%016llx", static_cast<unsigned long long>(state[0]),
                  static_cast<unsigned long long>(state[1]));
    return digits.data();
}

} // namespace merchantry::exchange
