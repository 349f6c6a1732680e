#pragma once

#include <string>

namespace merchantry::exchange {

// Tells whether the data server is this machine.
class ServerLocator {
public:
    virtual ~ServerLocator() = default;
    // Whether this machine's own name and addresses are known, so that IsLocal can tell.
    virtual bool CanTell();
    // Of a server by its name or address, with an instance or a port behind it or without; the path of a store file is local. False for a
    // name that nobody knows.
    virtual bool IsLocal(const std::string& server);
};

} // namespace merchantry::exchange
