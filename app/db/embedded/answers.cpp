#include "app/db/embedded/answers.h"

#include "app/db/embedded/store.h"
#include "base/text.h"
#include "base/value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace merchantry::db::embedded {
namespace {

struct AnswerBlock {
    enum class Kind { Ok, Rows, RowsUnordered, Error };
    std::string title;
    int line = 0;
    Kind kind = Kind::Ok;
    int error = 0;
    std::string batch;
    std::vector<std::string> answer;
};

std::vector<std::string> linesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw std::runtime_error("The file " + file.string() + " cannot be read.");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::move(line));
    }
    return lines;
}

AnswerBlock::Kind kindOf(const std::string& word, int& error) {
    if (word == "rows")
        return AnswerBlock::Kind::Rows;
    if (word == "rows unordered")
        return AnswerBlock::Kind::RowsUnordered;
    if (word == "ok")
        return AnswerBlock::Kind::Ok;
    if (word.rfind("error ", 0) != 0)
        throw std::runtime_error("\"" + word + "\" is no kind of answer.");
    error = std::stoi(word.substr(6));
    return AnswerBlock::Kind::Error;
}

std::vector<AnswerBlock> blocksOf(const std::filesystem::path& file) {
    std::vector<AnswerBlock> blocks;
    const std::vector<std::string> lines = linesOf(file);
    std::size_t at = 0;
    while (at < lines.size()) {
        if (lines[at].empty()) {
            ++at;
            continue;
        }
        AnswerBlock block;
        block.line = static_cast<int>(at) + 1;
        for (; at < lines.size() && !lines[at].empty() && lines[at][0] == '#'; ++at) {
            if (block.title.empty())
                block.title = lines[at].substr(std::min<std::size_t>(2, lines[at].size()));
        }
        if (at >= lines.size())
            break;
        block.kind = kindOf(lines[at++], block.error);
        for (; at < lines.size() && lines[at] != "----"; ++at)
            block.batch += lines[at] + "\n";
        ++at;
        for (; at < lines.size() && !lines[at].empty(); ++at)
            block.answer.push_back(lines[at]);
        if (!block.batch.empty())
            block.batch.pop_back();
        blocks.push_back(std::move(block));
    }
    return blocks;
}

std::string realText(double number, bool single) {
    std::array<char, 40> buffer{};
    const auto result =
        single ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), static_cast<float>(number), std::chars_format::general)
               : std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    std::string text(buffer.data(), result.ptr);
    return text.find('e') == std::string::npos ? text : shortestDecimal(number);
}

std::string cellText(const Value& value, const SqlType& type) {
    if (value.isNull())
        return "NULL";
    if (value.is<bool>())
        return value.as<bool>() ? "1" : "0";
    if (value.is<Decimal>())
        return value.as<Decimal>().toText();
    if (value.is<Currency>())
        return value.as<Currency>().toFixedText();
    if (value.is<Date>())
        return value.as<Date>().toIsoTextMs();
    if (value.is<double>())
        return realText(value.as<double>(), type.kind == TypeKind::Real);
    if (value.is<Bytes>())
        return hexText(value.as<Bytes>());
    if (value.is<std::int64_t>())
        return std::to_string(value.as<std::int64_t>());
    return value.as<std::string>();
}

class AnswerSink : public ResultSink {
public:
    void beginSet(const std::vector<Column>& columns) override {
        columns_ = columns;
        sets.emplace_back();
    }
    void row(const RowView& row) override {
        std::string line;
        for (int i = 0; i < row.size(); ++i)
            line += (i > 0 ? "|" : "") + cellText(row.value(i), columns_[static_cast<std::size_t>(i)].type);
        // A text may hold line ends; the answer then has several lines.
        for (const std::string& piece : split(line, "\n"))
            sets.back().push_back(piece);
    }
    std::vector<std::vector<std::string>> sets;

private:
    std::vector<Column> columns_;
};

std::vector<std::string> answerOf(const AnswerSink& sink, bool sorted) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < sink.sets.size(); ++i) {
        if (i > 0)
            lines.emplace_back("--");
        std::vector<std::string> set = sink.sets[i];
        if (sorted)
            std::sort(set.begin(), set.end());
        lines.insert(lines.end(), set.begin(), set.end());
    }
    return lines;
}

// The answer's lines with those of each set in order.
std::vector<std::string> sortedSets(const std::vector<std::string>& answer) {
    std::vector<std::string> lines;
    std::vector<std::string> set;
    const auto flush = [&] {
        std::sort(set.begin(), set.end());
        lines.insert(lines.end(), set.begin(), set.end());
        set.clear();
    };
    for (const std::string& line : answer) {
        if (line == "--") {
            flush();
            lines.push_back(line);
        } else {
            set.push_back(line);
        }
    }
    flush();
    return lines;
}

enum class Outcome { Passed, Failed, Refused };

// Runs one block; what differs goes into difference.
Outcome runBlock(Session& session, const AnswerBlock& block, std::string& difference) {
    AnswerSink sink;
    std::optional<DbError> error;
    try {
        session.execute(block.batch, sink);
    } catch (const DbError& caught) {
        error = caught;
    }
    if (error && error->category() == DbError::Category::Unsupported) {
        difference = error->what();
        return Outcome::Refused;
    }
    if (block.kind == AnswerBlock::Kind::Error) {
        if (error && error->native() == block.error)
            return Outcome::Passed;
        difference = "wanted error " + std::to_string(block.error) + ", got " +
                     (error ? std::to_string(error->native()) + " " + error->what() : "none");
        return Outcome::Failed;
    }
    if (error) {
        difference = "got error " + std::to_string(error->native()) + " " + error->what();
        return Outcome::Failed;
    }
    if (block.kind == AnswerBlock::Kind::Ok)
        return Outcome::Passed;
    const bool unordered = block.kind == AnswerBlock::Kind::RowsUnordered;
    const std::vector<std::string> got = answerOf(sink, unordered);
    const std::vector<std::string> wanted = unordered ? sortedSets(block.answer) : block.answer;
    if (got == wanted)
        return Outcome::Passed;
    difference = "wanted\n    " + joined(wanted, "\n    ") + "\n  got\n    " + joined(got, "\n    ");
    return Outcome::Failed;
}

AnswerCounts checkFile(const std::filesystem::path& file, std::ostream& out, Session& session) {
    AnswerCounts counts;
    for (const AnswerBlock& block : blocksOf(file)) {
        std::string difference;
        const Outcome outcome = runBlock(session, block, difference);
        counts.passed += outcome == Outcome::Passed ? 1 : 0;
        counts.failed += outcome == Outcome::Failed ? 1 : 0;
        counts.refused += outcome == Outcome::Refused ? 1 : 0;
        if (outcome != Outcome::Passed)
            out << file.filename().string() << ":" << block.line << ": " << (outcome == Outcome::Failed ? "failed: " : "refused: ")
                << block.title << "\n  " << difference << "\n";
    }
    return counts;
}

} // namespace

AnswerCounts checkAnswers(const std::vector<std::filesystem::path>& files, std::ostream& out) {
    std::unique_ptr<Session> session;
    return checkAnswers(files, out, [&]() -> Session& {
        session = Store::scratch()->session();
        return *session;
    });
}

AnswerCounts checkAnswers(const std::vector<std::filesystem::path>& files, std::ostream& out, const FreshSession& fresh) {
    AnswerCounts counts;
    for (const std::filesystem::path& file : files)
        counts += checkFile(file, out, fresh());
    return counts;
}

} // namespace merchantry::db::embedded
