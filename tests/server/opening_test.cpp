// What a manager reads when a store on a server cannot be opened: one sentence for each cause, and no connection.

#include "app/DataBroker.h"
#include "app/db/schema/schema.h"
#include "tests/server/cable.h"
#include "tests/server/onaserver.h"

#include <optional>

namespace merchantry::app {
namespace {

class OpeningOnAServer : public db::OnAServer {
protected:
    // The sentence; empty when the store was opened.
    static std::string refusalOf(const db::server::Address& address) {
        db::Provider provider;
        DataBroker broker(provider);
        std::string place = address.connectionText();
        std::shared_ptr<ErrLog> none;
        long timeout = 60;
        db::ConnectionPtr connection;
        broker.OpenConnection(place, none, timeout, connection);
        EXPECT_EQ(connection->State() == 0, !broker.whyClosed().empty());
        return broker.whyClosed();
    }
};

TEST_F(OpeningOnAServer, NamesALoginThatIsNotLetIn) {
    db::server::Address address = host->address();
    address.user = "nobody_here";
    address.password = "wrong";
    const std::string refusal = refusalOf(address);
    EXPECT_NE(refusal.find("does not let nobody_here in"), std::string::npos) << refusal;
}

TEST_F(OpeningOnAServer, NamesADatabaseThatIsNotThere) {
    db::server::Address address = host->address();
    address.database = "nowhere_at_all";
    const std::string refusal = refusalOf(address);
    EXPECT_NE(refusal.find("has no database nowhere_at_all"), std::string::npos) << refusal;
}

TEST_F(OpeningOnAServer, NamesAPortWhereNobodyAnswers) {
    const db::server::Address free = [&] {
        const db::Cable cable = db::cableTo(host->address());
        return db::through(cable, host->address());
    }();
    const std::string refusal = refusalOf(free);
    EXPECT_NE(refusal.find("No server answers at 127.0.0.1, port " + std::to_string(free.port)), std::string::npos) << refusal;
}

// From a database without a store to one of another version of the program.
TEST_F(OpeningOnAServer, NamesAStoreOfAnotherVersion) {
    EXPECT_NE(refusalOf(host->address()), "");
    db::createSchema(*session, [](int) {});
    EXPECT_EQ(refusalOf(host->address()), "");
    run("DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (" + std::to_string(db::kSchemaVersion - 1) + ")");
    EXPECT_NE(refusalOf(host->address()).find("is of an older version"), std::string::npos) << refusalOf(host->address());
    run("INSERT INTO SchemaVersion (Version) VALUES (" + std::to_string(db::kSchemaVersion + 1) + ")");
    EXPECT_NE(refusalOf(host->address()).find("by a newer version"), std::string::npos) << refusalOf(host->address());
}

} // namespace
} // namespace merchantry::app
