// What goes to accounting beside the report that the owner reads.

#include "app/db/schema/schema.h"
#include "demo/demostore.h"
#include "exchange/accounting/daybook.h"
#include "exchange/flat/csv.h"
#include "reports/engine/exports.h"
#include "tests/db/teststore.h"
#include "tests/exchange/iifreader.h"

#include <algorithm>
#include <sstream>

namespace merchantry::exchange {
namespace {

struct SalesOfDay {
    Currency net;
    Currency tax;

    bool operator==(const SalesOfDay&) const = default;
};
using Sales = std::map<std::string, SalesOfDay>; // by day, as yyyy-mm-dd

std::ostream& operator<<(std::ostream& out, const SalesOfDay& day) {
    return out << day.net.toText() << " and " << day.tax.toText() << " tax";
}

class AccountingOfADemoStore : public db::OnAStore {
protected:
    AccountingOfADemoStore() {
        db::createSchema(*session);
        demo::fillDemoStore(
            *session, {.dataFolder = "demo/data", .today = *Date::fromParts(2026, 11, 21, 15), .days = 40, .salesPerDay = 20, .seed = 3},
            [](int) {});
    }

    Sales report() {
        const auto sales = reports::Report::run(*session, reports::readDefinition("reports/files/DailySales.rpt"), {"", "", ""});
        std::stringstream text;
        reports::writeCsv(*sales, text);
        CsvReader rows(text);
        CsvRow row;
        rows.next(row);
        const auto place = [heading = row](const char* title) {
            const auto at =
                std::find_if(heading.cells.begin(), heading.cells.end(), [&](const CsvCell& cell) { return cell.text == title; });
            return static_cast<std::size_t>(at - heading.cells.begin());
        };
        const std::size_t day = place("Date");
        const std::size_t net = place("Net sales");
        const std::size_t tax = place("Tax");
        Sales days;
        while (rows.next(row))
            days[row.cells.at(day).text.substr(0, 10)] = {Currency::fromText(row.cells.at(net).text),
                                                          Currency::fromText(row.cells.at(tax).text)};
        return days;
    }

    // As a reader of the file adds it up, by its own dates.
    static Sales sent(const IifReader& iif) {
        Sales days;
        for (const IifReader::Entry& entry : iif.entries)
            for (const IifReader::Record& line : entry.lines) {
                const std::string date = line.at("DATE");
                SalesOfDay& day = days[date.substr(6) + "-" + date.substr(0, 2) + "-" + date.substr(3, 2)];
                const Currency amount = Currency::fromText(line.at("AMOUNT"));
                if (line.at("ACCNT").starts_with("Sales:"))
                    day.net = day.net - amount;
                if (line.at("ACCNT").starts_with("Sales Tax Payable:"))
                    day.tax = day.tax - amount;
            }
        return days;
    }
};

TEST_F(AccountingOfADemoStore, AgreesWithTheReportOfDailySalesToTheCent) {
    const Daybook book = readDays(*session, *Date::fromText("1/1/2026"), *Date::fromText("11/21/2026"), [](int) { return true; });
    for (const BookedDay& day : book.days)
        EXPECT_EQ(day.fault, "");
    const Sales reported = report();
    ASSERT_GT(reported.size(), 30U);
    const IifReader iif(iifText(fileOf(*session, book.days, book.map), true));
    Sales booked = sent(iif);
    std::erase_if(booked, [](const auto& day) { return day.second == SalesOfDay(); }); // days of deliveries alone
    EXPECT_EQ(booked, reported);
    EXPECT_EQ(iif.sumOf("Customer Accounts Clearing"), Currency()) << "all that was sold on account was posted to customers";
}

} // namespace
} // namespace merchantry::exchange
