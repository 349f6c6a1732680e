#include "app/firstroad.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/desk.h"

#include <array>
#include <iterator>

namespace merchantry::app {

using namespace ui;

namespace {

enum class State { ToDo, AsSupplied, Done };

struct Found {
    State state = State::ToDo;
    std::string text{};
};

// What the store has, as bsp_FirstRoad tells it.
class Store {
public:
    explicit Store(db::Recordset& row) : row_(row) {}
    std::string text(const char* column) const { return std::string(trimmed(row_[column].text())); }
    std::int64_t count(const char* column) const { return row_[column].Value().toInteger(); }

private:
    db::Recordset& row_;
};

Found address(const Store& store) {
    if (store.text("StoreName").empty())
        return {State::ToDo, "Stands on receipts, orders and reports"};
    if (store.text("Address").empty())
        return {State::ToDo, store.text("StoreName") + ", without an address yet"};
    return {State::Done, store.text("StoreName")};
}

Found taxes(const Store& store) {
    const std::int64_t classes = store.count("TaxClasses");
    if (classes == 0)
        return {State::ToDo, "Nothing is taxed yet"};
    return {State::Done, counted(classes, "class", "classes") + " beside the untaxed one"};
}

Found departments(const Store& store) {
    if (store.count("Departments") == 0)
        return {State::ToDo, "Every item belongs to one; there is only the base one yet"};
    return {State::Done, counted(store.count("Departments"), "department") + " beside the base one"};
}

Found tenders(const Store& store) {
    return {store.count("TendersChosen") > 0 ? State::Done : State::AsSupplied,
            counted(store.count("Tenders"), "way") + " to pay at the registers"};
}

Found cashiers(const Store& store) {
    if (store.count("FirstPassword") > 0)
        return {State::ToDo, "The manager's password is still \"manager\""};
    return {State::Done, counted(store.count("Cashiers"), "cashier")};
}

Found registers(const Store& store) {
    return {store.count("RegistersSetUp") > 0 ? State::Done : State::AsSupplied, counted(store.count("Registers"), "register")};
}

Found items(const Store& store) {
    if (store.count("Items") == 0)
        return {State::ToDo, "Its code first, then name, price and stock"};
    return {State::Done, counted(store.count("Items"), "item")};
}

struct Step {
    const char* caption;
    const char* form; // empty for the first item, which the main window adds
    Found (*look)(const Store& store);
};
constexpr Step kSteps[] = {
    {"&1  Name and Address", "frmOptions", address},
    {"&2  Taxes", "frmTaxClasses", taxes},
    {"&3  Departments", "frmDepartments", departments},
    {"&4  Tenders", "frmTenderTypes", tenders},
    {"&5  Cashiers", "frmCashiers", cashiers},
    {"&6  Registers", "frmRegisters", registers},
    {"&7  First Item", "", items},
};

constexpr const char* kWelcome = "Seven steps to the first sale, in any order.";
constexpr const char* kReady = "Your shop is ready for its first sale.";

bool isThere(const Step& step) {
    const Doors& doors = modMain().doors;
    return *step.form == '\0' ? doors.GetSKU && doors.GetMatrixSKU && doors.CheckSKUs : doors.HasScreen && doors.HasScreen(step.form);
}

std::string numbered(const char* name, std::size_t number) {
    return name + ("(" + std::to_string(number)) + ")";
}

const char* words(State state) {
    return state == State::Done ? "Done" : state == State::ToDo ? "To do" : "As supplied";
}

Color colorOf(State state) {
    return state == State::Done ? Color::Green : state == State::ToDo ? Color::Yellow : Color::None;
}

} // namespace

FirstRoad::FirstRoad(Form& main, std::function<void(const std::string& form)> open)
    : main_(main), open_(std::move(open)), fraFirstRoad(main, "fraFirstRoad", "Your Shop in Ten Minutes"),
      lblFirstRoad(main, "lblFirstRoad", kWelcome), cmdPutAway(main, "cmdPutAway", "Do Not Show A&gain") {
    for (std::size_t step = 0; step < std::size(kSteps); ++step) {
        cmdStep.push_back(std::make_unique<Button>(main, numbered("cmdStep", step), kSteps[step].caption));
        cmdStep.back()->click = [this, step] { cmdStep_Click(step); };
        lblState.push_back(std::make_unique<Label>(main, numbered("lblState", step)));
        lblFound.push_back(std::make_unique<Label>(main, numbered("lblFound", step)));
    }
    cmdPutAway.setToolTip("On every machine of this store. Help, Your Shop in Ten Minutes brings the steps back.");
    cmdPutAway.click = [this] { cmdPutAway_Click(); };
    fraFirstRoad.setVisible(false);
}

Item FirstRoad::layout() {
    std::vector<Item> lines;
    for (std::size_t step = 0; step < std::size(kSteps); ++step)
        lines.push_back(row({at(*cmdStep[step]).wide(22), at(*lblState[step]).wide(11), at(*lblFound[step]).wide(46), stretch()}));
    lines.push_back(row({at(lblFirstRoad), stretch(), at(cmdPutAway)}));
    return group(fraFirstRoad, column(std::move(lines)));
}

// A failure leaves the window as it is without the steps: they are an offer, and the log keeps what failed elsewhere.
void FirstRoad::attempt(const std::function<void()>& look) {
    try {
        look();
    } catch (const std::exception&) {
        show(false);
    }
}

// A store at work is asked for nothing but this.
void FirstRoad::offer() {
    attempt([this] {
        if (openDirect("SELECT ID FROM FirstRoad WHERE PutAway IS NULL")->Eof())
            show(false);
        else
            bringBack();
    });
}

void FirstRoad::bringBack() {
    attempt([this] {
        const auto rows = openDirect("bsp_FirstRoad");
        tell(*rows);
        show(true);
    });
}

void FirstRoad::refresh() {
    if (shown())
        bringBack();
}

void FirstRoad::tell(db::Recordset& rows) {
    const Store store(rows);
    bool ready = true;
    for (std::size_t step = 0; step < std::size(kSteps); ++step) {
        const Found found = kSteps[step].look(store);
        ready = ready && found.state != State::ToDo;
        lblState[step]->setCaption(words(found.state));
        lblState[step]->setForeColor(colorOf(found.state));
        lblFound[step]->setCaption(found.text);
        cmdStep[step]->setEnabled(isThere(kSteps[step]));
    }
    lblFirstRoad.setCaption(ready ? kReady : kWelcome);
}

void FirstRoad::show(bool on) {
    fraFirstRoad.setVisible(on);
    if (changed)
        changed();
}

void FirstRoad::cmdStep_Click(std::size_t step) {
    CloseReportForms();
    open_(kSteps[step].form);
    refresh();
}

void FirstRoad::cmdPutAway_Click() {
    if (guarded({"MR_frmMain", "cmdPutAway_Click"}, [] { modMain().Conn->Execute("bsp_PutFirstRoadAway"); }))
        show(false);
}

} // namespace merchantry::app
