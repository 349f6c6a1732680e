#pragma once

#include "app/db/session.h"
#include "base/date.h"
#include "demo/tsv.h"

#include <filesystem>
#include <map>
#include <string>

namespace merchantry::demo {

using Ids = std::map<std::string, int>; // by name

// The catalogue of the demo store: departments, items with stock and price rows, families, packs, substitutes, suppliers with their costs,
// sale events. Requires: taxes and tiers stand already, with these ids.
class Goods {
public:
    Goods(db::Session& session, const std::filesystem::path& dataFolder, const Ids& taxes, const Ids& tiers, Date today);
    void fill();

private:
    void addItems();
    void addPseudoItems();
    void addStock();
    void addPrices();
    void addFamilies();
    void addPacks();
    void addSubstitutes();
    void addSuppliers();
    void addSupplies();
    void addSaleEvents();
    int taxOf(const std::string& department) const;
    int messageOf(const std::string& department) const;

    db::Session& session_;
    std::filesystem::path folder_;
    const Ids& taxes_;
    const Ids& tiers_;
    Date today_;
    Tsv items_;
    Ids departments_;
    Ids messages_;
    Ids suppliers_;
};

// Names with their numbers, from a select that gives the number first.
Ids idsFrom(db::Session& session, std::string_view select);

} // namespace merchantry::demo
