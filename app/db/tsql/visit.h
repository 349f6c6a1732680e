#pragma once

#include "app/db/tsql/ast.h"

#include <utility>

namespace merchantry::db::tsql {

// Several lambdas as one visitor: the overload that fits a statement best takes it.
template <class... Ts> struct Visitor : Ts... { using Ts::operator()...; };
template <class... Ts> Visitor(Ts...) -> Visitor<Ts...>;

// Calls the visitor with the statement as what it is: the one place that knows which kind is of which type. BREAK, CONTINUE and what is
// accepted without effect come as Statement. All overloads return the same type.
template <class V> decltype(auto) visit(const Statement& statement, V&& visitor) {
    switch (statement.kind) {
    case StatementKind::Select:
        return visitor(static_cast<const SelectStatement&>(statement));
    case StatementKind::Insert:
        return visitor(static_cast<const InsertStatement&>(statement));
    case StatementKind::Update:
        return visitor(static_cast<const UpdateStatement&>(statement));
    case StatementKind::Delete:
        return visitor(static_cast<const DeleteStatement&>(statement));
    case StatementKind::Truncate:
        return visitor(static_cast<const TruncateStatement&>(statement));
    case StatementKind::CreateTable:
        return visitor(static_cast<const CreateTableStatement&>(statement));
    case StatementKind::AlterTable:
        return visitor(static_cast<const AlterTableStatement&>(statement));
    case StatementKind::CreateIndex:
        return visitor(static_cast<const CreateIndexStatement&>(statement));
    case StatementKind::CreateView:
        return visitor(static_cast<const CreateViewStatement&>(statement));
    case StatementKind::CreateProcedure:
        return visitor(static_cast<const CreateProcedureStatement&>(statement));
    case StatementKind::CreateFunction:
        return visitor(static_cast<const CreateFunctionStatement&>(statement));
    case StatementKind::CreateTrigger:
        return visitor(static_cast<const CreateTriggerStatement&>(statement));
    case StatementKind::CreateType:
        return visitor(static_cast<const CreateTypeStatement&>(statement));
    case StatementKind::Drop:
        return visitor(static_cast<const DropStatement&>(statement));
    case StatementKind::Declare:
        return visitor(static_cast<const DeclareStatement&>(statement));
    case StatementKind::DeclareTable:
        return visitor(static_cast<const DeclareTableStatement&>(statement));
    case StatementKind::SetVariable:
        return visitor(static_cast<const SetVariableStatement&>(statement));
    case StatementKind::SetOption:
        return visitor(static_cast<const SetOptionStatement&>(statement));
    case StatementKind::If:
        return visitor(static_cast<const IfStatement&>(statement));
    case StatementKind::While:
        return visitor(static_cast<const WhileStatement&>(statement));
    case StatementKind::Return:
        return visitor(static_cast<const ReturnStatement&>(statement));
    case StatementKind::Goto:
    case StatementKind::Label:
        return visitor(static_cast<const GotoStatement&>(statement));
    case StatementKind::BlockOf:
        return visitor(static_cast<const BlockStatement&>(statement));
    case StatementKind::TryCatch:
        return visitor(static_cast<const TryStatement&>(statement));
    case StatementKind::Raise:
        return visitor(static_cast<const RaiseStatement&>(statement));
    case StatementKind::Throw:
        return visitor(static_cast<const ThrowStatement&>(statement));
    case StatementKind::Print:
        return visitor(static_cast<const PrintStatement&>(statement));
    case StatementKind::Execute:
        return visitor(static_cast<const ExecuteStatement&>(statement));
    case StatementKind::ExecuteText:
        return visitor(static_cast<const ExecuteTextStatement&>(statement));
    case StatementKind::Begin:
    case StatementKind::Commit:
    case StatementKind::Rollback:
    case StatementKind::Save:
        return visitor(static_cast<const TransactionStatement&>(statement));
    case StatementKind::Use:
        return visitor(static_cast<const UseStatement&>(statement));
    case StatementKind::WaitFor:
        return visitor(static_cast<const WaitForStatement&>(statement));
    case StatementKind::Cursor:
        return visitor(static_cast<const CursorStatement&>(statement));
    case StatementKind::Unsupported:
        return visitor(static_cast<const UnsupportedStatement&>(statement));
    case StatementKind::Break:
    case StatementKind::Continue:
    case StatementKind::Nothing:
        break;
    }
    return visitor(statement);
}

// Calls it with each statement directly within this one: the parts of a block, of a TRY, of an IF or a WHILE.
template <class F> void eachInner(const Statement& statement, F&& call) {
    const auto one = [&](const StatementPtr& inner) {
        if (inner)
            call(*inner);
    };
    const auto all = [&](const Block& block) {
        for (const StatementPtr& inner : block)
            one(inner);
    };
    visit(statement, Visitor{[&](const BlockStatement& block) { all(block.body); },
                             [&](const TryStatement& guarded) {
                                 all(guarded.body);
                                 all(guarded.handler);
                             },
                             [&](const IfStatement& branch) {
                                 one(branch.then);
                                 one(branch.otherwise);
                             },
                             [&](const WhileStatement& loop) { one(loop.body); }, [](const Statement&) {}});
}

} // namespace merchantry::db::tsql
