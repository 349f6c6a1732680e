#include "app/db/server/locator.h"

#include "app/db/dberror.h"
#include "base/guard.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <array>
#include <map>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace merchantry::db::server {
namespace {

constexpr char kAskAll = 3;
constexpr char kAnswer = 5;
constexpr std::size_t kHead = 3; // the kind and the length of the text
constexpr int kHighestPort = 65535;

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

Addresses addressesOf(const std::string& host, int port) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0)
        throw DbError(DbError::Category::Storage, 0, "No machine is named \"" + host + "\". Please check the name of the server.");
    return {found, &freeaddrinfo};
}

// The machine's answer; empty when none comes. Only the machine that was asked is heard.
std::string answerOf(const addrinfo& address, std::chrono::milliseconds patience) {
    const int line = socket(address.ai_family, address.ai_socktype, address.ai_protocol);
    if (line < 0)
        return "";
    const AtEnd closed([line] { close(line); });
    if (connect(line, address.ai_addr, address.ai_addrlen) != 0 || send(line, &kAskAll, 1, 0) != 1)
        return "";
    pollfd watched{line, POLLIN, 0};
    if (poll(&watched, 1, static_cast<int>(patience.count())) <= 0)
        return "";
    std::string answer(65536, '\0');
    const ssize_t got = recv(line, answer.data(), answer.size(), 0);
    answer.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return answer;
}

// "ServerName;SHOP1;InstanceName;TILL;IsClustered;No;Version;15.0.2000.5;tcp;1435"
Instance instanceOf(const std::string& text) {
    const std::vector<std::string> words = split(text, ";");
    std::map<std::string, std::string> said;
    for (std::size_t i = 0; i + 1 < words.size(); i += 2)
        said[lowerCase(words[i])] = words[i + 1];
    const std::string& port = said["tcp"];
    const bool digits = !port.empty() && port.size() <= 5 && port.find_first_not_of("0123456789") == std::string::npos;
    const int number = digits ? std::stoi(port) : 0;
    return {said["instancename"], number <= kHighestPort ? number : 0, said["version"]};
}

} // namespace

std::vector<Instance> instancesOn(const std::string& host, int port, std::chrono::milliseconds patience) {
    const Addresses addresses = addressesOf(host, port);
    for (const addrinfo* one = addresses.get(); one != nullptr; one = one->ai_next)
        if (const std::string answer = answerOf(*one, patience); !answer.empty())
            return instancesIn(answer);
    return {};
}

std::vector<Instance> instancesIn(std::string_view answer) {
    if (answer.size() <= kHead || answer.front() != kAnswer)
        return {};
    std::vector<Instance> instances;
    for (const std::string& text : split(answer.substr(kHead), ";;"))
        if (Instance instance = instanceOf(text); !instance.name.empty())
            instances.push_back(std::move(instance));
    return instances;
}

std::string listed(const std::vector<Instance>& instances) {
    std::string text;
    for (const Instance& one : instances)
        text +=
            (text.empty() ? "" : ", ") + one.name + (one.port == 0 ? " (not on the network)" : " (port " + std::to_string(one.port) + ")");
    return text;
}

} // namespace merchantry::db::server
