#include "exchange/backup/remoteserver.h"

#include "app/db/server/address.h"
#include "base/text.h"

#include <charconv>

namespace merchantry::exchange {
namespace {

using db::DbError;

constexpr int kTailNotBackedUp = 3159;
constexpr int kInUse = 3101;
constexpr std::string_view kPercent = " percent processed";

std::string literal(const std::string& text) {
    return "'" + replaced(text, "'", "''") + "'";
}

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

// Tells how far the server is.
class PercentSink : public db::NoResult {
public:
    PercentSink(const BackupProgress& progress, db::Session& session) : progress_(progress), session_(session) {}
    void message(const std::string& text) override {
        if (const int percent = percentOf(text); percent >= 0 && !progress_(percent))
            session_.cancel();
    }

private:
    const BackupProgress& progress_;
    db::Session& session_;
};

// The server's error behind what it means here.
[[noreturn]] void rethrow(const std::string& what, const DbError& error) {
    if (error.category() == DbError::Category::Cancelled)
        throw DbError(error);
    throw DbError(error.category(), error.native(), what + " The server says: " + error.what());
}

class RemoteBackup : public Backup {
public:
    explicit RemoteBackup(db::Session& session) : session_(session) {}

    // A file of the same name is overwritten by the server's rules.
    void SQLBackup(SQLServer& /*server*/) override {
        const BackupProgress progress = watched();
        PercentSink sink(progress, session_);
        try {
            session_.execute("BACKUP DATABASE " + bracketed(Database) + " TO DISK = " + literal(Files) + " WITH INIT, STATS = 5", sink);
        } catch (const DbError& error) {
            rethrow("The server made no backup of " + Database + ".", error);
        }
        if (Complete)
            Complete();
    }
    // The server reads it whole, as a restore would.
    BackupProof Prove(Date now) override {
        BackupProof proof;
        proof.at = now;
        db::NoResult none;
        try {
            session_.execute("RESTORE VERIFYONLY FROM DISK = " + literal(Files), none);
            proof.proved = true;
        } catch (const DbError& error) {
            if (error.category() == DbError::Category::Cancelled)
                throw;
            proof.fault = "The server cannot read the backup " + Files + ": " + error.what();
        }
        return proof;
    }
    std::filesystem::path file() const override { return Files; }

private:
    db::Session& session_;
};

class RemoteRestore : public Restore {
public:
    explicit RemoteRestore(db::Session& session) : session_(session) {}

    // A database whose newest changes are in no backup is replaced all the same: that is what a restore is for. The backup of another
    // database never takes its place.
    void SQLRestore(SQLServer& /*server*/) override {
        try {
            run("");
        } catch (const DbError& error) {
            if (error.native() != kTailNotBackedUp)
                refuse(error);
            try {
                run(", REPLACE");
            } catch (const DbError& again) {
                refuse(again);
            }
        }
        if (Complete)
            Complete();
    }

private:
    void run(const std::string& option) {
        const BackupProgress progress = watched();
        PercentSink sink(progress, session_);
        session_.execute("RESTORE DATABASE " + bracketed(Database) + " FROM DISK = " + literal(Files) + " WITH STATS = 5" + option, sink);
    }
    [[noreturn]] void refuse(const DbError& error) const {
        rethrow(error.native() == kInUse
                    ? "The database " + Database + " is in use: registers or other desktops are connected. Close them, and press Go again."
                    : "The server restored nothing into " + Database + ".",
                error);
    }

    db::Session& session_;
};

class RemoteServer : public SQLServer {
public:
    explicit RemoteServer(SessionOpener open) : open_(std::move(open)) {}

    void Connect(const std::string& server) override { connect(server, "; Integrated Security=SSPI"); }
    void Connect(const std::string& server, const std::string& user, const std::string& password) override {
        connect(server, "; User ID=" + user + "; PASSWORD=" + password);
    }
    std::unique_ptr<Backup> backup() override { return std::make_unique<RemoteBackup>(*session_); }
    std::unique_ptr<Restore> restore(Date /*now*/) override { return std::make_unique<RemoteRestore>(*session_); }

private:
    // Not in the database itself, which a restore wants for itself alone.
    void connect(const std::string& server, const std::string& login) {
        db::server::Address address = db::server::addressOf({{"data source", server}});
        address.database.clear();
        session_ = open_("Provider=SQLOLEDB.1" + login + "; Data Source=" + address.sourceText() + "; Initial Catalog=master");
    }

    SessionOpener open_;
    std::unique_ptr<db::Session> session_;
};

} // namespace

std::unique_ptr<SQLServer> remoteServer(SessionOpener open) {
    return std::make_unique<RemoteServer>(std::move(open));
}

int percentOf(const std::string& message) {
    const std::size_t word = message.find(kPercent);
    const std::string_view digits = word == std::string::npos ? std::string_view() : trimmed(std::string_view(message).substr(0, word));
    int percent = -1;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), percent);
    return end.ptr == digits.data() + digits.size() && percent >= 0 && percent <= 100 ? percent : -1;
}

} // namespace merchantry::exchange
