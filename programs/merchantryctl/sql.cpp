#include "base/text.h"
#include "programs/merchantryctl/commands.h"

#include "app/db/ado/provider.h"
#include "app/db/embedded/answers.h"
#include "app/db/embedded/script.h"
#include "app/db/schema/schema.h"
#include "app/db/server/database.h"
#include "app/db/server/server.h"
#include "app/serverstore.h"
#include "base/characters.h"
#include "base/lettercase.h"
#include "base/platform/platform.h"

#include <editline/readline.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace merchantry::programs {
namespace {

std::string shown(const Value& value, const db::SqlType& type) {
    if (value.is<Currency>())
        return value.as<Currency>().toFixedText();
    if (value.is<Date>() && type.isDate())
        return value.as<Date>().toIsoTextMs();
    if (value.is<Decimal>())
        return value.as<Decimal>().toText();
    return value.toScriptText();
}

std::string csvCell(std::string text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    return "\"" + replaced(text, "\"", "\"\"") + "\"";
}

// Writes results as they come: as lines of comma-separated values, or each set as a table with columns as wide as their widest cell.
class Printer : public db::ResultSink {
public:
    explicit Printer(bool csv) : csv_(csv) {}

    void beginSet(const std::vector<db::Column>& columns) override {
        columns_ = columns;
        rows_.clear();
        if (!csv_)
            return;
        for (std::size_t i = 0; i < columns.size(); ++i)
            std::cout << (i > 0 ? "," : "") << csvCell(columns[i].name);
        std::cout << "\n";
    }

    void row(const db::RowView& row) override {
        std::vector<std::string> cells;
        for (int i = 0; i < row.size(); ++i) {
            const Value value = row.value(i);
            cells.push_back(value.isNull() && csv_ ? "" : shown(value, columns_[static_cast<std::size_t>(i)].type));
        }
        if (!csv_) {
            rows_.push_back(std::move(cells));
            return;
        }
        for (std::size_t i = 0; i < cells.size(); ++i)
            std::cout << (i > 0 ? "," : "") << csvCell(cells[i]);
        std::cout << "\n";
    }

    void endSet() override {
        if (!csv_)
            writeTable();
    }

    void changed(std::int64_t rows) override {
        if (!csv_)
            std::cout << "(" << rows << (rows == 1 ? " row" : " rows") << " changed)\n";
    }
    void message(const std::string& text) override { std::cerr << text << "\n"; }

private:
    void writeTable() const {
        std::vector<std::size_t> widths;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            widths.push_back(characterCount(columns_[i].name));
            for (const std::vector<std::string>& cells : rows_)
                widths[i] = std::max(widths[i], characterCount(cells[i]));
        }
        std::vector<std::string> names;
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            names.push_back(columns_[i].name);
            lines.emplace_back(widths[i], '-');
        }
        writeRow(names, widths);
        writeRow(lines, widths);
        for (const std::vector<std::string>& cells : rows_)
            writeRow(cells, widths);
        std::cout << "(" << rows_.size() << (rows_.size() == 1 ? " row" : " rows") << ")\n\n";
    }

    void writeRow(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const db::SqlType& type = columns_[i].type;
            const bool right = type.isWhole() || type.isMoney() || type.isFloat() || type.kind == db::TypeKind::Decimal;
            const std::string pad(widths[i] - std::min(widths[i], characterCount(cells[i])), ' ');
            line += (i > 0 ? "  " : "") + (right ? pad + cells[i] : cells[i] + pad);
        }
        std::cout << trimmedRight(line) << "\n";
    }

    bool csv_;
    std::vector<db::Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

void tell(const db::DbError& error, int firstLine) {
    std::cout << std::flush;
    const int line = error.line() > 0 && error.procedure().empty() ? error.line() + firstLine - 1 : error.line();
    std::cerr << "Msg " << error.native() << ", Level " << error.severity() << ", Line " << line << "\n";
    std::cerr << error.what() << "\n";
}

// Whether the batch ran without an error.
bool runBatch(db::Session& session, const std::string& batch, int firstLine, bool csv) {
    class Teller : public Printer {
    public:
        using Printer::Printer;
        void error(const db::DbError& error) override { later.push_back(error); }
        std::vector<db::DbError> later;
    };
    Teller printer(csv);
    try {
        session.execute(batch, printer);
        return true;
    } catch (const db::DbError& error) {
        tell(error, firstLine);
        for (const db::DbError& other : printer.later)
            tell(other, firstLine);
        return false;
    }
}

int runInput(db::Session& session, bool csv) {
    const std::string script((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
    bool good = true;
    for (const db::embedded::ScriptBatch& batch : db::embedded::batchesOf(script)) {
        for (int i = 0; i < batch.times; ++i)
            good = runBatch(session, batch.text, batch.line, csv) && good;
    }
    return good ? 0 : 1;
}

// A prompt: lines gather until GO runs them; exit or the end of input leaves.
int runPrompt(db::Session& session, bool csv) {
    const std::string history = (platform::configurationFolder() / "sql_history").string();
    using_history();
    read_history(history.c_str());
    std::string batch;
    int line = 1;
    while (true) {
        const std::unique_ptr<char, decltype(&std::free)> typed(readline((std::to_string(line) + "> ").c_str()), &std::free);
        if (!typed)
            break;
        const std::string text = typed.get();
        const std::string word = upperCase(trimmed(text));
        if (batch.empty() && (word == "EXIT" || word == "QUIT"))
            break;
        if (!text.empty())
            add_history(text.c_str());
        if (word == "GO") {
            runBatch(session, batch, 1, csv);
            batch.clear();
            line = 1;
            continue;
        }
        batch += text + "\n";
        ++line;
    }
    write_history(history.c_str());
    return 0;
}

// A database of its own on the server for each file, which goes when the next one comes.
db::embedded::FreshSession emptyDatabases(const SqlOptions& options) {
    struct Trial {
        explicit Trial(const db::server::Address& address)
            : database(address), session(std::make_shared<db::server::Server>(address)->session()) {}
        db::server::NewDatabase database;
        std::unique_ptr<db::Session> session; // goes first
    };
    const auto server = db::serverOf(options.server);
    return [server, trial = std::shared_ptr<Trial>()]() mutable -> db::Session& {
        trial.reset();
        db::server::Address address = server->address();
        address.database = "merchantry_answers_" + std::to_string(std::random_device()());
        trial = std::make_shared<Trial>(address);
        return *trial->session;
    };
}

int check(const SqlOptions& options) {
    const std::vector<std::filesystem::path> files(options.files.begin(), options.files.end());
    if (files.empty())
        throw UsageError{"FILE: the files to check are wanted"};
    const db::embedded::AnswerCounts counts = options.server.empty()
                                                  ? db::embedded::checkAnswers(files, std::cout)
                                                  : db::embedded::checkAnswers(files, std::cout, emptyDatabases(options));
    std::cout << counts.passed << " passed, " << counts.failed << " failed, " << counts.refused << " refused\n";
    return counts.failed == 0 ? 0 : 1;
}

} // namespace

int runSql(const SqlOptions& options) {
    if (options.check)
        return check(options);
    if (options.files.size() + (options.server.empty() ? 0 : 1) != 1)
        throw UsageError{"FILE: exactly one store file is wanted, or --server"};
    const std::unique_ptr<db::Session> session = app::openStore(options.server.empty() ? options.files[0] : options.server);
    db::refuseNewerSchema(*session);
    return isatty(STDIN_FILENO) != 0 ? runPrompt(*session, options.csv) : runInput(*session, options.csv);
}

} // namespace merchantry::programs
