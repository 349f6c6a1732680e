#pragma once

#include "reports/engine/layout.h"
#include "reports/engine/outline.h"
#include "reports/engine/querytext.h"
#include "reports/engine/reportrows.h"

#include <memory>
#include <string>

namespace merchantry::reports {

// A report that has been run: its definition, its rows and how they are laid over each other. Everything that shows it or writes it reads
// from here. Made by run; owns all of it.
class Report {
public:
    // Runs the definition's statement on a session that is set to read only. Throws DefinitionError, DbError, or DbError category Cancelled
    // when it was stopped. The criteria are words for the reader; empty takes the conditions of the parameters.
    static std::unique_ptr<Report> run(db::Session& session, Definition definition, const ParameterTexts& parameters,
                                       const std::string& criteria = "", const KeepReading& keepReading = {});
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    const Definition& definition() const { return definition_; }
    const Outline& outline() const { return *outline_; }
    const PageHead& head() const { return head_; }

private:
    Report() = default;

    Definition definition_;
    std::unique_ptr<db::RowStore> rows_;
    std::unique_ptr<Outline> outline_;
    PageHead head_;
};

// All pages of a report, or its labels, laid out. They borrow the report and the measure.
std::unique_ptr<ui::Pages> allPages(const Report& report, const ui::TextMeasure& measure);

} // namespace merchantry::reports
