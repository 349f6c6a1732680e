#pragma once

#include "app/db/session.h"
#include "tools/registersim/sale.h"

#include <functional>
#include <memory>

namespace merchantry::registersim {

// What a till asks the store before each receipt: the options and its own row.
struct TillSettings {
    bool taxExclusive = true;
    bool printsReceipt = true;
    std::string storeName;
    std::string message; // at the end of the receipt; empty for a till that has no row
};

// A register at work on an open store: each receipt is one transaction of the statements that a till sends, beside whatever else uses the
// store. Owns its session; one thread.
class LiveRegister {
public:
    LiveRegister(std::unique_ptr<db::Session> session, int registerId, std::uint64_t seed);

    // Makes up a receipt and posts it, taxed and paid by what the store says at that moment. False when there was nothing to sell, or no
    // way to pay. Throws DbError; nothing of the receipt is posted then.
    bool postOne(Date now);
    // As they stood before the last receipt.
    const TillSettings& settings() const { return settings_; }

private:
    void readOptions();
    int cashierAtWork();
    void payAsOffered(Sale& sale);
    void post(const Sale& sale);
    void postLine(const Sale& sale, const SaleLine& line, const Value& number);

    std::unique_ptr<db::Session> session_;
    Shop shop_;
    Random random_;
    SaleMaker maker_;
    int registerId_;
    TillSettings settings_;
};

struct LivePlan {
    int registers = 1;
    double perSecond = 1; // receipts of each register; 0 for as fast as it can
    double seconds = 10;
    std::uint64_t seed = 1;
    // Asked between two receipts; true ends the work before its time.
    std::function<bool()> closing{};
};

struct LiveFigures {
    int posted = 0;
    int failed = 0;
    double medianMs = 0; // of posting one receipt
    double worstMs = 0;
    std::vector<std::string> errors; // the first few, as the store said them
};

using SessionMaker = std::function<std::unique_ptr<db::Session>()>;

// Runs so many registers side by side, each in a thread with a session of its own.
LiveFigures runRegisters(const SessionMaker& open, const LivePlan& plan);

} // namespace merchantry::registersim
