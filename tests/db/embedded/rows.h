#pragma once

#include "app/db/embedded/script.h"
#include "app/db/embedded/store.h"

#include <string>
#include <vector>

namespace merchantry::db {

// Gathers what a batch gives: cells parted by "|", rows by line, sets by "--".
class Rows : public ResultSink {
public:
    void beginSet(const std::vector<Column>& given) override {
        if (sets++ > 0)
            text += "--\n";
        columns = given;
    }
    void row(const RowView& row) override {
        for (int i = 0; i < row.size(); ++i)
            text += (i > 0 ? "|" : "") + row.value(i).toScriptText();
        text += "\n";
    }
    std::string text;
    int sets = 0;
    std::vector<Column> columns;
};

inline std::string rowsOf(Session& session, const std::string& batch) {
    Rows rows;
    session.execute(batch, rows);
    return rows.text;
}

// The number of the error that a batch ends with; 0 for none.
inline int errorOf(Session& session, const std::string& batch) {
    NoResult none;
    try {
        session.execute(batch, none);
    } catch (const DbError& error) {
        return error.native();
    }
    return 0;
}

// A file name of its own in the folder for temporary files, gone with the object.
class TemporaryFile {
public:
    TemporaryFile() {
        static int number = 0;
        const auto seed = static_cast<unsigned long long>(std::hash<const void*>()(this)) ^ static_cast<unsigned long long>(std::rand());
        path_ = std::filesystem::temp_directory_path() /
                ("merchantry-test-" + std::to_string(seed) + "-" + std::to_string(++number) + ".store");
        remove();
    }
    ~TemporaryFile() { remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    void remove() const {
        std::error_code ignored;
        for (const char* suffix : {"", "-wal", "-shm"})
            std::filesystem::remove(path_.string() + suffix, ignored);
    }
    std::filesystem::path path_;
};

} // namespace merchantry::db
