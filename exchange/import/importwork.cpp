#include "exchange/import/importwork.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "exchange/import/importscreen.h"
#include "exchange/import/importwriting.h"
#include "ui/longwork.h"

#include <algorithm>

namespace merchantry::exchange {

using namespace app;

namespace {

std::string reasonsInWords(const std::vector<std::string>& reasons) {
    constexpr std::size_t kReasonsShown = 10;
    std::string words;
    for (std::size_t i = 0; i < std::min(reasons.size(), kReasonsShown); ++i)
        words += "\n" + reasons[i];
    if (reasons.size() > kReasonsShown)
        words += "\n(and more)";
    return words;
}

} // namespace

bool workOnTheStore(ui::Desk& desk, const char* procedure, const std::string& what, const WorkBegun& begun) {
    bool done = false;
    std::string changed;
    guarded({.tag = kImportTag, .procedure = procedure, .plain = "Nothing was changed."}, [&] {
        db::Connection own(*modMain().provider);
        own.Open(modMain().Conn->ConnectionString());
        try {
            // Lent only: the window of the progress lives on for a while, and the work must go before its session does.
            const std::function<int()> step = begun(own.session());
            done = ui::longWork(desk, what, [&step] { return step(); });
        } catch (const StoreChanged& news) {
            changed = news.what();
        } catch (const ImportKept& kept) {
            changed = "The import was not taken back:" + reasonsInWords(kept.reasons());
        }
    });
    if (!changed.empty())
        desk.message(changed, kProduct, ui::MessageIcon::Exclamation);
    return done;
}

} // namespace merchantry::exchange
