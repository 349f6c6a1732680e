#include "exchange/accounting/iif.h"

#include "base/characters.h"
#include "base/lettercase.h"
#include "base/text.h"

#include <iconv.h>

#include <numeric>
#include <set>
#include <stdexcept>

namespace merchantry::exchange {
namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr std::size_t kAddressLines = 5;

// Characters that the narrower code has not, but something like them.
char32_t plainer(char32_t c) {
    switch (c) {
    case U'\u2212': // minus
    case U'\u2010':
    case U'\u2011':
        return U'-';
    case U'\u00A0':
    case U'\u202F':
    case U'\u2009':
        return U' ';
    default:
        return c;
    }
}

class ToWindows1252 {
public:
    ToWindows1252() : code_(iconv_open("WINDOWS-1252", "UTF-8")) {
        if (code_ == reinterpret_cast<iconv_t>(-1)) // NOLINT(performance-no-int-to-ptr): how iconv_open says no
            throw std::runtime_error("Texts cannot be written in windows-1252 on this machine.");
    }
    ~ToWindows1252() { iconv_close(code_); }
    ToWindows1252(const ToWindows1252&) = delete;
    ToWindows1252& operator=(const ToWindows1252&) = delete;

    // Characters that it cannot hold become question marks.
    std::string operator()(std::string_view text) {
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            std::string one;
            appendCodePoint(one, plainer(nextCodePoint(text, at)));
            char byte = '?';
            char* from = one.data();
            std::size_t left = one.size();
            char* to = &byte;
            std::size_t room = 1;
            if (iconv(code_, &from, &left, &to, &room) == static_cast<std::size_t>(-1))
                byte = '?';
            result += byte;
        }
        return result;
    }

private:
    iconv_t code_;
};

std::string dateText(Date day, bool fullYears) {
    const std::string text = day.toStatementText();
    return fullYears ? text : text.substr(0, 6) + text.substr(8);
}

std::string amountText(Currency amount) {
    const std::string fixed = amount.toFixedText();
    return fixed.substr(0, fixed.size() - 2);
}

// A field holds no tab and no line end.
std::string field(std::string_view text) {
    std::string plain;
    for (const char c : text)
        plain += c == '\t' || c == '\r' || c == '\n' ? ' ' : c == '"' ? '\'' : c;
    return std::string(trimmed(plain));
}

class Writer {
public:
    explicit Writer(bool fullYears) : fullYears_(fullYears) {}

    void line(const std::vector<std::string>& fields) {
        for (const std::string& one : fields)
            text_ += (&one == fields.data() ? "" : "\t") + field(one);
        text_ += kLineEnd;
    }
    void accounts(const std::vector<ListedAccount>& accounts);
    void names(const std::string& keyword, const std::vector<ListedName>& names);
    void entries(const std::vector<AccountEntry>& entries);
    std::string bytes() const { return ToWindows1252()(text_); }

private:
    bool fullYears_;
    std::string text_;
};

// An account below another one wants that first.
void Writer::accounts(const std::vector<ListedAccount>& accounts) {
    if (accounts.empty())
        return;
    line({"!ACCNT", "NAME", "ACCNTTYPE"});
    std::set<std::string> told;
    for (const ListedAccount& account : accounts)
        for (std::size_t end = 0; end != std::string::npos;) {
            end = account.name.find(':', end + 1);
            const std::string level = account.name.substr(0, end);
            if (told.insert(lowerCase(level)).second)
                line({"ACCNT", level, account.type});
        }
}

void Writer::names(const std::string& keyword, const std::vector<ListedName>& names) {
    if (names.empty())
        return;
    const bool customers = keyword == "CUST";
    std::vector<std::string> heading{"!" + keyword, "NAME"};
    for (std::size_t i = 1; i <= kAddressLines; ++i)
        heading.push_back((customers ? "BADDR" : "ADDR") + std::to_string(i));
    heading.insert(heading.end(), {"PHONE1", "EMAIL"});
    line(heading);
    for (const ListedName& name : names) {
        std::vector<std::string> fields{keyword, name.name};
        for (std::size_t i = 0; i < kAddressLines; ++i)
            fields.push_back(i < name.address.size() ? name.address[i] : "");
        fields.insert(fields.end(), {name.phone, name.email});
        line(fields);
    }
}

void Writer::entries(const std::vector<AccountEntry>& entries) {
    if (entries.empty())
        return;
    for (const char* keyword : {"!TRNS", "!SPL"})
        line({keyword, "TRNSTYPE", "DATE", "ACCNT", "NAME", "AMOUNT", "DOCNUM", "MEMO"});
    line({"!ENDTRNS"});
    for (const AccountEntry& entry : entries) {
        for (const AccountLine& one : entry.lines)
            line({&one == entry.lines.data() ? "TRNS" : "SPL", entry.type, dateText(entry.day, fullYears_), one.account, one.name,
                  amountText(one.amount), entry.number, one.memo});
        line({"ENDTRNS"});
    }
}

} // namespace

bool AccountEntry::balances() const {
    return lines.size() >= 2 && std::accumulate(lines.begin(), lines.end(), Currency(),
                                                [](Currency sum, const AccountLine& line) { return sum + line.amount; }) == Currency();
}

std::string iifText(const AccountFile& file, bool fullYears) {
    Writer writer(fullYears);
    writer.accounts(file.accounts);
    writer.names("CUST", file.customers);
    writer.names("VEND", file.vendors);
    writer.entries(file.entries);
    return writer.bytes();
}

std::string accountingName(std::string_view text, std::size_t longest) {
    std::string name;
    for (const char c : field(text))
        name += c == ':' ? '-' : c;
    return std::string(trimmed(characters(name, 0, longest)));
}

} // namespace merchantry::exchange
