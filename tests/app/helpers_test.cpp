#include "app/ADOUtilities.h"
#include "app/DbConfig.h"
#include "app/Resizer.h"
#include "app/addresses.h"
#include "app/configstore.h"
#include "app/db/ado/provider.h"
#include "app/modPhone.h"
#include "tests/scratchfolder.h"
#include "ui/desk.h"
#include "ui/label.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace merchantry::app {
namespace {

// A desk for forms that are never shown.
class NoDesk : public ui::Desk {
public:
    ui::Answer message(const ui::Message&) override { return ui::Answer::Ok; }
    std::optional<std::string> input(const ui::Input&) override { return std::nullopt; }
    std::optional<std::filesystem::path> file(const ui::FileDialog&) override { return std::nullopt; }
    void beep() override {}
    void waitCursor(bool) override {}
    void yield() override {}
    void browse(const std::string&) override {}
    void copyText(const std::string&) override {}
    std::vector<std::string> printers() override { return {}; }
    void status(const std::string&) override {}

protected:
    void opened(ui::Form&) override {}
    void vanished(ui::Form&) override {}
    void runUntil(const std::function<bool()>&) override {}
    void armTimer(ui::Timer&) override {}
    void disarmTimer(ui::Timer&) override {}
};

class AddressForm : public ui::Form {
public:
    explicit AddressForm(ui::Desk& desk) : Form(desk, "frmAddress", "Address") {
        setSize(6000, 4000);
        ensureLoaded();
    }
    ui::Label lblAddress2{*this, "lblAddress2"};
    ui::Label lblAddress3{*this, "lblAddress3"};
    ui::Label lblCity{*this, "lblCity", "Springfield"};
    ui::TextBox txtPhone{*this, "txtPhone"};
};

TEST(ConnectString, HoldsTheConfigurationUnescaped) {
    const DbConfig config{"S", "SRV", "1", "p;w", "INST", "1"};
    EXPECT_EQ(connectString(config), "Provider=SQLOLEDB.1; User ID=sa; PASSWORD=p;w; Data Source=SRV\\INST; Initial Catalog=Tillmark2k"
                                     ";Integrated Security=SSPI");
    EXPECT_EQ(connectString({}), "Provider=SQLOLEDB.1; User ID=sa; PASSWORD=; Data Source=; Initial Catalog=Tillmark2k");
}

TEST(Addresses, CloseTheGapOfEmptyLines) {
    NoDesk desk;
    AddressForm both(desk);
    CollapseAddress(both);
    EXPECT_EQ(both.lblAddress2.caption() + "/" + both.lblAddress3.caption() + "/" + both.lblCity.caption(), "Springfield//");
    AddressForm third(desk);
    third.lblAddress2.setCaption("Suite 2");
    CollapseAddress(third);
    EXPECT_EQ(third.lblAddress3.caption() + "/" + third.lblCity.caption(), "Springfield/");
    AddressForm none(desk);
    none.lblAddress3.setCaption("Dock 4");
    CollapseAddress(none);
    EXPECT_EQ(none.lblAddress2.caption() + "/" + none.lblCity.caption(), "/Springfield");

    EXPECT_EQ(cityStateZip(" Reno ", "NV", "89501"), "Reno, NV 89501");
    EXPECT_EQ(cityStateZip(Null(), "NV", "89501"), "NV 89501");
    EXPECT_EQ(cityStateZip("Reno", Null(), Null()), "Reno");
    EXPECT_EQ(cityStateZip("Reno", "", " 1 "), "Reno 1");
}

TEST(Phones, AreNeverRefused) {
    NoDesk desk;
    AddressForm form(desk);
    form.txtPhone.mask = "(###) ###-####";
    form.txtPhone.setText("(   )    -    ");
    EXPECT_TRUE(IsPhoneEmpty(form.txtPhone));
    EXPECT_EQ(GetPhone(form.txtPhone), "");
    SetPhone("  555 anything ", form.txtPhone);
    EXPECT_EQ(GetPhone(form.txtPhone), "555 anything");
    EXPECT_TRUE(IsPhoneValid("", form.txtPhone));
}

TEST(Resizer, KeepsControlsAtTheirDistanceFromTheEdge) {
    NoDesk desk;
    AddressForm form(desk);
    form.lblCity.tag = "Top Left";
    form.lblCity.setPlace({100, 200, 300, 400});
    form.txtPhone.tag = "Width Height Other";
    form.txtPhone.setPlace({0, 0, 1000, 500});
    Resizer resizer;
    resizer.Initialize(form);
    form.setSize(6500, 4300);
    resizer.Resize();
    EXPECT_EQ(form.lblCity.place(), (ui::Place{600, 500, 300, 400}));
    EXPECT_EQ(form.txtPhone.place(), (ui::Place{0, 0, 1500, 800}));
    EXPECT_EQ(form.lblAddress2.place(), ui::Place());
    form.setSize(100, 100);
    resizer.Resize();
    EXPECT_EQ(form.width(), 6000);
    EXPECT_EQ(form.height(), 4000);
    EXPECT_EQ(form.lblCity.place(), (ui::Place{100, 200, 300, 400}));
    EXPECT_EQ(form.txtPhone.place(), (ui::Place{0, 0, 1000, 500}));
}

TEST(CleanSQLValue, DeletesApostrophesAndSemicolons) {
    EXPECT_EQ(CleanSQLValue("A;B'C"), "ABC");
    EXPECT_EQ(CleanSQLValue("';';"), "");
}

class ConfigFile : public testing::Test {
protected:
    ScratchFolder folder;
};

TEST_F(ConfigFile, SurvivesWithEveryFieldAndIsTheOwnersOnly) {
    const std::filesystem::path file = folder / "databases.toml";
    const DbConfig odd{"Store \"2\"", "C:\\x\\y.store", "abc", "p;'\\\n", "I", "1"};
    ConfigStore store(file);
    store.load();
    EXPECT_TRUE(store.all().empty());
    store.put(odd);
    store.put({"Other", "s", "", "", "", ""});
    store.setDefault("Other");
    store.save();
    EXPECT_EQ(std::filesystem::status(file).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    ConfigStore again(file);
    again.load();
    ASSERT_EQ(again.all().size(), 2U);
    EXPECT_EQ(again.all()[0], odd);
    EXPECT_EQ(again.defaultName(), "Other");
    again.remove("other");
    EXPECT_EQ(again.defaultName(), "");
}

TEST_F(ConfigFile, DamageIsToldAndNeverOverwritten) {
    const std::filesystem::path file = folder / "databases.toml";
    std::ofstream(file) << "\x01\x02 garbage = [";
    ConfigStore store(file);
    store.load();
    EXPECT_TRUE(store.all().empty());
    EXPECT_NE(store.problem(), "");
    store.put({"New", "s", "", "", "", ""});
    store.save();
    EXPECT_TRUE(std::filesystem::exists(folder / "databases.toml.damaged"));
    store.load();
    EXPECT_EQ(store.all().size(), 1U);
}

TEST(ConnectString, NamesItsSourceWholeWhateverPathAndPasswordHold) {
    const struct {
        const char* source;
        const char* password;
    } cases[] = {
        {"/shops/a.store", ""}, {"/shops/north; south/a;b.store", "x"}, {"/shops/a=b.store", "p;q"}, {"SRV\\ONE", "a; Data Source=b"}};
    for (const auto& one : cases) {
        for (const char* integrated : {"", "1"}) {
            const DbConfig config{"Shop", one.source, "1", one.password, "", integrated};
            EXPECT_EQ(db::connectionParts(connectString(config)).at("data source"), one.source);
        }
    }
    EXPECT_EQ(db::connectionParts("Data Source = a.store ;Provider=x").at("data source"), "a.store");
}

} // namespace
} // namespace merchantry::app
