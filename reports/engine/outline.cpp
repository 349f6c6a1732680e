#include "reports/engine/outline.h"

#include "base/text.h"

#include <algorithm>
#include <stdexcept>

namespace merchantry::reports {
namespace {

// A value of the column's type, to tell its format where there may be no rows.
Value sampleOf(const db::SqlType& type) {
    if (type.kind == db::TypeKind::Bit)
        return false;
    if (type.isWhole())
        return std::int64_t{0};
    if (type.isMoney())
        return Currency();
    if (type.isFloat() || type.kind == db::TypeKind::Decimal)
        return 0.0;
    if (type.isDate())
        return Date();
    return "";
}

std::optional<Figure> figureOf(const Sum& sum, Total total) {
    switch (total) {
    case Total::Sum:
        return sum.count > 0 ? std::optional<Figure>(sum.sum) : Figure();
    case Total::Count:
        return Figure::ofInteger(sum.count);
    case Total::Average:
        return sum.sum.over(Figure::ofInteger(sum.count));
    case Total::Min:
        return sum.min;
    case Total::Max:
        return sum.max;
    default:
        return std::nullopt;
    }
}

} // namespace

Outline::Outline(const Definition& definition, const db::RowStore& rows) : definition_(definition), rows_(rows) {
    const std::string file = definition.file.filename().string();
    for (const ColumnDefinition& column : definition.columns)
        bindColumn(column);
    for (const GroupDefinition& group : definition.groups)
        groups_.push_back({sourceOf(group.field, group.line), FieldText(group.header, rows, file, group.line),
                           FieldText(group.footer, rows, file, group.line)});
    for (const ChartDefinition& chart : definition.charts) {
        sourceOf(chart.label, chart.line);
        numberOf(chart.value, chart.line);
    }
    [[maybe_unused]] const FieldText subtitle(definition.subtitle, rows, file, definition.subtitleLine);
    for (const auto* lines : {&definition.headers, &definition.footers})
        for (const TextLine& line : *lines)
            FieldText(line.text, rows, file, line.line); // refused here rather than on the page
    grand_ = noSums();
    for (int row = 0; row < rows.rowCount(); ++row)
        add(grand_, row);
}

int Outline::sourceOf(const std::string& field, int line) const {
    const int source = rows_.columnOf(field);
    if (source < 0)
        throw DefinitionError(definition_.file.filename().string(), line, "The query has no column \"" + field + "\".");
    return source;
}

// The same, of a field to be reckoned with.
int Outline::numberOf(const std::string& field, int line) const {
    const int source = sourceOf(field, line);
    const db::SqlType& type = rows_.columns()[static_cast<std::size_t>(source)].type;
    if (!Figure::of(sampleOf(type)))
        throw DefinitionError(definition_.file.filename().string(), line, "\"" + field + "\" is no number.");
    return source;
}

std::size_t Outline::measureOf(int source) {
    const auto known = std::find(measures_.begin(), measures_.end(), source);
    if (known != measures_.end())
        return static_cast<std::size_t>(known - measures_.begin());
    measures_.push_back(source);
    return measures_.size() - 1;
}

void Outline::bindColumn(const ColumnDefinition& definition) {
    ShownColumn column;
    column.definition = &definition;
    if (!definition.expression.empty()) {
        try {
            column.expression.emplace(definition.expression);
        } catch (const std::invalid_argument& error) {
            throw DefinitionError(definition_.file.filename().string(), definition.line, error.what());
        }
        for (const std::string& field : column.expression->fields()) {
            column.sources.push_back(numberOf(field, definition.line));
            column.measures.push_back(measureOf(column.sources.back()));
        }
        column.kind = kindOf(0.0, definition.format);
    } else {
        const bool anyKind = definition.total == Total::None || definition.total == Total::Count || definition.total == Total::First;
        const bool reckoned = !anyKind || definition.share != Scope::None || definition.running != Scope::None;
        column.source = reckoned ? numberOf(definition.field, definition.line) : sourceOf(definition.field, definition.line);
        const Value sample = sampleOf(rows_.columns()[static_cast<std::size_t>(column.source)].type);
        column.kind = kindOf(sample, definition.share != Scope::None ? Format::Percent : definition.format);
        if (definition.total != Total::None || definition.share != Scope::None || definition.running != Scope::None)
            column.measure = measureOf(column.source);
    }
    hasTotals_ = hasTotals_ || definition.total != Total::None;
    wantsGroupSums_ = wantsGroupSums_ || definition.share == Scope::Group;
    wantsRunningSums_ = wantsRunningSums_ || definition.running != Scope::None;
    columns_.push_back(std::move(column));
}

std::string Outline::subtitle() const {
    if (rows_.rowCount() == 0)
        return "";
    return FieldText(definition_.subtitle, rows_, definition_.file.filename().string(), definition_.subtitleLine).in(rows_, 0);
}

bool Outline::sameCell(int row, int other, int source) const {
    const bool isNull = rows_.isNull(row, source);
    if (isNull || rows_.isNull(other, source))
        return isNull && rows_.isNull(other, source);
    return rows_.isText(source) ? rows_.text(row, source) == rows_.text(other, source)
                                : rows_.value(row, source) == rows_.value(other, source);
}

int Outline::breakBefore(int row) const {
    if (row == 0)
        return 0;
    for (int group = 0; group < groupCount(); ++group)
        if (!sameCell(row, row - 1, groups_[static_cast<std::size_t>(group)].source))
            return group;
    return groupCount();
}

std::optional<Figure> Outline::figureAt(int row, int source) const {
    if (rows_.isNull(row, source))
        return std::nullopt;
    const db::SqlType& type = rows_.columns()[static_cast<std::size_t>(source)].type;
    if (type.isWhole())
        return Figure::ofInteger(rows_.number(row, source));
    if (type.isMoney())
        return Figure::ofMoney(rows_.number(row, source));
    return Figure::of(rows_.value(row, source));
}

// Nothing stands there for a reader: no value, or a text of blanks.
bool Outline::isEmpty(int row, int source) const {
    return rows_.isNull(row, source) ||
           (rows_.columns()[static_cast<std::size_t>(source)].type.isText() && trimmed(rows_.text(row, source)).empty());
}

void Outline::add(Sums& sums, int row) const {
    for (std::size_t i = 0; i < measures_.size(); ++i) {
        Sum& sum = sums[i];
        if (sum.firstRow < 0)
            sum.firstRow = row;
        if (isEmpty(row, measures_[i]))
            continue;
        ++sum.count;
        const auto figure = figureAt(row, measures_[i]);
        if (!figure)
            continue;
        sum.sum = sum.sum + *figure;
        if (!sum.min || *figure < *sum.min)
            sum.min = figure;
        if (!sum.max || *figure > *sum.max)
            sum.max = figure;
    }
}

Sums Outline::groupSums(int firstRow) const {
    Sums sums = noSums();
    add(sums, firstRow);
    for (int row = firstRow + 1; row < rows_.rowCount() && breakBefore(row) == groupCount(); ++row)
        add(sums, row);
    return sums;
}

std::optional<Figure> Outline::figure(int row, std::size_t column) const {
    const ShownColumn& shown = columns_[column];
    if (shown.expression)
        return shown.expression->value([&](std::size_t field) { return figureAt(row, shown.sources[field]); });
    return figureAt(row, shown.source);
}

std::optional<Figure> Outline::computed(int row, std::size_t column, const Around& around) const {
    const ShownColumn& shown = columns_[column];
    const ColumnDefinition& definition = *shown.definition;
    const bool inGroup = groupCount() > 0;
    if (definition.share != Scope::None) {
        const Sums& whole = definition.share == Scope::Group && inGroup ? around.group : grand_;
        const auto part = figureAt(row, shown.source);
        return part ? part->over(whole[*shown.measure].sum) : std::nullopt;
    }
    if (definition.running != Scope::None)
        return (definition.running == Scope::Group && inGroup ? around.groupSoFar : around.reportSoFar)[*shown.measure].sum;
    return figure(row, column);
}

std::vector<std::string> Outline::cells(int row, const Around& around) const {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const ShownColumn& column = columns_[i];
        if (!column.isComputed()) {
            texts.push_back(cellText(rows_.value(row, column.source), column.kind.format));
            continue;
        }
        const auto value = computed(row, i, around);
        texts.push_back(value ? figureText(*value, column.kind.format) : "");
    }
    return texts;
}

std::string Outline::totalText(const ShownColumn& column, const Sums& sums, const Sums& enclosing) const {
    const ColumnDefinition& definition = *column.definition;
    if (column.expression) {
        const auto value = hasTotals_ ? column.expression->value([&](std::size_t field) -> std::optional<Figure> {
            const Sum& sum = sums[column.measures[field]];
            return sum.count > 0 ? std::optional(sum.sum) : std::nullopt; // no figure at all is not 0
        })
                                      : std::nullopt;
        return value ? figureText(*value, column.kind.format) : "";
    }
    if (definition.share != Scope::None) {
        const auto share = sums[*column.measure].sum.over(enclosing[*column.measure].sum);
        return share ? figureText(*share, Format::Percent) : "";
    }
    if (definition.total == Total::None)
        return "";
    const Sum& sum = sums[*column.measure];
    if (definition.total == Total::First)
        return sum.firstRow < 0 ? "" : cellText(rows_.value(sum.firstRow, column.source), column.kind.format);
    const auto figure = figureOf(sum, definition.total);
    const bool plain = definition.total == Total::Count || !column.kind.isNumber;
    return figure ? figureText(*figure, plain ? Format::Integer : column.kind.format) : "";
}

std::vector<std::string> Outline::totals(const Sums& sums, const Sums& enclosing) const {
    std::vector<std::string> texts;
    for (const ShownColumn& column : columns_)
        texts.push_back(totalText(column, sums, enclosing));
    return texts;
}

} // namespace merchantry::reports
