#pragma once

#include <memory>
#include <string>

namespace merchantry::db {

// A line between a test and a server that can be cut: what connects to its port is passed on, both ways.
class Cable {
public:
    // Throws std::runtime_error when the server is not there.
    Cable(const std::string& host, int port);
    ~Cable();
    Cable(const Cable&) = delete;
    Cable& operator=(const Cable&) = delete;

    int port() const;
    // Ends every connection that stands; new ones are passed on as before.
    void cut();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace merchantry::db
