#pragma once

#include "reports/engine/figure.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// The formula of a computed column: fields, numbers, + - * / and brackets. Nothing where a field has no number, or a divisor is 0.
class Expression {
public:
    // Throws std::invalid_argument with the reason.
    explicit Expression(const std::string& text);
    ~Expression();
    Expression(Expression&&) noexcept;
    Expression& operator=(Expression&&) noexcept;

    // The names of its fields, in the order of their first appearance; values come by their position here.
    const std::vector<std::string>& fields() const { return fields_; }
    std::optional<Figure> value(const std::function<std::optional<Figure>(std::size_t field)>& valueOf) const;

    struct Node;

private:
    std::vector<std::string> fields_;
    std::unique_ptr<Node> root_;
};

} // namespace merchantry::reports
