#include "reports/rptfile.h"

#include "app/aside.h"
#include "app/modMain.h"
#include "base/lettercase.h"

namespace merchantry::reports {
namespace {

// The file of that name in its folder, its letters in either case: screens name some files otherwise than they are kept.
std::filesystem::path fileNamed(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored))
        return path;
    const std::string wanted = lowerCase(path.filename().string());
    for (std::filesystem::directory_iterator entry(path.parent_path(), ignored), end; entry != end; entry.increment(ignored))
        if (lowerCase(entry->path().filename().string()) == wanted && entry->is_regular_file(ignored))
            return entry->path();
    throw ReportNotFound();
}

// Counts what it is given and keeps nothing.
class Counter : public db::ResultSink {
public:
    explicit Counter(app::AsideState& state) : state_(state) {}
    void beginSet(const std::vector<db::Column>&) override { ++sets_; }
    void row(const db::RowView&) override {
        if (sets_ == 1)
            ++state_.rows;
    }

private:
    app::AsideState& state_;
    int sets_ = 0;
};

} // namespace

RptFile::RptFile(std::filesystem::path path) : path_(std::move(path)), definition_(readDefinition(fileNamed(path_))) {}

void RptFile::setParameter(std::size_t number, const std::string& value) {
    if (parameters_.size() < number)
        parameters_.resize(number);
    parameters_[number - 1] = value;
}

std::unique_ptr<Report> RptFile::run(ui::Desk& desk) const {
    if (const auto& opened = app::modMain().reportOpened)
        opened(path_.filename().string(), parameters_);
    const auto session = app::sessionAside();
    std::unique_ptr<Report> report;
    const bool ended = app::runAside(
        desk, "Reading \"" + title() + "\" …",
        [&](app::AsideState& state) {
            report = Report::run(*session, definition_, parameters_, criteria, [&state](int rows) {
                state.rows = rows;
                return !state.stop;
            });
        },
        [&session] { session->cancel(); });
    return ended ? std::move(report) : nullptr;
}

std::optional<int> RptFile::countRows(ui::Desk& desk) const {
    const auto session = app::sessionAside();
    const std::string statement = queryText(definition_, parameters_);
    session->setReadOnly(true);
    int rows = 0;
    const bool ended = app::runAside(
        desk, "Counting the rows of \"" + title() + "\" …",
        [&](app::AsideState& state) {
            Counter counter(state);
            session->execute(statement, counter);
            rows = state.rows;
        },
        [&session] { session->cancel(); });
    return ended ? std::optional(rows) : std::nullopt;
}

std::filesystem::path reportFolder(const ui::Desk& desk) {
    return desk.programFolder() / "Reports";
}

std::string openFailure(const std::filesystem::path& path, const std::exception& error) {
    if (dynamic_cast<const ReportNotFound*>(&error) != nullptr)
        return "Report file " + path.string() + " was not found. Please ensure the file is in the folder and generate the report again.";
    return std::string(error.what()) + " Please contact technical support";
}

RptFilePtr openReport(ui::Desk& desk, const std::filesystem::path& path) {
    try {
        return std::make_shared<RptFile>(path);
    } catch (const std::exception& error) {
        desk.message(openFailure(path, error), kProduct);
        return nullptr;
    }
}

} // namespace merchantry::reports
