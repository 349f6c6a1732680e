#include "exchange/backup/serverlocator.h"

#include "base/lettercase.h"
#include "base/platform/platform.h"
#include "base/text.h"
#include "base/textorder.h"
#include "exchange/backup/dmo.h"

#include <arpa/inet.h>
#include <array>
#include <ifaddrs.h>
#include <memory>
#include <netdb.h>
#include <set>

namespace merchantry::exchange {
namespace {

std::string textOf(const sockaddr* address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address == nullptr)
        return "";
    const void* number = nullptr;
    if (address->sa_family == AF_INET)
        number = &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
    else if (address->sa_family == AF_INET6)
        number = &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
    return number != nullptr && inet_ntop(address->sa_family, number, text.data(), text.size()) != nullptr ? text.data() : "";
}

std::set<std::string> ownAddresses() {
    ifaddrs* raw = nullptr;
    if (getifaddrs(&raw) != 0)
        return {};
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> all(raw, &freeifaddrs);
    std::set<std::string> addresses;
    for (const ifaddrs* one = raw; one != nullptr; one = one->ifa_next)
        addresses.insert(textOf(one->ifa_addr));
    addresses.erase("");
    return addresses;
}

std::set<std::string> addressesOf(const std::string& host) {
    addrinfo* raw = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, nullptr, &raw) != 0)
        return {};
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(raw, &freeaddrinfo);
    std::set<std::string> addresses;
    for (const addrinfo* one = raw; one != nullptr; one = one->ai_next)
        addresses.insert(textOf(one->ai_addr));
    return addresses;
}

// "tcp:SHOP\TILL,1433" is the host SHOP.
std::string hostOf(const std::string& server) {
    std::string host(trimmed(server));
    if (beginsWith(host, "tcp:"))
        host.erase(0, 4);
    return std::string(trimmed(host.substr(0, host.find_first_of("\\,"))));
}

} // namespace

bool ServerLocator::CanTell() {
    return !platform::machineName().empty() && !ownAddresses().empty();
}

bool ServerLocator::IsLocal(const std::string& server) {
    if (isStoreFile(server))
        return true;
    const std::string host = hostOf(server);
    for (const char* own : {".", "(local)", "localhost"})
        if (sameText(host, own))
            return true;
    if (sameText(host, platform::machineName()))
        return true;
    const std::set<std::string> own = ownAddresses();
    for (const std::string& address : addressesOf(host))
        if (own.contains(address))
            return true;
    return false;
}

} // namespace merchantry::exchange
