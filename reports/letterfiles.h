#pragma once

#include "reports/reportpages.h"
#include "ui/desk.h"

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::reports {

// Whether the report consists of letters that can be files of their own.
bool hasLetters(const Definition& definition);

// A letter's pages, from 0, and the name of its file.
struct LetterFile {
    int first = 0;
    int last = 0;
    std::string name; // "17 Ann Ash 3-20-2026.pdf"
};

// Names that every computer takes and of which no two are the same, in whatever letters: the second "Ann Ash" gets " (2)".
std::vector<LetterFile> letterFiles(const std::vector<Letter>& letters);

// Writes each letter to its file, a PDF, with progress and a Stop; files of these names are replaced. How many were written: fewer than
// there are when the user stopped it. Throws std::runtime_error with a sentence that names the file and tells how many were written before.
int writeLetters(ui::Desk& desk, const ReportPages& report, const std::vector<LetterFile>& files, const std::filesystem::path& folder);

} // namespace merchantry::reports
