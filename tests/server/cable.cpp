#include "tests/server/cable.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace merchantry::db {
namespace {

constexpr int kLookAgainMs = 20;

int connectTo(const std::string& host, int port) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        throw std::runtime_error("no machine " + host);
    int line = -1;
    for (const addrinfo* one = found; one != nullptr && line < 0; one = one->ai_next) {
        line = socket(one->ai_family, one->ai_socktype, one->ai_protocol);
        if (line >= 0 && connect(line, one->ai_addr, one->ai_addrlen) != 0) {
            close(line);
            line = -1;
        }
    }
    freeaddrinfo(found);
    if (line < 0)
        throw std::runtime_error("nobody listens at " + host);
    return line;
}

bool isReadable(int line) {
    pollfd one{line, POLLIN, 0};
    return poll(&one, 1, 0) > 0;
}

// False at the end of a line.
bool pass(int from, int to) {
    std::array<char, 65536> bytes{};
    const ssize_t got = recv(from, bytes.data(), bytes.size(), 0);
    return got > 0 && send(to, bytes.data(), static_cast<std::size_t>(got), MSG_NOSIGNAL) == got;
}

} // namespace

struct Cable::State {
    std::string host;
    int serverPort = 0;
    int listener = -1;
    int port = 0;
    std::atomic<bool> stop = false;
    std::atomic<int> cuts = 0;
    std::atomic<int> done = 0;
    std::thread thread;

    void run() {
        std::vector<std::pair<int, int>> lines;
        const auto closeAll = [&] {
            for (const auto& [near, far] : lines) {
                close(near);
                close(far);
            }
            lines.clear();
        };
        while (!stop) {
            std::vector<pollfd> watched{{listener, POLLIN, 0}};
            for (const auto& [near, far] : lines) {
                watched.push_back({near, POLLIN, 0});
                watched.push_back({far, POLLIN, 0});
            }
            poll(watched.data(), watched.size(), kLookAgainMs);
            if (cuts > done) {
                closeAll();
                done = cuts.load();
                continue;
            }
            if (isReadable(listener))
                lines.emplace_back(accept(listener, nullptr, nullptr), connectTo(host, serverPort));
            std::erase_if(lines, [](const auto& line) {
                const bool good = (!isReadable(line.first) || pass(line.first, line.second)) &&
                                  (!isReadable(line.second) || pass(line.second, line.first));
                if (!good) {
                    close(line.first);
                    close(line.second);
                }
                return !good;
            });
        }
        closeAll();
    }
};

Cable::Cable(const std::string& host, int port) : state_(std::make_unique<State>()) {
    close(connectTo(host, port));
    state_->host = host;
    state_->serverPort = port;
    state_->listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(state_->listener, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(state_->listener, 8) != 0 ||
        getsockname(state_->listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("no port can be listened at");
    state_->port = ntohs(address.sin_port);
    state_->thread = std::thread([state = state_.get()] { state->run(); });
}

Cable::~Cable() {
    state_->stop = true;
    state_->thread.join();
    close(state_->listener);
}

int Cable::port() const {
    return state_->port;
}

void Cable::cut() {
    const int wanted = ++state_->cuts;
    while (state_->done < wanted)
        std::this_thread::yield();
}

} // namespace merchantry::db
