#include "customers/statements/statementrun.h"

#include "app/db/again.h"
#include "app/db/eachrow.h"
#include "app/db/work.h"
#include "base/text.h"
#include "base/textorder.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace merchantry::customers {
namespace {

using db::EachRow;
using db::RowView;

constexpr int kUsualBillingDay = 5;
constexpr int kFlushEvery = 256; // customers between two looks at the progress
constexpr const char* kPaymentCode = "Payment";
constexpr const char* kFinanceCode = "Finance Charge";
constexpr const char* kNameOf =
    "ISNULL(NULLIF(LTRIM(RTRIM(ISNULL(c.FirstName, '') + ' ' + ISNULL(c.LastName, ''))), ''), ISNULL(c.Company, ''))";

const Date kNever = *Date::fromParts(9999, 12, 31);

struct Stopped {};

Currency moneyOf(const RowView& row, int column) {
    return row.isNull(column) ? Currency() : Currency::fromUnits(row.number(column));
}

std::string sqlDay(Date day) {
    return "'" + day.toIsoText().substr(0, 10) + "'";
}

// A customer's number with what belongs to it; the lists are in the order of the numbers.
struct Holder {
    std::int32_t customer = 0;
    std::string name;
    Terms terms;
    std::optional<Date> lastStatement;
    std::int64_t lastPosting = 0; // that the last statement's run knew
    std::optional<Currency> lastBalance;
    Currency chargedThisMonth;
};

std::vector<Holder> holders(db::Session& session, Date asAt, Date monthBefore) {
    std::vector<Holder> all;
    EachRow rows([&](const RowView& row) {
        Holder one;
        one.customer = static_cast<std::int32_t>(row.number(0));
        one.name = trimmed(row.text(1));
        one.terms.assess = row.number(2) != 0;
        one.terms.apr = std::max<std::int64_t>(0, Currency::fromDouble(row.value(3).toNumber()).units());
        one.terms.minimum = moneyOf(row, 4);
        one.terms.graceDays = std::max(0, static_cast<int>(row.number(5)));
        if (!row.isNull(6)) {
            one.lastStatement = Date::fromMs(row.number(6));
            one.lastPosting = row.number(7);
            one.lastBalance = moneyOf(row, 8);
        }
        one.chargedThisMonth = moneyOf(row, 9);
        all.push_back(std::move(one));
    });
    session.execute(
        std::string("SELECT c.ID, ") + kNameOf +
            ", c.AssessFinanceCharges, ISNULL(c.APR, ISNULL(o.FinAPR, 20)), ISNULL(c.MinFinChg, ISNULL(o.MinFinChg, 5)), "
            "ISNULL(c.OverdueAfter, ISNULL(o.OverdueAfter, 15)), l.AsAt, l.LastPosting, b.Balance, s.Charged FROM Customer c "
            "CROSS JOIN StoreOptions o LEFT JOIN (SELECT t.CustomerID, MAX(t.RunID) AS RunID, SUM(CASE WHEN r.AsAt > " +
            sqlDay(monthBefore) +
            " THEN t.FinanceCharge ELSE 0 END) AS Charged FROM Statement t INNER JOIN StatementRun r ON r.RunID = t.RunID WHERE r.AsAt < " +
            sqlDay(asAt) +
            " GROUP BY t.CustomerID) s ON s.CustomerID = c.ID LEFT JOIN StatementRun l ON l.RunID = s.RunID "
            "LEFT JOIN Statement b ON b.RunID = s.RunID AND b.CustomerID = c.ID WHERE c.ChargeAccount = 1 ORDER BY c.ID",
        rows);
    return all;
}

Posting::Kind kindOf(Currency total, std::string_view code) {
    if (sameText(code, kFinanceCode))
        return Posting::Kind::FinanceCharge;
    if (total >= Currency())
        return Posting::Kind::Charge;
    return sameText(code, kPaymentCode) ? Posting::Kind::Payment : Posting::Kind::Credit;
}

// The accounts, one customer after the other, as two selects in the order of the customers give them.
class Accounts {
public:
    Accounts(db::Session& session, Date asAt) {
        readPostings(session, asAt);
        readApplications(session);
    }
    // What the next customer has. Requires: customers come in the order of their numbers.
    Account of(const Holder& holder) {
        Account account;
        account.terms = holder.terms;
        account.lastBalance = holder.lastBalance;
        account.chargedThisMonth = holder.chargedThisMonth;
        while (posting_ < postings_.size() && postings_[posting_].first < holder.customer)
            ++posting_;
        while (posting_ < postings_.size() && postings_[posting_].first == holder.customer) {
            Posting& one = account.postings.emplace_back(postings_[posting_++].second);
            one.told = holder.lastStatement && one.id <= holder.lastPosting && one.time.dateOnly() <= *holder.lastStatement;
        }
        while (application_ < applications_.size() && applications_[application_].first < holder.customer)
            ++application_;
        while (application_ < applications_.size() && applications_[application_].first == holder.customer)
            account.applications.push_back(applications_[application_++].second);
        return account;
    }

private:
    void readPostings(db::Session& session, Date asAt) {
        EachRow rows([&](const RowView& row) {
            Posting one;
            one.id = row.number(1);
            one.time = Date::fromMs(row.number(2));
            if (!row.isNull(3))
                one.due = Date::fromMs(row.number(3));
            one.total = moneyOf(row, 4);
            one.open = moneyOf(row, 5);
            one.kind = kindOf(one.total, row.text(6));
            postings_.emplace_back(static_cast<std::int32_t>(row.number(0)), one);
        });
        session.execute("SELECT CustomerID, CreditTransID, Time, PastDueDate, Total, OutstandingBalance, CreditCode FROM CreditTransaction "
                        "WHERE Time < " +
                            sqlDay(asAt.plusDays(1)) +
                            " AND (Total <> 0 OR NOT EXISTS (SELECT * FROM CreditApplication a WHERE a.BatchNumber = "
                            "CreditTransaction.BatchNumber AND a.CustomerID = CreditTransaction.CustomerID AND a.Pending = 1)) "
                            "ORDER BY CustomerID, Time, CreditTransID",
                        rows);
    }

    // A half of an application, with its posting's time. One that waits for its other half (somebody is at work, or the program ended
    // between the two) was not applied yet, for a statement: neither it nor the row that holds its amount counts.
    struct Half {
        std::int64_t posting = 0;
        Date applied;
        Currency amount;
        Date came;
        bool waits = false;
    };

    // The halves of a visit, one customer's after the other's, in their order.
    void readApplications(db::Session& session) {
        std::pair<std::int32_t, std::int64_t> visit{};
        std::vector<Half> halves;
        EachRow rows([&](const RowView& row) {
            const std::pair now{static_cast<std::int32_t>(row.number(0)), row.number(1)};
            if (now != visit)
                pair(visit.first, halves);
            visit = now;
            halves.push_back(
                {row.number(2), Date::fromMs(row.number(3)), moneyOf(row, 4), Date::fromMs(row.number(5)), row.number(6) != 0});
        });
        session.execute(
            "SELECT a.CustomerID, a.BatchNumber, a.CreditTransID, a.Time, a.Amount, t.Time, a.Pending FROM CreditApplication a INNER JOIN "
            "CreditTransaction t ON t.CreditTransID = a.CreditTransID ORDER BY a.CustomerID, a.BatchNumber, a.ApplicationID",
            rows);
        pair(visit.first, halves);
    }

    // The first credit of a visit goes to its first debits: each part of a debit was paid when its credit came in.
    void pair(std::int32_t customer, std::vector<Half>& halves) {
        auto credit = halves.begin();
        for (Half& debit : halves)
            while (debit.amount > Currency()) {
                credit = std::find_if(credit, halves.end(), [](const Half& half) { return half.amount < Currency(); });
                if (credit == halves.end())
                    break;
                meet(customer, debit, *credit);
            }
        for (const Half& half : halves)
            if (half.amount != Currency())
                take(customer, half, half.waits ? kNever : half.applied, half.applied, half.amount);
        halves.clear();
    }
    // So much of both as the smaller has left.
    void meet(std::int32_t customer, Half& debit, Half& credit) {
        const Currency part = std::min(debit.amount, -credit.amount);
        const Date time = std::max({debit.applied, credit.applied, debit.came, credit.came});
        take(customer, debit, time, credit.came, part);
        take(customer, credit, time, credit.came, -part);
        debit.amount -= part;
        credit.amount += part;
    }
    void take(std::int32_t customer, const Half& half, Date time, Date paid, Currency amount) {
        applications_.emplace_back(customer, Application{half.posting, time, paid, amount});
    }

    std::vector<std::pair<std::int32_t, Posting>> postings_;
    std::vector<std::pair<std::int32_t, Application>> applications_;
    std::size_t posting_ = 0;
    std::size_t application_ = 0;
};

bool hasSomethingToTell(const Statement& figures) {
    const Currency none;
    return figures.balance != none || figures.broughtForward != none || figures.charged != none || figures.paid != none ||
           figures.credited != none;
}

void step(const RunProgress& progress, std::size_t done, std::size_t all) {
    if (done % kFlushEvery == 0 && !progress(all == 0 ? 100 : static_cast<int>(done * 100 / all)))
        throw Stopped();
}

std::vector<CustomerStatement> drawAll(db::Session& session, Date asAt, const RunProgress& progress) {
    std::vector<CustomerStatement> drawn;
    const Date before = monthBefore(asAt);
    const std::vector<Holder> all = holders(session, asAt, before);
    Accounts accounts(session, asAt);
    std::size_t done = 0;
    for (const Holder& holder : all) {
        step(progress, done++, all.size());
        const Account account = accounts.of(holder);
        if (account.postings.empty())
            continue;
        CustomerStatement one{holder.customer, holder.name, drawUp(account, asAt, holder.lastStatement.value_or(before).plusDays(1))};
        if (hasSomethingToTell(one.figures))
            drawn.push_back(std::move(one));
    }
    return drawn;
}

void addUp(StatementRun& run) {
    for (const CustomerStatement& one : run.statements) {
        run.financeCharges += one.figures.financeCharge;
        run.balances += one.figures.balance;
    }
}

CustomerStatement postedOne(const RowView& row) {
    CustomerStatement one{static_cast<std::int32_t>(row.number(0)), std::string(trimmed(row.text(1))), {}};
    Statement& s = one.figures;
    if (!row.isNull(2))
        s.since = Date::fromMs(row.number(2));
    int next = 3;
    for (Currency* amount : {&s.broughtForward, &s.charged, &s.paid, &s.credited, &s.financeCharge, &s.balance, &s.ages.notDue,
                             &s.ages.days30, &s.ages.days60, &s.ages.days90, &s.ages.over90, &s.ages.unapplied})
        *amount = moneyOf(row, next++);
    s.reckoning = row.text(next);
    return one;
}

bool sameFigures(const StatementRun& run, const std::vector<CustomerStatement>& again) {
    return std::equal(run.statements.begin(), run.statements.end(), again.begin(), again.end(),
                      [](const auto& a, const auto& b) { return a.customer == b.customer && a.figures == b.figures; });
}

std::optional<Date> lastPostedDay(db::Session& session) {
    std::optional<Date> day;
    EachRow rows([&](const RowView& row) {
        if (!row.isNull(0))
            day = Date::fromMs(row.number(0));
    });
    session.execute("SELECT MAX(AsAt) FROM StatementRun", rows);
    return day;
}

std::int32_t newRun(db::Session& session, Date asAt, int store, int cashier) {
    std::int32_t number = 0;
    EachRow rows([&](const RowView& row) { number = static_cast<std::int32_t>(row.number(0)); });
    try {
        session.execute("EXEC bsp_NewStatementRun " + sqlDay(asAt) + ", " + std::to_string(store) + ", " + std::to_string(cashier), rows);
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Raised)
            throw;
        if (const auto last = lastPostedDay(session); last && *last >= asAt)
            throw PostedMeanwhile(*last);
        throw;
    }
    return number;
}

// A call of bsp_PostStatement whose parameters are filled anew for each statement.
class PostedStatement {
public:
    explicit PostedStatement(std::int32_t run) {
        static constexpr db::SqlType kInt{db::TypeKind::Int};
        static constexpr db::SqlType kDate{db::TypeKind::DateTime};
        static constexpr db::SqlType kMoney{db::TypeKind::Money};
        static constexpr db::SqlType kText{db::TypeKind::VarChar, 8000, 0, 0};
        parameters_ = {{"", kInt, Value(run), false}, {"", kInt, Value(), false}, {"", kDate, Value(), false}};
        for (int i = 0; i < kFigures; ++i)
            parameters_.push_back({"", kMoney, Value(), false});
        parameters_.push_back({"", kText, Value(), false});
    }
    void post(db::Session& session, const CustomerStatement& one) {
        const Statement& s = one.figures;
        std::size_t next = 1;
        parameters_[next++].value = Value(one.customer);
        parameters_[next++].value = Value(s.since);
        for (const Currency amount : {s.broughtForward, s.charged, s.paid, s.credited, s.financeCharge, s.balance, s.ages.notDue,
                                      s.ages.days30, s.ages.days60, s.ages.days90, s.ages.over90, s.ages.unapplied})
            parameters_[next++].value = Value(amount);
        parameters_[next].value = Value(s.reckoning);
        db::NoResult none;
        session.call("bsp_PostStatement", parameters_, none);
    }

private:
    static constexpr int kFigures = 12;
    std::vector<db::Parameter> parameters_;
};

std::int32_t postOnce(db::Session& session, const StatementRun& run, const RunProgress& progress, int store, int cashier) {
    db::Work work(session);
    try {
        const std::int32_t number = newRun(session, run.asAt, store, cashier);
        if (!sameFigures(run, drawAll(session, run.asAt, [&](int percent) { return progress(percent / 2); })))
            throw AccountsChanged();
        PostedStatement posted(number);
        std::size_t done = 0;
        for (const CustomerStatement& one : run.statements) {
            step([&](int percent) { return progress(50 + percent / 2); }, done++, run.statements.size());
            posted.post(session, one);
        }
        db::NoResult none;
        session.execute("EXEC bsp_EndStatementRun " + std::to_string(number), none);
        work.commit();
        progress(100);
        return number;
    } catch (const Stopped&) {
        return 0;
    }
}

} // namespace

int billingDayOfMonth(db::Session& session) {
    int day = kUsualBillingDay;
    EachRow rows([&](const RowView& row) { day = row.isNull(0) ? day : static_cast<int>(row.number(0)); });
    session.execute("SELECT ReminderPrior FROM StoreOptions", rows);
    return day >= 1 && day <= 31 ? day : kUsualBillingDay;
}

StatementRun drawUpStatements(db::Session& session, Date asAt, const RunProgress& progress) {
    StatementRun run;
    run.asAt = asAt.dateOnly();
    try {
        run.statements = drawAll(session, run.asAt, progress);
    } catch (const Stopped&) {
        run.stopped = true;
    }
    addUp(run);
    progress(100);
    return run;
}

std::int32_t postStatements(db::Session& session, const StatementRun& run, const RunProgress& progress, int store, int cashier) {
    return db::againWhenBusy(session, [&] { return postOnce(session, run, progress, store, cashier); });
}

StatementRun postedStatements(db::Session& session, std::int32_t run) {
    StatementRun posted;
    EachRow day([&](const RowView& row) { posted.asAt = Date::fromMs(row.number(0)); });
    const std::string number = std::to_string(run);
    session.execute("SELECT AsAt FROM StatementRun WHERE RunID = " + number, day);
    EachRow rows([&](const RowView& row) { posted.statements.push_back(postedOne(row)); });
    session.execute(
        std::string("SELECT c.ID, ") + kNameOf +
            ", s.Since, s.BroughtForward, s.Charged, s.Paid, s.Credited, s.FinanceCharge, s.Balance, s.NotDue, s.Days30, s.Days60, "
            "s.Days90, s.Over90, s.Unapplied, ISNULL(s.Reckoning, '') FROM Statement s INNER JOIN Customer c ON c.ID = s.CustomerID "
            "WHERE s.RunID = " +
            number + " ORDER BY c.ID",
        rows);
    addUp(posted);
    return posted;
}

} // namespace merchantry::customers
