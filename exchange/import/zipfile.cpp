#include "exchange/import/zipfile.h"

#include "exchange/import/sheettable.h"

#include <algorithm>
#include <fstream>
#include <zip.h>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kBlock = 256 * 1024; // bytes
constexpr const char* kTooLarge = "The workbook is larger than 100 MB when it is unpacked. Please split it, or save it as CSV.";
constexpr const char* kDamaged =
    "The workbook is damaged and cannot be read. Please open it in the spreadsheet program, save it anew and try "
    "again.";
constexpr const char* kEncrypted = "The workbook is protected by a password. Please open it in the spreadsheet program, take the password "
                                   "away and save it.";
constexpr std::string_view kOleHead = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::string_view kZipHead = "PK";

std::string headOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw FileRefused("The file \"" + file.filename().string() + "\" could not be opened.");
    std::string head(kBlock, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    return head;
}

std::string wide(std::string_view name) {
    std::string text;
    for (const char c : name)
        text += {c, '\0'};
    return text;
}

// What an old container holds: a workbook with a password, or one of the old format.
[[noreturn]] void refuseContainer(const std::string& head) {
    if (head.find(wide("EncryptedPackage")) != std::string::npos || head.find(wide("EncryptionInfo")) != std::string::npos)
        throw FileRefused(kEncrypted);
    throw FileRefused("This is a workbook of the old format (.xls). Please save it as .xlsx and try again.");
}

} // namespace

void ZipFile::Discard::operator()(zip* archive) const {
    zip_discard(archive);
}

void ZipFile::Part::Close::operator()(zip_file* part) const {
    zip_fclose(part);
}

ZipFile::ZipFile(const std::filesystem::path& file) {
    const std::string head = headOf(file);
    if (head.starts_with(kOleHead))
        refuseContainer(head);
    if (head.empty())
        throw FileRefused("The file is empty.");
    if (!head.starts_with(kZipHead))
        throw FileRefused("The file is no workbook. Workbooks (.xlsx) and delimited text (.csv, .txt) can be read.");
    int code = 0;
    zip_.reset(zip_open(file.c_str(), ZIP_RDONLY, &code));
    if (zip_ == nullptr)
        throw FileRefused(kDamaged);
    checkParts();
}

void ZipFile::checkParts() const {
    std::uint64_t bytes = 0;
    const zip_int64_t parts = zip_get_num_entries(zip_.get(), 0);
    for (zip_int64_t i = 0; i < parts; ++i) {
        zip_stat_t stat;
        if (zip_stat_index(zip_.get(), static_cast<zip_uint64_t>(i), 0, &stat) != 0)
            throw FileRefused(kDamaged);
        if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE)
            throw FileRefused(kEncrypted);
        bytes += (stat.valid & ZIP_STAT_SIZE) != 0 ? std::min<std::uint64_t>(stat.size, kMostBytes + 1) : 0;
    }
    if (bytes > kMostBytes)
        throw FileRefused(kTooLarge);
}

void ZipFile::count(std::int64_t bytes) {
    unpacked_ += bytes;
    if (unpacked_ > kMostBytes)
        throw FileRefused(kTooLarge);
}

std::int64_t ZipFile::indexOf(const std::string& part) const {
    return zip_name_locate(zip_.get(), part.c_str(), ZIP_FL_NOCASE);
}

std::int64_t ZipFile::sizeOf(const std::string& part) const {
    zip_stat_t stat;
    const std::int64_t index = indexOf(part);
    if (index < 0 || zip_stat_index(zip_.get(), static_cast<zip_uint64_t>(index), 0, &stat) != 0)
        return 0;
    return static_cast<std::int64_t>(stat.size);
}

std::string ZipFile::text(const std::string& part) {
    std::string whole;
    for (Part reading(*this, part); reading.read(whole);) {
    }
    return whole;
}

ZipFile::Part::Part(ZipFile& file, const std::string& part) : file_(file) {
    const std::int64_t index = file.indexOf(part);
    if (index >= 0)
        part_.reset(zip_fopen_index(file.zip_.get(), static_cast<zip_uint64_t>(index), 0));
    if (part_ == nullptr)
        throw FileRefused(kDamaged);
}

bool ZipFile::Part::read(std::string& text) {
    const std::size_t before = text.size();
    text.resize(before + kBlock);
    const zip_int64_t got = zip_fread(part_.get(), text.data() + before, kBlock);
    text.resize(before + static_cast<std::size_t>(std::max<zip_int64_t>(0, got)));
    if (got < 0)
        throw FileRefused(kDamaged);
    bytes_ += got;
    file_.count(got);
    return got > 0;
}

} // namespace merchantry::exchange
