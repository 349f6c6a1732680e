#pragma once

#include "app/db/embedded/store.h"
#include "app/storefile.h"
#include "demo/demostore.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace merchantry {

// A folder of its own for a test's store files, gone with the object.
class ShopFolder {
public:
    ShopFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "merchantry-reliability-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no folder for temporary files");
        folder_ = name;
    }
    ~ShopFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    ShopFolder(const ShopFolder&) = delete;
    ShopFolder& operator=(const ShopFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return folder_ / name; }
    // A store with its first rows only.
    std::filesystem::path emptyStore(const std::string& name) const {
        app::createStoreFile(folder_ / name, {}, [](int) {});
        return folder_ / name;
    }
    // A store with the demo goods and a few days of sales.
    std::filesystem::path shop(const std::string& name) const {
        const demo::DemoPlan plan{.dataFolder = "demo/data", .today = *Date::fromParts(2026, 11, 21, 15), .days = 3, .salesPerDay = 5};
        app::createStoreFile(
            folder_ / name, [&](db::Session& session, const auto& progress) { demo::fillDemoStore(session, plan, progress); }, [](int) {});
        return folder_ / name;
    }

private:
    std::filesystem::path folder_;
};

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

inline void writeBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

// The sentence that the action fails with; empty when it works.
template <class Action> std::string saidBy(Action&& action) {
    try {
        action();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace merchantry
