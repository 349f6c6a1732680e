#pragma once

#include "base/tomltable.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::reports {

// A mistake in a report file.
using DefinitionError = toml::FileError;

// What a numbered parameter of a report is, and so what may stand in it.
enum class ParameterKind { Where, Sort, Direction, Number, Text };

struct QueryDefinition {
    std::string sql; // with its places in braces
    std::vector<ParameterKind> parameters{ParameterKind::Where, ParameterKind::Sort, ParameterKind::Direction};
    std::string order;                       // of last resort; may be empty
    std::string then;                        // always behind the order, so that rows that are alike there have theirs; may be empty
    std::map<std::string, std::string> sort; // what to order by for a sort column, by its name in lower case
    int line = 0;                            // where the statement begins

    // Whether the statement has a place for a parameter of that kind: conditions or an order that it has not would change nothing.
    bool takes(ParameterKind kind) const;
};

enum class Format { Auto, Text, Number, Integer, Quantity, Money, Cost, Percent, Date, Time, DateTime, Flag };
enum class Align { Auto, Left, Center, Right };
enum class Total { None, Sum, Count, Average, Min, Max, First };
enum class Scope { None, Group, Report };
enum class Ink { Black, Red, Green, Blue, Grey, Amber };

// "when = '< 0'": how a cell looks that fulfils the condition.
struct StyleRule {
    std::string comparison; // = <> < > <= >=
    std::string operand;    // a number, or a text without its apostrophes
    bool isText = false;
    Ink ink = Ink::Black;
    bool bold = false;
};

struct ColumnDefinition {
    std::string field;      // of the result; empty for a computed column
    std::string expression; // of a computed column
    std::string title;      // lines parted by "\n"
    double width = 12;      // in characters; a share of the page
    Format format = Format::Auto;
    Align align = Align::Auto;
    Total total = Total::None;
    Scope share = Scope::None;
    Scope running = Scope::None;
    bool repeat = true;
    bool wrap = false;
    bool hide = false;
    std::vector<StyleRule> styles;
    int line = 0;
};

// A line of a form's head or foot, or of a label.
struct TextLine {
    std::string text; // with fields in braces, "{Price:money}" with their format
    double size = 0;  // points; 0: the body's
    bool bold = false;
    Align align = Align::Left;
    bool rightBlock = false; // of a head or foot: in the block at the right
    int line = 0;
};

struct GroupDefinition {
    std::string field;
    std::string order; // empty: the field
    std::string header;
    std::string footer;
    bool pageBreak = false;
    bool details = true;
    // A letter to somebody, its pages counted by themselves, the title on its first: the words name its file where each is a file of its
    // own. Empty for any other group.
    std::string letter;
    int keep = 2;                // rows on the page of the header
    std::vector<TextLine> head;  // in the place of the header's line, the columns' headings below: each group is a form of its own
    double top = 0;              // inches of the page above it, at least
    std::vector<TextLine> below; // after its total line
    std::vector<TextLine> slip;  // at the foot of its last page, under a line
    int line = 0;
};

enum class ChartKind { Bar, Line, Pie };
struct ChartDefinition {
    ChartKind kind = ChartKind::Bar;
    std::string title;
    std::string label;  // field
    std::string value;  // field, summed for each label
    int most = 12;      // labels drawn
    bool others = true; // the rest together as one more
    bool atStart = false;
    double height = 160; // points
    int line = 0;
};

enum class BarcodeKind { Auto, Ean13, UpcA, Code128, Code39 };
struct BarcodeDefinition {
    std::string field;
    BarcodeKind kind = BarcodeKind::Auto;
    double height = 0.35; // inches
    bool text = true;
    int line = 0;
};

// Measures in inches.
struct LabelDefinition {
    bool roll = false;
    int columns = 1;
    int rows = 1;
    double left = 0;
    double top = 0;
    double width = 2;
    double height = 1;
    double gapX = 0;
    double gapY = 0;
    std::string quantityField; // empty: quantity
    int quantity = 1;
    int quantityLine = 0;
    std::vector<BarcodeDefinition> barcodes;
    std::vector<TextLine> lines;
};

enum class PaperSize { Letter, A4 };
struct PageDefinition {
    PaperSize size = PaperSize::Letter;
    bool landscape = false;
    double fontSize = 9; // points
    std::string grandTotal = "Total";
    std::string empty = "Nothing was found.";
};

// What a report file says: a query, and how its rows stand on pages. Read with readDefinition; a value, owned by whoever holds it.
struct Definition {
    std::filesystem::path file;
    std::string title;
    std::string subtitle;
    int subtitleLine = 0;
    QueryDefinition query;
    PageDefinition page;
    std::vector<ColumnDefinition> columns;
    std::vector<GroupDefinition> groups; // outermost first
    std::vector<TextLine> headers;
    std::vector<TextLine> footers;
    std::vector<ChartDefinition> charts;
    std::optional<LabelDefinition> label;
};

// The format of that name, as in "{Price:money}"; nothing for any other word.
std::optional<Format> formatNamed(std::string_view name);

// Reads a report file. Throws DefinitionError for a mistake of any kind, an unknown key included, and std::filesystem::filesystem_error
// when there is no such file.
Definition readDefinition(const std::filesystem::path& file);
// The same from a text, the file's name being for the errors.
Definition parseDefinition(const std::string& text, const std::filesystem::path& file);

} // namespace merchantry::reports
