#include "app/db/server/address.h"

#include "app/db/dberror.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <cstdlib>

namespace merchantry::db::server {
namespace {

constexpr int kHighestPort = 65535;

std::string part(const std::map<std::string, std::string>& parts, const std::string& key) {
    const auto found = parts.find(key);
    return found == parts.end() ? std::string() : found->second;
}

bool isOneOf(const std::string& word, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [&](const char* one) { return sameText(word, one); });
}

// Whether encryption is switched off; a word that is neither yes nor no is refused, it may have been meant otherwise.
bool isOff(const std::string& word) {
    if (isOneOf(word, {"no", "false", "0", "off"}))
        return true;
    if (!word.empty() && !isOneOf(word, {"yes", "true", "1", "on", "require", "mandatory", "strict"}))
        throw DbError(DbError::Category::Storage, 0, "\"Encrypt=" + word + "\" is not understood. It is Encrypt=yes or Encrypt=no.");
    return false;
}

int portOf(const std::string& text) {
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos && text.size() <= 5;
    const int port = digits ? std::stoi(text) : 0;
    if (port < 1 || port > kHighestPort)
        throw DbError(DbError::Category::Storage, 0, "\"" + text + "\" is not the port of a server. A port is a number from 1 to 65535.");
    return port;
}

// "host", "host\instance", "host,port", "host\instance,port" and, as a configuration joins them, "host,port\instance".
void readHost(Address& address, const std::string& text) {
    std::string host = text;
    if (const std::size_t slash = host.find('\\'); slash != std::string::npos) {
        const std::size_t end = std::min(host.size(), host.find(',', slash));
        address.instance = trimmed(host.substr(slash + 1, end - slash - 1));
        host.erase(slash, end - slash);
    }
    if (const std::size_t comma = host.find(','); comma != std::string::npos) {
        address.port = portOf(std::string(trimmed(host.substr(comma + 1))));
        host.resize(comma);
    }
    address.host = trimmed(host);
    if (address.host == ".")
        address.host = "localhost";
}

// A configuration puts its instance behind all that its server says: "host; Encrypt=no\second" is "host\second; Encrypt=no".
std::vector<std::string> sourceOf(const std::string& text) {
    std::vector<std::string> source = split(text, ";");
    const std::size_t slash = source.size() > 1 ? source.back().rfind('\\') : std::string::npos;
    if (slash != std::string::npos && source.front().find('\\') == std::string::npos) {
        source.front() = std::string(trimmed(source.front())) + source.back().substr(slash);
        source.back().resize(slash);
    }
    return source;
}

// "; Encrypt=no; Database=Trial" behind the host.
std::map<std::string, std::string> wordsBehind(const std::vector<std::string>& source) {
    std::map<std::string, std::string> words;
    for (const std::string& piece : source)
        if (const std::size_t sign = piece.find('='); sign != std::string::npos) {
            const std::string word = lowerCase(trimmed(piece.substr(0, sign)));
            if (!isOneOf(word, {"encrypt", "database"}))
                throw DbError(DbError::Category::Storage, 0,
                              "\"" + std::string(trimmed(piece)) + "\" is not known behind a server's name. Encrypt and Database are.");
            words[word] = std::string(trimmed(piece.substr(sign + 1)));
        }
    return words;
}

// A connection that names none takes the one of the environment: a word of a command can be read by everybody on the machine.
std::string passwordOf(const std::map<std::string, std::string>& parts) {
    const char* const waiting = parts.count("password") != 0 ? nullptr : std::getenv("MERCHANTRY_PASSWORD");
    return waiting != nullptr ? waiting : part(parts, "password");
}

// A value of the driver's connection string, in which braces quote.
std::string braced(const std::string& value) {
    return "{" + replaced(value, "}", "}}") + "}";
}

} // namespace

Address addressOf(const std::map<std::string, std::string>& parts) {
    Address address;
    const std::vector<std::string> source = sourceOf(part(parts, "data source"));
    readHost(address, source.empty() ? "" : std::string(source.front()));
    const std::map<std::string, std::string> behind = wordsBehind(source);
    address.encrypted = !isOff(part(behind, "encrypt")) && !isOff(part(parts, "encrypt"));
    address.user = part(parts, "user id");
    address.password = passwordOf(parts);
    address.database = behind.count("database") != 0 ? part(behind, "database") : part(parts, "initial catalog");
    address.integrated = sameText(part(parts, "integrated security"), "SSPI");
    return address;
}

std::string Address::toText() const {
    if (!instance.empty())
        return host + "\\" + instance;
    return port == 0 ? host : host + ", port " + std::to_string(port);
}

std::string Address::sourceText() const {
    return host + (instance.empty() ? "" : "\\" + instance) + (port == 0 ? "" : "," + std::to_string(port)) +
           (encrypted ? "" : "; Encrypt=no") + (database.empty() ? "" : "; Database=" + database);
}

std::string Address::connectionText() const {
    return "User ID=" + user + "; PASSWORD=" + password + "; Data Source=" + sourceText() + "; Initial Catalog=" + database;
}

std::string Address::driverText() const {
    std::string text = "Driver={FreeTDS};Server=" + host + (instance.empty() ? "" : "\\" + instance);
    if (instance.empty())
        text += ";Port=" + std::to_string(port == 0 ? 1433 : port);
    else if (port != 0)
        text += ";Port=" + std::to_string(port);
    text += ";UID=" + braced(user) + ";PWD=" + braced(password);
    if (!database.empty())
        text += ";Database=" + braced(database);
    return text + ";TDS_Version=7.4;ClientCharset=UTF-8;APP=Merchantry;Encryption=" + (encrypted ? "require" : "off");
}

} // namespace merchantry::db::server
