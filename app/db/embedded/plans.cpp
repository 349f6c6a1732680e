#include "app/db/embedded/plans.h"

#include "app/db/tsql/visit.h"
#include "base/guard.h"

namespace merchantry::db::embedded {

tsql::Binder Plans::binder() {
    const Code& code = *batch_.frame->code;
    tsql::BindContext context{catalog_, code.variables};
    context.ansiNulls = batch_.session.settings.ansiNulls;
    context.triggerTable = code.triggerTable.get();
    context.inserted = code.inserted;
    context.deleted = code.deleted;
    return tsql::Binder(context);
}

bool Plans::isCurrent(const StatementPlan& plan) const {
    return isOfThisSchema(plan) && (!plan.usesTemporary || plan.temporaryVersion == temporaries_.version());
}

PlanPtr Plans::planFor(const tsql::Statement& statement, const std::function<void(StatementPlan&)>& bind) {
    std::vector<PlanPtr>& plans = batch_.frame->code->plans;
    const auto number = static_cast<std::size_t>(statement.number);
    if (plans.size() <= number)
        plans.resize(number + 1);
    if (plans[number] && isCurrent(*plans[number]))
        return plans[number];
    auto plan = std::make_shared<StatementPlan>();
    const Restore watched(catalog_.sawTemporary, false);
    try {
        bind(*plan);
    } catch (DbError& error) {
        if (error.line() == 0)
            error.at(statement.line);
        if (batch_.checking || error.category() != DbError::Category::Name)
            throw;
        throw ScopeEnd{error, batch_.frame};
    }
    plan->version = schema_.number();
    plan->temporaryVersion = temporaries_.version();
    plan->usesTemporary = catalog_.sawTemporary;
    plans[number] = plan;
    return plan;
}

PlanPtr Plans::values(const tsql::Statement& statement, const Wanted& wanted) {
    return planFor(statement, [&](StatementPlan& plan) {
        for (const auto& [expr, type] : wanted)
            plan.values.push_back(binder().value(*expr, type));
        plan.statements.resize(wanted.size());
    });
}

// @v op= value stands for @v = @v op (value).
PlanPtr Plans::set(const tsql::SetVariableStatement& statement) {
    if (statement.op == "=")
        return values(statement);
    return planFor(statement, [&](StatementPlan& plan) {
        plan.values.push_back(binder().compound(statement.variable, statement.op[0], *statement.value, statement.line));
        plan.statements.resize(1);
    });
}

PlanPtr Plans::condition(const tsql::Statement& statement, const tsql::Expr& expr) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.values.push_back(binder().condition(expr));
        plan.statements.resize(1);
    });
}

PlanPtr Plans::query(const tsql::SelectStatement& statement) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.query = std::make_unique<tsql::QueryPlan>(binder().query(*statement.query));
        plan.statements.resize(1);
    });
}

PlanPtr Plans::changePlan(const tsql::Statement& statement, const std::function<tsql::ChangePlan()>& bind) {
    return planFor(statement, [&](StatementPlan& plan) {
        plan.change = std::make_unique<tsql::ChangePlan>(bind());
        plan.statements.resize(1);
    });
}

PlanPtr Plans::insert(const tsql::InsertStatement& statement) {
    return changePlan(statement, [&] { return binder().insert(statement); });
}

PlanPtr Plans::update(const tsql::UpdateStatement& statement) {
    return changePlan(statement, [&] { return binder().update(statement); });
}

PlanPtr Plans::remove(const tsql::DeleteStatement& statement) {
    return changePlan(statement, [&] { return binder().deleteFrom(statement); });
}

Plans::Wanted Plans::wantedOf(const tsql::Statement& statement) {
    const SqlType integer = tsql::simpleType(TypeKind::Int);
    const SqlType text = tsql::nvarcharType(SqlType::kMax);
    return tsql::visit(
        statement,
        tsql::Visitor{
            [&](const tsql::SetVariableStatement& set) -> Wanted {
                if (!set.value)
                    return {};
                return {{set.value.get(), typeOfVariable(set.variable, set.line)}};
            },
            [&](const tsql::DeclareStatement& declare) -> Wanted {
                Wanted wanted;
                for (const tsql::Declaration& variable : declare.variables) {
                    if (variable.value)
                        wanted.emplace_back(variable.value.get(), typeOfVariable(variable.name, declare.line));
                }
                return wanted;
            },
            [&](const tsql::RaiseStatement& raise) -> Wanted {
                Wanted wanted = {{raise.message.get(), std::nullopt}, {raise.severity.get(), integer}, {raise.state.get(), integer}};
                for (const tsql::ExprPtr& argument : raise.arguments)
                    wanted.emplace_back(argument.get(), std::nullopt);
                return wanted;
            },
            [&](const tsql::ThrowStatement& raise) -> Wanted {
                if (!raise.number)
                    return {};
                return {{raise.number.get(), integer}, {raise.message.get(), text}, {raise.state.get(), integer}};
            },
            [&](const tsql::PrintStatement& print) -> Wanted {
                return {{print.value.get(), std::nullopt}};
            },
            [&](const tsql::ExecuteTextStatement& execute) -> Wanted {
                return {{execute.text.get(), text}};
            },
            [&](const tsql::ReturnStatement& end) -> Wanted {
                if (!end.value)
                    return {};
                return {{end.value.get(), batch_.frame->isFunction ? batch_.frame->code->returns : integer}};
            },
            [](const tsql::Statement&) -> Wanted { return {}; }});
}

} // namespace merchantry::db::embedded
