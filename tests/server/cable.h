#pragma once

#include "app/db/server/address.h"

#include <chrono>
#include <memory>
#include <string>

namespace merchantry::db {

// A line between a test and a server that can be cut, and be a long one: what connects to its port is passed on, both ways.
class Cable {
public:
    // Throws std::runtime_error when the server is not there. What goes there and comes back takes the round trip longer.
    Cable(const std::string& host, int port, std::chrono::microseconds roundTrip = {});
    ~Cable();
    Cable(const Cable&) = delete;
    Cable& operator=(const Cable&) = delete;

    int port() const;
    // Ends every connection that stands; new ones are passed on as before.
    void cut();
    // Ends them all by itself at a request from now on, counted from 1: before the server gets it, or behind it, when it was carried out
    // and its answer is on the way. Once.
    enum class Where { BeforeIt, BehindIt };
    void cutAt(int request, Where where);
    // Forgets a cut that has not come, and tells how many requests were left until it; 0 when it has come.
    int spared();

private:
    struct State;
    std::unique_ptr<State> state_;
};

// A cable to the server of an address, and the same address through it.
Cable cableTo(const server::Address& address);
server::Address through(const Cable& cable, server::Address address);

} // namespace merchantry::db
