#include "tests/db/tsql/parsed.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

// A tree in one line, so that cases read as a table.
std::string shape(const Expr& expr) {
    std::string text;
    switch (expr.kind) {
    case ExprKind::And:
        text = "and";
        break;
    case ExprKind::Or:
        text = "or";
        break;
    case ExprKind::Not:
        text = "not";
        break;
    case ExprKind::IsNull:
        text = expr.negated ? "notnull" : "null?";
        break;
    case ExprKind::Between:
        text = "between";
        break;
    case ExprKind::InList:
        text = expr.negated ? "notin" : "in";
        break;
    case ExprKind::Like:
        text = "like";
        break;
    case ExprKind::Case:
        text = "case";
        break;
    case ExprKind::Column:
    case ExprKind::Function:
        text = expr.name.toText();
        break;
    case ExprKind::Null:
        text = "NULL";
        break;
    default:
        text = expr.text;
    }
    if (expr.args.empty() && !expr.input)
        return text;
    text = "(" + text;
    if (expr.input)
        text += " " + shape(*expr.input);
    for (const ExprPtr& argument : expr.args)
        text += " " + shape(*argument);
    return text + ")";
}

struct Case {
    const char* text;
    const char* shape;
};

TEST(ParseExpression, bindsOperatorsByTheirRank) {
    const Case kCases[] = {
        {"1 + 2 * 3", "(+ 1 (* 2 3))"},
        {"(1 + 2) * 3", "(* (+ 1 2) 3)"},
        {"10 - 4 - 3", "(- (- 10 4) 3)"},
        {"-a * b", "(- (* a b))"},
        {"6 / -a * 3", "(/ 6 (- (* a 3)))"},
        {"7 % 4 * 2", "(* (% 7 4) 2)"},
        {"a & 4 = 4 OR b IS NULL AND NOT c = 1", "(or (= (& a 4) 4) (and (null? b) (not (= c 1))))"},
        {"a BETWEEN 1 AND 2 AND b = 3", "(and (between a 1 2) (= b 3))"},
        {"a NOT IN (1, 'x') OR a LIKE 'y%' ESCAPE '!'", "(or (notin a 1 x) (like a y% !))"},
        {"a != 1 AND a !< 2", "(and (<> a 1) (>= a 2))"},
        {"CASE a WHEN 1 THEN 'x' ELSE 'y' END", "(case a 1 x y)"},
        {"dbo.f(t.[a b], NULL)", "(dbo.f t.a b NULL)"},
        {"LEFT(a, 1) + ISNULL(b, '')", "(+ (LEFT a 1) (ISNULL b ))"},
    };
    for (const Case& one : kCases)
        EXPECT_EQ(shape(*parseExpressionText(one.text)), one.shape) << one.text;
}

TEST(ParseExpression, keepsWhatQuotesHold) {
    EXPECT_EQ(parseExpressionText("'it''s'")->text, "it's");
    EXPECT_EQ(parseExpressionText("[a]]b]")->name.last(), "a]b");
    EXPECT_EQ(parseExpressionText("N'x'")->kind, ExprKind::WideText);
    EXPECT_EQ(parseExpressionText("0xAB")->kind, ExprKind::Binary);
    EXPECT_EQ(parseExpressionText("$1.50")->kind, ExprKind::Money);
    EXPECT_EQ(parseExpressionText("1e3")->kind, ExprKind::Float);
    EXPECT_EQ(parseBatch("SELECT \"x\"", false).statements.size(), 1U);
}

TEST(ParseExpression, skipsCommentsAlsoNestedOnes) {
    EXPECT_EQ(shape(*parseExpressionText("1 /* a /* b */ c */ + -- end\n 2")), "(+ 1 2)");
}

} // namespace
} // namespace merchantry::db::tsql
