#include "app/db/tsql/binding.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

namespace merchantry::db::tsql {

int Binding::variableSlot(const std::string& name, int line) const {
    for (std::size_t i = 0; i < context.variables.size(); ++i) {
        if (sameName(context.variables[i].name, name))
            return static_cast<int>(i);
    }
    throw serverMessage(Message::UndeclaredVariable, {name}, line).withSeverity(15, 2);
}

Typed Binding::variableBefore(int slot) const {
    return typed(form::Place{{false, slot}}, typeOfSlot(slot));
}

Typed Binding::variableNow(int slot) const {
    return called("ts_var", {wholeNumber(slot)}, typeOfSlot(slot));
}

Typed Binding::system(SystemValue value, const SqlType& type) const {
    const int number = static_cast<int>(value);
    return inDefinition ? called("ts_system", {wholeNumber(number)}, type) : typed(form::Place{{true, number}}, type);
}

Typed Binding::assignedTo(int slot, Typed value) {
    const SqlType type = value.type;
    return called("ts_setvar", {wholeNumber(slot), std::move(value)}, type);
}

SqlType Binding::declaredType(const TypeName& name, bool* nullable) const {
    if (const std::optional<SqlType> type = builtInType(name))
        return *type;
    SqlType type;
    bool isNullable = true;
    if (!context.catalog.userType(name.name, type, isNullable))
        throw serverMessage(Message::UnknownType, {name.name}, name.line);
    if (nullable)
        *nullable = isNullable;
    return type;
}

std::shared_ptr<const TableDef> Binding::findTable(const ObjectName& name) const {
    if (name.parts.size() == 1) {
        if (context.inserted && sameName(name.last(), "inserted"))
            return context.inserted;
        if (context.deleted && sameName(name.last(), "deleted"))
            return context.deleted;
    }
    return context.catalog.table(name);
}

const CommonTable* Binding::findCommonTable(const ObjectName& name) const {
    if (name.parts.size() != 1)
        return nullptr;
    for (auto table = commonTables.rbegin(); table != commonTables.rend(); ++table) {
        if (sameName((*table)->name, name.last()))
            return *table;
    }
    return nullptr;
}

} // namespace merchantry::db::tsql
