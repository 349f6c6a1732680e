#pragma once

#include <string>

namespace merchantry::app {

// Where a store is: six texts. A path as ServerName is a store file on this machine.
struct DbConfig {
    std::string ConfigName; // empty: no default configuration has been chosen
    std::string ServerName;
    std::string RegisterID; // number of this workstation as a register; may be anything
    std::string Password;   // of the database login, in clear
    std::string InstanceName;
    std::string IntegratedSecurity; // "1" asks for the operating system's own login

    bool operator==(const DbConfig&) const = default;
};

// The connection string of a configuration and its data source (server, or server\instance).
std::string dataSource(const DbConfig& config);
std::string connectString(const DbConfig& config);

} // namespace merchantry::app
