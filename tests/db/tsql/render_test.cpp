// What is written for a bound tree: parentheses where they change the meaning and nowhere else, places numbered as they come.

#include "app/db/tsql/render.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

const SqlType kInt = simpleType(TypeKind::Int);

Typed column(const char* name, const SqlType& type = kInt) {
    return typed(form::Column{"", name, true}, type);
}
Typed number(std::int64_t value) {
    return wholeNumber(value);
}
Typed equal(Typed left, Typed right) {
    return condition(form::Compare{form::Comparison::Equal, std::move(left), std::move(right)});
}
Typed junction(bool all, std::vector<Typed> conditions) {
    return condition(form::Junction{all, std::move(conditions)});
}
from::Any table(const char* name) {
    return {from::Table{name, ""}};
}
from::Any join(JoinKind kind, from::Any left, from::Any right) {
    return {from::Join{kind, std::make_shared<const from::Any>(std::move(left)), std::make_shared<const from::Any>(std::move(right)),
                       std::nullopt}};
}

std::string textOf(const Typed& value) {
    return renderDefinition(value).text;
}

TEST(Render, PutsParenthesesWhereTheyChangeTheMeaning) {
    const Typed a = column("a");
    const Typed b = column("b");
    const Typed c = column("c");
    const Typed sum = infix("+", a, b, kInt);
    const Typed same = equal(a, b);
    const std::pair<Typed, const char*> cases[] = {
        {infix("-", sum, c, kInt), "(a+b)-c"},
        {infix("-", c, sum, kInt), "c-(a+b)"},
        {infix("-", a, number(-5), kInt), "a-(-5)"}, // two signs would begin a comment
        {typed(form::Inverted{number(-5)}, kInt), "~(-5)"},
        {equal(sum, number(-5)), "a+b=-5"},
        {equal(same, equal(b, c)), "(a=b)=(b=c)"},
        {negated(same), "NOT a=b"},
        {negated(junction(true, {same, same})), "NOT (a=b AND a=b)"},
        {junction(true, {junction(false, {same, same}), negated(same), junction(true, {same, same})}),
         "(a=b OR a=b) AND NOT a=b AND (a=b AND a=b)"},
        {junction(false, {junction(true, {same, same}), same}), "a=b AND a=b OR a=b"},
        {condition(form::IsNull{same, true}), "(a=b) IS NOT NULL"},
        {condition(form::InList{sum, {number(1), infix("-", a, b, kInt)}}), "a+b IN (1,a-b)"},
        {collated(typed(form::Infix{"||", {column("s", varcharType(5)), column("t", varcharType(5))}}, varcharType(10))),
         "(s||t) COLLATE ts"},
        {called("f", {sum, junction(false, {same, same})}, kInt), "f(a+b,a=b OR a=b)"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(textOf(value), text);
}

TEST(Render, NumbersPlacesByFirstUse) {
    const auto place = [](bool system, int slot) { return typed(form::Place{{system, slot}}, kInt); };
    const Sql3 sql = render(called("f", {place(false, 7), place(true, 7), place(false, 7), place(false, 1)}, kInt));
    EXPECT_EQ(sql.text, "SELECT f(?1,?2,?1,?3)");
    ASSERT_EQ(sql.places.size(), 3U);
    EXPECT_FALSE(sql.places[0].system);
    EXPECT_TRUE(sql.places[1].system);
    EXPECT_EQ(sql.places[2].slot, 1);
}

// A join that keeps rows of its right side must not take in what a comma put before it; a table in parentheses hides its rowid.
TEST(Render, SetsOnlyThoseJoinsApartThatTakeInMore) {
    const auto fromText = [](from::Any source) { return renderRows({number(1)}, {std::move(source), std::nullopt, std::nullopt}).text; };
    const from::Any right = join(JoinKind::Right, table("b"), table("c"));
    const from::Any left = join(JoinKind::Left, table("b"), table("c"));
    EXPECT_EQ(fromText({from::List{{table("a"), left}}}), "SELECT 1 FROM a,b LEFT JOIN c");
    EXPECT_EQ(fromText({from::List{{table("a"), right}}}), "SELECT 1 FROM a,(b RIGHT JOIN c)");
    EXPECT_EQ(fromText({from::List{{right, table("a")}}}), "SELECT 1 FROM b RIGHT JOIN c,a");
    EXPECT_EQ(fromText(join(JoinKind::Inner, table("a"), left)), "SELECT 1 FROM a JOIN (b LEFT JOIN c)");
}

} // namespace
} // namespace merchantry::db::tsql
