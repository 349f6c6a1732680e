#include "app/serverstore.h"

#include "app/db/ado/provider.h"
#include "app/db/eachrow.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/content.h"
#include "app/db/schema/schema.h"
#include "app/db/server/database.h"
#include "app/db/server/server.h"
#include "app/storefile.h"
#include "base/counted.h"
#include "base/text.h"

namespace merchantry::app {
namespace {

// "P " is how the catalogue writes it.
std::string kindOf(std::string_view type) {
    const std::string_view word = trimmedRight(type);
    return word == "P" ? "procedure" : word == "TR" ? "trigger" : word == "V" ? "view" : "function";
}

std::vector<db::StoredText> textsOf(db::Session& session) {
    std::vector<db::StoredText> texts;
    db::EachRow modules([&](const db::RowView& row) {
        texts.push_back({kindOf(row.value(0).toText()), row.value(1).toText(), row.value(2).toText(), ""});
    });
    session.execute("SELECT o.type, o.name, m.definition FROM sys.sql_modules m INNER JOIN sys.objects o ON o.object_id = m.object_id "
                    "WHERE o.is_ms_shipped = 0 ORDER BY o.name",
                    modules);
    return texts;
}

} // namespace

bool isServerPlace(const std::string& place) {
    return db::connectionParts(place).count("data source") != 0;
}

std::string shownPlace(const std::string& place) {
    if (!isServerPlace(place))
        return place;
    const db::server::Address address = db::server::addressOf(db::connectionParts(place));
    return address.database + " on " + address.toText();
}

std::unique_ptr<db::Session> openStore(const std::string& place) {
    return isServerPlace(place) ? db::serverOf(place)->session() : db::Store::open(place)->session();
}

void createServerStore(const std::string& place, const StorePercent& progress) {
    const auto server = db::serverOf(place);
    db::server::NewDatabase made(server->address());
    db::createSchema(*server->session(), progress);
    made.keep();
}

std::size_t renewStore(const std::string& place) {
    const auto session = openStore(place);
    db::checkSchemaVersion(*session);
    return db::renewContent(*session).size();
}

std::string renewalInWords(const std::string& place) {
    const auto session = openStore(place);
    if (db::schemaVersion(*session) != db::kSchemaVersion)
        return "";
    const db::OtherContent other = db::otherContent(*session);
    if (other.files.empty())
        return "";
    const auto files = static_cast<std::int64_t>(other.files.size());
    if (other.isNewer)
        return counted(files, "procedure, trigger, view or file of first rows is",
                       "procedures, triggers, views and files of first rows are") +
               " as a newer program made them.";
    return counted(files, "procedure, trigger, view or file of first rows waits",
                   "procedures, triggers, views and files of first rows wait") +
           " to be renewed: the program does so when it opens the store, \"merchantryctl store upgrade\" at once.";
}

bool isOlderServerStore(const std::string& place) {
    try {
        const int version = db::schemaVersion(*openStore(place));
        return version > 0 && version < db::kSchemaVersion;
    } catch (const std::exception&) {
        return false;
    }
}

bool upgradeServerStore(const std::string& place) {
    const auto session = openStore(place);
    const int version = db::schemaVersion(*session);
    if (version == db::kSchemaVersion)
        return false;
    if (version == 0 || version > db::kSchemaVersion)
        db::checkSchemaVersion(*session);
    db::upgradeSchema(*session, db::upgradeSteps());
    return true;
}

std::vector<std::string> checkServerStore(const std::string& place) {
    const auto session = openStore(place);
    const int version = db::schemaVersion(*session);
    if (version == 0 || version > db::kSchemaVersion)
        db::checkSchemaVersion(*session);
    std::vector<std::string> found;
    if (version == db::kSchemaVersion)
        found = changesOf(*session, textsOf(*session), false);
    for (std::string& broken : db::brokenInvariants(*session))
        found.push_back(std::move(broken));
    return found;
}

} // namespace merchantry::app
