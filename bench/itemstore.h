#pragma once

#include "app/db/embedded/store.h"

#include <filesystem>
#include <memory>
#include <string>

namespace merchantry::bench {

constexpr int kItems = 100'000;

// A store with so many made-up items, in a folder of its own that goes with the object.
class ItemStore {
public:
    explicit ItemStore(int items = kItems);
    ~ItemStore();
    ItemStore(const ItemStore&) = delete;
    ItemStore& operator=(const ItemStore&) = delete;

    const std::filesystem::path& file() const { return file_; }
    const std::filesystem::path& folder() const { return folder_; }
    std::unique_ptr<db::Session> session() const { return db::Store::open(file_)->session(); }
    // Gives every item a stock row (every fiftieth item has serial numbers) and so many movements, each item's in turn.
    void addMovements(int perItem) const;
    // The code of an item, from 0.
    static std::string sku(int item);

private:
    int items_;
    std::filesystem::path folder_;
    std::filesystem::path file_;
};

} // namespace merchantry::bench
