#include "app/db/embedded/storedtexts.h"

#include "app/db/embedded/connection.h"
#include "app/db/embedded/filehead.h"
#include "app/db/tsql/cell.h"
#include "app/db/tsql/parser.h"

#include <array>
#include <utility>

namespace merchantry::db {
namespace {

constexpr std::array<std::pair<std::string_view, const char*>, 6> kKinds{
    {{"P", "procedure"}, {"TR", "trigger"}, {"V", "view"}, {"FN", "function"}, {"IF", "function"}, {"U", "table"}}};

const char* kindOf(std::string_view code) {
    for (const auto& [known, word] : kKinds)
        if (known == code)
            return word;
    return nullptr;
}

std::string damageOf(const std::string& text) {
    try {
        tsql::parseBatch(text);
        return "";
    } catch (const DbError& error) {
        return std::string(error.what()) + (error.line() > 0 ? " (line " + std::to_string(error.line()) + ")" : "");
    }
}

std::string columnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr ? "" : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

} // namespace

std::vector<StoredText> storedTexts(const std::filesystem::path& file) {
    embedded::requireStoreFile(file);
    embedded::putForeignLogAside(file);
    embedded::Connection connection(file, true);
    std::vector<StoredText> texts;
    {
        const embedded::Statement3 select(connection.handle(), "SELECT kind, name, source FROM ts_object ORDER BY id");
        while (connection.step(select.get())) {
            const char* kind = kindOf(columnText(select.get(), 0));
            if (kind == nullptr)
                continue;
            const std::string text = columnText(select.get(), 2);
            texts.push_back({kind, columnText(select.get(), 1), text, damageOf(text)});
        }
    }
    connection.putToRest();
    return texts;
}

} // namespace merchantry::db
