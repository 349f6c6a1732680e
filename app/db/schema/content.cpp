#include "app/db/schema/content.h"

#include "app/db/eachrow.h"
#include "app/db/schema/runfile.h"
#include "app/db/schema/schema.h"
#include "app/db/tsql/sql.h"
#include "app/db/work.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <map>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace merchantry::db {
namespace {

// A folder of the schema with the word that its objects are dropped by.
struct Kind {
    std::string_view folder;
    const char* word;
};
constexpr std::array kKinds{Kind{"views/", "VIEW"}, Kind{"procedures/", "PROCEDURE"}, Kind{"triggers/", "TRIGGER"}};

using Fingerprints = std::map<std::string, std::string, std::less<>>; // by the file's name

std::string fingerprintOf(std::string_view text) {
    std::array<char, 17> hex{};
    std::snprintf(hex.data(), hex.size(), "%016llx", static_cast<unsigned long long>(XXH3_64bits(text.data(), text.size())));
    return hex.data();
}

bool isContent(const SchemaFile& file) {
    return !file.name.starts_with("tables/");
}

const Fingerprints& ownContent() {
    static const Fingerprints own = [] {
        Fingerprints prints;
        for (const SchemaFile& file : schemaFiles())
            if (isContent(file))
                prints.emplace(file.name, fingerprintOf(file.text));
        return prints;
    }();
    return own;
}

// "0.10.2" is behind "0.9.8".
std::array<int, 3> versionOf(std::string_view text) {
    std::array<int, 3> version{};
    for (int& number : version) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty())
            break;
        text.remove_prefix(1);
    }
    return version;
}

struct Kept {
    Fingerprints prints;
    bool isNewer = false; // than this program
};

Kept keptContent(Session& session) {
    Kept kept;
    EachRow rows([&](const RowView& row) {
        kept.prints.emplace(row.value(0).toText(), row.value(1).toText());
        kept.isNewer = kept.isNewer || versionOf(row.value(2).toText()) > versionOf(MERCHANTRY_VERSION);
    });
    session.execute("IF OBJECT_ID('SchemaContent') IS NOT NULL SELECT Name, Fingerprint, Program FROM SchemaContent", rows);
    return kept;
}

// Nothing for rows.
void dropObject(Session& session, const std::string& name) {
    for (const Kind& kind : kKinds)
        if (name.starts_with(kind.folder)) {
            const std::string object = name.substr(kind.folder.size(), name.rfind('.') - kind.folder.size());
            runFile(session, name, "IF OBJECT_ID('" + object + "') IS NOT NULL DROP " + kind.word + " [" + object + "]");
        }
}

void put(Session& session, const SchemaFile& file) {
    const std::string name(file.name);
    dropObject(session, name);
    runFile(session, name, file.text);
}

void forget(Session& session, const std::string& name) {
    const Sql remove = Sql("DELETE FROM SchemaContent WHERE Name = '") + name + "'";
    remove.check();
    NoResult none;
    session.execute(remove.text(), none);
}

void note(Session& session, const Fingerprints& prints) {
    std::string rows;
    for (const auto& [name, print] : prints)
        rows += (rows.empty() ? "" : ", ") + ("('" + name + "', '" + print + "', '" MERCHANTRY_VERSION "')");
    NoResult none;
    if (!rows.empty())
        session.execute("INSERT INTO SchemaContent (Name, Fingerprint, Program) VALUES " + rows, none);
}

} // namespace

OtherContent otherContent(Session& session) {
    const Kept kept = keptContent(session);
    OtherContent other;
    other.isNewer = kept.isNewer;
    for (const auto& [name, print] : ownContent())
        if (const auto had = kept.prints.find(name); had == kept.prints.end() || had->second != print)
            other.files.insert(name);
    for (const auto& [name, print] : kept.prints)
        if (ownContent().count(name) == 0)
            other.files.insert(name);
    return other;
}

std::vector<std::string> renewContent(Session& session) {
    const Kept before = keptContent(session);
    if (before.isNewer || before.prints == ownContent())
        return {};
    Work work(session);
    forget(session, ""); // asks for the right to write: nobody else renews what is read now
    const Kept kept = keptContent(session);
    std::vector<std::string> renewed;
    Fingerprints changed;
    for (const SchemaFile& file : schemaFiles()) {
        const auto own = ownContent().find(file.name);
        if (own == ownContent().end())
            continue;
        const auto had = kept.prints.find(file.name);
        if (had != kept.prints.end() && had->second == own->second)
            continue;
        put(session, file);
        forget(session, own->first);
        changed.insert(*own);
        renewed.push_back(own->first);
    }
    for (const auto& [name, print] : kept.prints)
        if (ownContent().count(name) == 0) {
            dropObject(session, name);
            forget(session, name);
            renewed.push_back(name);
        }
    note(session, changed);
    work.commit();
    return renewed;
}

void putContent(Session& session) {
    for (const SchemaFile& file : schemaFiles())
        if (isContent(file))
            put(session, file);
    noteContent(session);
}

void noteContent(Session& session) {
    NoResult none;
    session.execute("DELETE FROM SchemaContent", none);
    note(session, ownContent());
}

} // namespace merchantry::db
