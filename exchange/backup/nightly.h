#pragma once

#include "exchange/backup/provedbackup.h"

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::exchange {

// A backup without anybody there, under a name of its own in a folder of many.
struct NightlyPlan {
    std::filesystem::path store;
    std::filesystem::path folder;
    int keep = 0; // how many of this store's backups stay in the folder; 0 for all
    bool prove = false;
    Date now;
};

struct NightlyOutcome {
    bool good = false; // made, and proved where that was wanted
    std::filesystem::path file;
    BackupProof proof; // where wanted
    std::vector<std::filesystem::path> removed;
    std::string complaint; // what went wrong beside the backup, which is good; empty for nothing

    // In one line.
    std::string sentence() const;
};

// Makes it, "shop-20261121-020000.bki", and proves it. Only then are older ones removed: those that this made of this store, by their name,
// oldest first, and never the last proved one. Throws DbError with a sentence when there is no backup.
NightlyOutcome backUpNightly(const NightlyPlan& plan);

} // namespace merchantry::exchange
