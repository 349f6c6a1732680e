#include "app/db/embedded/engine.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;

tsql::BindContext Engine::bindContext() {
    tsql::BindContext context{catalog_, batch_.frame->code->variables};
    context.ansiNulls = session_.settings.ansiNulls;
    const Code& code = *batch_.frame->code;
    context.triggerTable = code.triggerTable.get();
    context.inserted = code.inserted;
    context.deleted = code.deleted;
    return context;
}

bool Engine::isCurrent(const StatementPlan& plan) const {
    return plan.version == schema_.number() && (!plan.usesTemporary || plan.temporaryVersion == temporaries_.version());
}

// The statement's plan, bound anew when the schema or a setting changed since.
Engine::PlanPtr Engine::planFor(const tsql::Statement& statement, const std::function<void(StatementPlan&)>& bind) {
    std::vector<std::shared_ptr<StatementPlan>>& plans = batch_.frame->code->plans;
    const auto number = static_cast<std::size_t>(statement.number);
    if (plans.size() <= number)
        plans.resize(number + 1);
    if (plans[number] && isCurrent(*plans[number]))
        return plans[number];
    auto plan = std::make_shared<StatementPlan>();
    catalog_.sawTemporary = false;
    try {
        bind(*plan);
    } catch (DbError& error) {
        if (error.line() == 0)
            error.at(statement.line);
        if (checking_ || error.category() != DbError::Category::Name)
            throw;
        throw ScopeEnd{error, batch_.frame};
    }
    plan->version = schema_.number();
    plan->temporaryVersion = temporaries_.version();
    plan->usesTemporary = catalog_.sawTemporary;
    plans[number] = plan;
    return plan;
}

Engine::PlanPtr Engine::valuePlan(const tsql::Statement& statement, const Wanted& values) {
    return planFor(statement, [&](StatementPlan& plan) {
        for (const auto& [expr, type] : values)
            plan.values.push_back(tsql::Binder(bindContext()).value(*expr, type));
        plan.statements.resize(values.size());
    });
}

// @v op= value stands for @v = @v op (value).
Engine::PlanPtr Engine::setPlan(const tsql::SetVariableStatement& statement) {
    if (statement.op == "=")
        return valuePlan(statement, wantedOf(statement));
    return planFor(statement, [&](StatementPlan& plan) {
        plan.values.push_back(tsql::Binder(bindContext()).compound(statement.variable, statement.op[0], *statement.value, statement.line));
        plan.statements.resize(1);
    });
}

Engine::PlanPtr Engine::conditionPlan(const tsql::Statement& statement, const tsql::Expr& expr) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.values.push_back(tsql::Binder(bindContext()).condition(expr));
        plan.statements.resize(1);
    });
}

Engine::PlanPtr Engine::queryPlan(const tsql::Statement& statement, const tsql::Query& query) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.query = std::make_unique<tsql::QueryPlan>(tsql::Binder(bindContext()).query(query));
        plan.statements.resize(1);
    });
}

Engine::PlanPtr Engine::insertPlan(const tsql::InsertStatement& statement) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.change = std::make_unique<tsql::ChangePlan>(tsql::Binder(bindContext()).insert(statement));
        plan.statements.resize(3);
    });
}

Engine::PlanPtr Engine::updatePlan(const tsql::UpdateStatement& statement) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.change = std::make_unique<tsql::ChangePlan>(tsql::Binder(bindContext()).update(statement));
        plan.statements.resize(3);
    });
}

Engine::PlanPtr Engine::deletePlan(const tsql::DeleteStatement& statement) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.change = std::make_unique<tsql::ChangePlan>(tsql::Binder(bindContext()).deleteFrom(statement));
        plan.statements.resize(3);
    });
}

// The statement of SQLite at that place of a plan. One that is still running further out is left alone: the spare one takes its part.
sqlite3_stmt* Engine::prepared(StatementPlan& plan, std::size_t index, const tsql::Sql3& sql, Statement3& spare) {
    Statement3& own = plan.statements[index];
    if (!own)
        own = Statement3(connection_.handle(), sql.text, batch_.frame->code->module != nullptr);
    if (!own.busy()) {
        bindPlaces(own.get(), sql.places);
        return own.get();
    }
    spare = Statement3(connection_.handle(), sql.text);
    bindPlaces(spare.get(), sql.places);
    return spare.get();
}

void Engine::bindPlaces(sqlite3_stmt* statement, const std::vector<tsql::Placeholder>& places) {
    int index = 0;
    for (const tsql::Placeholder& place : places) {
        ++index;
        if (place.system) {
            tsql::bindCell(statement, index, systemValue(static_cast<tsql::SystemValue>(place.slot)));
            continue;
        }
        const Cell& cell = batch_.frame->variables[static_cast<std::size_t>(place.slot)];
        // Variables stay where they are while the statement runs.
        if (cell.kind == Cell::Kind::Text)
            sqlite3_bind_text(statement, index, cell.bytes.data(), static_cast<int>(cell.bytes.size()), SQLITE_STATIC);
        else
            tsql::bindCell(statement, index, cell);
    }
}

Cell Engine::valueAt(StatementPlan& plan, std::size_t index) {
    const tsql::ValuePlan& value = plan.values[index];
    if (value.isLiteral)
        return value.literal;
    if (value.variable >= 0)
        return batch_.frame->variables[static_cast<std::size_t>(value.variable)];
    if (value.sql.text.find(" FROM ") != std::string::npos)
        transaction_.beforeRead();
    Statement3 spare;
    sqlite3_stmt* statement = prepared(plan, index, value.sql, spare);
    const ResetGuard guard(statement);
    return connection_.step(statement) ? tsql::columnCell(statement, 0) : Cell();
}

bool Engine::conditionOf(const tsql::Statement& statement, const tsql::Expr& expr) {
    const PlanPtr plan = conditionPlan(statement, expr);
    return valueAt(*plan, 0).integer != 0;
}

// ---- checking a whole batch before it runs

bool Engine::isDeferred(const DbError& error) const {
    static constexpr int kDeferred[] = {208, 1087, 544, 545, 8101, 2812, 4121};
    return error.category() == DbError::Category::Unsupported ||
           std::find(std::begin(kDeferred), std::end(kDeferred), error.native()) != std::end(kDeferred);
}

// Binds every statement once, so that a name that is wrong in a table that is there keeps the batch from running at all. What does not
// exist yet may exist when its statement is reached.
void Engine::check(Code& code) {
    if (code.checked && code.version == schema_.number())
        return;
    {
        const Restore checking(checking_, true);
        checkLabels(*code.body);
        checkBlock(*code.body);
    }
    code.checked = true;
    code.version = schema_.number();
}

void Engine::checkBlock(const tsql::Block& block) {
    for (const tsql::StatementPtr& statement : block) {
        try {
            checkStatement(*statement);
        } catch (const DbError& error) {
            if (!isDeferred(error))
                throw;
        }
    }
}

void Engine::checkOne(const tsql::StatementPtr& statement) {
    if (!statement)
        return;
    try {
        checkStatement(*statement);
    } catch (const DbError& error) {
        if (!isDeferred(error))
            throw;
    }
}

void Engine::checkStatement(const tsql::Statement& statement) {
    switch (statement.kind) {
    case StatementKind::Select: {
        const auto& select = static_cast<const tsql::SelectStatement&>(statement);
        queryPlan(select, *select.query);
        return;
    }
    case StatementKind::Insert: {
        const auto& insert = static_cast<const tsql::InsertStatement&>(statement);
        if (!insert.execute)
            insertPlan(insert);
        return;
    }
    case StatementKind::Update:
        updatePlan(static_cast<const tsql::UpdateStatement&>(statement));
        return;
    case StatementKind::Delete:
        deletePlan(static_cast<const tsql::DeleteStatement&>(statement));
        return;
    case StatementKind::If: {
        const auto& branch = static_cast<const tsql::IfStatement&>(statement);
        checkOne(branch.then);
        checkOne(branch.otherwise);
        conditionPlan(statement, *branch.condition);
        return;
    }
    case StatementKind::While: {
        const auto& loop = static_cast<const tsql::WhileStatement&>(statement);
        checkOne(loop.body);
        conditionPlan(statement, *loop.condition);
        return;
    }
    case StatementKind::BlockOf:
        return checkBlock(static_cast<const tsql::BlockStatement&>(statement).body);
    case StatementKind::TryCatch:
        checkBlock(static_cast<const tsql::TryStatement&>(statement).body);
        return checkBlock(static_cast<const tsql::TryStatement&>(statement).handler);
    case StatementKind::SetVariable:
        if (static_cast<const tsql::SetVariableStatement&>(statement).value)
            setPlan(static_cast<const tsql::SetVariableStatement&>(statement));
        return;
    case StatementKind::Declare:
    case StatementKind::Raise:
    case StatementKind::Throw:
    case StatementKind::Print:
    case StatementKind::ExecuteText:
    case StatementKind::Return: {
        const Wanted wanted = wantedOf(statement);
        if (!wanted.empty())
            valuePlan(statement, wanted);
        return;
    }
    default:
        return;
    }
}

// The expressions that a procedural statement evaluates, with the types that it wants.
Engine::Wanted Engine::wantedOf(const tsql::Statement& statement) {
    Wanted wanted;
    const SqlType integer = tsql::simpleType(TypeKind::Int);
    const SqlType text = tsql::nvarcharType(SqlType::kMax);
    const auto typeOfVariable = [&](const std::string& name) {
        return batch_.frame->code->variables[static_cast<std::size_t>(tsql::Binder(bindContext()).variableSlot(name, statement.line))].type;
    };
    switch (statement.kind) {
    case StatementKind::SetVariable: {
        const auto& set = static_cast<const tsql::SetVariableStatement&>(statement);
        if (set.value)
            wanted.emplace_back(set.value.get(), typeOfVariable(set.variable));
        break;
    }
    case StatementKind::Declare:
        for (const tsql::Declaration& variable : static_cast<const tsql::DeclareStatement&>(statement).variables) {
            if (variable.value)
                wanted.emplace_back(variable.value.get(), typeOfVariable(variable.name));
        }
        break;
    case StatementKind::Raise: {
        const auto& raise = static_cast<const tsql::RaiseStatement&>(statement);
        wanted.emplace_back(raise.message.get(), std::nullopt);
        wanted.emplace_back(raise.severity.get(), integer);
        wanted.emplace_back(raise.state.get(), integer);
        for (const tsql::ExprPtr& argument : raise.arguments)
            wanted.emplace_back(argument.get(), std::nullopt);
        break;
    }
    case StatementKind::Throw: {
        const auto& raise = static_cast<const tsql::ThrowStatement&>(statement);
        if (raise.number) {
            wanted.emplace_back(raise.number.get(), integer);
            wanted.emplace_back(raise.message.get(), text);
            wanted.emplace_back(raise.state.get(), integer);
        }
        break;
    }
    case StatementKind::Print:
        wanted.emplace_back(static_cast<const tsql::PrintStatement&>(statement).value.get(), std::nullopt);
        break;
    case StatementKind::ExecuteText:
        wanted.emplace_back(static_cast<const tsql::ExecuteTextStatement&>(statement).text.get(), text);
        break;
    case StatementKind::Return: {
        const auto& end = static_cast<const tsql::ReturnStatement&>(statement);
        const bool isFunction = batch_.frame->isFunction;
        if (end.value)
            wanted.emplace_back(end.value.get(), isFunction ? batch_.frame->code->returns : integer);
        break;
    }
    default:
        break;
    }
    return wanted;
}

} // namespace merchantry::db::embedded
