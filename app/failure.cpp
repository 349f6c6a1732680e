#include "app/failure.h"

#include "app/modMain.h"
#include "base/currency.h"
#include "base/errortext.h"

namespace merchantry::app {

int errorNumber(const std::exception& error) {
    if (const auto* database = dynamic_cast<const db::DbError*>(&error))
        return static_cast<int>(database->hresult());
    if (const auto* runTime = dynamic_cast<const RunTimeError*>(&error))
        return runTime->number();
    if (dynamic_cast<const OverflowError*>(&error) != nullptr)
        return 6;
    if (dynamic_cast<const std::domain_error*>(&error) != nullptr)
        return 11;
    if (dynamic_cast<const std::invalid_argument*>(&error) != nullptr)
        return 13;
    return 5;
}

void reportFailure(const FailurePlace& place, const std::exception& error) {
    ModMain& session = modMain();
    std::string reserved;
    std::string reservedToo;
    std::string tag = place.tag;
    std::string procedure = place.procedure;
    std::string caption = place.caption;
    std::string description = sentenceOf(error);
    int style = 16;
    int number = errorNumber(error);
    int zero = 0;
    bool log = place.logToDatabase;
    db::ConnectionPtr connection = log ? session.Conn : nullptr;
    session.errLog().Report(reserved, tag, procedure, style, caption, number, description, reservedToo, zero, log, connection, zero, zero,
                            place.plain);
    if (log)
        session.Conn = connection;
}

} // namespace merchantry::app
