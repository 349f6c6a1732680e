#include "exchange/accounting/sentdays.h"

#include "app/db/eachrow.h"
#include "app/db/work.h"

namespace merchantry::exchange {
namespace {

using db::EachRow;
using db::RowView;
using db::TypeKind;

Currency moneyOf(const RowView& row, int column) {
    return Currency::fromUnits(row.number(column));
}

// Of the days, those that went out, so that nobody else sends them before this transaction ends.
std::string sentAmong(db::Session& session, const std::vector<BookedDay>& days) {
    std::vector<Date> sent;
    EachRow rows([&](const RowView& row) {
        const Date day = Date::fromMs(row.number(0));
        if (std::any_of(days.begin(), days.end(), [&](const BookedDay& one) { return one.day == day; }))
            sent.push_back(day);
    });
    session.execute("SELECT Day FROM AccountingDay WITH (UPDLOCK, HOLDLOCK) ORDER BY Day", rows);
    return daysNamed(sent);
}

void keepDay(db::Session& session, const BookedDay& day, const Value& file) {
    const db::SqlType money{TypeKind::Money};
    const db::SqlType number{TypeKind::Int};
    std::vector<db::Parameter> values{{"day", {TypeKind::DateTime}, day.day},
                                      {"file", number, file},
                                      {"receipts", number, day.figures.receipts},
                                      {"sales", money, day.figures.sales},
                                      {"tax", money, day.figures.tax},
                                      {"tendered", money, day.figures.tendered},
                                      {"bills", money, day.figures.bills},
                                      {"accounts", money, day.figures.accounts}};
    db::NoResult none;
    session.execute(
        "INSERT INTO AccountingDay (Day, FileID, Receipts, Sales, Tax, Tendered, Bills, Accounts) VALUES (@day, @file, @receipts, "
        "@sales, @tax, @tendered, @bills, @accounts)",
        values, none);
}

} // namespace

std::string daysNamed(const std::vector<Date>& days) {
    constexpr std::size_t kMostNamed = 5;
    std::string names;
    for (std::size_t i = 0; i < std::min(days.size(), kMostNamed); ++i)
        names += (i == 0 ? "" : ", ") + days[i].toShortText();
    return days.size() <= kMostNamed ? names : names + " and " + std::to_string(days.size() - kMostNamed) + " more";
}

std::map<Date, SentDay> sentDays(db::Session& session) {
    std::map<Date, SentDay> days;
    EachRow rows([&](const RowView& row) {
        days[Date::fromMs(row.number(0))] = {
            static_cast<int>(row.number(1)),
            Date::fromMs(row.number(2)),
            {static_cast<int>(row.number(3)), moneyOf(row, 4), moneyOf(row, 5), moneyOf(row, 6), moneyOf(row, 7), moneyOf(row, 8)}};
    });
    session.execute(
        "SELECT d.Day, d.FileID, f.Made, d.Receipts, d.Sales, d.Tax, d.Tendered, d.Bills, d.Accounts FROM AccountingDay d INNER JOIN "
        "AccountingFile f ON f.FileID = d.FileID ORDER BY d.Day",
        rows);
    return days;
}

std::vector<Date> changedSince(db::Session& session) {
    std::vector<Date> days;
    EachRow rows([&](const RowView& row) { days.push_back(Date::fromMs(row.number(0))); });
    session.execute(
        "SELECT d.Day FROM AccountingDay d "
        "LEFT JOIN (SELECT DATEDIFF(day, 0, Time) AS Number, COUNT(*) AS Receipts, SUM(Total) AS Total FROM [Transaction] GROUP BY "
        "DATEDIFF(day, 0, Time)) t ON t.Number = DATEDIFF(day, 0, d.Day) "
        "LEFT JOIN (SELECT DATEDIFF(day, 0, PostDate) AS Number, SUM(Quantity * Cost + OtherCost) AS Total FROM PurchaseOrderReceipt GROUP "
        "BY "
        "DATEDIFF(day, 0, PostDate)) b ON b.Number = DATEDIFF(day, 0, d.Day) "
        "LEFT JOIN (SELECT DATEDIFF(day, 0, Time) AS Number, SUM(Total) AS Total FROM CreditTransaction GROUP BY DATEDIFF(day, 0, Time)) c "
        "ON c.Number = DATEDIFF(day, 0, d.Day) "
        "WHERE d.Receipts <> ISNULL(t.Receipts, 0) OR d.Tendered <> ISNULL(t.Total, 0) OR d.Bills <> ISNULL(b.Total, 0) OR d.Accounts <> "
        "ISNULL(c.Total, 0) ORDER BY d.Day",
        rows);
    return days;
}

std::vector<SentFile> sentFiles(db::Session& session) {
    std::vector<SentFile> files;
    EachRow rows([&](const RowView& row) {
        files.push_back({static_cast<int>(row.number(0)), Date::fromMs(row.number(1)), Date::fromMs(row.number(2)),
                         Date::fromMs(row.number(3)), static_cast<int>(row.number(4)), row.number(5)});
    });
    session.execute(
        "SELECT f.FileID, f.Made, MIN(d.Day), MAX(d.Day), COUNT(*), f.Bytes FROM AccountingFile f INNER JOIN AccountingDay d ON "
        "d.FileID = f.FileID GROUP BY f.FileID, f.Made, f.Bytes ORDER BY f.FileID DESC",
        rows);
    return files;
}

std::string sentBytes(db::Session& session, int number) {
    std::string bytes;
    EachRow rows([&](const RowView& row) {
        const Value content = row.value(0);
        bytes.assign(content.as<Bytes>().begin(), content.as<Bytes>().end());
    });
    session.execute("SELECT Content FROM AccountingFile WHERE FileID = " + std::to_string(number), rows);
    return bytes;
}

int keepSent(db::Session& session, const std::vector<BookedDay>& days, const std::string& bytes) {
    db::Work work(session);
    const std::string sent = sentAmong(session, days);
    if (!sent.empty())
        throw AlreadySent("These days have gone out meanwhile: " + sent + ". Each day goes out once; Sent Files gives a file again.");
    db::NoResult none;
    std::vector<db::Parameter> values{{"content", {TypeKind::Image}, Bytes(bytes.begin(), bytes.end())},
                                      {"bytes", {TypeKind::Int}, static_cast<std::int64_t>(bytes.size())}};
    session.execute("INSERT INTO AccountingFile (Content, Bytes) VALUES (@content, @bytes)", values, none);
    const Value file = session.lastIdentity();
    for (const BookedDay& day : days)
        keepDay(session, day, file);
    work.commit();
    return static_cast<int>(file.toInteger());
}

Date firstUnsent(db::Session& session, Date today) {
    Date first = today.dateOnly();
    EachRow rows([&](const RowView& row) {
        if (!row.isNull(0))
            first = std::min(first, Date::fromMs(row.number(0)).dateOnly());
    });
    session.execute("SELECT DATEADD(day, 1, MAX(Day)) FROM AccountingDay HAVING MAX(Day) IS NOT NULL", rows);
    if (first == today.dateOnly())
        session.execute("SELECT MIN(Time) FROM [Transaction] UNION ALL SELECT MIN(PostDate) FROM PurchaseOrderReceipt UNION ALL SELECT "
                        "MIN(Time) FROM CreditTransaction",
                        rows);
    return first;
}

} // namespace merchantry::exchange
