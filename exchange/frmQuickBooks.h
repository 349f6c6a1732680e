#pragma once

#include "exchange/accounting/daybook.h"
#include "exchange/accounting/sentdays.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <filesystem>
#include <optional>

namespace merchantry::exchange {

// Sends the store's days to accounting: what each came to and how it is booked, which account takes what, and what went out. A day goes out
// once, when it is over and all of it agrees.
class frmQuickBooks : public ui::Form {
public:
    explicit frmQuickBooks(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Activate() override;

    void cmdShow_Click();
    void cmdExport_Click();
    void cmdSendAgain_Click();
    void read();
    void showDays();
    void showLines();
    void showSums();
    void showAccounts();
    void showSent();
    void grdAccounts_ValidateEdit(int row, int column, const std::string& text, bool& cancel);
    void grdAccounts_AfterEdit(int row, int column);
    std::vector<MappedAccount> edited(int row, int column, const std::string& text) const;
    std::string stateOf(const BookedDay& day) const;
    std::optional<Date> dayIn(ui::TextBox& box);
    std::vector<BookedDay> unsent() const;
    bool mayGo(const std::vector<BookedDay>& days);
    void send(const std::vector<BookedDay>& days, const std::filesystem::path& target);
    std::optional<std::filesystem::path> target(const std::string& name);
    bool work(const char* procedure, const std::string& what, const std::function<void(db::Session&, const BookProgress&)>& body);

    ui::TextBox txtFrom{*this, "txtFrom"};
    ui::TextBox txtTo{*this, "txtTo"};
    ui::Button cmdShow{*this, "cmdShow", "Sho&w"};
    ui::Label lblDays{*this, "lblDays"};
    ui::Label lblSales{*this, "lblSales"};
    ui::Label lblTax{*this, "lblTax"};
    ui::Label lblBills{*this, "lblBills"};
    ui::TabSet tabBooks{*this, "tabBooks", {"Days", "Accounts", "Sent Files"}};
    ui::Grid grdDays{*this, "grdDays"};
    ui::Label lblDay{*this, "lblDay"};
    ui::Grid grdLines{*this, "grdLines"};
    ui::Grid grdAccounts{*this, "grdAccounts"};
    ui::Grid grdSent{*this, "grdSent"};
    ui::Button cmdSendAgain{*this, "cmdSendAgain", "Send A&gain..."};
    ui::Label lblState{*this, "lblState"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdExport{*this, "cmdExport", "&Export..."};

    Daybook book_;
    std::map<Date, SentDay> sentDays_;
    std::vector<Date> changed_; // after they went out
    std::vector<SentFile> sentFiles_;
    bool fullYears_ = true; // as the accounting program's version wants dates
    bool activated_ = false;
};

} // namespace merchantry::exchange
