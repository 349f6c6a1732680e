#include "exchange/backup/storecloser.h"

#include "ui/desk.h"
#include "ui/longwork.h"

#include <thread>

namespace merchantry::exchange {
namespace {

constexpr auto kNap = std::chrono::milliseconds(50);
constexpr int kDone = 100;
constexpr int kUnknown = -1;

} // namespace

bool StoreCloser::CloseOthers() {
    if (store_.empty())
        return true;
    asked_ = std::make_unique<db::AskedToClose>(store_);
    std::string names;
    const auto step = [&] {
        names = platform::namesOf(platform::holdersOf(store_));
        if (names.empty())
            return kDone;
        std::this_thread::sleep_for(kNap);
        return kUnknown;
    };
    return ui::longWork(desk_, "Waiting for other programs to close the store", step,
                        [&] { return "Waiting for " + names + " to close the store"; });
}

} // namespace merchantry::exchange
