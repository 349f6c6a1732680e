#include "app/db/embedded/system_values.h"

#include "app/db/tsql/convert.h"
#include "app/db/tsql/types.h"

namespace merchantry::db::embedded {

using tsql::Cell;
using tsql::SystemValue;

namespace {

Cell asNumeric(const Cell& number) {
    return number.isNull() ? Cell() : tsql::decimalCell(number.integer, 38);
}

} // namespace

Cell SystemValues::of(SystemValue value) const {
    switch (value) {
    case SystemValue::RowCount:
        return Cell::ofInteger(batch_.session.rowCount);
    case SystemValue::Error:
        return Cell::ofInteger(batch_.session.error);
    case SystemValue::Identity:
        return asNumeric(identities_.last());
    case SystemValue::ScopeIdentity:
        return asNumeric(batch_.frame->scopeIdentity);
    case SystemValue::TranCount:
        return Cell::ofInteger(transaction_.count());
    case SystemValue::XactState:
        return Cell::ofInteger(transaction_.isDoomed() ? -1 : transaction_.count() > 0 ? 1 : 0);
    case SystemValue::NestLevel:
        return Cell::ofInteger(batch_.level);
    case SystemValue::ProcedureId:
        return Cell::ofInteger(batch_.frame->code->objectId);
    case SystemValue::ErrorNumber:
    case SystemValue::ErrorMessage:
    case SystemValue::ErrorSeverity:
    case SystemValue::ErrorState:
    case SystemValue::ErrorLine:
    case SystemValue::ErrorProcedure:
        return ofError(value);
    default:
        return ofSession(value);
    }
}

Cell SystemValues::ofError(SystemValue value) const {
    if (batch_.caught.empty())
        return {};
    const DbError& error = batch_.caught.back();
    switch (value) {
    case SystemValue::ErrorNumber:
        return Cell::ofInteger(error.native());
    case SystemValue::ErrorMessage:
        return Cell::ofText(error.what());
    case SystemValue::ErrorSeverity:
        return Cell::ofInteger(error.severity());
    case SystemValue::ErrorState:
        return Cell::ofInteger(error.state());
    case SystemValue::ErrorLine:
        return Cell::ofInteger(error.line());
    default:
        return error.procedure().empty() ? Cell() : Cell::ofText(error.procedure());
    }
}

Cell SystemValues::ofSession(SystemValue value) const {
    const SqlType date = tsql::simpleType(TypeKind::DateTime);
    switch (value) {
    case SystemValue::FetchStatus:
        return Cell::ofInteger(batch_.session.fetchStatus);
    case SystemValue::Now:
    case SystemValue::UtcNow:
        return tsql::converted(Cell::ofInteger(batch_.session.now().ms()), date, date);
    case SystemValue::DatabaseName:
        return Cell::ofText(catalog_.databaseName);
    case SystemValue::DateFirst:
        return Cell::ofInteger(batch_.session.settings.dateFirst);
    default:
        return ofProgram(value);
    }
}

Cell SystemValues::ofProgram(SystemValue value) {
    switch (value) {
    case SystemValue::Spid:
        return Cell::ofInteger(51);
    case SystemValue::Version:
        return Cell::ofText("Merchantry " MERCHANTRY_VERSION " embedded store");
    case SystemValue::ServerName:
    case SystemValue::HostName:
        return Cell::ofText("local");
    case SystemValue::UserName:
        return Cell::ofText("dbo");
    case SystemValue::AppName:
        return Cell::ofText("Merchantry");
    case SystemValue::Language:
        return Cell::ofText("us_english");
    case SystemValue::Options:
        return Cell::ofInteger(5496);
    case SystemValue::MaxPrecision:
        return Cell::ofInteger(38);
    case SystemValue::CursorRows:
    case SystemValue::UpdatedColumns:
        return Cell::ofInteger(0);
    default:
        return {};
    }
}

} // namespace merchantry::db::embedded
