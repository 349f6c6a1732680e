#include "app/db/ado/ahead.h"

#include <algorithm>
#include <optional>

namespace merchantry::db {
namespace {

constexpr const char* kMark = "ReadAhead"; // the column of the sets between the statements

bool sameParameters(const std::vector<Parameter>& left, const std::vector<Parameter>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const Parameter& one, const Parameter& other) {
        return one.name == other.name && one.type == other.type && one.value == other.value;
    });
}

} // namespace

// Gives each statement its first set.
class Ahead::Sets : public ResultSink {
public:
    explicit Sets(std::vector<Asked>& asked) : asked_(asked) {
        writesBack_ = std::any_of(asked.begin(), asked.end(), [](const Asked& one) { return one.writesBack; });
    }
    bool wantsTables() const override { return writesBack_; }
    void beginSet(const std::vector<Column>& columns) override {
        isMark_ = columns.size() == 1 && columns.front().name == kMark;
        taking_ = !isMark_ && current_ && (*current_)->rows == nullptr;
        if (taking_)
            (*current_)->rows = std::make_shared<RowStore>(columns);
    }
    void row(const RowView& row) override {
        if (isMark_)
            current_ = &asked_.at(static_cast<std::size_t>(row.value(0).toInteger()));
        else if (taking_)
            (*current_)->rows->append(row);
    }

private:
    std::vector<Asked>& asked_;
    std::optional<Asked*> current_;
    bool writesBack_ = false;
    bool isMark_ = false;
    bool taking_ = false;
};

Ahead::Ahead(Connection& connection)
    : connection_(connection), before_(connection.provider().ahead), far_(connection.provider().isFar(connection.ConnectionString())) {
    connection.provider().ahead = this;
}

Ahead::~Ahead() {
    connection_.provider().ahead = before_;
}

void Ahead::select(const Sql& statement) {
    asked_.push_back({statement.text(), {}});
}

void Ahead::call(const Sql& procedure, const std::vector<Parameter>& parameters, bool writesBack) {
    asked_.push_back({procedure.text(), parameters, writesBack});
}

void Ahead::read() {
    if (!far_ || asked_.empty())
        return;
    std::string batch;
    std::vector<Parameter> all;
    for (std::size_t i = 0; i < asked_.size(); ++i) {
        batch += "SELECT " + std::to_string(i) + " AS " + kMark + "\n";
        const bool isSelect = asked_[i].text.starts_with("SELECT");
        batch += (isSelect ? "" : "EXEC ") + asked_[i].text;
        std::string sign = " ";
        for (const Parameter& parameter : asked_[i].parameters) {
            const std::string own = "a" + std::to_string(all.size());
            batch += sign + (parameter.name.empty() ? "" : "@" + parameter.name + " = ") + "@" + own;
            all.push_back({own, parameter.type, parameter.value});
            sign = ", ";
        }
        batch += "\n";
    }
    try {
        Sets sets(asked_);
        connection_.session().execute(batch, all, sets);
    } catch (const DbError&) { // whose fault it is shows when it is sent alone
        asked_.clear();
    }
}

std::shared_ptr<RowStore> Ahead::take(const std::string& statement, const std::vector<Parameter>& parameters, bool writesBack) {
    const auto found = std::find_if(asked_.begin(), asked_.end(), [&](const Asked& one) {
        return one.rows != nullptr && one.writesBack == writesBack && one.text == statement && sameParameters(one.parameters, parameters);
    });
    if (found == asked_.end())
        return before_ == nullptr ? nullptr : before_->take(statement, parameters, writesBack);
    return std::move(found->rows);
}

} // namespace merchantry::db
