#include "app/db/server/link.h"

#include "app/db/eachrow.h"
#include "app/db/messages.h"
#include "app/db/server/batchtext.h"
#include "app/db/server/boundparameters.h"
#include "app/db/server/resultrows.h"
#include "base/guard.h"

#include <algorithm>
#include <array>

namespace merchantry::db::server {
namespace {

using Category = DbError::Category;

constexpr int kUsualSeverity = 16; // the driver does not tell it
constexpr int kOverflow = 8115;
constexpr const char* kOutOfRange = "22003"; // found by the driver, when it sends a parameter
constexpr int kTerminated = 3621;
constexpr int kDeadlock = 1205;
constexpr int kLockTimeout = 1222;
constexpr int kContextChanged = 5701; // the database, and the language
constexpr int kLanguageChanged = 5703;
constexpr SQLULEN kLoginSeconds = 15;
constexpr std::chrono::minutes kAskedAfter{1};       // without use
constexpr std::chrono::milliseconds kUnnoticed{300}; // that a statement may take before it is asked whether it waits
constexpr std::chrono::milliseconds kLookAgain{15};
constexpr const char* kWaitShort = "SET LOCK_TIMEOUT 20000";
constexpr const char* kWaitLong = "SET LOCK_TIMEOUT 120000"; // the user decides before; it ends where a server does not hear a cancel
constexpr const char* kNotWaitedFor =
    "Another program is saving to this store and has not finished. Nothing was changed here; try again in a moment.";

// What every connection begins with, whatever the server's own defaults are. A statement waits for others as long as in a store file.
constexpr const char* kSettings = "SET NOCOUNT OFF SET DATEFORMAT mdy SET DATEFIRST 7 SET TEXTSIZE 2147483647 SET LOCK_TIMEOUT 20000 "
                                  "SET ANSI_NULLS ON SET ANSI_PADDING ON SET ANSI_WARNINGS ON SET ARITHABORT ON "
                                  "SET CONCAT_NULL_YIELDS_NULL ON SET QUOTED_IDENTIFIER ON SET NUMERIC_ROUNDABORT OFF "
                                  "SET XACT_ABORT OFF SET IMPLICIT_TRANSACTIONS OFF SELECT CAST(@@SPID AS int)";

std::string atName(const Parameter& parameter) {
    return parameter.name.starts_with('@') ? parameter.name : "@" + parameter.name;
}

// "@sku varchar(25), @found int OUTPUT"
std::string declarations(const std::vector<Parameter>& parameters) {
    std::string text;
    for (const Parameter& parameter : parameters)
        text += (text.empty() ? "" : ", ") + atName(parameter) + " " + sentType(parameter).toText() + (parameter.output ? " OUTPUT" : "");
    return text;
}

// "{call sp_executesql(?,?)}"
std::string callText(std::string_view procedure, std::size_t parameters) {
    std::string text = "{call ";
    text += procedure;
    for (std::size_t i = 0; i < parameters; ++i)
        text += i == 0 ? "(?" : ",?";
    return text + (parameters > 0 ? ")}" : "}");
}

// Compatible servers tell in words only that others are in the way.
int numberOf(const Diagnostic& one) {
    if (one.native != kUnnamedError)
        return one.native;
    if (one.text.find("deadlock") != std::string::npos)
        return kDeadlock;
    return one.text.find("lock timeout") != std::string::npos ? kLockTimeout : one.native;
}

} // namespace

// Reads all results of one batch.
class Link::Results {
public:
    Results(Link& link, ResultSink& sink, std::vector<DbError>& errors, bool opened)
        : link_(link), statement_(link.statement_.get()), sink_(sink), errors_(errors), dropsFirst_(opened) {}

    void read(SQLRETURN executed) {
        // A first statement that changed no row is no end of the results.
        SQLRETURN state = executed == SQL_NO_DATA ? SQL_SUCCESS : executed;
        while (take(state) != SQL_NO_DATA && !link_.lost_) {
            readOne();
            if (link_.lost_)
                return;
            state = link_.patiently([this] { return SQLMoreResults(statement_); });
        }
    }

private:
    // Tells what the driver says of a call; gives the call's own answer.
    SQLRETURN take(SQLRETURN state) {
        if (state == SQL_ERROR && link_.isDead())
            link_.lost_ = true;
        if (state != SQL_SUCCESS && state != SQL_NO_DATA)
            for (const Diagnostic& one : diagnosticsOf(SQL_HANDLE_STMT, statement_))
                tell(one);
        failures_ = state == SQL_ERROR ? failures_ + 1 : 0;
        if (failures_ > kMostFailures)
            link_.lost_ = true;
        return state;
    }

    void tell(const Diagnostic& one) {
        if (one.isLost())
            link_.lost_ = true;
        if (!one.isMessage()) {
            errors_.push_back(link_.errorOf(one));
            return;
        }
        if (one.native == kTerminated || one.native == kContextChanged || one.native == kLanguageChanged)
            return;
        if (std::exchange(dropsFirst_, false) && one.text.find_first_not_of(' ') == std::string::npos)
            return;
        sink_.message(one.text);
    }

    void readOne() {
        const std::vector<Column> columns = columnsOf(statement_);
        if (!columns.empty()) {
            readRows(columns);
            return;
        }
        SQLLEN rows = -1;
        if (SQL_SUCCEEDED(SQLRowCount(statement_, &rows)) && rows >= 0)
            sink_.changed(rows);
    }

    void readRows(const std::vector<Column>& columns) {
        sink_.beginSet(columns);
        ResultRows rows(statement_, columns);
        SQLRETURN got = rows.next();
        for (; SQL_SUCCEEDED(got); got = rows.next()) {
            if (got == SQL_SUCCESS_WITH_INFO)
                take(got);
            sink_.row(rows);
        }
        take(got);
        sink_.endSet();
    }

    static constexpr int kMostFailures = 100; // errors in a row without an end of the results

    Link& link_;
    SQLHANDLE statement_;
    ResultSink& sink_;
    std::vector<DbError>& errors_;
    bool dropsFirst_;
    int failures_ = 0;
};

Link::Link(const Address& address) : address_(address), connection_(odbcEnvironment()) {
    connect();
    statement_ = Handle<SQL_HANDLE_STMT>(connection_.get());
    setUp();
}

Link::~Link() {
    statement_ = {};
    SQLDisconnect(connection_.get());
}

void Link::connect() {
    SQLSetConnectAttr(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(kLoginSeconds), 0);
    const std::string text = address_.driverText();
    std::array<SQLCHAR, 2048> whole{};
    SQLSMALLINT length = 0;
    const SQLRETURN connected = SQLDriverConnect(connection_.get(), nullptr, odbcText(text), static_cast<SQLSMALLINT>(text.size()),
                                                 whole.data(), static_cast<SQLSMALLINT>(whole.size()), &length, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(connected))
        throw connectError(address_, diagnosticsOf(SQL_HANDLE_DBC, connection_.get()));
}

void Link::setUp() {
    EachRow process([this](const RowView& row) { process_ = static_cast<int>(row.number(0)); });
    std::vector<Parameter> noParameters;
    std::vector<DbError> errors;
    run({kSettings, noParameters}, process, errors);
    if (lost_ && !errors.empty())
        throw NotConnected(lostError(address_, true));
}

void Link::run(const Request& request, ResultSink& sink, std::vector<DbError>& errors) {
    cancelled_ = false;
    gaveUp_ = false;
    tellHowLongToWait();
    runRequest(request, sink, errors);
    lastUsed_ = std::chrono::steady_clock::now();
    if (lost_ && errors.empty()) // the driver may lose it without a word
        errors.push_back(lostError(address_, true));
    // The driver may throw away what came behind the request to cancel, without a word.
    if (cancelled_ && !lost_)
        errors.assign(1, DbError(Category::Cancelled, 0, "The statement was cancelled."));
    if (gaveUp_ && !lost_ && !errors.empty())
        errors.assign(1, DbError(Category::Busy, 0, kNotWaitedFor));
}

void Link::setWaiter(Waiter* waiter, std::function<bool(int process)> isBlocked) {
    waiter_ = waiter;
    isBlocked_ = std::move(isBlocked);
}

void Link::tellHowLongToWait() {
    if ((waiter_ != nullptr) == waitsLong_)
        return;
    waitsLong_ = waiter_ != nullptr;
    NoResult none;
    std::vector<Parameter> noParameters;
    std::vector<DbError> errors;
    runRequest({waitsLong_ ? kWaitLong : kWaitShort, noParameters}, none, errors);
}

// The waiter is asked in the session's own thread, while the driver waits in another.
SQLRETURN Link::patiently(const std::function<SQLRETURN()>& call) {
    if (waiter_ == nullptr)
        return call();
    if (errand_ == nullptr)
        errand_ = std::make_unique<Errand>();
    const auto since = std::chrono::steady_clock::now();
    errand_->start(call);
    const AtEnd ended([this] { // also when the waiter ends the program
        while (!errand_->endsWithin(kLookAgain))
            SQLCancel(statement_.get());
    });
    if (!errand_->endsWithin(kUnnoticed))
        ask(since);
    return errand_->result();
}

// A statement that merely takes long waits for nobody: the server is asked about it now and then.
void Link::ask(std::chrono::steady_clock::time_point since) {
    auto askedAt = std::chrono::steady_clock::time_point();
    bool blocked = false;
    bool told = false;
    do {
        const auto now = std::chrono::steady_clock::now();
        if (!gaveUp_ && now - askedAt > kUnnoticed) {
            blocked = isBlocked_(process_);
            askedAt = now;
        }
        told = told || blocked;
        if (blocked && !gaveUp_ && !waiter_->goOn(std::chrono::duration_cast<std::chrono::milliseconds>(now - since)))
            giveUp();
    } while (!errand_->endsWithin(kLookAgain));
    if (told)
        waiter_->over();
}

void Link::giveUp() {
    gaveUp_ = true;
    SQLCancel(statement_.get());
}

void Link::runRequest(const Request& request, ResultSink& sink, std::vector<DbError>& errors) {
    const AtEnd close([&] { SQLFreeStmt(statement_.get(), SQL_CLOSE); });
    if (request.isCall) {
        Results results(*this, sink, errors, false);
        runCall(request, results);
        return;
    }
    const SentBatch sent = sentBatch(request.text);
    Results results(*this, sink, errors, sent.opened);
    runBatch(sent.text, request.parameters, results);
}

void Link::runBatch(std::string_view text, std::vector<Parameter>& parameters, Results& results) {
    if (parameters.empty()) {
        results.read(patiently([&] { return SQLExecDirect(statement_.get(), odbcText(text), static_cast<SQLINTEGER>(text.size())); }));
        return;
    }
    BoundParameters bound(statement_.get());
    bound.addText(std::string(text));
    bound.addText(declarations(parameters));
    for (const Parameter& parameter : parameters)
        bound.add(atName(parameter), parameter);
    const std::string call = callText("sp_executesql", parameters.size() + 2);
    results.read(patiently([&] { return SQLExecDirect(statement_.get(), odbcText(call), static_cast<SQLINTEGER>(call.size())); }));
    if (!lost_)
        bound.readBack(2, parameters);
}

// Rows behind an error at the procedure's very beginning are lost to the driver; the error is thrown, and nobody takes them then.
void Link::runCall(const Request& request, Results& results) {
    BoundParameters bound(statement_.get());
    for (const Parameter& parameter : request.parameters)
        bound.add(parameter.name.empty() ? "" : atName(parameter), parameter);
    const std::string call = callText(request.text, request.parameters.size());
    results.read(patiently([&] { return SQLExecDirect(statement_.get(), odbcText(call), static_cast<SQLINTEGER>(call.size())); }));
}

bool Link::isDead() const {
    SQLUINTEGER dead = SQL_CD_FALSE;
    SQLGetConnectAttr(connection_.get(), SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
    return dead == SQL_CD_TRUE;
}

void Link::cancel() {
    cancelled_ = true;
    SQLCancel(statement_.get());
}

bool Link::stillStands() {
    if (lost_)
        return false;
    // Something to read where nothing was asked for is mostly the server's farewell.
    const platform::LineState line = lineStateOf(connection_.get());
    if (line == platform::LineState::Ended)
        lost_ = true;
    else if (line == platform::LineState::Readable || std::chrono::steady_clock::now() - lastUsed_ > kAskedAfter)
        lost_ = !answers();
    return !lost_;
}

bool Link::answers() {
    NoResult none;
    std::vector<Parameter> noParameters;
    std::vector<DbError> errors;
    run({"SELECT 1", noParameters}, none, errors);
    return errors.empty();
}

DbError Link::errorOf(const Diagnostic& one) const {
    if (lost_)
        return lostError(address_, true);
    if (one.native == 0 && one.state == kOutOfRange)
        return {Category::Type, kOverflow, "Arithmetic overflow error converting a value to the type that is wanted."};
    const int native = numberOf(one);
    const Category category = one.state.starts_with("23") ? Category::Integrity : categoryOf(native);
    return DbError(category, native, one.text, one.line).withSeverity(kUsualSeverity, one.messageState);
}

} // namespace merchantry::db::server
