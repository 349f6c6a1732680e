// Writes what the report files say of themselves as pieces of source, when the program is built:
//   reportlistings FOLDER_OF_REPORTS FOLDER_OF_OUTPUT
// reportrows.inc      the first rows of reportfieldsmapping and LabelReports, as files of the schema
// reportcommands.inc  the reports' commands and keys, in the order of the menus
#include "reports/listing/listing.h"

#include <algorithm>
#include <fstream>
#include <iostream>

namespace {

using namespace merchantry::reports;

// As a literal of T-SQL.
std::string sqlText(const std::string& text) {
    std::string literal = "'";
    for (const char c : text)
        literal += c == '\'' ? "''" : std::string(1, c);
    return literal + "'";
}

// As a literal of C++.
std::string cppText(const std::string& text) {
    std::string literal = "\"";
    for (const char c : text)
        literal += (c == '"' || c == '\\' ? "\\" : "") + std::string(1, c);
    return literal + "\"";
}

// Rows that a shop added itself have no position, and stay.
std::string fieldRowsOf(const Listing& listing) {
    const std::string key = sqlText(listing.key);
    std::string names;
    std::string rows;
    int position = 0;
    for (const OfferedCriterion& criterion : listing.criteria) {
        names += (names.empty() ? "" : ", ") + sqlText(criterion.field);
        rows += (rows.empty() ? "\n  (" : ",\n  (") + key + ", " + sqlText(criterion.field) + ", " + sqlText(criterion.name) + ", " +
                (criterion.date ? "1" : "0") + ", " + std::to_string(++position) + ")";
    }
    std::string batch = "DELETE FROM reportfieldsmapping WHERE reportname = " + key + " AND position > 0\n";
    if (rows.empty())
        return batch;
    return batch + "DELETE FROM reportfieldsmapping WHERE reportname = " + key + " AND fieldname IN (" + names + ")\n" +
           "INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription, dateconvert, position) VALUES" + rows + "\n";
}

// A size that the shop prints with a file of its own keeps it.
std::string labelRowsOf(const ReportFile& one) {
    const std::string printer = sqlText(one.labels->printer);
    const std::string quantity = sqlText(one.labels->quantity);
    const std::string file = sqlText(one.file);
    return "DELETE FROM LabelReports WHERE Report = " + file + "\nIF NOT EXISTS (SELECT * FROM LabelReports WHERE Printer = " + printer +
           " AND Quantity = " + quantity + ") INSERT INTO LabelReports (Printer, Quantity, Report, position) VALUES (" + printer + ", " +
           quantity + ", " + file + ", " + std::to_string(one.labels->place) + ")\n";
}

std::string schemaFile(const std::string& name, const std::string& text) {
    return "    {\"" + name + "\", R\"~sql~(" + text + ")~sql~\"},\n";
}

std::string rowsOf(const std::vector<ReportFile>& files) {
    std::string fields;
    std::string labels;
    for (const ReportFile& one : files) {
        if (one.listing)
            fields += fieldRowsOf(*one.listing);
        if (one.labels)
            labels += labelRowsOf(one);
    }
    return schemaFile("rows/ReportFields.sql", fields) + schemaFile("rows/LabelReports.sql", labels);
}

std::string commandsOf(std::vector<ReportFile> files) {
    std::erase_if(files, [](const ReportFile& one) { return !one.listing; });
    std::sort(files.begin(), files.end(), [](const ReportFile& a, const ReportFile& b) {
        return std::tie(a.listing->menu, a.listing->place) < std::tie(b.listing->menu, b.listing->place);
    });
    std::string lines;
    for (const ReportFile& one : files) {
        const Listing& listing = *one.listing;
        lines += "    {" + cppText(listing.key) + ", " + cppText(one.file) + ", " + cppText(listing.menu) + ", " +
                 cppText(listing.command) + ", " + cppText(listing.caption) + ", " + (listing.viewerTools ? "true" : "false") + "},\n";
    }
    return lines;
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush())
        throw std::runtime_error("The file " + file.string() + " cannot be written.");
}

} // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::cerr << "usage: reportlistings FOLDER_OF_REPORTS FOLDER_OF_OUTPUT\n";
        return 2;
    }
    try {
        const std::vector<ReportFile> files = readListings(words[1]);
        write(std::filesystem::path(words[2]) / "reportrows.inc", rowsOf(files));
        write(std::filesystem::path(words[2]) / "reportcommands.inc", commandsOf(files));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
