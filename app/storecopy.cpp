#include "app/storecopy.h"

#include "app/db/ado/provider.h"
#include "app/db/eachrow.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/db/server/database.h"
#include "app/db/server/server.h"
#include "app/storefile.h"
#include "app/storenumbers.h"
#include "app/storerows.h"
#include "base/textorder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <random>
#include <set>

namespace merchantry::app {
namespace {

using db::Session;

// The characters beyond plain ones that texts hold. A server keeps texts in the code page of its collation; a character that this lacks
// becomes a question mark there without a word.
class Characters {
public:
    void take(std::string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t length = lengthOf(static_cast<unsigned char>(text[at]));
            if (length > 1)
                seen_.emplace(text.substr(at, length));
            at += length;
        }
    }
    // Throws DbError when one of them does not come back from there as it was.
    void requireIn(Session& session) const {
        std::string lost;
        for (const std::string& one : seen_) {
            std::string back;
            db::EachRow rows([&](const db::RowView& row) { back = row.value(0).toText(); });
            session.execute("SELECT CAST(N'" + one + "' AS varchar(10))", rows);
            if (back != one)
                lost += (lost.empty() ? "" : " ") + one;
        }
        if (!lost.empty())
            throw db::DbError(db::DbError::Category::Storage, 0,
                              "The store's texts hold characters that the server's collation does not have: " + lost +
                                  ". Please have the database made with another collation, or write those texts without them.");
    }

private:
    static std::size_t lengthOf(unsigned char first) { return first >= 0xF0U ? 4 : first >= 0xE0U ? 3 : first >= 0xC0U ? 2 : 1; }
    std::set<std::string> seen_;
};

// Puts the rows that are read from one session into a table of another.
class TableWriter : public db::ResultSink {
public:
    TableWriter(Session& to, std::string table, const std::vector<db::TableShape::Field>& fields, bool takesJson, Characters& characters)
        : to_(to), table_(bracketed(table)), block_(rowBlockFor(table, fields, takesJson)), characters_(characters) {
        for (const auto& field : fields)
            isText_.push_back(field.type.isText());
        identity_ = std::any_of(fields.begin(), fields.end(), [](const auto& field) { return field.identity; });
        switchIdentity("ON");
    }

    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override {
        block_->add(row);
        for (int i = 0; i < row.size(); ++i)
            if (isText_[static_cast<std::size_t>(i)] && !row.isNull(i))
                characters_.take(row.text(i));
        ++rows;
        if (block_->isFull())
            block_->send(to_);
    }
    void finish() {
        block_->send(to_);
        switchIdentity("OFF");
    }
    std::int64_t rows = 0;

private:
    void switchIdentity(const std::string& word) {
        db::NoResult none;
        if (identity_)
            to_.execute("SET IDENTITY_INSERT " + table_ + " " + word, none);
    }

    Session& to_;
    std::string table_;
    std::unique_ptr<RowBlock> block_;
    Characters& characters_;
    std::vector<bool> isText_; // by column
    bool identity_ = false;
};

std::int64_t countOf(Session& session, const std::string& table) {
    std::int64_t count = 0;
    db::EachRow rows([&](const db::RowView& row) { count = row.value(0).toInteger(); });
    session.execute("SELECT COUNT(*) FROM " + bracketed(table), rows);
    return count;
}

std::int64_t copyTable(Session& from, Session& to, const std::string& table, bool takesJson, Characters& characters) {
    const auto fields = storedFields(from, table);
    TableWriter writer(to, table, fields, takesJson, characters);
    from.execute("SELECT " + namesOf(fields) + " FROM " + bracketed(table), writer);
    writer.finish();
    return writer.rows;
}

std::vector<std::string> strangersIn(Session& session) {
    const std::vector<std::string> own = db::schemaTables();
    std::vector<std::string> strangers;
    db::EachRow tables([&](const db::RowView& row) {
        const std::string name = row.value(0).toText();
        if (std::none_of(own.begin(), own.end(), [&](const std::string& one) { return sameText(one, name); }))
            strangers.push_back(name);
    });
    session.execute("SELECT name FROM sys.tables WHERE is_ms_shipped = 0 ORDER BY name", tables);
    return strangers;
}

// What a column adds up to, so that any two servers give the same text.
std::string sumOf(const db::TableShape::Field& field) {
    const std::string name = bracketed(field.name);
    if (field.type.isText())
        return "SUM(CAST(LEN(" + (field.type.length > 0 ? name : "CAST(" + name + " AS varchar(8000))") + ") AS bigint))";
    if (field.type.isDate())
        return "SUM(CAST(DATEDIFF(day, '20000101', " + name + ") AS bigint))";
    if (field.type.isBinary())
        return "SUM(CAST(DATALENGTH(" + name + ") AS bigint))";
    if (field.type.isFloat())
        return "COUNT(" + name + ")"; // the order of adding would show in the last digits
    return "SUM(CAST(" + name + " AS decimal(38,4)))";
}

std::string changedMeanwhile(const std::string& table) {
    return "The table " + table +
           " changed while it was copied, or was not copied whole. Please close the program on every desktop and register, and try again.";
}

void compare(Session& from, Session& to, const std::string& table) {
    if (sumsOf(from, table) != sumsOf(to, table))
        throw db::DbError(db::DbError::Category::Storage, 0, changedMeanwhile(table));
}

// A new store of either kind, which goes again unless it is kept.
class NewStore {
public:
    explicit NewStore(const std::string& place) {
        if (isServerPlace(place)) {
            const auto server = db::serverOf(place);
            database_.emplace(server->address());
            session_ = server->session();
        } else {
            file_.emplace(std::filesystem::path(place));
            session_ = db::Store::create(file_->path())->session();
        }
    }
    Session& session() { return *session_; }
    void keep() {
        session_.reset();
        if (database_)
            database_->keep();
        if (file_)
            file_->finish();
    }

private:
    std::optional<db::server::NewDatabase> database_;
    std::optional<db::NewStoreFile> file_;
    std::unique_ptr<Session> session_; // goes first
};

// A store file as it is now, whoever goes on selling into it: a copy that goes with the object.
class FileOfNow {
public:
    explicit FileOfNow(const std::string& file)
        : path_(std::filesystem::temp_directory_path() / ("merchantry-copy-" + std::to_string(std::random_device()()))) {
        backupStoreFile(file, path_);
    }
    ~FileOfNow() {
        std::error_code ignored;
        for (const char* ending : {"", "-wal", "-shm"})
            std::filesystem::remove(path_.string() + ending, ignored);
    }
    FileOfNow(const FileOfNow&) = delete;
    FileOfNow& operator=(const FileOfNow&) = delete;
    std::string path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

// A row that refers to one which was not there yet when its table was read was added meanwhile.
std::int64_t copiedWhole(Session& from, Session& to, const std::string& table, bool json, Characters& characters) {
    try {
        return copyTable(from, to, table, json, characters);
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Integrity)
            throw;
        throw db::DbError(error.category(), error.native(), changedMeanwhile(table));
    }
}

} // namespace

std::string sumsOf(Session& session, const std::string& table) {
    std::string select = "SELECT COUNT(*)";
    for (const auto& field : storedFields(session, table))
        select += ", COUNT(" +
                  (field.type.isText() && field.type.length <= 0 ? "CAST(" + bracketed(field.name) + " AS varchar(8000))"
                                                                 : bracketed(field.name)) +
                  "), " + sumOf(field);
    std::string sums;
    db::EachRow rows([&](const db::RowView& row) {
        for (int i = 0; i < row.size(); ++i)
            sums += row.value(i).toScriptText() + " ";
    });
    session.execute(select + " FROM " + bracketed(table), rows);
    return sums;
}

StoreCopy copyStoreTo(const std::string& from, const std::string& to, const StorePercent& progress) {
    std::optional<FileOfNow> now;
    if (!isServerPlace(from))
        now.emplace(from);
    const auto source = openStore(now ? now->path() : from);
    db::checkSchemaVersion(*source);
    StoreCopy done;
    done.leftBehind = strangersIn(*source);
    const std::vector<std::string> tables = db::schemaTables();
    std::int64_t all = 0;
    for (const std::string& table : tables)
        all += countOf(*source, table);
    NewStore made(to);
    const bool json = takesJson(made.session());
    Characters characters;
    db::createSchemaWith(made.session(), [&] {
        for (const std::string& table : tables) {
            done.rows += copiedWhole(*source, made.session(), table, json, characters);
            carryLastNumber(*source, made.session(), table, isServerPlace(to));
            progress(static_cast<int>(done.rows * 100 / std::max<std::int64_t>(1, all)));
        }
    });
    characters.requireIn(made.session());
    for (const std::string& table : tables)
        compare(*source, made.session(), table);
    done.tables = static_cast<int>(tables.size());
    made.keep();
    return done;
}

} // namespace merchantry::app
