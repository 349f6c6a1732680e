#include "base/text.h"
#include "ui/play/rowtexts.h"
#include "ui/play/step.h"
#include "ui/play/verbs.h"

#include "base/lettercase.h"

#include <algorithm>
#include <fstream>

namespace merchantry::ui::play {
namespace {

constexpr const char* kNoneSent = "the last verb sent none";

std::string listed(const std::vector<std::string>& texts, const std::string& none) {
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "there were " : ", ") + inQuotes(text);
    return list.empty() ? none : list;
}

// The oldest box that was not yet expected.
template <class Box> Box oldest(std::deque<Box>& boxes, const std::string& expected) {
    expectThat(!boxes.empty(), expected, "there was none");
    Box box = std::move(boxes.front());
    boxes.pop_front();
    return box;
}

void expectMessage(Step& step) {
    const Wanted text = step.wanted("a message's text");
    std::optional<Wanted> caption;
    std::optional<std::string> icon;
    while (step.more()) {
        if (step.accept("caption"))
            caption = step.wanted("a caption");
        else if (step.accept("icon"))
            icon = step.bare("stop, question, exclamation or information");
        else
            throw LineFailure{"caption or icon", "there was " + step.any("caption or icon")};
    }
    const std::string expected = "message " + text.told() + (caption ? " caption " + caption->told() : "") + (icon ? " icon " + *icon : "");
    const Message box = oldest(step.desk().messages, expected);
    const bool holds = text.holds(box.text) && (!caption || caption->holds(box.caption)) && (!icon || *icon == wordFor(box.icon));
    expectThat(holds, expected, "there was message " + told(box));
}

void expectInput(Step& step) {
    const Wanted prompt = step.wanted("a prompt");
    std::optional<Wanted> title;
    if (step.accept("title"))
        title = step.wanted("a title");
    step.end();
    const std::string expected = "input box " + prompt.told() + (title ? " title " + title->told() : "");
    const Input box = oldest(step.desk().inputs, expected);
    expectThat(prompt.holds(box.prompt) && (!title || title->holds(box.title)), expected, "there was " + told(box));
}

void expectDialog(Step& step) {
    const Wanted title = step.wanted("a title");
    std::optional<Wanted> filter;
    if (step.accept("filter"))
        filter = step.wanted("a filter");
    step.end();
    const std::string expected = "file dialogue " + title.told() + (filter ? " filter " + filter->told() : "");
    const FileDialog box = oldest(step.desk().dialogs, expected);
    expectThat(title.holds(box.title) && (!filter || filter->holds(box.filter)), expected, "there was " + told(box));
}

void expectSql(Step& step) {
    const std::string batch = step.text("a select");
    const std::vector<std::string> wanted = step.texts();
    std::vector<std::string> rows;
    for (const auto& row : query(step, batch))
        rows.push_back(rowText(row));
    expectThat(rows == wanted, "rows " + listed(wanted, "none"), listed(rows, "there were none"));
}

void expectLog(Step& step) {
    const std::string tag = step.text("a tag");
    const std::string procedure = step.text("a procedure");
    step.end();
    const auto newest = step.host().newestLogEntry();
    expectThat(newest && newest->tag == tag && newest->procedure == procedure,
               "the error log's newest row to carry " + inQuotes(tag) + " " + inQuotes(procedure),
               newest ? "it carries " + inQuotes(newest->tag) + " " + inQuotes(newest->procedure) : "the log is empty");
}

bool sent(Step& step, const Wanted& wanted) {
    const auto& statements = step.desk().doings.statements;
    return std::any_of(statements.begin(), statements.end(), [&](const std::string& one) { return wanted.holds(one); });
}

void expectStatement(Step& step) {
    const Wanted wanted = step.wanted("a statement");
    step.end();
    expectThat(sent(step, wanted), "statement " + wanted.told(), listed(step.desk().doings.shownStatements, kNoneSent));
}

void expectStatements(Step& step) {
    const bool like = step.accept("like");
    const std::vector<std::string> wanted = step.texts();
    const auto& statements = step.desk().doings.statements;
    auto at = statements.begin();
    for (const std::string& text : wanted) {
        at = std::find_if(at, statements.end(), [&](const std::string& one) { return Wanted{text, like}.holds(one); });
        expectThat(at != statements.end(), "statement " + Wanted{text, like}.told() + " in this order",
                   listed(step.desk().doings.shownStatements, kNoneSent));
        ++at;
    }
}

std::optional<std::vector<std::string>> linesOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return {};
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

void expectFile(Step& step) {
    const std::string path = step.text("a path");
    const std::vector<std::string> wanted = step.texts();
    const auto lines = linesOf(path);
    expectThat(lines.has_value(), "a file " + inQuotes(path), "there is none");
    expectThat(*lines == wanted, "lines " + listed(wanted, "none"), listed(*lines, "the file is empty"));
}

void expectNo(Step& step) {
    if (step.accept("message")) {
        step.end();
        const auto& messages = step.desk().messages;
        expectThat(messages.empty(), "no message", messages.empty() ? "" : "there was message " + told(messages.front()));
    } else if (step.accept("statement")) {
        const Wanted wanted = step.wanted("a statement");
        step.end();
        expectThat(!sent(step, wanted), "no statement " + wanted.told(), listed(step.desk().doings.shownStatements, kNoneSent));
    } else if (step.accept("file")) {
        const std::string path = step.text("a path");
        step.end();
        expectThat(!std::filesystem::exists(path), "no file " + inQuotes(path), "there is one");
    } else if (step.accept("beep")) {
        step.end();
        expectThat(!step.desk().doings.beeped, "no beep", "the last verb beeped");
    } else {
        throw LineFailure{"message, statement, file or beep", "there was " + step.any("message, statement, file or beep")};
    }
}

void expectBeep(Step& step) {
    step.end();
    expectThat(step.desk().doings.beeped, "a beep", "the last verb did not beep");
}

void expectBrowsed(Step& step) {
    const Wanted wanted = step.wanted("a page or topic");
    step.end();
    const auto& browsed = step.desk().doings.browsed;
    expectThat(std::any_of(browsed.begin(), browsed.end(), [&](const std::string& one) { return wanted.holds(one); }),
               "page " + wanted.told(), listed(browsed, "the last verb opened none"));
}

void expectClipboard(Step& step) {
    const Wanted wanted = step.wanted("a text");
    step.end();
    expectThat(wanted.holds(step.desk().clipboard), "clipboard " + wanted.told(), "there was " + inQuotes(step.desk().clipboard));
}

void expectStatus(Step& step) {
    const Wanted wanted = step.wanted("a text");
    step.end();
    const PlayDesk& desk = step.desk();
    expectThat(wanted.holds(desk.statusText) || wanted.holds(desk.hintText), "status " + wanted.told(),
               "there was " + inQuotes(desk.statusText) + (desk.hintText.empty() ? "" : " beside the hint " + inQuotes(desk.hintText)));
}

void expectHint(Step& step) {
    const Wanted wanted = step.wanted("a text");
    step.end();
    expectThat(wanted.holds(step.desk().hintText), "hint " + wanted.told(), "there was " + inQuotes(step.desk().hintText));
}

bool isPrinted(const PrintedReport& report, const Wanted& file, const std::vector<std::string>& parameters) {
    if (!Wanted{lowerCase(file.text), file.like}.holds(lowerCase(report.file)))
        return false;
    return parameters.empty() || std::equal(parameters.begin(), parameters.end(), report.parameters.begin(), report.parameters.end(),
                                            [&](const std::string& text, const std::string& seen) {
                                                return Wanted{text, file.like}.holds(seen);
                                            });
}

void expectPrinted(Step& step) {
    const Wanted file = step.wanted("a report file");
    const std::vector<std::string> parameters = step.texts();
    const auto& printed = step.desk().doings.printed;
    std::vector<std::string> seen;
    for (const PrintedReport& report : printed)
        seen.push_back(report.file + " " + joined(report.parameters, "|"));
    expectThat(std::any_of(printed.begin(), printed.end(), [&](const PrintedReport& one) { return isPrinted(one, file, parameters); }),
               "report " + file.told() + " with " + inQuotes(joined(parameters, "|")), listed(seen, "the last verb opened none"));
}

void expectEnded(Step& step) {
    std::optional<Wanted> message;
    if (step.more())
        message = step.wanted("a run-time message");
    step.end();
    auto& ending = step.player().ending();
    const std::string expected = "the process to have ended" + (message ? " with " + message->told() : "");
    expectThat(ending.has_value(), expected, "it goes on");
    expectThat(!message || (ending->message && message->holds(*ending->message)), expected,
               ending->message ? "it ended with " + inQuotes(*ending->message) : "it ended without a message");
    ending->expected = true;
}

void expectRefused(Step& step) {
    step.refusalIsExpected();
    step.player().watchRefusal(true);
    try {
        doVerb(step);
    } catch (const LineFailure& failure) {
        step.player().watchRefusal(false);
        if (failure.refused || failure.unmet)
            return;
        throw;
    }
    step.player().watchRefusal(false);
    throw LineFailure{"this to be refused", "it was done"};
}

} // namespace

const std::vector<Entry>& worldExpectations() {
    static const std::vector<Entry> table{
        {"message", R"(expect message "text" [caption "c"] [icon stop|question|exclamation|information])", &expectMessage},
        {"no", "expect no message|statement|file|beep", &expectNo},
        {"input", R"(expect input "prompt" [title "t"])", &expectInput},
        {"dialog", R"(expect dialog "title" [filter "f"])", &expectDialog},
        {"sql", R"(expect sql "SELECT ..." "a|b")", &expectSql},
        {"log", R"(expect log "tag" "procedure")", &expectLog},
        {"statement", R"(expect statement "text")", &expectStatement},
        {"statements", R"(expect statements like "..." "...")", &expectStatements},
        {"file", R"(expect file "path" "line" ...)", &expectFile},
        {"beep", "expect beep", &expectBeep},
        {"browsed", R"(expect browsed like "...%")", &expectBrowsed},
        {"clipboard", R"(expect clipboard "text")", &expectClipboard},
        {"status", R"(expect status "text")", &expectStatus},
        {"hint", R"(expect hint "text")", &expectHint},
        {"printed", R"(expect printed "File.rpt" "p1" ...)", &expectPrinted},
        {"ended", R"(expect ended ["message"])", &expectEnded},
        {"refused", "expect refused VERB ...", &expectRefused},
    };
    return table;
}

} // namespace merchantry::ui::play
