#include "reports/engine/report.h"

#include "base/text.h"
#include "reports/engine/labels.h"

#include <utility>

namespace merchantry::reports {
namespace {

// The store's name and the present moment, as the store's clock has it.
PageHead headOf(db::Session& session) {
    PageHead head;
    const auto row = readRows(session, "SELECT TOP 1 GETDATE() AS Made, Name FROM StoreOptions");
    if (row->rowCount() == 0)
        return head;
    head.made = row->value(0, 0).as<Date>();
    head.store = row->value(0, 1).toText();
    return head;
}

std::string conditionsAmong(const Definition& definition, const ParameterTexts& parameters) {
    for (std::size_t i = 0; i < definition.query.parameters.size() && i < parameters.size(); ++i)
        if (definition.query.parameters[i] == ParameterKind::Where)
            return conditionsOf(parameters[i]);
    return "";
}

// Whether the statement as the file has it is to blame, and not what was put into its places.
bool isOfTheFile(const db::DbError& error, const Definition& definition, const ParameterTexts& parameters) {
    using Category = db::DbError::Category;
    if (error.category() != Category::Syntax && error.category() != Category::Name && error.category() != Category::Type)
        return false;
    for (std::size_t i = 0; i < definition.query.parameters.size() && i < parameters.size(); ++i) {
        const ParameterKind kind = definition.query.parameters[i];
        if ((kind == ParameterKind::Where || kind == ParameterKind::Sort) && !trimmed(parameters[i]).empty())
            return false;
    }
    return true;
}

} // namespace

std::unique_ptr<Report> Report::run(db::Session& session, Definition definition, const ParameterTexts& parameters,
                                    const std::string& criteria, const KeepReading& keepReading) {
    const std::string statement = queryText(definition, parameters);
    session.setReadOnly(true);
    std::unique_ptr<Report> report(new Report);
    report->definition_ = std::move(definition);
    report->head_ = headOf(session);
    report->head_.criteria = criteria.empty() ? conditionsAmong(report->definition_, parameters) : criteria;
    try {
        report->rows_ = readRows(session, statement, keepReading);
    } catch (const db::DbError& error) {
        if (!isOfTheFile(error, report->definition_, parameters))
            throw;
        throw statementError(report->definition_, error.line(), error.what());
    }
    report->outline_ = std::make_unique<Outline>(report->definition_, *report->rows_);
    return report;
}

std::unique_ptr<ui::Pages> allPages(const Report& report, const ui::TextMeasure& measure) {
    if (report.definition().label)
        return std::make_unique<Labels>(report.outline(), measure);
    auto layout = std::make_unique<Layout>(report.outline(), measure, report.head());
    while (!layout->layOut(1000)) {
    }
    return layout;
}

} // namespace merchantry::reports
