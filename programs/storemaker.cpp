#include "app/storefile.h"
#include "base/platform/platform.h"
#include "demo/demostore.h"
#include "programs/storehost.h"

namespace merchantry::programs {
namespace {

void fillWithDemoGoods(db::Session& session, const std::function<void(int percent)>& progress) {
    demo::DemoPlan plan;
    plan.dataFolder = demo::demoDataFolder();
    plan.today = platform::localTime().dateOnly();
    demo::fillDemoStore(session, plan, progress);
}

} // namespace

app::StoreMaker storeMaker() {
    return [](const std::filesystem::path& file, bool withDemoGoods, const std::function<void(int percent)>& progress) {
        app::createStoreFile(file, withDemoGoods ? app::StoreFiller(fillWithDemoGoods) : app::StoreFiller(), progress);
    };
}

} // namespace merchantry::programs
