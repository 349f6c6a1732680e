#include "app/db/server/address.h"

#include "app/db/ado/provider.h"

#include <gtest/gtest.h>

namespace merchantry::db::server {
namespace {

Address read(const std::string& text) {
    return addressOf(connectionParts(text));
}

TEST(AddressTest, IsReadFromTheStringOfAConfiguration) {
    const Address address =
        read("Provider=SQLOLEDB.1; User ID=sa; PASSWORD=let me in; Data Source=shop1\\second; Initial Catalog=Tillmark2k");
    EXPECT_EQ(address.host, "shop1");
    EXPECT_EQ(address.instance, "second");
    EXPECT_EQ(address.user, "sa");
    EXPECT_EQ(address.password, "let me in");
    EXPECT_EQ(address.database, "Tillmark2k");
    EXPECT_TRUE(address.encrypted);
    EXPECT_FALSE(address.integrated);
}

TEST(AddressTest, TakesWordsBehindTheHost) {
    const Address address = read("User ID=sa; PASSWORD=x; Data Source=shop1,1435; Encrypt=no; Database=Trial; Initial Catalog=Tillmark2k");
    EXPECT_EQ(address.host, "shop1");
    EXPECT_EQ(address.port, 1435);
    EXPECT_FALSE(address.encrypted);
    EXPECT_EQ(address.database, "Trial");
    EXPECT_EQ(address.sourceText(), "shop1,1435; Encrypt=no; Database=Trial");
}

// The instance has a field of its own in a configuration, which puts it last.
TEST(AddressTest, TakesAnInstanceBehindAllElse) {
    for (const char* source : {"shop1\\till,1435; Encrypt=no", "shop1,1435; Encrypt=no\\till", "shop1, 1435\\till; Encrypt=no"}) {
        const Address address = read(std::string("User ID=sa; PASSWORD=x; Data Source=") + source + "; Initial Catalog=Tillmark2k");
        EXPECT_EQ(address.host, "shop1") << source;
        EXPECT_EQ(address.instance, "till") << source;
        EXPECT_EQ(address.port, 1435) << source;
        EXPECT_FALSE(address.encrypted) << source;
    }
    EXPECT_EQ(read("PASSWORD=x; Data Source=shop1; Database=Trial\\till; Initial Catalog=x").database, "Trial");
}

TEST(AddressTest, TakesAStringInAnyOrder) {
    const Address address = read("Data Source=shop1; Initial Catalog=Trial; Encrypt=no; User ID=boss; Password=y");
    EXPECT_EQ(address.database, "Trial");
    EXPECT_EQ(address.user, "boss");
    EXPECT_EQ(address.password, "y");
    EXPECT_FALSE(address.encrypted);
}

TEST(AddressTest, KnowsTheOperatingSystemsLoginBehindTheCatalogue) {
    EXPECT_TRUE(read("User ID=sa; PASSWORD=x; Data Source=shop1; Initial Catalog=Tillmark2k;Integrated Security=SSPI").integrated);
}

TEST(AddressTest, RefusesAPortThatIsNone) {
    EXPECT_THROW(read("Data Source=shop1,abc; Initial Catalog=x"), DbError);
    EXPECT_THROW(read("Data Source=shop1,70000; Initial Catalog=x"), DbError);
}

TEST(AddressTest, APasswordCannotSayAnythingElseToTheDriver) {
    EXPECT_NE(read("Data Source=a; Password=x}y; User ID=sa; Initial Catalog=t").driverText().find("PWD={x}}y}"), std::string::npos);
}

TEST(ProviderTest, SaysThatTheSystemsOwnLoginIsNotThere) {
    Provider provider;
    try {
        provider.open("User ID=sa; PASSWORD=x; Data Source=shop1; Initial Catalog=Tillmark2k;Integrated Security=SSPI");
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Storage);
        EXPECT_NE(std::string(error.what()).find("is not available on this system"), std::string::npos);
    }
}

TEST(AddressTest, OpensWhatItsOwnStringNames) {
    const Address shop = addressOf({{"data source", "shop1\\till; Encrypt=no; Database=Trial"}, {"user id", "sa"}, {"password", "x"}});
    EXPECT_EQ(addressOf(connectionParts(shop.connectionText())).driverText(), shop.driverText());
}

// A word that was mistyped counted as nothing: whoever wanted encryption off was told of encryption, and the other way round.
TEST(AddressTest, RefusesWordsThatItDoesNotKnow) {
    for (const char* source : {"shop1; Encypt=no", "shop1; Encrypt=banana", "shop1; Timeout=5"})
        EXPECT_THROW(addressOf({{"data source", source}}), DbError) << source;
    EXPECT_FALSE(addressOf({{"data source", "shop1; Encrypt=No; Database=Trial"}}).encrypted);
    EXPECT_TRUE(addressOf({{"data source", "shop1; Encrypt=yes"}}).encrypted);
}

TEST(AddressTest, TakesThePasswordOfTheEnvironmentWhereNoneIsNamed) {
    setenv("MERCHANTRY_PASSWORD", "from outside", 1);
    EXPECT_EQ(addressOf({{"data source", "shop1"}}).password, "from outside");
    EXPECT_EQ(addressOf({{"data source", "shop1"}, {"password", ""}}).password, "");
    unsetenv("MERCHANTRY_PASSWORD");
    EXPECT_EQ(addressOf({{"data source", "shop1"}}).password, "");
}

} // namespace
} // namespace merchantry::db::server
