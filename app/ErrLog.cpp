#include "app/ErrLog.h"

#include "app/modMain.h"
#include "app/posting.h"
#include "base/characters.h"
#include "base/platform/platform.h"
#include "ui/desk.h"

namespace merchantry::app {
namespace {

constexpr int kMostDescription = 2000;

void writeRow(db::Connection& connection, const std::string& tag, const std::string& procedure, int number,
              const std::string& description) {
    using db::TypeKind;
    const db::SqlType name{TypeKind::VarChar, 100, 0, 0};
    std::vector<db::Parameter> row{
        {"tag", name, std::string(characters(tag, 0, 100)), false},
        {"procedure", name, std::string(characters(procedure, 0, 100)), false},
        {"number", {TypeKind::Int, 0, 0, 0}, number, false},
        {"description", {TypeKind::VarChar, kMostDescription, 0, 0}, std::string(characters(description, 0, kMostDescription)), false},
        {"register", {TypeKind::SmallInt, 0, 0, 0}, static_cast<int>(modMain().RegisterID), false},
        {"machine", name, std::string(characters(platform::machineName(), 0, 100)), false},
    };
    db::NoResult none;
    connection.session().execute("INSERT INTO ErrorLog (Tag, ProcedureName, ErrorNumber, Description, RegisterID, Machine) "
                                 "VALUES (@tag, @procedure, @number, @description, @register, @machine)",
                                 row, none);
}

// A log that cannot be written at once is not waited for: whoever reads its failure has waited already, or read that the server is gone.
class Impatient : public db::Waiter {
public:
    explicit Impatient(db::Session& session) : session_(session) { session_.setWaiter(this); }
    ~Impatient() override { session_.setWaiter(modMain().waiter.get()); }
    Impatient(const Impatient&) = delete;
    Impatient& operator=(const Impatient&) = delete;
    bool goOn(std::chrono::milliseconds) override { return false; }

private:
    db::Session& session_;
};

} // namespace

void ErrLog::Report(std::string& /*reserved1*/, std::string& tag, std::string& procedure, int& style, std::string& caption, int& number,
                    std::string& description, std::string& /*reserved8*/, int& /*reserved9*/, bool& logToDatabase,
                    db::ConnectionPtr& connection, int& /*reserved12*/, int& /*reserved13*/, const std::string& plain) {
    const auto icon = style == 16 ? ui::MessageIcon::Stop : ui::MessageIcon::Exclamation;
    desk_.message((plain.empty() ? "" : plain + "\r\n\r\n") + "Error " + std::to_string(number) + ": " + description + "\r\n\r\n" + tag +
                      ", " + procedure,
                  caption, icon);
    if (!logToDatabase || connection == nullptr || connection->State() == 0)
        return;
    try {
        const Impatient impatient(connection->session());
        writeRow(*connection, tag, procedure, number, description);
    } catch (const db::DbError& error) { // a store that takes no rows, as on a full disk
        if (isPassing(error))
            return;
        desk_.message(std::string("The failure could not be kept in the error log: ") + error.what(), caption, icon);
    }
}

} // namespace merchantry::app
