#include "app/db/embedded/batch_check.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/visit.h"

#include <algorithm>
#include <set>

namespace merchantry::db::embedded {
namespace {

// The labels of a batch, and the jumps to them.
struct Labels {
    std::set<std::string> labels;
    std::vector<const tsql::GotoStatement*> jumps;

    void gather(const tsql::Statement& statement) {
        if (statement.kind == tsql::StatementKind::Label)
            labels.insert(static_cast<const tsql::GotoStatement&>(statement).label);
        else if (statement.kind == tsql::StatementKind::Goto)
            jumps.push_back(static_cast<const tsql::GotoStatement*>(&statement));
        else
            tsql::eachInner(statement, [this](const tsql::Statement& inner) { gather(inner); });
    }
};

void checkLabels(const tsql::Block& block) {
    Labels known;
    for (const tsql::StatementPtr& statement : block)
        known.gather(*statement);
    for (const tsql::GotoStatement* jump : known.jumps) {
        const bool found = std::any_of(known.labels.begin(), known.labels.end(),
                                       [&](const std::string& label) { return tsql::sameName(label, jump->label); });
        if (!found)
            throw serverMessage(Message::UnknownLabel, {jump->label}, jump->line);
    }
}

bool isDeferred(const DbError& error) {
    static constexpr int kDeferred[] = {208, 1087, 544, 545, 8101, 2812, 4121};
    return error.category() == DbError::Category::Unsupported ||
           std::find(std::begin(kDeferred), std::end(kDeferred), error.native()) != std::end(kDeferred);
}

} // namespace

void BatchCheck::check(Code& code) {
    if (code.checked && code.version == schema_.number())
        return;
    {
        const CheckScope checking(batch_);
        checkLabels(*code.body);
        for (const tsql::StatementPtr& statement : *code.body)
            checkEach(*statement);
    }
    code.checked = true;
    code.version = schema_.number();
}

void BatchCheck::checkEach(const tsql::Statement& statement) {
    tsql::eachInner(statement, [this](const tsql::Statement& inner) { checkEach(inner); });
    try {
        bind(statement);
    } catch (const DbError& error) {
        if (!isDeferred(error))
            throw;
    }
}

void BatchCheck::bind(const tsql::Statement& statement) {
    tsql::visit(statement, tsql::Visitor{[&](const tsql::SelectStatement& select) { plans_.query(select); },
                                         [&](const tsql::InsertStatement& insert) {
                                             if (!insert.execute)
                                                 plans_.insert(insert);
                                         },
                                         [&](const tsql::UpdateStatement& update) { plans_.update(update); },
                                         [&](const tsql::DeleteStatement& remove) { plans_.remove(remove); },
                                         [&](const tsql::IfStatement& branch) { plans_.condition(branch, *branch.condition); },
                                         [&](const tsql::WhileStatement& loop) { plans_.condition(loop, *loop.condition); },
                                         [&](const tsql::SetVariableStatement& set) {
                                             if (set.value)
                                                 plans_.set(set);
                                         },
                                         [&](const tsql::Statement& other) {
                                             const Plans::Wanted wanted = plans_.wantedOf(other);
                                             if (!wanted.empty())
                                                 plans_.values(other, wanted);
                                         }});
}

} // namespace merchantry::db::embedded
