#include "app/db/ado/filter.h"

#include "app/db/ado/needle.h"
#include "base/lettercase.h"
#include "base/textorder.h"

#include <cctype>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::db {

struct Filter::Node {
    enum class Kind { And, Or, Compare, Contains, StartsWith, EndsWith, IsNull, IsNotNull };
    Kind kind = Kind::And;
    std::vector<Node> children;
    int column = 0;
    std::string sign;
    Value value;
    std::optional<Needle> needle;

    bool holds(const RowStore& store, int row) const;
};

namespace {

using Node = Filter::Node;
using Kind = Node::Kind;

template <class T> bool ordered(const std::string& sign, const T& left, const T& right) {
    if (sign == "=")
        return left == right;
    if (sign == "<>")
        return left != right;
    if (sign == "<")
        return left < right;
    if (sign == ">")
        return left > right;
    return sign == "<=" ? left <= right : left >= right;
}

bool comparison(const RowStore& store, int row, const Node& node) {
    if (store.isNull(row, node.column))
        return false;
    if (store.isText(node.column))
        return ordered(node.sign, compareText(store.text(row, node.column), node.value.as<std::string>()), 0);
    const Value held = store.value(row, node.column);
    if (held.is<Date>() && node.value.is<Date>())
        return ordered(node.sign, held.as<Date>(), node.value.as<Date>());
    if (held.is<Currency>())
        return ordered(node.sign, held.as<Currency>(), node.value.toCurrency());
    return ordered(node.sign, held.toNumber(), node.value.toNumber());
}

// The cell's text against a pattern; numbers and dates through their texts.
bool patternHolds(const RowStore& store, int row, const Node& node) {
    if (store.isNull(row, node.column))
        return false;
    const std::string made = store.isText(node.column) ? std::string() : store.value(row, node.column).toText();
    const std::string_view text = store.isText(node.column) ? store.text(row, node.column) : std::string_view(made);
    if (node.kind == Kind::Contains)
        return node.needle->isIn(text);
    const std::string folded = lowerCase(text);
    return node.kind == Kind::StartsWith ? folded.starts_with(node.needle->folded()) : folded.ends_with(node.needle->folded());
}

bool isNameLetter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

class Parser {
public:
    Parser(std::string_view text, const RowStore& store) : text_(text), store_(store) {}

    Node parse() {
        Node node = either();
        blanks();
        if (at_ != text_.size())
            fail();
        return node;
    }

private:
    Node either() {
        Node node = both();
        while (word("or"))
            node = joined(Kind::Or, std::move(node), both());
        return node;
    }
    Node both() {
        Node node = single();
        while (word("and"))
            node = joined(Kind::And, std::move(node), single());
        return node;
    }
    Node single() {
        blanks();
        if (!take('('))
            return condition();
        Node node = either();
        blanks();
        if (!take(')'))
            fail();
        return node;
    }
    static Node joined(Kind kind, Node left, Node right) {
        Node node;
        node.kind = kind;
        node.children.push_back(std::move(left));
        node.children.push_back(std::move(right));
        return node;
    }
    Node condition() {
        Node node;
        node.column = columnName();
        if (word("like")) {
            blanks();
            if (!take('\''))
                fail();
            return pattern(std::move(node), quoted());
        }
        node.kind = Kind::Compare;
        node.sign = comparisonSign();
        node.value = literal();
        if (node.value.isNull())
            node.kind = node.sign == "<>" ? Kind::IsNotNull : Kind::IsNull;
        else
            fitToColumn(node);
        return node;
    }
    void fitToColumn(Node& node) const {
        if (store_.isText(node.column)) {
            node.value = node.value.toText();
        } else if (store_.columns()[static_cast<std::size_t>(node.column)].type.isDate() && node.value.is<std::string>()) {
            const auto date = Date::fromText(node.value.as<std::string>());
            if (!date)
                fail();
            node.value = *date;
        }
    }
    static Node pattern(Node node, std::string text) {
        const auto any = [](char c) { return c == '%' || c == '*'; };
        const bool open = !text.empty() && any(text.front());
        if (open)
            text.erase(0, 1);
        const bool ends = !text.empty() && any(text.back());
        if (ends)
            text.pop_back();
        if (!open && !ends) {
            node.kind = Kind::Compare;
            node.sign = "=";
            node.value = text;
            return node;
        }
        node.kind = open && (ends || text.empty()) ? Kind::Contains : (open ? Kind::EndsWith : Kind::StartsWith);
        node.needle.emplace(text);
        return node;
    }
    int columnName() {
        blanks();
        std::string name;
        if (take('[')) {
            while (at_ < text_.size() && text_[at_] != ']')
                name += text_[at_++];
            if (!take(']'))
                fail();
        } else {
            while (at_ < text_.size() && isNameLetter(text_[at_]))
                name += text_[at_++];
        }
        const int column = name.empty() ? -1 : store_.columnOf(name);
        if (column < 0)
            fail();
        return column;
    }
    std::string comparisonSign() {
        blanks();
        for (const char* sign : {"<>", "<=", ">=", "=", "<", ">"})
            if (text_.substr(at_).starts_with(sign)) {
                at_ += std::strlen(sign);
                return sign;
            }
        fail();
    }
    Value literal() {
        blanks();
        if (take('\''))
            return quoted();
        if (take('#'))
            return dateBehindSign();
        if (word("null"))
            return {};
        if (word("true"))
            return true;
        if (word("false"))
            return false;
        std::size_t end = at_;
        while (end < text_.size() && (isNameLetter(text_[end]) || text_[end] == '.' || text_[end] == '-' || text_[end] == '+'))
            ++end;
        const auto number = Decimal::fromText(text_.substr(at_, end - at_));
        if (!number)
            fail();
        at_ = end;
        return *number;
    }
    Value dateBehindSign() {
        const std::size_t end = text_.find('#', at_);
        if (end == std::string_view::npos)
            fail();
        const auto date = Date::fromText(text_.substr(at_, end - at_));
        if (!date)
            fail();
        at_ = end + 1;
        return *date;
    }
    // Behind the opening apostrophe; moves behind the closing one.
    std::string quoted() {
        std::string result;
        while (at_ < text_.size()) {
            const char c = text_[at_++];
            if (c != '\'') {
                result += c;
            } else if (at_ < text_.size() && text_[at_] == '\'') {
                result += c;
                ++at_;
            } else {
                return result;
            }
        }
        fail();
    }
    bool word(std::string_view wanted) {
        blanks();
        if (text_.size() - at_ < wanted.size() || lowerCase(text_.substr(at_, wanted.size())) != wanted)
            return false;
        if (at_ + wanted.size() < text_.size() && isNameLetter(text_[at_ + wanted.size()]))
            return false;
        at_ += wanted.size();
        return true;
    }
    bool take(char c) {
        if (at_ >= text_.size() || text_[at_] != c)
            return false;
        ++at_;
        return true;
    }
    void blanks() {
        while (at_ < text_.size() && text_[at_] == ' ')
            ++at_;
    }
    [[noreturn]] void fail() const {
        throw DbError(DbError::Category::Other, 3001,
                      "The filter cannot be understood at position " + std::to_string(at_ + 1) + ": " + std::string(text_))
            .withHresult(kInvalidArgument);
    }

    std::string_view text_;
    const RowStore& store_;
    std::size_t at_ = 0;
};

} // namespace

bool Filter::Node::holds(const RowStore& store, int row) const {
    switch (kind) {
    case Kind::And:
        return children[0].holds(store, row) && children[1].holds(store, row);
    case Kind::Or:
        return children[0].holds(store, row) || children[1].holds(store, row);
    case Kind::Compare:
        return comparison(store, row, *this);
    case Kind::IsNull:
        return store.isNull(row, column);
    case Kind::IsNotNull:
        return !store.isNull(row, column);
    default:
        return patternHolds(store, row, *this);
    }
}

Filter::Filter(std::string_view text, const RowStore& store) : store_(store), root_(std::make_unique<Node>(Parser(text, store).parse())) {}

Filter::~Filter() = default;

bool Filter::matches(int row) const {
    return root_->holds(store_, row);
}

} // namespace merchantry::db
