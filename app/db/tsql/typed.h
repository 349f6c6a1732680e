#pragma once

#include "app/db/tsql/catalog.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/plan.h"
#include "app/db/tsql/types.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace merchantry::db::tsql {

// The tree that binding makes of an expression: every part with its type, every name and function resolved. A form says what a value is
// made of; render.h alone knows how SQLite writes it.

struct BoundQuery;
namespace form {
struct Any;
}

// By what rule a text was told to be compared; None leaves it to the usual one.
enum class Collation { None, Usual, CaseCounts, Binary };

// A bound expression: a value, or a condition that is 1, 0 or null. What it is made of never changes, so that it may stand in several
// places of a statement.
struct Typed {
    std::shared_ptr<const form::Any> form;
    SqlType type;
    bool nullable = true;
    Collation collation = Collation::None;
    std::shared_ptr<const TableDef> table; // whose column it shows, as it is or computed; null for none
    int column = -1;

    // Its form when that is of this kind; null otherwise.
    template <class F> const F* as() const;
    // The cell of a literal; null for anything else.
    const Cell* literal() const;
    bool isNull() const { return literal() && literal()->isNull(); }
    // Whether it is a bare column of a source, or one of a query's own.
    bool isColumn() const;
    // Whether it is only a variable or value of the session.
    bool isPlace() const;
};

namespace form {

struct Literal {
    Cell cell;
};

// A variable or a value of the session, handed to the prepared statement.
struct Place {
    Placeholder holds;
};

struct Column {
    std::string alias; // of the source; empty where only one is meant
    std::string name;
    bool own = false; // a name of the binder's making: _c0, _r0, _rowid_, _lv
};

// Another value under a type or a table's column of its own.
struct Same {
    Typed value;
};

// A function of SQLite or of the engine. More arguments are more operands where the function adds up.
struct Call {
    std::string function;
    std::vector<Typed> arguments;
    bool distinct = false;
    bool star = false; // COUNT(*)
};

struct Ordered {
    Typed value;
    bool descending = false;
};

struct Windowed {
    Typed call;
    std::vector<Typed> partition;
    std::vector<Ordered> order;
    std::string frame; // as written; empty for the usual one
};

// a + b + c: as many operands as stand beside each other.
struct Infix {
    std::string sign;
    std::vector<Typed> operands;
};

struct Inverted { // ~a
    Typed value;
};

struct AsReal {
    Typed value;
};

struct Collated {
    Typed value;
    Collation collation;
};

struct Case {
    std::optional<Typed> input; // compared with each WHEN
    std::vector<std::pair<Typed, Typed>> whens;
    std::optional<Typed> otherwise;
};

// A query that is one value. Requires: it gives one row at most.
struct Scalar {
    std::shared_ptr<const BoundQuery> query;
};

// ---- conditions

enum class Comparison { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, Is, IsNot };

struct Compare {
    Comparison comparison;
    Typed left;
    Typed right;
};

// a AND b AND c, or a OR b OR c.
struct Junction {
    bool all; // AND
    std::vector<Typed> conditions;
};

struct Not {
    Typed condition;
};

struct IsNull {
    Typed value;
    bool negated = false;
};

struct InList {
    Typed value;
    std::vector<Typed> members;
};

struct InQuery {
    Typed value;
    std::shared_ptr<const BoundQuery> query;
};

struct Exists {
    std::shared_ptr<const BoundQuery> query;
};

struct Any {
    std::variant<Literal, Place, Column, Same, Call, Windowed, Infix, Inverted, AsReal, Collated, Case, Scalar, Compare, Junction, Not,
                 IsNull, InList, InQuery, Exists>
        is;
};

} // namespace form

template <class F> const F* Typed::as() const {
    return form ? std::get_if<F>(&form->is) : nullptr;
}

// ---- making

template <class F> Typed typed(F form, const SqlType& type) {
    Typed result;
    result.form = std::make_shared<const form::Any>(form::Any{std::move(form)});
    result.type = type;
    return result;
}
// A condition is a bit.
template <class F> Typed condition(F form) {
    return typed(std::move(form), simpleType(TypeKind::Bit));
}
Typed literalOf(Cell cell, const SqlType& type);
Typed nullLiteral(); // without a type yet
// A number of the binder's own, as an argument: a type's code, a slot, a part of a date.
Typed wholeNumber(std::int64_t number);
Typed typeNumber(const SqlType& type);
Typed called(std::string function, std::vector<Typed> arguments, const SqlType& type);
Typed infix(std::string sign, Typed left, Typed right, const SqlType& type);
// Column number index of a query that goes by the alias; an empty alias means the query around.
Typed queryColumn(const std::string& alias, std::size_t index, const SqlType& type);
// A column of the binder's making: a rowid, the depth of a recursion.
Typed ownColumn(const std::string& alias, std::string name);
Typed negated(Typed condition);

// ---- values

// The value in another type, as CAST gives it, or as a column takes it; a literal at once where it can be. A style other than -1 is
// CONVERT's.
Typed convertTo(Typed value, const SqlType& to, ConvertFor purpose = ConvertFor::Value, int style = -1);
// The same where nothing asked for it: throws DbError Type where T-SQL does it only when asked.
Typed implicitTo(Typed value, const SqlType& to, int line, ConvertFor purpose = ConvertFor::Value);
// left op right in the type that T-SQL gives it; throws DbError Type for operands that have no such operator.
Typed calculated(char op, Typed left, Typed right, int line);
// left compared with right, both brought to one type; throws DbError Type for operands that do not go together. nullsEqual: with SET
// ANSI_NULLS OFF, where a null that is written or held by a variable equals null.
Typed compared(const std::string& op, Typed left, Typed right, int line, bool nullsEqual = false);
// With the collation by which a text is compared.
Typed collated(Typed value);

} // namespace merchantry::db::tsql
