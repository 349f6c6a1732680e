#include "programs/merchantryctl/commands.h"

#include "app/db/schema/content.h"
#include "app/db/schema/schema.h"
#include "app/serverstore.h"
#include "base/lettercase.h"
#include "base/platform/platform.h"
#include "reports/engine/exports.h"

#ifdef MERCHANTRY_PDF
#include "programs/merchantryctl/pdf.h"
#endif

#include <algorithm>
#include <iostream>
#include <sstream>

namespace merchantry::programs {
namespace {

// The parameters of the report: those given by number, and the conditions and order in the places of their kind.
reports::ParameterTexts textsFor(const reports::Definition& definition, const ReportOptions& options) {
    reports::ParameterTexts texts(definition.query.parameters.size());
    for (std::size_t i = 0; i < options.parameters.size(); ++i) {
        if (i >= texts.size())
            throw std::runtime_error("The report has only " + std::to_string(texts.size()) + " parameters.");
        texts[i] = options.parameters[i];
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const reports::ParameterKind kind = definition.query.parameters[i];
        if (kind == reports::ParameterKind::Where && !options.where.empty())
            texts[i] = "WHERE " + options.where;
        else if (kind == reports::ParameterKind::Sort && !options.sort.empty())
            texts[i] = options.sort;
        else if (kind == reports::ParameterKind::Direction)
            texts[i] = options.descending ? " DESC" : " ASC";
    }
    if (!options.where.empty() && !definition.query.takes(reports::ParameterKind::Where))
        throw std::runtime_error("The report takes no conditions: its statement has no place for them.");
    if (!options.sort.empty() && !definition.query.takes(reports::ParameterKind::Sort))
        throw std::runtime_error("The report takes no order: its statement has no place for one.");
    return texts;
}

void write(const reports::Report& report, const std::string& out) {
    const std::string ending = lowerCase(std::filesystem::path(out).extension().string());
    std::ostringstream text;
    if (ending == ".csv") {
        reports::writeCsv(report, text);
    } else if (ending == ".html") {
        reports::writeHtml(report, text);
    } else if (ending == ".xlsx") {
        reports::writeWorkbook(report, out);
        return;
#ifdef MERCHANTRY_PDF
    } else if (ending == ".pdf") {
        return writeReportPdf(report, out);
#endif
    } else {
        throw std::runtime_error("A report is written to a file that ends in .csv, .html, .xlsx"
#ifdef MERCHANTRY_PDF
                                 ", .pdf"
#endif
                                 ".");
    }
    platform::replaceFile(out, text.str(), false);
}

} // namespace

int runReport(const ReportOptions& options) {
    const auto session = app::openStore(options.store);
    db::refuseNewerSchema(*session);
    if (db::schemaVersion(*session) == db::kSchemaVersion)
        db::renewContent(*session); // the report's procedures may be newer than the store's
    const reports::Definition definition = reports::readDefinition(options.file);
    const auto report = reports::Report::run(*session, definition, textsFor(definition, options));
    if (options.out.empty()) {
        reports::writeCsv(*report, std::cout);
        return 0;
    }
    write(*report, options.out);
    std::cout << "Wrote " << options.out << ": " << report->outline().rows().rowCount() << " rows.\n";
    return 0;
}

} // namespace merchantry::programs
