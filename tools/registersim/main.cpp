// Registers at work on an open store, for tests beside a working manager and for watching reports move.

#include "app/db/embedded/closing.h"
#include "app/db/schema/schema.h"
#include "app/serverstore.h"
#include "base/date.h"
#include "tools/registersim/history.h"
#include "tools/registersim/liveregister.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

using namespace merchantry;

struct Options {
    std::string store;
    registersim::LivePlan live;
    std::string from;
    std::string to;
    int salesPerDay = 40;
    bool offers = false;
};

// The keys of the registers, from the first to the last.
int tellOffers(const Options& options) {
    const auto session = app::openStore(options.store);
    db::refuseNewerSchema(*session);
    for (const registersim::TenderKey& key : registersim::loadTenders(*session))
        std::cout << key.name << (key.name == key.type ? "" : " (" + key.type + ")") << "\n";
    return 0;
}

// A server has its own ways to end the work on a store.
bool closingAsked(const std::string& store) {
    return !app::isServerPlace(store) && db::closingAsked(store);
}

// Ends between two receipts when somebody wants to restore the store, and does not begin while one does.
int sellLive(const Options& options) {
    if (closingAsked(options.store))
        throw std::runtime_error("The store is being restored. Start again when that is done.");
    db::refuseNewerSchema(*app::openStore(options.store));
    registersim::LivePlan plan = options.live;
    plan.closing = [&] { return closingAsked(options.store); };
    const auto figures = registersim::runRegisters([&] { return app::openStore(options.store); }, plan);
    if (plan.closing())
        std::cerr << "Closed, because the store is to be restored.\n";
    for (const std::string& error : figures.errors)
        std::cerr << error << "\n";
    std::cout << figures.posted << " receipts posted, " << figures.failed << " failed, " << figures.medianMs << " ms in the middle, "
              << figures.worstMs << " ms at worst\n";
    return figures.failed == 0 ? 0 : 1;
}

int sellInThePast(const Options& options) {
    const auto from = Date::fromText(options.from);
    const auto to = Date::fromText(options.to);
    if (!from || !to || *from >= *to)
        throw std::runtime_error("--from and --to must be days as 2026-11-21, the first before the second.");
    const auto session = app::openStore(options.store);
    db::refuseNewerSchema(*session);
    registersim::Shop shop = registersim::loadShop(*session);
    const registersim::HistoryPlan plan{.from = from->dateOnly(),
                                        .to = to->dateOnly(),
                                        .seed = options.live.seed,
                                        .salesPerDay = options.salesPerDay,
                                        .openingStock = false};
    const auto figures = registersim::postHistory(*session, shop, plan, [](int) {});
    std::cout << figures.transactions << " receipts with " << figures.lines << " lines and " << figures.orders << " orders posted\n";
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App program("Simulated registers that post sales to a store");
    program.set_version_flag("--version", MERCHANTRY_VERSION);
    program.add_option("--store", options.store, "The store: its file, or a connection string")->required();
    program.add_option("--registers", options.live.registers, "How many registers work side by side")->check(CLI::Range(1, 64));
    program.add_option("--rate", options.live.perSecond, "Receipts a second at each register; 0: as fast as it can");
    program.add_option("--seconds", options.live.seconds, "For how long")->check(CLI::NonNegativeNumber);
    program.add_option("--seed", options.live.seed, "Of the random numbers");
    auto* from = program.add_option("--from", options.from, "Post past days instead: the first, as 2026-11-01");
    program.add_option("--to", options.to, "The day after the last")->needs(from);
    program.add_option("--sales-per-day", options.salesPerDay, "On an ordinary past day");
    program.add_flag("--offers", options.offers, "Post nothing: tell the ways to pay that the registers offer, in their order");
    CLI11_PARSE(program, argc, argv);
    try {
        if (options.offers)
            return tellOffers(options);
        return options.from.empty() ? sellLive(options) : sellInThePast(options);
    } catch (const std::exception& error) {
        std::cerr << "registersim: " << error.what() << "\n";
        return 1;
    }
}
