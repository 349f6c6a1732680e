#include "reports/engine/definition.h"

#include "base/lettercase.h"
#include "base/text.h"
#include "base/tomltable.h"
#include "reports/engine/figure.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

namespace merchantry::reports {
namespace {

using toml::CheckedTable;
using toml::Words;

const Words<Align> kAligns{{"left", Align::Left}, {"center", Align::Center}, {"right", Align::Right}};
const Words<Ink> kInks{{"black", Ink::Black}, {"red", Ink::Red},   {"green", Ink::Green},
                       {"blue", Ink::Blue},   {"grey", Ink::Grey}, {"amber", Ink::Amber}};
const Words<ParameterKind> kParameterKinds{{"where", ParameterKind::Where},
                                           {"sort", ParameterKind::Sort},
                                           {"direction", ParameterKind::Direction},
                                           {"number", ParameterKind::Number},
                                           {"text", ParameterKind::Text}};
const Words<Total> kTotals{{"sum", Total::Sum}, {"count", Total::Count}, {"average", Total::Average},
                           {"min", Total::Min}, {"max", Total::Max},     {"first", Total::First}};
const Words<BarcodeKind> kBarcodes{{"auto", BarcodeKind::Auto},
                                   {"ean13", BarcodeKind::Ean13},
                                   {"upca", BarcodeKind::UpcA},
                                   {"code128", BarcodeKind::Code128},
                                   {"code39", BarcodeKind::Code39}};
const Words<Format> kFormats{{"text", Format::Text},         {"number", Format::Number}, {"integer", Format::Integer},
                             {"quantity", Format::Quantity}, {"money", Format::Money},   {"cost", Format::Cost},
                             {"percent", Format::Percent},   {"date", Format::Date},     {"time", Format::Time},
                             {"datetime", Format::DateTime}, {"flag", Format::Flag}};
const Words<ChartKind> kCharts{{"bar", ChartKind::Bar}, {"line", ChartKind::Line}, {"pie", ChartKind::Pie}};
const Words<PaperSize> kPapers{{"Letter", PaperSize::Letter}, {"A4", PaperSize::A4}};

StyleRule styleRule(CheckedTable& table) {
    StyleRule rule;
    std::string when;
    table.read("when", when);
    table.read("color", rule.ink, kInks);
    table.read("bold", rule.bold);
    const std::string_view text = trimmed(when);
    for (const std::string_view comparison : {"<>", "<=", ">=", "<", ">", "="}) {
        if (!text.starts_with(comparison))
            continue;
        rule.comparison = comparison;
        std::string_view operand = trimmed(text.substr(comparison.size()));
        rule.isText = operand.size() >= 2 && operand.front() == '\'' && operand.back() == '\'';
        if (rule.isText)
            operand = operand.substr(1, operand.size() - 2);
        rule.operand = operand;
        break;
    }
    if (rule.comparison.empty() || (!rule.isText && !Figure::fromText(rule.operand)))
        table.failHere("\"when\" is a comparison and a value, as \"< 0\" or \"= 'Open'\".");
    table.finish();
    return rule;
}

Scope runningOf(CheckedTable& table) {
    const toml::Value* value = table.find("running");
    if (value == nullptr)
        return Scope::None;
    if (value->isFlag())
        return value->flag() ? Scope::Report : Scope::None;
    return table.word(*value, "running", Words<Scope>{{"group", Scope::Group}, {"report", Scope::Report}});
}

ColumnDefinition column(CheckedTable& table) {
    ColumnDefinition column;
    column.line = table.line();
    table.read("field", column.field);
    table.read("expression", column.expression);
    if (column.field.empty() == column.expression.empty())
        table.failHere("A column has a \"field\" or an \"expression\".");
    column.title = column.field;
    table.read("title", column.title);
    table.read("width", column.width, 1, 200);
    table.read("format", column.format, kFormats);
    table.read("align", column.align, kAligns);
    table.read("total", column.total, kTotals);
    if (column.total != Total::None && column.field.empty())
        table.failAt("total", "A computed column is computed from the totals of its fields: leave \"total\" out.");
    table.read("share", column.share, Words<Scope>{{"total", Scope::Report}, {"group", Scope::Group}});
    column.running = runningOf(table);
    if ((column.share != Scope::None || column.running != Scope::None) && column.field.empty())
        table.failHere("\"share\" and \"running\" want a \"field\".");
    table.read("repeat", column.repeat);
    table.read("wrap", column.wrap);
    table.read("hide", column.hide);
    for (CheckedTable& rule : table.list("style", "a style"))
        column.styles.push_back(styleRule(rule));
    table.finish();
    return column;
}

TextLine textLine(CheckedTable& table, bool inBlocks) {
    TextLine line;
    line.line = table.line();
    table.read("text", line.text);
    table.read("size", line.size, 4, 72);
    table.read("bold", line.bold);
    table.read("align", line.align, kAligns);
    if (inBlocks) {
        bool left = true;
        table.read("left", left);
        table.read("right", line.rightBlock);
    }
    table.finish();
    return line;
}

GroupDefinition group(CheckedTable& table) {
    GroupDefinition group;
    group.line = table.line();
    table.read("field", group.field);
    if (group.field.empty())
        table.failHere("A group wants its \"field\".");
    table.read("order", group.order);
    table.read("header", group.header);
    table.read("footer", group.footer);
    table.read("page_break", group.pageBreak);
    table.read("keep", group.keep, 0, 50);
    table.read("details", group.details);
    for (auto [name, lines] : {std::pair{"head", &group.head}, std::pair{"below", &group.below}, std::pair{"slip", &group.slip}})
        for (CheckedTable& one : table.list(name, "a line"))
            lines->push_back(textLine(one, true));
    table.read("top", group.top, 0, 8);
    table.read("letter", group.letter);
    if (!group.letter.empty() && !group.pageBreak)
        table.failHere("A letter begins a page: it wants \"page_break = true\".");
    table.finish();
    return group;
}

ChartDefinition chart(CheckedTable& table) {
    ChartDefinition chart;
    chart.line = table.line();
    table.read("kind", chart.kind, kCharts);
    table.read("title", chart.title);
    table.read("label", chart.label);
    table.read("value", chart.value);
    if (chart.label.empty() || chart.value.empty())
        table.failHere("A chart wants its \"label\" and its \"value\".");
    table.read("most", chart.most, 2, 400);
    table.read("others", chart.others);
    table.read("place", chart.atStart, Words<bool>{{"start", true}, {"end", false}});
    table.read("height", chart.height, 60, 500);
    table.finish();
    return chart;
}

BarcodeDefinition barcode(CheckedTable& table) {
    BarcodeDefinition barcode;
    barcode.line = table.line();
    table.read("field", barcode.field);
    if (barcode.field.empty())
        table.failHere("A barcode wants its \"field\".");
    table.read("kind", barcode.kind, kBarcodes);
    table.read("height", barcode.height, 0.1, 4);
    table.read("text", barcode.text);
    table.finish();
    return barcode;
}

LabelDefinition label(CheckedTable& table, CheckedTable& root, PageDefinition& page) {
    LabelDefinition label;
    std::string sheet = "Letter";
    table.read("sheet", sheet);
    if (sheet == "roll")
        label.roll = true;
    else if (sheet == "A4" || sheet == "Letter")
        page.size = sheet == "A4" ? PaperSize::A4 : PaperSize::Letter;
    else
        table.failAt("sheet", "\"sheet\" must be one of: Letter, A4, roll.");
    table.read("columns", label.columns, 1, 20);
    table.read("rows", label.rows, 1, 60);
    table.read("left", label.left, 0, 12);
    table.read("top", label.top, 0, 12);
    table.read("width", label.width, 0.25, 12);
    table.read("height", label.height, 0.25, 17);
    table.read("gap_x", label.gapX, 0, 4);
    table.read("gap_y", label.gapY, 0, 4);
    if (const toml::Value* quantity = table.find("quantity")) {
        label.quantityLine = table.lineOfKey("quantity");
        if (quantity->isText())
            label.quantityField = quantity->text();
        else
            table.read("quantity", label.quantity, 0, 10000);
    }
    if (label.roll && (label.columns != 1 || label.rows != 1))
        table.failHere("On a roll every label is a page: columns and rows are 1.");
    const double paperWidth = page.size == PaperSize::A4 ? 8.27 : 8.5;
    const double paperHeight = page.size == PaperSize::A4 ? 11.69 : 11;
    if (!label.roll && (label.left + label.columns * label.width + (label.columns - 1) * label.gapX > paperWidth + 0.01 ||
                        label.top + label.rows * label.height + (label.rows - 1) * label.gapY > paperHeight + 0.01))
        table.failHere("The labels do not fit on the sheet.");
    table.finish();
    for (CheckedTable& line : root.list("line", "a [[line]]"))
        label.lines.push_back(textLine(line, false));
    for (CheckedTable& code : root.list("barcode", "a [[barcode]]"))
        label.barcodes.push_back(barcode(code));
    return label;
}

QueryDefinition query(CheckedTable& table) {
    QueryDefinition query;
    table.read("sql", query.sql);
    if (trimmed(query.sql).empty())
        table.failHere("[query] wants its \"sql\".");
    query.line = table.lineOfText("sql");
    if (const toml::Value* kinds = table.find("parameters")) {
        if (!kinds->isArray())
            table.fail(*kinds, "\"parameters\" must be a list of kinds.");
        query.parameters.clear();
        for (const toml::Value& kind : kinds->array())
            query.parameters.push_back(table.word(kind, "parameters", kParameterKinds));
        for (const auto& [word, kind] : {std::pair{"where", ParameterKind::Where}, std::pair{"sort", ParameterKind::Sort}})
            if (std::count(query.parameters.begin(), query.parameters.end(), kind) > 0 && !query.takes(kind))
                table.fail(*kinds, std::string("The statement has no place for \"") + word + "\" of its parameters.");
    }
    table.read("order", query.order);
    table.read("then", query.then);
    if (const toml::Value* sort = table.find("sort")) {
        if (!sort->isTable())
            table.fail(*sort, "\"sort\" must be a table of names.");
        for (const auto& [name, expression] : sort->table()) {
            if (!expression.isText())
                table.fail(expression, "What to order by must be a text.");
            query.sort[lowerCase(name)] = expression.text();
        }
    }
    table.finish();
    return query;
}

void readPage(CheckedTable& table, PageDefinition& page) {
    table.read("size", page.size, kPapers);
    table.read("orientation", page.landscape, Words<bool>{{"portrait", false}, {"landscape", true}});
    table.read("font_size", page.fontSize, 5, 24);
    table.read("grand_total", page.grandTotal);
    table.read("empty", page.empty);
    table.finish();
}

Definition definitionOf(const toml::Value& root, const std::filesystem::path& file) {
    Definition result;
    result.file = file;
    CheckedTable table(root, file.filename().string(), "a report");
    table.read("title", result.title);
    if (result.title.empty())
        table.failHere("A report wants its \"title\".");
    table.leave("listing");       // where the program offers it
    table.leave("prints_labels"); // likewise
    table.read("subtitle", result.subtitle);
    result.subtitleLine = table.lineOfKey("subtitle");
    std::optional<CheckedTable> queryTable = table.table("query");
    if (!queryTable)
        table.failHere("A report wants its [query].");
    result.query = query(*queryTable);
    if (std::optional<CheckedTable> page = table.table("page"))
        readPage(*page, result.page);
    for (CheckedTable& entry : table.list("column", "a [[column]]"))
        result.columns.push_back(column(entry));
    for (CheckedTable& entry : table.list("group", "a [[group]]"))
        result.groups.push_back(group(entry));
    for (CheckedTable& entry : table.list("header", "a [[header]]"))
        result.headers.push_back(textLine(entry, true));
    for (CheckedTable& entry : table.list("footer", "a [[footer]]"))
        result.footers.push_back(textLine(entry, true));
    for (CheckedTable& entry : table.list("chart", "a [[chart]]"))
        result.charts.push_back(chart(entry));
    if (std::optional<CheckedTable> entry = table.table("label"))
        result.label = label(*entry, table, result.page);
    if (result.columns.empty() && !result.label)
        table.failHere("A report wants at least one [[column]], or a [label].");
    for (std::size_t i = 0; i + 1 < result.groups.size(); ++i)
        if (!result.groups[i].details)
            throw DefinitionError(file.filename().string(), result.groups[i].line, "Only the innermost group may leave out its rows.");
    table.finish();
    return result;
}

} // namespace

bool QueryDefinition::takes(ParameterKind kind) const {
    const auto has = [this](const std::string& place) { return sql.find("{" + place + "}") != std::string::npos; };
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i] == kind && has(std::to_string(i + 1)))
            return true;
    }
    const bool named = kind == ParameterKind::Where ? has("where") || has("and") : has("order");
    return named && std::find(parameters.begin(), parameters.end(), kind) != parameters.end();
}

std::optional<Format> formatNamed(std::string_view name) {
    for (const auto& [word, format] : kFormats)
        if (word == name)
            return format;
    return std::nullopt;
}

Definition readDefinition(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::filesystem::filesystem_error("The report file cannot be read", file,
                                                std::make_error_code(std::errc::no_such_file_or_directory));
    std::ostringstream text;
    text << stream.rdbuf();
    return parseDefinition(text.str(), file);
}

Definition parseDefinition(const std::string& text, const std::filesystem::path& file) {
    try {
        return definitionOf(toml::parse(text), file);
    } catch (const toml::Error& error) {
        throw DefinitionError(file.filename().string(), error.line(), error.what());
    }
}

} // namespace merchantry::reports
