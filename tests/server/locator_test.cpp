#include "app/db/dberror.h"
#include "app/db/server/locator.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace merchantry::db::server {
namespace {

constexpr std::string_view kTwo = "ServerName;SHOP1;InstanceName;TILL;IsClustered;No;Version;15.0.2000.5;tcp;1435;;"
                                  "ServerName;SHOP1;InstanceName;SECOND;IsClustered;No;Version;13.0.1601.5;np;\\\\SHOP1\\pipe\\x;;";

std::string answer(std::string_view text) {
    std::string whole{'\x05', static_cast<char>(text.size() & 0xFFU), static_cast<char>(text.size() >> 8U)};
    return whole.append(text);
}

// A machine that answers one question, if it has something to say.
class Answerer {
public:
    explicit Answerer(std::string says) : line_(socket(AF_INET, SOCK_DGRAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        bind(line_, reinterpret_cast<sockaddr*>(&address), length);
        getsockname(line_, reinterpret_cast<sockaddr*>(&address), &length);
        port = ntohs(address.sin_port);
        thread_ = std::thread([this, says = std::move(says)] {
            sockaddr_in asker{};
            socklen_t size = sizeof asker;
            char byte = 0;
            if (recvfrom(line_, &byte, 1, 0, reinterpret_cast<sockaddr*>(&asker), &size) != 1)
                return;
            asked = byte;
            if (!says.empty())
                sendto(line_, says.data(), says.size(), 0, reinterpret_cast<sockaddr*>(&asker), size);
        });
    }
    ~Answerer() {
        thread_.join();
        close(line_);
    }
    Answerer(const Answerer&) = delete;
    Answerer& operator=(const Answerer&) = delete;

    int port = 0;
    char asked = 0;

private:
    int line_;
    std::thread thread_;
};

TEST(LocatorTest, FindsTheInstancesOfAMachine) {
    Answerer machine(answer(kTwo));
    const std::vector<Instance> found = instancesOn("127.0.0.1", machine.port);
    EXPECT_EQ(found, (std::vector<Instance>{{"TILL", 1435, "15.0.2000.5"}, {"SECOND", 0, "13.0.1601.5"}}));
    EXPECT_EQ(listed(found), "TILL (port 1435), SECOND (not on the network)");
    EXPECT_EQ(machine.asked, 3);
}

TEST(LocatorTest, GivesUpOnAMachineThatIsSilent) {
    Answerer machine("");
    EXPECT_TRUE(instancesOn("localhost", machine.port, std::chrono::milliseconds(50)).empty());
}

TEST(LocatorTest, NamesAMachineThatIsUnknown) {
    try {
        instancesOn("no such machine", kBrowserPort, std::chrono::milliseconds(50));
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(std::string(error.what()), "No machine is named \"no such machine\". Please check the name of the server.");
    }
}

// Whatever stands at that port may answer anything.
TEST(LocatorTest, TakesNothingFromADamagedAnswer) {
    for (const std::string& damaged : {std::string(), std::string("\x05"), std::string("\x05\x10\x00", 3), std::string(5000, 'x'),
                                       answer(";;;;"), answer("ServerName;SHOP1;tcp;1433"), answer("InstanceName")})
        EXPECT_TRUE(instancesIn(damaged).empty()) << damaged;
    EXPECT_EQ(instancesIn(answer("InstanceName;A;tcp;99999;;InstanceName;B;tcp;12x;;")),
              (std::vector<Instance>{{"A", 0, ""}, {"B", 0, ""}}));
}

} // namespace
} // namespace merchantry::db::server
