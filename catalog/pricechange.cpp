#include "catalog/pricechange.h"

#include "app/db/ado/recordset.h"
#include "app/db/ado/transaction.h"
#include "app/db/again.h"
#include "app/db/session.h"
#include "app/modMain.h"

#include <optional>

namespace merchantry::catalog {

using app::intParameter;
using app::textParameter;
using db::TypeKind;

namespace {

constexpr int kStepsBetweenTellings = 100;

db::RecordsetPtr run(const db::ConnectionPtr& connection, const db::Sql& procedure, const std::vector<db::Parameter>& parameters) {
    db::Command command(connection);
    command.setCommandType(db::CommandType::StoredProcedure);
    command.setCommandText(procedure);
    for (const db::Parameter& parameter : parameters)
        command.append(parameter.name, parameter.type, parameter.value);
    auto rows = std::make_shared<db::Recordset>();
    rows->Open(command);
    return rows;
}

// The one cell of a result.
class OneCell : public db::ResultSink {
public:
    void beginSet(const std::vector<db::Column>&) override {}
    void row(const db::RowView& row) override { value = row.value(0); }
    Value value;
};

// Called once for each price: past the recordset, which would cost more than the writing.
bool writeOne(const db::ConnectionPtr& connection, std::optional<int> changeId, const PriceStep& step) {
    const db::SqlType whole{TypeKind::Int, 0, 0, 0};
    const db::SqlType money{TypeKind::Money, 0, 0, 0};
    std::vector<db::Parameter> parameters{{"PriceChangeID", whole, changeId ? Value(*changeId) : Value(), false},
                                          textParameter("SKU", 100, step.sku),
                                          textParameter("MatrixSKU", 100, step.matrixSku),
                                          intParameter("Tier", step.tier),
                                          {"Quantity", {TypeKind::Float, 0, 0, 0}, step.quantity, false},
                                          {"OldPrice", money, step.from, false},
                                          {"NewPrice", money, step.to, false}};
    OneCell changed;
    connection->session().call("bsp_ChangePrice", parameters, changed);
    return changed.value.toInteger() == 1;
}

// False when the user stopped it.
bool writeAll(const db::ConnectionPtr& connection, std::optional<int> changeId, const std::vector<PriceStep>& steps,
              const PriceProgress& progress, PriceOutcome& outcome) {
    int done = 0;
    for (const PriceStep& step : steps) {
        if (done++ % kStepsBetweenTellings == 0 && !progress(done - 1))
            return false;
        if (writeOne(connection, changeId, step))
            ++outcome.written;
        else
            outcome.skipped.push_back(step);
    }
    return progress(done);
}

PriceOutcome stopped() {
    PriceOutcome outcome;
    outcome.stopped = true;
    return outcome;
}

PriceOutcome changeOnce(const db::ConnectionPtr& connection, const std::string& words, const std::vector<PriceStep>& steps,
                        const PriceProgress& progress) {
    PriceOutcome outcome;
    db::Transaction transaction(connection);
    const auto made = run(connection, "bsp_NewPriceChange", {textParameter("Words", 255, words)});
    const int changeId = static_cast<int>((*made)["PriceChangeID"].Value().toInteger());
    if (!writeAll(connection, changeId, steps, progress, outcome))
        return stopped();
    if (outcome.written > 0)
        transaction.commit(); // a change of nothing leaves no trace
    return outcome;
}

PriceOutcome undoOnce(const db::ConnectionPtr& connection, int priceChangeId, const PriceProgress& progress) {
    PriceOutcome outcome;
    db::Transaction transaction(connection);
    const auto marked = run(connection, "bsp_UndoPriceChange", {intParameter("PriceChangeID", priceChangeId)});
    if ((*marked)["Marked"].Value().toInteger() == 0)
        return stopped();
    std::vector<PriceStep> steps;
    const auto rows = run(connection, "bsp_PriceChangeItems", {intParameter("PriceChangeID", priceChangeId)});
    for (; !rows->Eof(); rows->MoveNext()) {
        db::Recordset& row = *rows;
        steps.push_back({row["SKU"].text(), row["MatrixSKU"].text(), static_cast<int>(row["Tier"].Value().toInteger()),
                         row["Quantity"].Value().toNumber(), row["NewPrice"].Value().toCurrency(), row["OldPrice"].Value().toCurrency()});
    }
    if (!writeAll(connection, std::nullopt, steps, progress, outcome))
        return stopped();
    if (outcome.written > 0)
        transaction.commit(); // one that put nothing back can be tried again, when a later change has been undone
    return outcome;
}

} // namespace

PriceOutcome changePrices(const db::ConnectionPtr& connection, const std::string& words, const std::vector<PriceStep>& steps,
                          const PriceProgress& progress) {
    return db::againWhenBusy(connection->session(), [&] { return changeOnce(connection, words, steps, progress); });
}

PriceOutcome undoPriceChange(const db::ConnectionPtr& connection, int priceChangeId, const PriceProgress& progress) {
    return db::againWhenBusy(connection->session(), [&] { return undoOnce(connection, priceChangeId, progress); });
}

} // namespace merchantry::catalog
