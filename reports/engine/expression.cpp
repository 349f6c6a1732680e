#include "reports/engine/expression.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace merchantry::reports {

struct Expression::Node {
    char op = 0;           // + - * /; 'f' a field, 'n' a number
    std::size_t field = 0; // position in fields()
    Figure number;
    std::unique_ptr<Node> left;
    std::unique_ptr<Node> right;
};

namespace {

using Node = Expression::Node;
using NodePtr = std::unique_ptr<Node>;

constexpr int kDeepest = 100;

class Reader {
public:
    Reader(const std::string& text, std::vector<std::string>& fields) : text_(text), fields_(fields) {}

    NodePtr whole() {
        NodePtr result = sum(0);
        skip();
        if (at_ < text_.size())
            fail("\"" + text_.substr(at_) + "\" does not belong there");
        return result;
    }

private:
    [[noreturn]] void fail(const std::string& reason) const { throw std::invalid_argument("In \"" + text_ + "\": " + reason + "."); }
    void skip() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_])) != 0)
            ++at_;
    }
    bool accept(char c) {
        skip();
        if (at_ >= text_.size() || text_[at_] != c)
            return false;
        ++at_;
        return true;
    }
    static NodePtr joined(char op, NodePtr left, NodePtr right) {
        auto node = std::make_unique<Node>();
        node->op = op;
        node->left = std::move(left);
        node->right = std::move(right);
        return node;
    }

    NodePtr sum(int depth) {
        NodePtr left = product(depth);
        while (true) {
            if (accept('+'))
                left = joined('+', std::move(left), product(depth));
            else if (accept('-'))
                left = joined('-', std::move(left), product(depth));
            else
                return left;
        }
    }
    NodePtr product(int depth) {
        NodePtr left = factor(depth);
        while (true) {
            if (accept('*'))
                left = joined('*', std::move(left), factor(depth));
            else if (accept('/'))
                left = joined('/', std::move(left), factor(depth));
            else
                return left;
        }
    }
    NodePtr factor(int depth) {
        if (depth > kDeepest)
            fail("the brackets are nested too deeply");
        if (accept('(')) {
            NodePtr inner = sum(depth + 1);
            if (!accept(')'))
                fail("a bracket is not closed");
            return inner;
        }
        if (accept('-'))
            return joined('-', std::make_unique<Node>(Node{'n', 0, Figure(), nullptr, nullptr}), factor(depth + 1));
        return operand();
    }
    NodePtr operand() {
        skip();
        const std::size_t begin = at_;
        while (at_ < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[at_])) != 0 || text_[at_] == '_' || text_[at_] == '.'))
            ++at_;
        const std::string word = text_.substr(begin, at_ - begin);
        if (word.empty())
            fail("a field or a number is missing");
        auto node = std::make_unique<Node>();
        if (std::isdigit(static_cast<unsigned char>(word[0])) != 0 || word[0] == '.') {
            const auto number = Figure::fromText(word);
            if (!number)
                fail("\"" + word + "\" is no number");
            node->op = 'n';
            node->number = *number;
            return node;
        }
        node->op = 'f';
        const auto known = std::find(fields_.begin(), fields_.end(), word);
        node->field = static_cast<std::size_t>(known - fields_.begin());
        if (known == fields_.end())
            fields_.push_back(word);
        return node;
    }

    const std::string& text_;
    std::vector<std::string>& fields_;
    std::size_t at_ = 0;
};

std::optional<Figure> valueOfNode(const Node& node, const std::function<std::optional<Figure>(std::size_t)>& valueOf) {
    if (node.op == 'n')
        return node.number;
    if (node.op == 'f')
        return valueOf(node.field);
    const auto left = valueOfNode(*node.left, valueOf);
    const auto right = valueOfNode(*node.right, valueOf);
    if (!left || !right)
        return std::nullopt;
    switch (node.op) {
    case '+':
        return *left + *right;
    case '-':
        return *left - *right;
    case '*':
        return *left * *right;
    default:
        return left->over(*right);
    }
}

} // namespace

Expression::Expression(const std::string& text) : root_(Reader(text, fields_).whole()) {}
Expression::~Expression() = default;
Expression::Expression(Expression&&) noexcept = default;
Expression& Expression::operator=(Expression&&) noexcept = default;

std::optional<Figure> Expression::value(const std::function<std::optional<Figure>(std::size_t field)>& valueOf) const {
    return valueOfNode(*root_, valueOf);
}

} // namespace merchantry::reports
