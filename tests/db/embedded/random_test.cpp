#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

namespace merchantry::db {
namespace {

// A value of the model: a whole number or null.
using Number = std::optional<std::int64_t>;
// Unknown is nullopt.
using Truth = std::optional<bool>;

struct ModelRow {
    int id;
    Number a;
    Number b;
    std::optional<std::string> v;
};

struct ModelError {
    int number;
};

Number inRange(std::int64_t number) {
    if (number < INT32_MIN || number > INT32_MAX)
        throw ModelError{8115};
    return number;
}

// Writes random expressions and works out beside them what they must be.
class Generator {
public:
    explicit Generator(unsigned seed) : random_(seed) {}

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    struct NumberExpr {
        std::string text;
        std::function<Number(const ModelRow&)> value;
    };
    struct Condition {
        std::string text;
        std::function<Truth(const ModelRow&)> holds;
    };

    NumberExpr number(int depth) {
        switch (depth > 0 ? below(8) : below(3)) {
        case 0: {
            const int literal = below(200) - 50;
            return {"(" + std::to_string(literal) + ")", [literal](const ModelRow&) { return Number(literal); }};
        }
        case 1:
            return {"a", [](const ModelRow& row) { return row.a; }};
        case 2:
            return {"b", [](const ModelRow& row) { return row.b; }};
        case 3:
            return binary("+", depth, [](std::int64_t x, std::int64_t y) { return inRange(x + y); });
        case 4:
            return binary("-", depth, [](std::int64_t x, std::int64_t y) { return inRange(x - y); });
        case 5:
            return binary("*", depth, [](std::int64_t x, std::int64_t y) { return inRange(x * y); });
        case 6: {
            const NumberExpr left = number(depth - 1);
            const NumberExpr right = number(depth - 1);
            const bool rest = below(2) == 0;
            const auto divide = [=](const ModelRow& row) -> Number {
                const Number x = left.value(row);
                const Number y = right.value(row);
                if (!x || !y || *y == 0)
                    return std::nullopt;
                return inRange(rest ? *x % *y : *x / *y);
            };
            return {"(" + left.text + (rest ? " % " : " / ") + "NULLIF(" + right.text + ", 0))", divide};
        }
        default: {
            const Condition condition = truth(depth - 1);
            const NumberExpr yes = number(depth - 1);
            const NumberExpr no = number(depth - 1);
            return {"CASE WHEN " + condition.text + " THEN " + yes.text + " ELSE " + no.text + " END",
                    [=](const ModelRow& row) { return condition.holds(row).value_or(false) ? yes.value(row) : no.value(row); }};
        }
        }
    }

    Condition truth(int depth) {
        switch (depth > 0 ? below(8) : below(4)) {
        case 0: {
            static const char* const kOperators[] = {"=", "<>", "<", "<=", ">", ">="};
            const int which = below(6);
            const NumberExpr left = number(depth - 1);
            const NumberExpr right = number(depth - 1);
            return {"(" + left.text + " " + kOperators[which] + " " + right.text + ")", [=](const ModelRow& row) -> Truth {
                        const Number x = left.value(row);
                        const Number y = right.value(row);
                        if (!x || !y)
                            return std::nullopt;
                        const bool results[] = {*x == *y, *x != *y, *x<*y, *x <= *y, *x> * y, *x >= *y};
                        return results[which];
                    }};
        }
        case 1: {
            const NumberExpr value = number(depth - 1);
            const bool negated = below(2) == 0;
            return {value.text + (negated ? " IS NOT NULL" : " IS NULL"),
                    [=](const ModelRow& row) { return Truth(value.value(row).has_value() == negated); }};
        }
        case 2: { // texts without case and trailing blanks
            static const char* const kTexts[] = {"ab", "AB ", "b", "", "zz"};
            const std::string text = kTexts[below(5)];
            const auto folded = [](std::string one) {
                while (!one.empty() && one.back() == ' ')
                    one.pop_back();
                for (char& c : one)
                    c = static_cast<char>(std::tolower(c));
                return one;
            };
            return {"v = '" + text + "'", [=](const ModelRow& row) -> Truth {
                        if (!row.v)
                            return std::nullopt;
                        return folded(*row.v) == folded(text);
                    }};
        }
        case 3: {
            const NumberExpr value = number(depth - 1);
            const int low = below(60) - 20;
            const int high = low + below(40);
            return {"(" + value.text + " BETWEEN " + std::to_string(low) + " AND " + std::to_string(high) + ")",
                    [=](const ModelRow& row) -> Truth {
                        const Number x = value.value(row);
                        if (!x)
                            return std::nullopt;
                        return *x >= low && *x <= high;
                    }};
        }
        case 4: {
            const Condition inner = truth(depth - 1);
            return {"NOT (" + inner.text + ")", [=](const ModelRow& row) -> Truth {
                        const Truth one = inner.holds(row);
                        return one ? Truth(!*one) : std::nullopt;
                    }};
        }
        default: {
            const Condition left = truth(depth - 1);
            const Condition right = truth(depth - 1);
            const bool both = below(2) == 0;
            return {"(" + left.text + (both ? " AND " : " OR ") + right.text + ")", [=](const ModelRow& row) -> Truth {
                        const Truth x = left.holds(row);
                        const Truth y = right.holds(row);
                        const bool decided = !both;
                        if ((x && *x == decided) || (y && *y == decided))
                            return decided;
                        return x && y ? Truth(!decided) : std::nullopt;
                    }};
        }
        }
    }

private:
    NumberExpr binary(const char* op, int depth, Number (*apply)(std::int64_t, std::int64_t)) {
        const NumberExpr left = number(depth - 1);
        const NumberExpr right = number(depth - 1);
        return {"(" + left.text + " " + op + " " + right.text + ")", [=](const ModelRow& row) -> Number {
                    const Number x = left.value(row);
                    const Number y = right.value(row);
                    return x && y ? apply(*x, *y) : std::nullopt;
                }};
    }

    std::mt19937 random_;
};

std::string shown(const Number& number) {
    return number ? std::to_string(*number) : "NULL";
}

class RandomQueries : public testing::Test {
protected:
    void SetUp() override {
        runScript(*session_, "CREATE TABLE t (id INT PRIMARY KEY, a INT NULL, b SMALLINT NULL, v VARCHAR(5) NULL)\nCREATE INDEX ia ON t "
                             "(a)\nCREATE INDEX iv ON t (v)");
        Generator random(7);
        static const char* const kTexts[] = {"ab", "Ab", "aB  ", "b", "", "c"};
        for (int id = 1; id <= 40; ++id) {
            ModelRow row{id, {}, {}, {}};
            if (random.below(5) > 0)
                row.a = random.below(40) - 10;
            if (random.below(5) > 0)
                row.b = random.below(10);
            if (random.below(5) > 0)
                row.v = kTexts[random.below(6)];
            rows_.push_back(row);
            runScript(*session_, "INSERT INTO t VALUES (" + std::to_string(id) + ", " + shown(row.a) + ", " + shown(row.b) + ", " +
                                     (row.v ? "'" + *row.v + "'" : "NULL") + ")");
        }
    }
    std::unique_ptr<Session> session_ = Store::scratch()->session();
    std::vector<ModelRow> rows_;
};

constexpr int kRounds = 1500;

TEST_F(RandomQueries, giveTheRowsOfTheModel) {
    Generator random(20040301);
    int compared = 0;
    for (int round = 0; round < kRounds; ++round) {
        const auto expr = random.number(3);
        const auto condition = random.truth(3);
        const std::string batch = "SELECT id, " + expr.text + " FROM t WHERE " + condition.text + " ORDER BY id";
        std::string wanted;
        int error = 0;
        try {
            for (const ModelRow& row : rows_) {
                if (condition.holds(row).value_or(false))
                    wanted += std::to_string(row.id) + "|" + shown(expr.value(row)) + "\n";
            }
        } catch (const ModelError& overflow) {
            error = overflow.number;
        }
        if (error != 0) // which rows are reached before the error is the server's to choose
            continue;
        ++compared;
        // A branch that the model never took may overflow first elsewhere: conditions are worked out in any order.
        try {
            EXPECT_EQ(rowsOf(*session_, batch), wanted) << batch;
        } catch (const DbError& raised) {
            EXPECT_EQ(raised.native(), 8115) << batch << ": " << raised.what();
        }
    }
    EXPECT_GT(compared, kRounds / 2);
}

TEST_F(RandomQueries, groupAndSumAsTheModel) {
    Generator random(11);
    for (int round = 0; round < kRounds / 5; ++round) {
        const auto condition = random.truth(2);
        std::map<std::int64_t, std::pair<std::int64_t, Number>> groups; // b: count, sum of a
        try {
            for (const ModelRow& row : rows_) {
                if (!row.b || !condition.holds(row).value_or(false))
                    continue;
                auto& [count, sum] = groups[*row.b];
                ++count;
                if (row.a)
                    sum = sum.value_or(0) + *row.a;
            }
        } catch (const ModelError&) {
            continue;
        }
        std::string wanted;
        for (const auto& [key, group] : groups)
            wanted += std::to_string(key) + "|" + std::to_string(group.first) + "|" + shown(group.second) + "\n";
        const std::string batch = "SELECT b, COUNT(*), SUM(a) FROM t WHERE b IS NOT NULL AND " + condition.text + " GROUP BY b ORDER BY b";
        EXPECT_EQ(rowsOf(*session_, batch), wanted) << batch;
    }
}

// An update with a random value in a transaction that is rolled back: the rows are the model's, then as before.
TEST_F(RandomQueries, updateAsTheModelAndRollBack) {
    Generator random(5);
    const std::string before = rowsOf(*session_, "SELECT id, a FROM t ORDER BY id");
    for (int round = 0; round < kRounds / 5; ++round) {
        const auto expr = random.number(2);
        const auto condition = random.truth(2);
        std::string wanted;
        try {
            for (const ModelRow& row : rows_)
                wanted += std::to_string(row.id) + "|" + shown(condition.holds(row).value_or(false) ? expr.value(row) : row.a) + "\n";
        } catch (const ModelError&) {
            continue;
        }
        const std::string batch = "UPDATE t SET a = " + expr.text + " WHERE " + condition.text;
        EXPECT_EQ(rowsOf(*session_, "BEGIN TRAN " + batch + " SELECT id, a FROM t ORDER BY id ROLLBACK"), wanted) << batch;
        ASSERT_EQ(rowsOf(*session_, "SELECT id, a FROM t ORDER BY id"), before);
    }
}

} // namespace
} // namespace merchantry::db
