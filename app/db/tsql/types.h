#pragma once

#include "app/db/sqltype.h"
#include "app/db/tsql/ast.h"

#include <optional>

namespace merchantry::db::tsql {

// A built-in type by its written name; nullopt for a name that is none. Throws DbError for measures that the type cannot have.
// A text without length has the length of its place: 1 where something is declared, 30 in a cast.
std::optional<SqlType> builtInType(const TypeName& name, bool inCast = false);

SqlType simpleType(TypeKind kind);
SqlType varcharType(int length);
SqlType nvarcharType(int length);
SqlType decimalType(int precision, int scale);

// Whole, exact, money or floating; not a text that reads like a number.
bool isNumber(const SqlType& type);

// Precision and scale with which a number enters exact arithmetic: int is 10,0, money 19,4.
SqlType asDecimal(const SqlType& type);

// The type of the result of + - * / %; throws DbError (402, 8117, 206) for types that do not go together.
SqlType arithmeticType(char op, const SqlType& left, const SqlType& right, int line);

// The type to which both are brought in a comparison, CASE, UNION: the one of higher rank, wide enough for both.
SqlType commonType(const SqlType& left, const SqlType& right, int line);

// Throws DbError 257 or 206 when a value of the one type does not become the other without a cast.
void requireImplicit(const SqlType& from, const SqlType& to, int line);

// As error messages and the catalogue name it: "varchar", "numeric".
std::string kindNameOf(const SqlType& type);

// The bytes that a value takes on the server, for DATALENGTH and COL_LENGTH; -1 for the long kinds.
int storedLength(const SqlType& type);

} // namespace merchantry::db::tsql
