#include "reports/conditions.h"

#include "app/failure.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <string_view>

namespace merchantry::reports {
namespace {

constexpr std::string_view kNumeric[] = {"AccountNumber",
                                         "TierID",
                                         "TaxExempt",
                                         "AccountOpened",
                                         "TotalSales",
                                         "LastPurchaseDate",
                                         "Amount",
                                         "ClosingTime",
                                         "RegisterId",
                                         "Customer.Active",
                                         "[Transaction].TransactionNumber",
                                         "Item.Active",
                                         "PurchaseOrderItems.POID",
                                         "PurchaseOrders.Amount",
                                         "Customer.TaxExempt",
                                         "Customer.TotalSales",
                                         "Stock.Quantity",
                                         "Batch.RegisterID",
                                         "Item.FoodStampFlag",
                                         "Item.SerialFlag",
                                         "Item.DateLastSold",
                                         "PriceMatrix.Quantity"};

bool isNumeric(const std::string& shownName) {
    return std::find(std::begin(kNumeric), std::end(kNumeric), shownName) != std::end(kNumeric);
}

// Between the first "(" and the first ")".
std::string inBrackets(const std::string& text) {
    const std::size_t open = text.find('(');
    const std::size_t close = text.find(')');
    if (open == std::string::npos || close == std::string::npos || close < open)
        return "";
    return text.substr(open + 1, close - open - 1);
}

} // namespace

std::string plainExpression(const CriteriaField& field, const std::string& shownName, const std::string& comparison,
                            const std::string& condition) {
    const std::string quote = isNumeric(shownName) ? "" : "'";
    return field.FieldName + " " + comparison + " " + quote + condition + quote;
}

std::string dateExpression(const std::string& fieldName, const std::string& comparison, Date day) {
    const std::string start = "'" + day.toShortText() + "'";
    const std::string end = "'" + Date::fromMs(day.plusDays(1).ms() - 1000).toShortText() + "'";
    const std::string field = fieldName + " ";
    if (comparison == "=")
        return "(" + field + ">= " + start + ") AND (" + field + "<= " + end + ")";
    if (comparison == "<>")
        return "(" + field + "< " + start + ") OR (" + field + "> " + end + ")";
    if (comparison == ">" || comparison == "<=")
        return field + comparison + " " + end;
    if (comparison == "<" || comparison == ">=")
        return field + comparison + " " + start;
    return "";
}

std::string expressionFor(const CriteriaField& field, const std::string& shownName, const std::string& comparison,
                          const std::string& condition) {
    if (!field.DateConvert)
        return plainExpression(field, shownName, comparison, condition);
    const auto day = Date::fromText(trimmed(condition));
    if (!day)
        throw app::RunTimeError(13, "Type mismatch");
    return dateExpression(field.FieldName, comparison, *day);
}

Criteria::Placed Criteria::add(const Addition& addition) {
    const bool goesOn = addition.row >= 2 && count_ >= 1;
    const bool merging = !addition.rowText.empty();
    std::string connector;
    if (goesOn && !merging)
        connector = addition.useAnd ? "AND " : "OR ";
    std::string sql = connector + "(" + addition.expression + ")";
    std::string display = connector + "(" + addition.shown + ")";
    if (merging) {
        // What the user sees of the row is what is joined: the old condition by its words, the new one by its expression.
        if (goesOn && addition.rowText.starts_with("AND"))
            connector = "AND ";
        else if (goesOn && addition.rowText.starts_with("OR"))
            connector = "OR ";
        const std::string joiner = addition.useAnd ? " AND " : " OR ";
        sql = connector + "((" + inBrackets(addition.rowText) + ")" + joiner + "(" + addition.expression + "))";
        display = connector + "(()" + joiner + "(" + addition.expression + "))";
    }
    int slot = 0;
    if (sql_[0].empty() && count_ == 0)
        count_ = 1;
    else if (merging)
        slot = addition.row - 1;
    else
        slot = count_++;
    sql_.at(static_cast<std::size_t>(slot)) = sql;
    display_.at(static_cast<std::size_t>(slot)) = display;
    return {merging ? addition.row : count_, display};
}

bool Criteria::remove(int row) {
    const auto slot = static_cast<std::size_t>(row - 1);
    sql_.at(slot).clear();
    display_.at(slot).clear();
    --count_;
    std::size_t next = 0;
    for (std::size_t i = 0; i < sql_.size(); ++i) {
        if (sql_[i].empty())
            continue;
        if (next != i) {
            sql_[next] = std::move(sql_[i]);
            display_[next] = std::move(display_[i]);
            sql_[i].clear();
            display_[i].clear();
        }
        ++next;
    }
    if (!sameText(sql_[0].substr(0, 3), "AND") && !sql_[0].starts_with("OR"))
        return false;
    sql_[0].erase(0, 3);
    display_[0].erase(0, std::min<std::size_t>(3, display_[0].size()));
    return true;
}

void Criteria::clear() {
    sql_.fill("");
    display_.fill("");
    count_ = 0;
}

void Criteria::assign(const std::vector<std::string>& sql, const std::vector<std::string>& display) {
    clear();
    count_ = static_cast<int>(sql.size());
    std::copy(sql.begin(), sql.end(), sql_.begin());
    std::copy(display.begin(), display.end(), display_.begin());
}

// A merged condition shows its old part empty; there the statement's text tells more.
std::string Criteria::words() const {
    std::vector<std::string> all;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i) {
        const bool partly = display_[i].find("(()") != std::string::npos;
        all.emplace_back(trimmed(partly ? sql_[i] : display_[i]));
    }
    return joined(all, " ");
}

} // namespace merchantry::reports
