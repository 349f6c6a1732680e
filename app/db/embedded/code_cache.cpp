#include "app/db/embedded/code_cache.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/visit.h"

namespace merchantry::db::embedded {
namespace {

constexpr std::size_t kMostBatches = 300;

SqlType typeOf(const Parameter& parameter) {
    return parameter.type.kind == TypeKind::Null ? tsql::typeOf(parameter.value) : parameter.type;
}

void addVariable(Code& code, const std::string& name, const SqlType& type, bool isCursor, int line) {
    for (const tsql::Variable& other : code.variables) {
        if (tsql::sameName(other.name, name))
            throw serverMessage(Message::VariableDeclaredTwice, {name}, line).withSeverity(15, 2);
    }
    code.variables.push_back({name, type, isCursor});
}

} // namespace

// Declarations count from where they stand to the end of the batch, whatever block they are in.
void CodeCache::addVariables(Code& code, const tsql::Statement& statement) {
    if (statement.kind == tsql::StatementKind::Declare) {
        for (const tsql::Declaration& variable : static_cast<const tsql::DeclareStatement&>(statement).variables)
            addVariable(code, variable.name, variable.cursor ? SqlType() : catalog_.declaredType(variable.type), variable.cursor,
                        variable.line);
        return;
    }
    tsql::eachInner(statement, [&](const tsql::Statement& inner) { addVariables(code, inner); });
}

// ---- batches

std::string CodeCache::keyOf(std::string_view text, const std::vector<Parameter>& parameters) const {
    std::string key(text);
    if (!session_.settings.quotedIdentifiers)
        key += "\x01q";
    if (!session_.settings.ansiNulls)
        key += "\x01n";
    for (const Parameter& parameter : parameters)
        key += "\x01" + parameter.name + " " + typeOf(parameter).toText();
    return key;
}

std::shared_ptr<Code> CodeCache::batch(std::string_view text, const std::vector<Parameter>& parameters) {
    const std::string key = keyOf(text, parameters);
    const auto found = batches_.find(key);
    if (found != batches_.end())
        return found->second;
    auto code = std::make_shared<Code>();
    code->batch = tsql::parseBatch(text, session_.settings.quotedIdentifiers);
    code->body = &code->batch.statements;
    for (const Parameter& parameter : parameters) {
        const bool named = !parameter.name.empty() && parameter.name.front() == '@';
        addVariable(*code, named ? parameter.name : "@" + parameter.name, typeOf(parameter), false, 0);
    }
    for (const tsql::StatementPtr& statement : *code->body)
        addVariables(*code, *statement);
    keep(key, code);
    return code;
}

// Most texts come once and never again; those that come twice are kept.
void CodeCache::keep(const std::string& key, const std::shared_ptr<Code>& code) {
    const std::size_t hash = std::hash<std::string>()(key);
    std::size_t& seen = seen_[hash % seen_.size()];
    if (seen == hash) {
        if (batches_.size() >= kMostBatches)
            batches_.clear();
        batches_[key] = code;
    }
    seen = hash;
}

// ---- modules

std::shared_ptr<Code> CodeCache::module(const StoredObject& object) {
    if (reading_ != schema_.readings())
        modules_.clear();
    reading_ = schema_.readings();
    std::shared_ptr<Code>& known = modules_[object.id];
    if (!known)
        known = parsed(object);
    return known;
}

std::shared_ptr<Code> CodeCache::parsed(const StoredObject& object) {
    auto code = std::make_shared<Code>();
    tsql::Batch batch = tsql::parseBatch(object.source);
    code->module = std::move(batch.statements.at(0));
    code->procedure = object.name;
    code->objectId = object.id;
    tsql::visit(*code->module, tsql::Visitor{[&](const tsql::CreateProcedureStatement& procedure) {
                                                 code->body = &procedure.body;
                                                 addParameters(*code, procedure.parameters);
                                             },
                                             [&](const tsql::CreateTriggerStatement& trigger) { code->body = &trigger.body; },
                                             [&](const tsql::CreateFunctionStatement& function) {
                                                 code->body = &function.body;
                                                 if (!function.table)
                                                     code->returns = catalog_.declaredType(function.returns);
                                                 addParameters(*code, function.parameters);
                                             },
                                             [](const tsql::Statement&) {}});
    for (const tsql::StatementPtr& statement : *code->body)
        addVariables(*code, *statement);
    return code;
}

void CodeCache::addParameters(Code& code, const std::vector<tsql::ParameterClause>& parameters) {
    for (const tsql::ParameterClause& clause : parameters) {
        const SqlType type = catalog_.declaredType(clause.type);
        code.parameters.push_back({clause.name, type, clause.defaultValue.get(), clause.output});
        addVariable(code, clause.name, type, false, clause.line);
    }
}

} // namespace merchantry::db::embedded
