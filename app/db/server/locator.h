#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::server {

// An instance of a server, as its machine tells of it.
struct Instance {
    std::string name; // "MSSQLSERVER" for the one that needs no name
    int port = 0;     // 0 when it takes no connection over the network
    std::string version;

    bool operator==(const Instance&) const = default;
};

constexpr int kBrowserPort = 1434; // UDP

// Asks a machine, by its name or address, which instances run on it. Nothing is asked unless this is called. Empty when the machine does
// not answer in time. Throws DbError Storage with a sentence for a name that nobody knows.
std::vector<Instance> instancesOn(const std::string& host, int port = kBrowserPort,
                                  std::chrono::milliseconds patience = std::chrono::seconds(2));

// What a machine's answer says; instances of a damaged answer are left out.
std::vector<Instance> instancesIn(std::string_view answer);

// "TILL (port 1435), SECOND (not on the network)"
std::string listed(const std::vector<Instance>& instances);

} // namespace merchantry::db::server
