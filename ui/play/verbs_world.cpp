#include "ui/grid.h"
#include "ui/play/looks.h"
#include "ui/play/rowtexts.h"
#include "ui/play/verbs.h"
#include "ui/textbox.h"

#include "base/textorder.h"

namespace merchantry::ui::play {
namespace {

void answer(Step& step) {
    const std::string word = step.bare("Yes, No, OK or Cancel");
    step.end();
    for (const Answer one : {Answer::Yes, Answer::No, Answer::Ok, Answer::Cancel})
        if (sameText(word, wordFor(one))) {
            step.desk().queueAnswer(one);
            return;
        }
    throw LineFailure{"Yes, No, OK or Cancel", "there was " + word};
}

void input(Step& step) {
    std::optional<std::string> text;
    if (!step.accept("cancel"))
        text = step.text("a text, or cancel");
    step.end();
    step.desk().queueInput(std::move(text));
}

void file(Step& step) {
    std::optional<std::filesystem::path> path;
    if (!step.accept("cancel"))
        path = step.text("a path, or cancel");
    step.end();
    step.desk().queueFile(std::move(path));
}

void tellStoreTheTime(Step& step) {
    if (step.desk().clock().isSet())
        step.host().setClock(step.desk().clock().now());
}

void wait(Step& step) {
    const int ms = step.number("milliseconds");
    step.end();
    lineNeeds(ms >= 0, "milliseconds", "there was " + std::to_string(ms));
    step.desk().pass(ms, [&] { tellStoreTheTime(step); });
}

void setClock(Step& step) {
    const std::string text = step.text("a date and time");
    step.end();
    const auto date = Date::fromText(text);
    lineNeeds(date.has_value(), R"(a date and time as "2026-11-21 14:30:00")", "there was " + inQuotes(text));
    step.desk().clock().set(*date);
    tellStoreTheTime(step);
}

void sql(Step& step) {
    const std::string batch = step.text("a batch");
    step.end();
    query(step, batch);
}

void config(Step& step) {
    lineNeeds(!step.player().started(), "a configuration before the start-up", "the application runs already");
    StartUp& startUp = step.player().startUp();
    if (step.accept("none")) {
        startUp.bare = true;
        step.end();
        return;
    }
    constexpr std::string_view kKnown[] = {"name", "server", "register", "password", "instance", "integrated"};
    std::map<std::string, std::string> settings;
    while (step.more()) {
        const Word& setting = step.setting(R"(a setting as server="...")");
        lineNeeds(std::find(std::begin(kKnown), std::end(kKnown), setting.name) != std::end(kKnown),
                  "name, server, register, password, instance or integrated", "there was " + setting.name);
        settings[setting.name] = setting.name == "server" && setting.text == "@store" ? step.host().storePath() : setting.text;
    }
    startUp.configurations.push_back(std::move(settings));
}

std::string callOperation(Step& step) {
    const std::string name = step.bare("an operation as frmX.Operation");
    const std::size_t point = name.find('.');
    lineNeeds(point != std::string::npos, "an operation as frmX.Operation", "there was " + name);
    std::vector<std::string> arguments;
    while (step.more())
        arguments.push_back(step.any("an argument"));
    lineNeeds(!step.player().ending(), "the application to run", "its process has ended");
    Form* const form = step.host().formNamed(step.desk(), name.substr(0, point));
    lineNeeds(form != nullptr, "a form " + name.substr(0, point), "the program has none of that name");
    const Form::Operation* const operation = form->operation(name.substr(point + 1));
    lineNeeds(operation != nullptr, "an operation " + name.substr(point + 1), form->name() + " offers none of that name");
    return (*operation)(arguments);
}

void call(Step& step) {
    const std::string result = callOperation(step);
    if (!result.empty())
        step.player().transcript().event("called " + inQuotes(result));
}

void let(Step& step) {
    const std::string name = step.bare("a name");
    lineNeeds(step.accept("="), "= behind the name", "there was something else");
    if (step.accept("call")) {
        step.player().variables()[name] = callOperation(step);
        return;
    }
    lineNeeds(step.accept("sql"), R"(sql "...")", "there was something else");
    const std::string batch = step.text("a select");
    step.end();
    const auto rows = query(step, batch);
    lineNeeds(!rows.empty() && !rows.front().empty(), "a row from " + inQuotes(batch), "there was none");
    step.player().variables()[name] = rows.front().front().toScriptText();
}

std::string rowLine(const Grid& grid, int row) {
    std::string line = grid.name() + " " + std::to_string(row);
    for (int column = 0; column < grid.columnCount(); ++column)
        if (!grid.column(column).hidden)
            line += " | " + grid.text(row, column);
    return line;
}

void printForm(Transcript& transcript, const Form& form) {
    transcript.event(form.name() + " caption " + inQuotes(form.caption()));
    for (Control* control : form.controls()) {
        const auto text = tellableText({control, nullptr});
        const auto flag = shownFlag(*control);
        transcript.event("  " + control->name() + " " + kindOf(*control) + (text ? " " + inQuotes(*text) : "") +
                         (flag ? (*flag ? " on" : " off") : "") + (isVisible(*control) ? "" : " hidden") +
                         (isEnabled(*control) ? "" : " disabled"));
        if (const auto* bar = dynamic_cast<const Toolbar*>(control))
            for (const ToolButton& button : bar->buttons())
                transcript.event("    " + button.key + " " + inQuotes(button.caption) + " tip " + inQuotes(button.toolTip));
    }
}

void printControl(Transcript& transcript, const Target& target) {
    const Control& control = *target.control;
    if (const auto* grid = dynamic_cast<const Grid*>(&control)) {
        for (int row = 0; row <= grid->dataRows(); ++row)
            transcript.event(rowLine(*grid, row));
        return;
    }
    const auto flag = shownFlag(control);
    transcript.event(control.name() + " " + (flag ? std::string(*flag ? "on" : "off") : inQuotes(tellableText(target).value_or(""))));
}

void print(Step& step) {
    Transcript& transcript = step.player().transcript();
    if (step.nextIsText()) {
        transcript.event(step.text("a text"));
    } else if (step.accept("form")) {
        printForm(transcript, step.form());
    } else if (step.accept("caption")) {
        transcript.event("caption " + inQuotes(step.form().caption()));
    } else {
        const std::string name = step.bare("what to print");
        if (const Form* form = step.openForm(name))
            printForm(transcript, *form);
        else
            printControl(transcript, step.target(name));
    }
    step.end();
}

void printers(Step& step) {
    step.desk().printerNames = step.accept("none") ? std::vector<std::string>{} : step.texts();
    step.end();
}

void picture(Step& step) {
    const std::string name = step.text("a name");
    step.end();
    for (Control* control : step.form().controls())
        if (auto* box = dynamic_cast<TextBox*>(control); box != nullptr && box->revealed())
            box->setRevealed(false); // no picture shows a password
    step.desk().picture(step.form(), name);
}

} // namespace

const std::vector<Entry>& worldVerbs() {
    static const std::vector<Entry> table{
        {"answer", "answer Yes|No|OK|Cancel", &answer},
        {"input", R"(input "text" or input cancel)", &input},
        {"file", R"(file "path" or file cancel)", &file},
        {"printers", R"(printers "name" ... or printers none)", &printers},
        {"wait", "wait milliseconds", &wait},
        {"clock", R"(clock "2026-11-21 14:30:00")", &setClock},
        {"sql", R"(sql "...")", &sql},
        {"config", R"(config name="..." server="..." ...)", &config},
        {"call", R"(call frmX.Operation "arg" ...)", &call},
        {"let", R"(let name = sql "...")", &let},
        {"print", "print what", &print},
        {"picture", R"(picture "name")", &picture},
    };
    return table;
}

} // namespace merchantry::ui::play
