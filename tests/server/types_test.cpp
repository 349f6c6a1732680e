#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

using TypesOnAServer = OnAServer;

SqlType type(TypeKind kind, int length = 0, int precision = 0, int scale = 0) {
    return {kind, length, precision, scale};
}

TEST_F(TypesOnAServer, ComeAsTheyStandInTheTable) {
    table("Types",
          "b bit, t tinyint, s smallint, i int, g bigint, m money, d decimal(12,3), f float, dt datetime, c char(4), v varchar(20), "
          "n nvarchar(20), x text, y image");
    run("INSERT INTO Types VALUES (1, 255, -32768, 2147483647, 9223372036854775807, -922337203685477.5808, -12345.678, 0.1, "
        "'2004-02-29T23:59:58.997', 'ab', 'it''s', N'\xC5\x82\xC3\xB3\xC5\xBA', 'long', 0x00FF)");
    run("INSERT INTO Types (b) VALUES (NULL)");
    class Kinds : public ResultSink {
    public:
        void beginSet(const std::vector<Column>& all) override { columns = all; }
        void row(const RowView& row) override {
            for (int i = 0; i < row.size(); ++i)
                cells.push_back(row.value(i));
        }
        std::vector<Column> columns;
        std::vector<Value> cells;
    } kinds;
    session->execute("SELECT * FROM Types WHERE b = 1", kinds);
    const std::vector<TypeKind> expected{TypeKind::Bit,     TypeKind::TinyInt,  TypeKind::SmallInt, TypeKind::Int,      TypeKind::BigInt,
                                         TypeKind::Money,   TypeKind::Decimal,  TypeKind::Float,    TypeKind::DateTime, TypeKind::Char,
                                         TypeKind::VarChar, TypeKind::NVarChar, TypeKind::Text,     TypeKind::Image};
    ASSERT_EQ(kinds.columns.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(kinds.columns[i].type.kind, expected[i]) << kinds.columns[i].name << " is " << kinds.columns[i].type.toText();
    EXPECT_EQ(kinds.columns[6].type.toText(), "decimal(12,3)");
    EXPECT_EQ(kinds.columns[10].type.toText(), "varchar(20)");
    ASSERT_EQ(kinds.cells.size(), expected.size());
    EXPECT_EQ(kinds.cells[0], Value(true));
    EXPECT_EQ(kinds.cells[4], Value(std::int64_t{9223372036854775807}));
    EXPECT_EQ(kinds.cells[5], Value(Currency::fromUnits(INT64_MIN)));
    EXPECT_EQ(kinds.cells[6].toText(), "-12345.678");
    EXPECT_EQ(kinds.cells[7], Value(0.1));
    EXPECT_EQ(kinds.cells[8].as<Date>().toIsoTextMs(), "2004-02-29 23:59:58.997");
    EXPECT_EQ(kinds.cells[9], Value("ab  "));
    EXPECT_EQ(kinds.cells[11], Value("\xC5\x82\xC3\xB3\xC5\xBA"));
    EXPECT_EQ(kinds.cells[13], Value(Bytes{0, 0xFF}));
    EXPECT_EQ(rowsOf("SELECT i, m, dt, v, x, y FROM Types WHERE b IS NULL"), "NULL|NULL|NULL|NULL|NULL|NULL");
}

TEST_F(TypesOnAServer, GoOutAsParametersAndComeBackTheSame) {
    std::vector<Parameter> sent{
        {"flag", type(TypeKind::Bit), true},
        {"small", type(TypeKind::SmallInt), -5},
        {"big", type(TypeKind::BigInt), std::int64_t{-9223372036854775807}},
        {"money", type(TypeKind::Money), Currency::fromUnits(123456789012345671)},
        {"exact", type(TypeKind::Decimal, 0, 20, 5), *Decimal::fromText("-1.00001")},
        {"rough", type(TypeKind::Float), 1.0 / 3},
        {"day", type(TypeKind::DateTime), *Date::fromParts(1999, 12, 31, 23, 59, 59, 997)},
        {"text", type(TypeKind::VarChar, 30), "it's; -- \"all\" [of] it"},
        {"wide", type(TypeKind::VarChar, 30), "\xC3\xA9t\xC3\xA9"},
        {"empty", type(TypeKind::VarChar, 5), ""},
        {"none", type(TypeKind::Int), Value()},
    };
    std::vector<Value> back;
    class Cells : public ResultSink {
    public:
        explicit Cells(std::vector<Value>& into) : into_(into) {}
        void beginSet(const std::vector<Column>&) override {}
        void row(const RowView& row) override {
            for (int i = 0; i < row.size(); ++i)
                into_.push_back(row.value(i));
        }

    private:
        std::vector<Value>& into_;
    } cells(back);
    session->execute("SELECT @flag, @small, @big, @money, @exact, @rough, @day, @text, @wide, @empty, @none", sent, cells);
    ASSERT_EQ(back.size(), sent.size());
    for (std::size_t i = 0; i < sent.size(); ++i)
        EXPECT_EQ(back[i], sent[i].value) << sent[i].name << " came back as " << back[i].toScriptText();
}

TEST_F(TypesOnAServer, LongTextsAndPicturesAreWhole) {
    table("Long", "id int, x text, y image");
    std::string text;
    while (text.size() < 300'000)
        text += "Line " + std::to_string(text.size()) + ". ";
    Bytes bytes(200'000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7);
    std::vector<Parameter> row{{"x", type(TypeKind::Text), text}, {"y", type(TypeKind::Image), bytes}};
    NoResult none;
    session->execute("INSERT INTO Long VALUES (1, @x, @y)", row, none);
    Value x;
    Value y;
    class Two : public ResultSink {
    public:
        Two(Value& first, Value& second) : first_(first), second_(second) {}
        void beginSet(const std::vector<Column>&) override {}
        void row(const RowView& row) override {
            first_ = row.value(1);
            second_ = row.value(0);
        }

    private:
        Value& first_;
        Value& second_;
    } two(x, y);
    session->execute("SELECT y, x, id FROM Long", two);
    EXPECT_TRUE(x == Value(text));
    EXPECT_TRUE(y == Value(bytes));
}

TEST_F(TypesOnAServer, AreTakenBackFromProcedures) {
    run("IF OBJECT_ID('Give') IS NOT NULL DROP PROCEDURE Give");
    run("CREATE PROCEDURE Give @In int, @Twice int OUTPUT, @Price money OUTPUT, @Name varchar(20) OUTPUT, @Nothing int OUTPUT AS\n"
        "SELECT @In AS Was\nSET @Twice = @In * 2 SET @Price = 1.2345 SET @Name = 'it''s ' + @Name SET @Nothing = NULL");
    std::vector<Parameter> parameters{{"In", type(TypeKind::Int), 21},
                                      {"Name", type(TypeKind::VarChar, 20), "me", true},
                                      {"Twice", type(TypeKind::Int), Value(), true},
                                      {"Price", type(TypeKind::Money), Value(), true},
                                      {"Nothing", type(TypeKind::Int), 7, true}};
    NoResult none;
    session->call("Give", parameters, none);
    EXPECT_EQ(parameters[1].value, Value("it's me"));
    EXPECT_EQ(parameters[2].value, Value(42));
    EXPECT_EQ(parameters[3].value, Value(Currency::fromUnits(12345)));
    EXPECT_TRUE(parameters[4].value.isNull());
}

} // namespace
} // namespace merchantry::db
