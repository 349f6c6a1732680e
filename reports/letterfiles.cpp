#include "reports/letterfiles.h"

#include "base/errortext.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/longwork.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace merchantry::reports {
namespace {

constexpr const char* kEnding = ".pdf";
constexpr std::size_t kLongest = 120; // bytes of a name; a file system takes 255

// No letter is cut in its middle.
std::string shortened(std::string name) {
    if (name.size() <= kLongest)
        return name;
    std::size_t end = kLongest;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    name.resize(end);
    return std::string(trimmed(name));
}

// A day's slashes become dashes, so that it can still be read.
std::string stemOf(const std::string& words) {
    const std::string stem = shortened(asFileName(replaced(words, "/", "-")));
    return stem.empty() ? "Letter" : stem;
}

void writeLetter(ui::Desk& desk, const ReportPages& report, const LetterFile& letter, const std::filesystem::path& folder) {
    const auto pdf = desk.pdf(folder / letter.name, report.report().definition().title);
    if (pdf == nullptr)
        throw std::runtime_error("A PDF can only be written where pages can be drawn.");
    for (int page = letter.first; page <= letter.last; ++page)
        pdf->put(report.pages().page(page));
    pdf->finish();
}

} // namespace

bool hasLetters(const Definition& definition) {
    return std::any_of(definition.groups.begin(), definition.groups.end(),
                       [](const GroupDefinition& group) { return !group.letter.empty(); });
}

std::vector<LetterFile> letterFiles(const std::vector<Letter>& letters) {
    std::vector<LetterFile> files;
    std::set<std::string> taken;
    for (const Letter& letter : letters) {
        const std::string stem = stemOf(letter.name);
        std::string name = stem + kEnding;
        for (int number = 2; !taken.insert(lowerCase(name)).second; ++number)
            name = stem + " (" + std::to_string(number) + ")" + kEnding;
        files.push_back({letter.first, letter.last, name});
    }
    return files;
}

int writeLetters(ui::Desk& desk, const ReportPages& report, const std::vector<LetterFile>& files, const std::filesystem::path& folder) {
    const int all = static_cast<int>(files.size());
    int written = 0;
    const auto next = [&] {
        if (written == all)
            return 100;
        const LetterFile& letter = files[static_cast<std::size_t>(written)];
        try {
            writeLetter(desk, report, letter, folder);
        } catch (const std::exception& error) {
            throw std::runtime_error(letter.name + ": " + sentenceOf(error) + " Written before it: " + withThousands(written) + " of " +
                                     withThousands(all) + ".");
        }
        ++written;
        return written * 100 / all;
    };
    ui::longWork(desk, "Writing the letters …", next,
                 [&] { return "Writing the letters … " + withThousands(written) + " of " + withThousands(all); });
    return written;
}

} // namespace merchantry::reports
