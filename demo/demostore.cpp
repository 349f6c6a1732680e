#include "demo/demostore.h"

#include "app/db/work.h"
#include "base/platform/platform.h"
#include "demo/goods.h"
#include "demo/people.h"
#include "tools/registersim/bulkinsert.h"
#include "tools/registersim/history.h"

namespace merchantry::demo {
namespace {

constexpr int kBaseShare = 15; // percent of the work before the sales

// The shop itself, its taxes and tiers.
void addShop(db::Session& session) {
    db::NoResult none;
    session.execute("UPDATE StoreOptions SET Name = 'Maple Street Gifts & Cycles', Address1 = '214 Maple Street', City = 'Northfield', "
                    "State = 'MN', Zip = '55057', "
                    "Phone = '(507) 555-0142', Fax = '(507) 555-0143', Email = 'shop@maplestreet.example', LayawayPeriod = 90, "
                    "MinDepositPct = 20, GiftExpire = 730",
                    none);
    registersim::BulkInsert taxes(session, "TaxDef", "Description, Amt, DefaultTax", "tfb");
    taxes.add({"Sales Tax", 6.875, true});
    taxes.add({"Reduced", 4.5, false});
    taxes.add({"Clothing", 0.0, false});
    taxes.finish();
    registersim::BulkInsert tiers(session, "TierDefs", "TierName", "t");
    for (const char* tier : {"Trade", "Wholesale", "Staff"})
        tiers.add({tier});
    tiers.finish();
}

// What shoppers reach for, as the data has it.
void setPopularity(registersim::Shop& shop, const std::filesystem::path& dataFolder) {
    const Tsv items(dataFolder / "items.tsv");
    std::map<std::pair<std::string, std::string>, int> popularity;
    for (std::size_t i = 0; i < items.size(); ++i)
        popularity[{items.at(i, "sku"), items.at(i, "matrixsku")}] = items.number(i, "popularity");
    for (registersim::Good& good : shop.goods)
        good.popularity = popularity[{good.sku, good.matrixSku}];
}

void fillBase(db::Session& session, const DemoPlan& plan) {
    db::Work work(session);
    addShop(session);
    const Ids taxes = idsFrom(session, "SELECT TaxID, Description FROM TaxDef");
    const Ids tiers = idsFrom(session, "SELECT TierID, TierName FROM TierDefs");
    Goods(session, plan.dataFolder, taxes, tiers, plan.today.dateOnly()).fill();
    addCustomers(session, plan.dataFolder, tiers, plan.today.dateOnly());
    addStaff(session);
    registersim::run(session, "UPDATE FirstRoad SET PutAway = @p1", "d", {plan.today}); // this shop is at work
    work.commit();
}

} // namespace

std::filesystem::path demoDataFolder() {
    return platform::programFolder() / "demo";
}

void fillDemoStore(db::Session& session, const DemoPlan& plan, const std::function<void(int percent)>& progress) {
    fillBase(session, plan);
    progress(kBaseShare);
    registersim::Shop shop = registersim::loadShop(session);
    setPopularity(shop, plan.dataFolder);
    const Date today = plan.today.dateOnly();
    const registersim::HistoryPlan history{
        .from = today.plusDays(-plan.days), .to = today, .seed = plan.seed, .salesPerDay = plan.salesPerDay};
    registersim::postHistory(session, shop, history, [&](int percent) { progress(kBaseShare + percent * (99 - kBaseShare) / 100); });
    addPromises(session, today);
    progress(100);
}

} // namespace merchantry::demo
