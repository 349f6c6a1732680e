#include "exchange/import/xmlpieces.h"

#include "exchange/import/sheettable.h"

namespace merchantry::exchange {
namespace {

constexpr unsigned kOptions = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_ws_pcdata_single;
constexpr const char* kDamaged =
    "The workbook is damaged: a part of it cannot be understood. Please open it in the spreadsheet program, save "
    "it anew and try again.";

constexpr std::size_t kMostPending = 16UL * 1024 * 1024; // bytes of one element, or of what stands before the list

[[noreturn]] void refuseDamaged() {
    throw FileRefused(kDamaged);
}

bool endsName(char c) {
    return c == '>' || c == '/' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isNameCharacter(char c) {
    return c != '<' && c != '/' && c != '!' && c != '?' && !endsName(c);
}

// Where a tag of that local name opens, from there on; npos for nowhere. Gives its whole name.
std::size_t findTag(const std::string& text, const std::string& name, std::size_t from, std::string& whole) {
    for (std::size_t at = text.find(name, from); at != std::string::npos; at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        std::size_t begin = at;
        while (begin > from && isNameCharacter(text[begin - 1]))
            --begin;
        const bool bounded = end < text.size() && endsName(text[end]) && begin > 0 && text[begin - 1] == '<';
        if (bounded && (begin == at || text[at - 1] == ':')) {
            whole = text.substr(begin, end - begin);
            return begin - 1;
        }
    }
    return std::string::npos;
}

} // namespace

std::string_view localName(const char* name) {
    const std::string_view whole = name;
    const std::size_t colon = whole.find(':');
    return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

pugi::xml_node childNamed(const pugi::xml_node& node, std::string_view name) {
    return node.find_child([name](const pugi::xml_node& child) { return localName(child.name()) == name; });
}

pugi::xml_attribute attributeNamed(const pugi::xml_node& node, std::string_view name) {
    return node.find_attribute([name](const pugi::xml_attribute& attribute) { return localName(attribute.name()) == name; });
}

XmlPieces::XmlPieces(ZipFile& file, const std::string& part, const std::string& list, const std::string& element)
    : part_(file, part), open_(element) {
    readHead(list);
}

void XmlPieces::readHead(const std::string& list) {
    std::string whole;
    std::size_t begin = std::string::npos;
    while ((begin = findTag(rest_, list, 0, whole)) == std::string::npos && rest_.size() < kMostPending && (more_ = part_.read(rest_))) {
    }
    if (begin == std::string::npos)
        refuseDamaged();
    std::size_t end = rest_.find('>', begin);
    while (end == std::string::npos && (more_ = part_.read(rest_)))
        end = rest_.find('>', begin);
    if (end == std::string::npos)
        refuseDamaged();
    head_ = rest_.substr(0, begin);
    over_ = rest_[end - 1] == '/'; // an empty list
    rest_.erase(0, end + 1);
    const std::size_t colon = whole.find(':');
    open_.insert(0, "<" + (colon == std::string::npos ? "" : whole.substr(0, colon + 1)));
    close_ = "</" + whole;
    while (over_ && (more_ = part_.read(rest_))) {
    }
}

// The last place where an element begins: what stands before it are whole ones. 0 when there is none behind the first.
std::size_t XmlPieces::lastElement() const {
    for (std::size_t at = rest_.rfind(open_); at != std::string::npos && at > 0; at = rest_.rfind(open_, at - 1))
        if (at + open_.size() < rest_.size() && endsName(rest_[at + open_.size()]))
            return at;
    return 0;
}

const pugi::xml_document* XmlPieces::next() {
    while (!over_) {
        more_ = more_ && part_.read(rest_);
        const std::size_t end = rest_.find(close_);
        if (end != std::string::npos) {
            over_ = true;
            const pugi::xml_document* last = parse(end);
            while (more_)
                more_ = part_.read(rest_);
            return last;
        }
        if (const std::size_t cut = lastElement(); cut > 0)
            return parse(cut);
        if (!more_ || rest_.size() > kMostPending)
            refuseDamaged(); // the list has no end, or an element has none
    }
    return nullptr;
}

const pugi::xml_document* XmlPieces::parse(std::size_t length) {
    piece_.assign(rest_, 0, length);
    rest_.erase(0, length);
    if (!document_.load_buffer_inplace(piece_.data(), piece_.size(), kOptions | pugi::parse_fragment, pugi::encoding_utf8))
        refuseDamaged();
    return &document_;
}

pugi::xml_document elementIn(const std::string& text, const std::string& name) {
    pugi::xml_document document;
    std::string whole;
    const std::size_t begin = findTag(text, name, 0, whole);
    if (begin == std::string::npos)
        return document;
    const std::size_t tagEnd = text.find('>', begin);
    if (tagEnd == std::string::npos)
        refuseDamaged();
    const std::string close = "</" + whole + ">";
    std::size_t end = text.find(close, tagEnd);
    end = text[tagEnd - 1] == '/' ? tagEnd + 1 : end == std::string::npos ? text.size() : end + close.size();
    if (!document.load_buffer(text.data() + begin, end - begin, kOptions, pugi::encoding_utf8))
        refuseDamaged();
    return document;
}

pugi::xml_document parsedPart(ZipFile& file, const std::string& part) {
    pugi::xml_document document;
    const std::string text = file.text(part);
    if (!document.load_buffer(text.data(), text.size(), kOptions))
        refuseDamaged();
    return document;
}

} // namespace merchantry::exchange
