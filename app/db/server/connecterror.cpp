#include "app/db/messages.h"
#include "app/db/server/link.h"

#include <algorithm>
#include <array>

namespace merchantry::db::server {
namespace {

constexpr std::array kWrongLogin{18456, 18452, 18486, 18487, 18488};
constexpr std::array kNoDatabase{4060, 911, 4064};
constexpr int kNoHost = 20013;        // FreeTDS' numbers: the name is unknown,
constexpr int kNobodyListens = 20009; // nobody takes the connection there,
constexpr int kNoInstance = 20012;    // nobody told the instance's port,
constexpr int kTimedOut = 20003;      // nobody answered,
constexpr int kRefused = 20002;       // the connection failed for any reason of these and others

bool says(const std::vector<Diagnostic>& all, const std::string& word) {
    return std::any_of(all.begin(), all.end(), [&](const Diagnostic& one) { return one.text.find(word) != std::string::npos; });
}

template <std::size_t Size> bool hasOne(const std::vector<Diagnostic>& all, const std::array<int, Size>& numbers) {
    return std::any_of(all.begin(), all.end(),
                       [&](const Diagnostic& one) { return std::find(numbers.begin(), numbers.end(), one.native) != numbers.end(); });
}

bool has(const std::vector<Diagnostic>& all, int number) {
    return hasOne(all, std::array{number});
}

bool hasState(const std::vector<Diagnostic>& all, const std::string& state) {
    return std::any_of(all.begin(), all.end(), [&](const Diagnostic& one) { return one.state == state; });
}

// Compatible servers have no number for it.
bool refusesInWords(const std::vector<Diagnostic>& all) {
    return has(all, kUnnamedError) && (says(all, "authentication failed") || (says(all, "role \"") && says(all, "does not exist")));
}

std::string sentence(const Address& address, const std::vector<Diagnostic>& all) {
    const std::string server = address.toText();
    if (hasState(all, "IM002") || hasState(all, "IM003") || (hasState(all, "01000") && says(all, "Can't open lib")))
        return "The driver for servers (FreeTDS, the package tdsodbc) is not installed on this machine.";
    if (hasOne(all, kNoDatabase))
        return "The server " + server + " has no database " + address.database + ", or " + address.user + " may not open it.";
    if (hasOne(all, kWrongLogin) || hasState(all, "28000") || refusesInWords(all))
        return "The server " + server + " does not let " + address.user + " in: the password is wrong, or there is no such login.";
    if (has(all, kNoHost))
        return "No machine is named \"" + address.host + "\". Please check the name of the server.";
    if (has(all, kNoInstance) || (!address.instance.empty() && has(all, kNobodyListens)))
        return "The machine " + address.host + " did not tell where its instance " + address.instance +
               " is. Please check the instance's name, or name its port as \"" + address.host + ",1433\".";
    if (has(all, kNobodyListens))
        return "No server answers at " + server + (address.port == 0 && address.instance.empty() ? ", port 1433" : "") +
               ". Please check that it runs, its port, and that no firewall is between.";
    if (has(all, kTimedOut))
        return "The machine " + address.host + " does not answer. Please check the network and the name of the server.";
    if (hasState(all, "HYT00") || hasState(all, "HYT01") || says(all, "Timeout expired"))
        return "Something listens at " + server +
               ", but does not answer as a server does. Please check the port, and whether the server is busy.";
    if (address.encrypted && (says(all, "SSL") || says(all, "TLS") || says(all, "ncrypt") || has(all, kRefused)))
        return "The server " + server +
               " does not take an encrypted connection. Let it have a certificate, or switch encryption off by writing \"; Encrypt=no\" "
               "behind its name: then passwords and data can be read on the network.";
    return "The server " + server + " could not be opened: " + (all.empty() ? "the driver gives no reason." : all.front().text);
}

} // namespace

NotConnected connectError(const Address& address, const std::vector<Diagnostic>& diagnostics) {
    return NotConnected(sentence(address, diagnostics));
}

NotConnected lostError(const Address& address, bool isKnown) {
    return NotConnected(
        "The connection to the server " + address.toText() + " was lost. " +
        (isKnown
             ? "What was not saved yet is not saved. Please try again: the program connects anew."
             : "If you were saving, please look before you repeat it: the change may have been saved or not. The program connects anew."));
}

} // namespace merchantry::db::server
