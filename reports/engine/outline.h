#pragma once

#include "app/db/ado/rowstore.h"
#include "reports/engine/celltext.h"
#include "reports/engine/definition.h"
#include "reports/engine/expression.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// What one field has come to over some rows.
struct Sum {
    Figure sum;
    std::int64_t count = 0; // cells that are not empty
    std::optional<Figure> min;
    std::optional<Figure> max;
    int firstRow = -1;
};
using Sums = std::vector<Sum>; // by measure

// A text with fields in braces, taken apart once: "{Name}, {Price:money}".
class FieldText {
public:
    FieldText() = default;
    // Throws DefinitionError for a field that the rows do not have, a word after ":" that is no format, or a brace left open.
    FieldText(const std::string& text, const db::RowStore& rows, const std::string& file, int line);
    // In the row; requires a row of the rows it was made for.
    std::string in(const db::RowStore& rows, int row) const;
    bool empty() const { return pieces_.empty(); }

private:
    struct Piece {
        std::string text; // before the field
        int column = -1;  // -1 for none
        Format format = Format::Auto;
    };
    std::vector<Piece> pieces_;
};

// A report's rows with its definition laid over them: which column of the result stands where, in what format, and what is added up.
// Borrows definition and rows, which must outlive it.
class Outline {
public:
    // Throws DefinitionError where the definition names a field that the rows do not have, or adds up one that is no number.
    Outline(const Definition& definition, const db::RowStore& rows);

    struct ShownColumn {
        const ColumnDefinition* definition = nullptr;
        int source = -1; // of the rows; -1 for a computed one
        std::optional<Expression> expression;
        std::vector<std::size_t> measures;  // of the expression's fields
        std::vector<int> sources;           // of the expression's fields
        std::optional<std::size_t> measure; // of a total, a share or a running sum
        ColumnKind kind;
        // Whether its cells are worked out rather than read: an expression, a share or a running sum.
        bool isComputed() const { return expression || definition->share != Scope::None || definition->running != Scope::None; }
    };
    const std::vector<ShownColumn>& columns() const { return columns_; }
    const Definition& definition() const { return definition_; }
    const db::RowStore& rows() const { return rows_; }
    int groupCount() const { return static_cast<int>(groups_.size()); }
    bool hasTotals() const { return hasTotals_; }
    // Of the whole report.
    const Sums& grand() const { return grand_; }

    // What shares and running sums of a row stand on: all of its innermost group, and what came before and with the row, in that group
    // and in the report.
    struct Around {
        const Sums& group;
        const Sums& groupSoFar;
        const Sums& reportSoFar;
    };
    // The cells of a row as shown.
    std::vector<std::string> cells(int row, const Around& around) const;
    // The number of a column that isComputed; nothing where there is none.
    std::optional<Figure> computed(int row, std::size_t column, const Around& around) const;
    // The figures of a total line.
    std::vector<std::string> totals(const Sums& sums, const Sums& enclosing) const;
    // The number behind a shown cell of a row, for styles and exports; nothing where there is none.
    std::optional<Figure> figure(int row, std::size_t column) const;

    // The line below the title, with the fields of the first row; empty without rows.
    std::string subtitle() const;
    std::string header(int group, int row) const { return groups_[static_cast<std::size_t>(group)].header.in(rows_, row); }
    std::string footer(int group, int row) const { return groups_[static_cast<std::size_t>(group)].footer.in(rows_, row); }
    // The outermost group in which the row differs from the one before it; groupCount() when in none, 0 for the first row.
    int breakBefore(int row) const;
    void add(Sums& sums, int row) const;
    Sums noSums() const { return Sums(measures_.size()); }
    // The sums of the innermost group that begins with the row.
    Sums groupSums(int firstRow) const;
    bool wantsGroupSums() const { return wantsGroupSums_; }
    bool wantsRunningSums() const { return wantsRunningSums_; }

private:
    struct BoundGroup {
        int source = -1;
        FieldText header;
        FieldText footer;
    };
    int sourceOf(const std::string& field, int line) const;
    int numberOf(const std::string& field, int line) const;
    std::size_t measureOf(int source);
    void bindColumn(const ColumnDefinition& definition);
    bool isEmpty(int row, int source) const;
    std::optional<Figure> figureAt(int row, int source) const;
    std::string totalText(const ShownColumn& column, const Sums& sums, const Sums& enclosing) const;
    bool sameCell(int row, int other, int source) const;

    const Definition& definition_;
    const db::RowStore& rows_;
    std::vector<ShownColumn> columns_;
    std::vector<BoundGroup> groups_;
    std::vector<int> measures_; // sources
    Sums grand_;
    bool hasTotals_ = false;
    bool wantsGroupSums_ = false;
    bool wantsRunningSums_ = false;
};

// One line of a report, before it is known on which page it stands.
struct Band {
    enum class Kind { Header, Row, Footer, Total };
    Kind kind = Kind::Row;
    int group = 0; // of Header and Footer
    int row = 0;   // the row, or the one whose group it is about
    std::vector<std::string> cells;
    std::string label;
};

// Walks a report from its first line to its last. A copy goes on from where the original stood, which is how a page is drawn again.
class Walk {
public:
    explicit Walk(const Outline& outline);
    // What the next line is; nothing at the end. Nothing is added up by asking.
    std::optional<Band::Kind> peek();
    // Whether the next line is a header whose group begins a page.
    bool breaksPage();
    // The next line, and moves on. Without cells when only the order matters. Requires: peek() tells one.
    Band take(bool withCells = true);

private:
    enum class Stage { Headers, Row, Footers, Total, Done };
    const GroupDefinition& groupAt(int level) const { return outline_->definition().groups[static_cast<std::size_t>(level)]; }
    bool settleHeaders();
    bool settleRow();
    bool settleFooters();
    bool settleTotal();
    void addRow();
    void closeGroup();
    void toNextRow();

    const Outline* outline_;
    Stage stage_ = Stage::Headers;
    int row_ = 0;
    int level_ = 0;
    int break_ = 0;
    std::vector<Sums> sums_; // by group, then of the report; what came so far
    Sums groupAhead_;        // of the innermost group, all of it
};

} // namespace merchantry::reports
