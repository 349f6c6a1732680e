#include "tests/server/cable.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace merchantry::db {
namespace {

constexpr long kNsOfMs = 1'000'000;
constexpr timespec kLookAgain{0, 20 * kNsOfMs};
constexpr timespec kLookSoon{0, kNsOfMs / 10}; // while something waits for its time

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
    const int noWaiting = 1; // for more to be sent with it
    setsockopt(line, IPPROTO_TCP, TCP_NODELAY, &noWaiting, sizeof noWaiting);
    return line;
}

bool isReadable(int line) {
    pollfd one{line, POLLIN, 0};
    return poll(&one, 1, 0) > 0;
}

// What came in on one end waits here until its time, and goes out at the other.
class Way {
public:
    Way(int from, int to, std::chrono::microseconds delay) : from_(from), to_(to), delay_(delay) {}

    // Takes what its end speaks, and sends what is due. False at the end of a line.
    bool pass(bool speaks) {
        if (speaks && !take())
            return false;
        for (; !waiting_.empty() && waiting_.front().due <= Clock::now(); waiting_.pop_front()) {
            const std::vector<char>& bytes = waiting_.front().bytes;
            if (send(to_, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size()))
                return false;
        }
        return true;
    }
    bool waits() const { return !waiting_.empty(); }

private:
    using Clock = std::chrono::steady_clock;
    struct Parcel {
        Clock::time_point due;
        std::vector<char> bytes;
    };

    bool take() {
        std::array<char, 65536> bytes{};
        const ssize_t got = recv(from_, bytes.data(), bytes.size(), 0);
        if (got > 0)
            waiting_.push_back({Clock::now() + delay_, {bytes.begin(), bytes.begin() + got}});
        return got > 0;
    }

    int from_;
    int to_;
    std::chrono::microseconds delay_;
    std::deque<Parcel> waiting_;
};

// Takes an answer to its end, when the server has done all that it was asked: its last packet says so. One that is encrypted ends with
// what is there.
void swallowAnswer(int line) {
    constexpr char kAnswer = 4;
    constexpr unsigned char kIsLast = 1;
    std::array<unsigned char, 8> head{};
    while (recv(line, head.data(), head.size(), MSG_WAITALL) == static_cast<ssize_t>(head.size()) && head[0] == kAnswer) {
        std::vector<char> rest(head[2] * 256U + head[3] - head.size());
        if (recv(line, rest.data(), rest.size(), MSG_WAITALL) <= 0 || (head[1] & kIsLast) != 0)
            return;
    }
}

} // namespace

struct Cable::State {
    // One connection. A request is what its client says after the server has spoken.
    struct Line {
        int near;
        int far;
        Way up;
        Way down;
        bool asked = false;
        bool nearSpeaks = false;
        bool farSpeaks = false;
    };

    std::string host;
    int serverPort = 0;
    int listener = -1;
    int port = 0;
    std::chrono::microseconds delay{0}; // of one way
    std::atomic<bool> stop = false;
    std::atomic<int> cuts = 0;
    std::atomic<int> done = 0;
    std::atomic<int> requestsLeft = 0; // until the line is cut by itself; 0: it is not
    std::atomic<Where> where = Where::BeforeIt;
    std::vector<Line> lines;
    std::thread thread;

    void run() {
        while (!stop) {
            watch();
            if (cuts > done) {
                closeAll();
                done = cuts.load();
                continue;
            }
            passAll();
            if (isReadable(listener)) {
                const int near = accept(listener, nullptr, nullptr);
                const int far = connectTo(host, serverPort);
                lines.push_back({near, far, {near, far, delay}, {far, near, delay}});
            }
        }
        closeAll();
    }
    void watch() {
        std::vector<pollfd> watched{{listener, POLLIN, 0}};
        bool waits = false;
        for (const Line& line : lines) {
            watched.push_back({line.near, POLLIN, 0});
            watched.push_back({line.far, POLLIN, 0});
            waits = waits || line.up.waits() || line.down.waits();
        }
        ppoll(watched.data(), watched.size(), waits ? &kLookSoon : &kLookAgain, nullptr);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i].nearSpeaks = watched[2 * i + 1].revents != 0;
            lines[i].farSpeaks = watched[2 * i + 2].revents != 0;
        }
    }
    void passAll() {
        for (Line& line : lines)
            if (isCutNow(line))
                return closeAll();
        std::erase_if(lines, [](Line& line) {
            const bool good = line.up.pass(line.nearSpeaks) && line.down.pass(line.farSpeaks);
            if (!good)
                closeOne(line);
            return !good;
        });
    }
    bool isCutNow(Line& line) {
        if (!line.asked && line.nearSpeaks) {
            line.asked = true;
            if (requestsLeft == 1 && where == Where::BeforeIt)
                return true;
        } else if (line.asked && line.farSpeaks) {
            line.asked = false;
            if (requestsLeft > 0 && --requestsLeft == 0 && where == Where::BehindIt) {
                swallowAnswer(line.far);
                return true;
            }
        }
        return false;
    }
    void closeAll() {
        requestsLeft = 0; // first: who notices the end may ask at once
        for (const Line& line : lines)
            closeOne(line);
        lines.clear();
    }
    static void closeOne(const Line& line) {
        close(line.near);
        close(line.far);
    }
};

Cable::Cable(const std::string& host, int port, std::chrono::microseconds roundTrip) : state_(std::make_unique<State>()) {
    close(connectTo(host, port));
    state_->host = host;
    state_->serverPort = port;
    state_->delay = roundTrip / 2;
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

Cable cableTo(const server::Address& address) {
    constexpr int kUsualPort = 1433;
    return {address.host, address.port == 0 ? kUsualPort : address.port};
}

server::Address through(const Cable& cable, server::Address address) {
    address.host = "127.0.0.1";
    address.port = cable.port();
    return address;
}

int Cable::port() const {
    return state_->port;
}

void Cable::cutAt(int request, Where where) {
    state_->where = where;
    state_->requestsLeft = request;
}

int Cable::spared() {
    return state_->requestsLeft.exchange(0);
}

void Cable::cut() {
    const int wanted = ++state_->cuts;
    while (state_->done < wanted)
        std::this_thread::yield();
}

} // namespace merchantry::db
