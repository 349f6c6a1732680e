#include "app/db/messages.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <string_view>

namespace merchantry::db {
namespace {

using Category = DbError::Category;

struct Row {
    Category category;
    Message message;
    std::string_view text; // % is the place of an argument
};

constexpr Row kRows[] = {
    {Category::Syntax, Message::IncorrectSyntax, "Incorrect syntax near '%'."},
    {Category::Syntax, Message::OrderByNotSelected,
     "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT operator."},
    {Category::Syntax, Message::UnclosedQuote, "Unclosed quotation mark after the character string '%'."},
    {Category::Syntax, Message::OrderByPosition,
     "The ORDER BY position number % is out of range of the number of items in the select list."},
    {Category::Syntax, Message::TooFewValues,
     "There are more columns in the INSERT statement than values specified in the VALUES clause. The number of values in the VALUES clause "
     "must match the number of columns specified in the INSERT statement."},
    {Category::Syntax, Message::TooManyValues,
     "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The number of values in the VALUES "
     "clause must match the number of columns specified in the INSERT statement."},
    {Category::Syntax, Message::NotFirstInBatch, "'%' must be the first statement in a query batch."},
    {Category::Syntax, Message::UnclosedComment, "Missing end comment mark '*/'."},
    {Category::Syntax, Message::SubqueryOfSeveralColumns,
     "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS."},
    {Category::Syntax, Message::TooManyPrefixes,
     "The object name '%' contains more than the maximum number of prefixes. The maximum is 3."},
    {Category::Syntax, Message::NamedParameterFirst,
     "Must pass parameter number % and subsequent parameters as '@name = value'. After the form '@name = value' has been used, all "
     "subsequent parameters must be passed in the form '@name = value'."},
    {Category::Syntax, Message::TooFewSelected,
     "The select list for the INSERT statement contains fewer items than the insert list. The number of SELECT values must match the "
     "number of INSERT columns."},
    {Category::Syntax, Message::TooManySelected,
     "The select list for the INSERT statement contains more items than the insert list. The number of SELECT values must match the number "
     "of INSERT columns."},
    {Category::Type, Message::NegativeTop,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer that is not negative."},
    {Category::Syntax, Message::AggregateOfAggregate,
     "Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
    {Category::Syntax, Message::TypeTooLong, "The size (%) given to the type '%' exceeds the maximum allowed for any data type (8000)."},
    {Category::Syntax, Message::UnknownLabel, "A GOTO statement references the label '%' but the label has not been declared."},
    {Category::Name, Message::VariableDeclaredTwice,
     "The variable name '%' has already been declared. Variable names must be unique within a query batch or stored procedure."},
    {Category::Syntax, Message::BreakOutsideLoop, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {Category::Syntax, Message::ContinueOutsideLoop, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {Category::Name, Message::UndeclaredVariable, "Must declare the scalar variable \"%\"."},
    {Category::Syntax, Message::UpdateOutsideTrigger, "Can only use IF UPDATE within a CREATE TRIGGER statement."},
    {Category::Syntax, Message::AssignmentBesideColumns,
     "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval operations."},
    {Category::Syntax, Message::AggregateInGroupBy,
     "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY clause."},
    {Category::Syntax, Message::OrderByNotDistinct, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {Category::Syntax, Message::AggregateInWhere,
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause or a select list, and the "
     "column being aggregated is an outer reference."},
    {Category::Syntax, Message::UnknownOption, "'%' is not a recognized % option."},
    {Category::Syntax, Message::IncorrectKeyword, "Incorrect syntax near the keyword '%'."},
    {Category::Syntax, Message::IndexWithoutTable, "Must specify the table name and index name for the DROP INDEX statement."},
    {Category::Syntax, Message::GroupByConstant,
     "Each GROUP BY expression must contain at least one column that is not an outer reference."},
    {Category::Syntax, Message::OrderByTwice,
     "A column has been specified more than once in the order by list. Columns in the order by list must be unique."},
    {Category::Syntax, Message::ArgumentCount, "The % function requires % argument(s)."},
    {Category::Syntax, Message::ReturnValueOutsideModule, "A RETURN statement with a return value cannot be used in this context."},
    {Category::Syntax, Message::OutputOfConstant, "Cannot use the OUTPUT option when passing a constant to a stored procedure."},
    {Category::Syntax, Message::NestedTooDeeply,
     "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries."},
    {Category::Syntax, Message::ScaleAbovePrecision, "The scale must be less than or equal to the precision."},
    {Category::Name, Message::UnknownFunction, "'%' is not a recognized built-in function name."},
    {Category::Type, Message::MissingParameter, "Procedure or function '%' expects parameter '%', which was not supplied."},
    {Category::Syntax, Message::UnequalColumns,
     "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of expressions in their target lists."},
    {Category::Type, Message::OperandClash, "Operand type clash: % is incompatible with %"},
    {Category::Name, Message::InvalidColumn, "Invalid column name '%'."},
    {Category::Name, Message::InvalidObject, "Invalid object name '%'."},
    {Category::Name, Message::AmbiguousColumn, "Ambiguous column name '%'."},
    {Category::Syntax, Message::ColumnsDoNotMatch, "Column name or number of supplied values does not match table definition."},
    {Category::Type, Message::ParameterNotNText, "Procedure expects parameter '%' of type 'ntext/nchar/nvarchar'."},
    {Category::Other, Message::NestingLevel, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32)."},
    {Category::Name, Message::TypeExists, "The type '%' already exists, or you do not have permission to create it."},
    {Category::Type, Message::DataTypeOverflow, "Arithmetic overflow error for data type %, value = %."},
    {Category::Type, Message::TypeOverflow, "Arithmetic overflow error for type %."},
    {Category::Type, Message::TextIsNoMoney, "Cannot convert a char value to money. The char value has incorrect syntax."},
    {Category::Type, Message::RecursionTypes,
     "Types don't match between the anchor and the recursive part in column \"%\" of recursive query \"%\"."},
    {Category::Type, Message::TextIsNoDate, "Conversion failed when converting date and/or time from character string."},
    {Category::Type, Message::DateOutOfRange, "The conversion of a % data type to a % data type resulted in an out-of-range value."},
    {Category::Type, Message::TextOverflows, "The conversion of the % value '%' overflowed an % column. Use a larger integer column."},
    {Category::Type, Message::TextDoesNotConvert, "Conversion failed when converting the % value '%' to data type %."},
    {Category::Type, Message::TextOverflowsInt, "The conversion of the % value '%' overflowed an int column."},
    {Category::Type, Message::NotImplicit,
     "Implicit conversion from data type % to % is not allowed. Use the CONVERT function to run this query."},
    {Category::Syntax, Message::NothingToSelectFrom, "Must specify table to select from."},
    {Category::Syntax, Message::ColumnGivenTwice,
     "The column name '%' is specified more than once in the SET clause or column list of an INSERT."},
    {Category::Transaction, Message::TransactionCount,
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. Previous count = %, current count = "
     "%."},
    {Category::Type, Message::ComputedNotModifiable,
     "The column \"%\" cannot be modified because it is either a computed column or is the result of a UNION operator."},
    {Category::Type, Message::InvalidStyle, "% is not a valid style number when converting from datetime to a character string."},
    {Category::Type, Message::LogicalTableNotModifiable, "The logical tables INSERTED and DELETED and the catalogue cannot be updated."},
    {Category::Syntax, Message::TooFewArguments, "An insufficient number of arguments were supplied for the procedure or function %."},
    {Category::Type, Message::IncompatibleTypes, "The data types % and % are incompatible in the % operator."},
    {Category::Syntax, Message::OrderByConstant, "A constant expression was encountered in the ORDER BY list, position 1."},
    {Category::Type, Message::CollateOfType, "Expression type % is invalid for COLLATE clause."},
    {Category::Name, Message::InvalidCollation, "Invalid collation '%'."},
    {Category::Type, Message::InvalidEscape, "The invalid escape character \"%\" was specified in a LIKE predicate."},
    {Category::Other, Message::SubqueryOfSeveralRows,
     "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= , >, >= or when the subquery is "
     "used as an expression."},
    {Category::Integrity, Message::NullNotAllowed,
     "Cannot insert the value NULL into column '%', table 'dbo.%'; column does not allow nulls. % fails."},
    {Category::Type, Message::DateOverflow, "Adding a value to a 'datetime' column caused an overflow."},
    {Category::Other, Message::RecursionExhausted,
     "The statement terminated. The maximum recursion % has been exhausted before statement completion."},
    {Category::Type, Message::DateDiffOverflow,
     "The datediff function resulted in an overflow. The number of dateparts separating two date/time instances is too large."},
    {Category::Type, Message::InvalidLength, "Invalid length parameter passed to the % function."},
    {Category::Integrity, Message::IdentityGiven,
     "Cannot insert explicit value for identity column in table '%' when IDENTITY_INSERT is set to OFF."},
    {Category::Type, Message::IdentityNotGiven,
     "Explicit value must be specified for identity column in table '%' either when IDENTITY_INSERT is set to ON or when a replication "
     "user is inserting into a NOT FOR REPLICATION identity column."},
    {Category::Integrity, Message::ConstraintConflict,
     "The % statement conflicted with the % constraint \"%\". The conflict occurred in database \"%\", table \"dbo.%\"%."},
    {Category::Transaction, Message::SaveWithoutBegin, "Cannot issue SAVE TRANSACTION when there is no active transaction."},
    {Category::Syntax, Message::NumberTooLong, "The number '%' is out of the range for numeric representation (maximum precision 38)."},
    {Category::Name, Message::SameExposedNames,
     "The objects \"%\" and \"%\" in the FROM clause have the same exposed names. Use correlation names to distinguish them."},
    {Category::Type, Message::PercentOutOfRange, "Percent values must be between 0 and 100."},
    {Category::Syntax, Message::OrderByInSubquery,
     "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common table expressions, unless TOP, "
     "OFFSET or FOR XML is also specified."},
    {Category::Syntax, Message::NameMissing, "An object or column name is missing or empty."},
    {Category::Syntax, Message::SubqueryNotAllowed, "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    {Category::Type, Message::NullTop,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer that is not negative."},
    {Category::Name, Message::UndeclaredTableVariable, "Must declare the table variable \"%\"."},
    {Category::Name, Message::UnknownTable, "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    {Category::Integrity, Message::DuplicateForIndex,
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo.%' and the index name '%'."},
    {Category::Name, Message::DefaultOfUnknownColumn, "Column name '%' does not exist in the target table or view."},
    {Category::Type, Message::DefaultOnIdentity, "Defaults cannot be created on columns with an IDENTITY attribute."},
    {Category::Type, Message::ComputedOfComputed,
     "Computed column '%' in table '%' is not allowed to be used in another computed-column definition."},
    {Category::Name, Message::ForeignTableMissing, "Foreign key '%' references invalid table '%'."},
    {Category::Name, Message::ForeignKeyOfUnknownColumn, "Column name '%' does not exist in the target table or view."},
    {Category::Name, Message::ForeignColumnMissing, "Foreign key '%' references invalid column '%' in referenced table '%'."},
    {Category::Type, Message::ForeignTableWithoutKey,
     "Foreign key '%' has implicit reference to object '%' which does not have a primary key defined on it."},
    {Category::Type, Message::NoMatchingKey,
     "There are no primary or candidate keys in the referenced table '%' that match the referencing column list in the foreign key '%'."},
    {Category::Type, Message::PrimaryKeyExists, "Table '%' already has a primary key defined on it."},
    {Category::Type, Message::DefaultExists, "Column already has a DEFAULT bound to it."},
    {Category::Name, Message::KeyOfUnknownColumn, "Column name '%' does not exist in the target table or view."},
    {Category::Name, Message::IndexExists,
     "The operation failed because an index or statistics with name '%' already exists on table '%'."},
    {Category::Type, Message::InsteadTriggerExists,
     "Cannot create trigger '%' on '%' because an INSTEAD OF trigger already exists on this object."},
    {Category::Integrity, Message::DuplicateIndexRow, "Cannot insert duplicate key row in object 'dbo.%' with unique index '%'."},
    {Category::Integrity, Message::DuplicateKey, "Violation of % constraint '%'. Cannot insert duplicate key in object 'dbo.%'."},
    {Category::Name, Message::ColumnTwice,
     "Column names in each table must be unique. Column name '%' in table '%' is specified more than once."},
    {Category::Name, Message::ObjectExists, "There is already an object named '%' in the database."},
    {Category::Name, Message::UnknownType, "Column, parameter, or variable: Cannot find data type %."},
    {Category::Type, Message::SeveralIdentities,
     "Multiple identity columns specified for table '%'. Only one identity column per table is allowed."},
    {Category::Type, Message::IdentityType,
     "Identity column '%' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a scale of 0, unencrypted, and "
     "constrained to be nonnullable."},
    {Category::Syntax, Message::PrecisionTooHigh,
     "Column or parameter: Specified column precision % is greater than the maximum precision of 38."},
    {Category::Type, Message::SubstitutionType,
     "The data type of substitution parameter % does not match the expected type of the format specification."},
    {Category::Type, Message::InvalidFormat, "Invalid format specification: '%'."},
    {Category::Name, Message::UnknownProcedure, "Could not find stored procedure '%'."},
    {Category::Transaction, Message::EndedInTrigger, "The transaction ended in the trigger. The batch has been aborted."},
    {Category::Transaction, Message::ErrorInTrigger,
     "An error was raised during trigger execution. The batch has been aborted and the user transaction, if any, has been rolled back."},
    {Category::Type, Message::InvalidFloat, "An invalid floating point operation occurred."},
    {Category::Name, Message::CannotDrop, "Cannot drop the % '%', because it does not exist or you do not have permission."},
    {Category::Type, Message::IndexOfConstraint,
     "An explicit DROP INDEX is not allowed on index '%'. It is being used for constraint enforcement."},
    {Category::Type, Message::ConstraintReferenced, "The constraint '%' is being referenced by table '%', foreign key constraint '%'."},
    {Category::Type, Message::TableReferenced, "Could not drop object '%' because it is referenced by a FOREIGN KEY constraint."},
    {Category::Name, Message::NoConstraint, "'%' is not a constraint."},
    {Category::Transaction, Message::CommitWithoutBegin, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {Category::Transaction, Message::RollbackWithoutBegin, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {Category::Storage, Message::SessionOnlyReads, "This session only reads: the change was refused."},
    {Category::Transaction, Message::RollbackInInsertExec, "Cannot use the ROLLBACK statement within an INSERT-EXEC statement."},
    {Category::Transaction, Message::Uncommittable,
     "The current transaction cannot be committed and cannot support operations that write to the log file. Roll back the transaction."},
    {Category::Transaction, Message::UncommittableSavePoint,
     "The current transaction cannot be committed and cannot be rolled back to a savepoint. Roll back the entire transaction."},
    {Category::Transaction, Message::UncommittableAtEnd,
     "Uncommittable transaction is detected at the end of the batch. The transaction is rolled back."},
    {Category::Name, Message::UnboundIdentifier, "The multi-part identifier \"%\" could not be bound."},
    {Category::Syntax, Message::WindowOutsideSelect, "Windowed functions can only appear in the SELECT or ORDER BY clauses."},
    {Category::Syntax, Message::OverWithoutOrder, "The function '%' must have an OVER clause with ORDER BY."},
    {Category::Name, Message::UnknownUserFunction,
     "Cannot find either column \"%\" or the user-defined function or aggregate \"%\", or the name is ambiguous."},
    {Category::Type, Message::CoalesceOfNulls,
     "At least one of the arguments to COALESCE must be an expression that is not the NULL constant."},
    {Category::Syntax, Message::NoCondition,
     "An expression of non-boolean type specified in a context where a condition is expected, near '%'."},
    {Category::Type, Message::ViewNotUpdatable,
     "Cannot update the view or function '%' because it contains aggregates, or a DISTINCT or GROUP BY clause, or PIVOT or UNPIVOT "
     "operator."},
    {Category::Type, Message::ViewOfSeveralTables,
     "View or function '%' is not updatable because the modification affects multiple base tables."},
    {Category::Type, Message::DerivedField,
     "Update or insert of view or function '%' failed because it contains a derived or constant field."},
    {Category::Syntax, Message::ViewColumnNameless, "Create View or Function failed because no column name was specified for a column."},
    {Category::Name, Message::TruncateUnknownTable,
     "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    {Category::Type, Message::TruncateReferenced, "Cannot truncate table '%' because it is being referenced by a FOREIGN KEY constraint."},
    {Category::Type, Message::AddedColumnNeedsDefault,
     "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition specified. Column '%' cannot be "
     "added to non-empty table '%' because it does not satisfy these conditions."},
    {Category::Name, Message::AlterUnknownTable, "Cannot find the object \"%\" because it does not exist or you do not have permissions."},
    {Category::Name, Message::UnknownTriggerOfTable, "ALTER TABLE failed because trigger '%' on table '%' does not exist."},
    {Category::Name, Message::UnknownColumnOfTable, "ALTER TABLE % failed because column '%' does not exist in table '%'."},
    {Category::Type, Message::CannotAlterComputed, "Cannot alter column '%' because it is computed."},
    {Category::Type, Message::ColumnDependedOn, "The object is dependent on column '%'."},
    {Category::Transaction, Message::UnknownSavePoint, "Cannot roll back %. No transaction or savepoint of that name was found."},
    {Category::Name, Message::NoIdentityColumn, "'%' does not contain an identity column."},
    {Category::Type, Message::IdentityNeedsColumns,
     "An explicit value for the identity column in table '%' can only be specified when a column list is used and IDENTITY_INSERT is ON."},
    {Category::Type, Message::IdentityNotUpdatable, "Cannot update identity column '%'."},
    {Category::Type, Message::NoIdentityProperty, "Table '%' does not have the identity property. Cannot perform SET operation."},
    {Category::Type, Message::IdentityInsertElsewhere,
     "IDENTITY_INSERT is already ON for another table. Cannot perform SET operation for table '%'."},
    {Category::Syntax, Message::SeveralPrimaryKeys, "Cannot add multiple PRIMARY KEY constraints to table '%'."},
    {Category::Type, Message::PrimaryKeyNullable, "Cannot define PRIMARY KEY constraint on nullable column in table '%'."},
    {Category::Type, Message::CannotConvert, "Error converting data type % to %."},
    {Category::Type, Message::ArithmeticOverflow, "Arithmetic overflow error converting % to data type %."},
    {Category::Type, Message::ArgumentType, "Argument data type % is invalid for argument 1 of % function."},
    {Category::Type, Message::OperandType, "Operand data type % is invalid for % operator."},
    {Category::Name, Message::NotGroupedSelect,
     "Column '%' is invalid in the select list because it is not contained in either an aggregate function or the GROUP BY clause."},
    {Category::Name, Message::NotGroupedHaving,
     "Column '%' is invalid in the HAVING clause because it is not contained in either an aggregate function or the GROUP BY clause."},
    {Category::Name, Message::NotGroupedOrderBy,
     "Column '%' is invalid in the ORDER BY clause because it is not contained in either an aggregate function or the GROUP BY clause."},
    {Category::Type, Message::CaseOfNulls,
     "At least one of the result expressions in a CASE expression must be an expression other than the NULL constant."},
    {Category::Type, Message::DivideByZero, "Divide by zero error encountered."},
    {Category::Type, Message::ParameterTwice, "Parameter '%' was supplied multiple times."},
    {Category::Type, Message::TooManyArguments, "Procedure or function % has too many arguments specified."},
    {Category::Type, Message::UnknownParameter, "% is not a parameter for procedure %."},
    {Category::Type, Message::NoParameters, "Procedure % has no parameters and arguments were supplied."},
    {Category::Type, Message::TextTruncated, "String or binary data would be truncated."},
    {Category::Name, Message::AmbiguousTable, "The table '%' is ambiguous."},
    {Category::Syntax, Message::ColumnNameless, "No column name was specified for column % of '%'."},
    {Category::Syntax, Message::DerivedColumnTwice, "The column '%' was specified multiple times for '%'."},
    {Category::Syntax, Message::TooManyColumns, "'%' has more columns than were specified in the column list."},
    {Category::Syntax, Message::TooFewColumns, "'%' has fewer columns than were specified in the column list."},
    {Category::Type, Message::NestedInsertExec, "An INSERT EXEC statement cannot be nested."},
    {Category::Type, Message::TextIsNoGuid, "Conversion failed when converting from a character string to uniqueidentifier."},
    {Category::Type, Message::ParameterNotSupplied, "The parameterized query expects the parameter '%', which was not supplied."},
    {Category::Name, Message::TriggerTargetMissing, "The object '%' does not exist or is invalid for this operation."},
    {Category::Syntax, Message::ThrowOutsideCatch, "To rethrow an error, a THROW statement must be used inside a CATCH block."},
    {Category::Syntax, Message::TopBesideOffset, "A TOP can not be used in the same query or sub-query as an OFFSET."},
    {Category::Syntax, Message::NegativeOffset, "The offset specified in a OFFSET clause may not be negative."},
    {Category::Syntax, Message::NoRowsToFetch, "The number of rows provided for a FETCH clause must be greater then zero."},
    {Category::Syntax, Message::OverMissing, "The function '%' must have an OVER clause."},
    {Category::Other, Message::CommandShellOff,
     "SQL Server blocked access to procedure 'sys.xp_cmdshell' of component 'xp_cmdshell' because this component is turned off as part of "
     "the security configuration for this server. A system administrator can enable the use of 'xp_cmdshell' by using sp_configure. For "
     "more information about enabling 'xp_cmdshell', search for 'xp_cmdshell' in SQL Server Books Online."},
    {Category::Type, Message::CursorOpen, "The cursor is already open."},
    {Category::Type, Message::CursorExists, "A cursor with the name '%' already exists."},
    {Category::Type, Message::UnknownCursor, "A cursor with the name '%' does not exist."},
    {Category::Type, Message::CursorClosed, "Cursor is not open."},
    {Category::Type, Message::FetchCount,
     "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns."},
    {Category::Syntax, Message::ThrowNumber,
     "Error number % in the THROW statement is outside the valid range. Specify an error number in the valid range of 50000 to "
     "2147483647."},
};

// Numbers that only a server sends, or that come with words of their own.
constexpr int kSyntax[] = {170, 319, kUnnamedError};
constexpr int kName[] = {911, 4120};
constexpr int kType[] = {293, 295, 296, 2628};
constexpr int kBusy[] = {1204, 1205, 1222};
constexpr int kStorage[] = {701, 823, 824, 1101, 1105, 5120, 9002};

struct Meaning {
    Category category;
    std::span<const int> numbers;
};

constexpr Meaning kOthers[] = {
    {Category::Syntax, kSyntax}, {Category::Name, kName}, {Category::Type, kType}, {Category::Busy, kBusy}, {Category::Storage, kStorage},
};

// Numbers that RAISERROR and THROW may give.
constexpr int kFirstRaised = 50000;
constexpr int kLastRaised = 33'000'000;

constexpr int kSyntaxSeverity = 15;
constexpr int kSeverity = 16;

constexpr bool isBefore(const Row& row, int native) {
    return static_cast<int>(row.message) < native;
}

const Row* rowOf(int native) {
    const Row* const found = std::lower_bound(std::begin(kRows), std::end(kRows), native, isBefore);
    return found != std::end(kRows) && static_cast<int>(found->message) == native ? found : nullptr;
}

static_assert(std::is_sorted(std::begin(kRows), std::end(kRows), [](const Row& a, const Row& b) { return a.message < b.message; }),
              "messages are found by their number");

} // namespace

DbError::Category categoryOf(int native) {
    if (const Row* row = rowOf(native))
        return row->category;
    for (const Meaning& meaning : kOthers) {
        if (std::find(meaning.numbers.begin(), meaning.numbers.end(), native) != meaning.numbers.end())
            return meaning.category;
    }
    return native >= kFirstRaised && native < kLastRaised ? Category::Raised : Category::Other;
}

DbError serverError(int native, const std::string& message, int line) {
    const Category category = categoryOf(native);
    return DbError(category, native, message, line).withSeverity(category == Category::Syntax ? kSyntaxSeverity : kSeverity, 1);
}

DbError serverMessage(Message message, std::initializer_list<std::string> arguments, int line) {
    const Row* const row = rowOf(static_cast<int>(message));
    assert(row && static_cast<std::size_t>(std::count(row->text.begin(), row->text.end(), '%')) == arguments.size());
    std::string text;
    auto argument = arguments.begin();
    for (const char c : row->text) {
        if (c == '%' && argument != arguments.end())
            text += *argument++;
        else
            text += c;
    }
    return serverError(static_cast<int>(message), text, line);
}

} // namespace merchantry::db
