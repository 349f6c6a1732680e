#pragma once

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>
#include <zip.h>

namespace merchantry::exchange {

// Writes packed files part by part, so that a test can make every workbook that there is, also damaged ones.
inline void writeParts(const std::filesystem::path& file, const std::map<std::string, std::string>& parts,
                       const std::string& password = "") {
    int code = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (archive == nullptr)
        throw std::runtime_error("no file " + file.string());
    for (const auto& [name, text] : parts) {
        zip_source_t* source = zip_source_buffer(archive, text.data(), text.size(), 0);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_OVERWRITE);
        if (index < 0)
            throw std::runtime_error("no part " + name);
        if (!password.empty())
            zip_file_set_encryption(archive, static_cast<zip_uint64_t>(index), ZIP_EM_AES_256, password.c_str());
    }
    if (zip_close(archive) != 0)
        throw std::runtime_error("not written: " + file.string());
}

// The parts of a workbook with one sheet: what stands in its worksheet, and where wanted the shared strings, formats and styles.
struct MadeWorkbook {
    std::string worksheet; // within <worksheet>
    std::string shared{};  // within <sst>
    std::string styles{};  // within <styleSheet>
    std::string properties{};
    std::string prefix{}; // of all names, with its colon

    std::map<std::string, std::string> parts() const {
        const std::string types = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
        const std::string space = "xmlns" + (prefix.empty() ? "" : ":" + prefix.substr(0, prefix.size() - 1)) +
                                  "=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"";
        const auto relation = [&](const char* id, const std::string& type, const std::string& target) {
            return "<Relationship Id=\"" + std::string(id) + "\" Type=\"" + types + "/" + type + "\" Target=\"" + target + "\"/>";
        };
        std::map<std::string, std::string> all;
        all["_rels/.rels"] = "<Relationships>" + relation("rId1", "officeDocument", "xl/workbook.xml") + "</Relationships>";
        all["xl/_rels/workbook.xml.rels"] = "<Relationships>" + relation("rId1", "worksheet", "worksheets/sheet1.xml") +
                                            (shared.empty() ? "" : relation("rId2", "sharedStrings", "sharedStrings.xml")) +
                                            (styles.empty() ? "" : relation("rId3", "styles", "styles.xml")) + "</Relationships>";
        all["xl/workbook.xml"] = "<" + prefix + "workbook " + space + " xmlns:r=\"" + types + "\"><" + prefix + "workbookPr " + properties +
                                 "/><" + prefix + "sheets><" + prefix + "sheet name=\"Prices\" sheetId=\"1\" r:id=\"rId1\"/></" + prefix +
                                 "sheets></" + prefix + "workbook>";
        all["xl/worksheets/sheet1.xml"] =
            "<?xml version=\"1.0\"?><" + prefix + "worksheet " + space + ">" + worksheet + "</" + prefix + "worksheet>";
        if (!shared.empty())
            all["xl/sharedStrings.xml"] = "<" + prefix + "sst " + space + ">" + shared + "</" + prefix + "sst>";
        if (!styles.empty())
            all["xl/styles.xml"] = "<styleSheet>" + styles + "</styleSheet>";
        return all;
    }
};

} // namespace merchantry::exchange
