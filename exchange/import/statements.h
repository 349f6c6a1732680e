#pragma once

#include "app/db/session.h"

#include <string>
#include <utility>
#include <vector>

namespace merchantry::exchange {

// Types of parameters.
constexpr db::SqlType kWhole{db::TypeKind::Int, 0, 0, 0};
constexpr db::SqlType kMoney{db::TypeKind::Money, 0, 0, 0};
constexpr db::SqlType kFlag{db::TypeKind::Bit, 0, 0, 0};
constexpr db::SqlType kMoment{db::TypeKind::DateTime, 0, 0, 0};
constexpr db::SqlType kName{db::TypeKind::VarChar, 255, 0, 0};
constexpr db::SqlType kLongText{db::TypeKind::VarChar, 8000, 0, 0};

db::Parameter parameter(std::string name, const db::SqlType& type, Value value = {});
// Calls a procedure with the parameters; the cells of its rows.
std::vector<std::vector<Value>> called(db::Session& session, const std::string& procedure, std::vector<db::Parameter> parameters);
// Runs a batch in the same manner.
std::vector<std::vector<Value>> ran(db::Session& session, const std::string& batch, std::vector<db::Parameter> parameters = {});

} // namespace merchantry::exchange
