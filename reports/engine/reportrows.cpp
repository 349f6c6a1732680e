#include "reports/engine/reportrows.h"

namespace merchantry::reports {
namespace {

constexpr int kRowsBetweenQuestions = 1024;

class FirstSet : public db::ResultSink {
public:
    explicit FirstSet(const KeepReading& keepReading) : keepReading_(keepReading) {}

    void beginSet(const std::vector<db::Column>& columns) override {
        ++sets_;
        if (sets_ == 1)
            rows = std::make_unique<db::RowStore>(columns);
    }
    void row(const db::RowView& row) override {
        if (sets_ != 1)
            return;
        rows->append(row);
        if (keepReading_ && rows->rowCount() % kRowsBetweenQuestions == 0 && !keepReading_(rows->rowCount()))
            throw db::DbError(db::DbError::Category::Cancelled, 0, "The report was stopped.");
    }

    std::unique_ptr<db::RowStore> rows;

private:
    const KeepReading& keepReading_;
    int sets_ = 0;
};

} // namespace

std::unique_ptr<db::RowStore> readRows(db::Session& session, const std::string& statement, const KeepReading& keepReading) {
    FirstSet sink(keepReading);
    session.execute(statement, sink);
    if (sink.rows == nullptr)
        sink.rows = std::make_unique<db::RowStore>(std::vector<db::Column>());
    return std::move(sink.rows);
}

} // namespace merchantry::reports
