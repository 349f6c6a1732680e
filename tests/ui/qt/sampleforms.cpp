#include "tests/ui/qt/sampleforms.h"

#include "ui/desk.h"

namespace merchantry::ui::sample {

std::string ManyRows::columnName(int column) const {
    static const char* const kNames[] = {"SKU", "Name", "Stock", "Price"};
    return kNames[column];
}

Value ManyRows::cell(int row, int column) const {
    return Value(cellText(row, column));
}

std::string_view ManyRows::cellText(int row, int column) const {
    ++asked;
    const std::string number = std::to_string(row + 1);
    text_ = column == 0 ? "A" + number : column == 1 ? "Item number " + number : column == 2 ? std::to_string(row % 97) : "2.5";
    return text_;
}

void ManyRows::setCell(int row, int column, const Value& value) {
    written.push_back(std::to_string(row) + "/" + std::to_string(column) + "=" + value.toText());
}

Shell::Shell(Desk& desk)
    : Form(desk, "frmShell", "Merchantry Manager"), Toolbar1(*this, "Toolbar1",
                                                             {{"Items", "Items", "View/Modify Items", "items"},
                                                              {"Customers", "Customers", "View/Modify Customers", "customers"},
                                                              {"Import", "Import", "Excel Import", "import"},
                                                              {"Backup", "Backup", "Backup/Restore Database", "backup"},
                                                              {"Options", "Options", "Options", "options"},
                                                              {"Labels", "Labels", "Print Labels", "labels"},
                                                              {"AddNow", "Add item", "Add Item Now", "addnow"},
                                                              {"Books", "Export", "Quickbooks Export", "quickbooks"}}) {
    setIcon("store");
    setSize(1000 * kTwipsPerPixel, 640 * kTwipsPerPixel);
    mnuExit.click = [this] { unload(); };
    mnuDepartments.click = [this] { pressed.push_back("mnuDepartments"); };
    Toolbar1.buttonClick = [this](const std::string& key) { pressed.push_back(key); };
}

ItemSheet::ItemSheet(Desk& desk) : Form(desk, "frmItemSheet", "Item") {
    setIcon("item");
    txtName.setText("White hanging heart t-light holder");
    txtPrice.setText("2.55");
    txtPrice.money = true;
    txtStock.setText("148");
    txtReorder.setText("48");
    for (TextBox* number : {&txtPrice, &txtStock, &txtReorder})
        number->alignRight = true;
    txtStock.setLocked(true);
    txtPhone.mask = "(###) ###-####";
    txtNotes.multiline = true;
    txtNotes.placeholder = "What a cashier should know about this item";
    lstSuppliers.dropDown = false;
    lblWarning.setForeColor(Color::Red);
    lblMore.click = [this] { events.push_back("lblMore click"); };
    imgUp.click = [this] { events.push_back("imgUp click"); };
    imgDown.click = [this] { events.push_back("imgDown click"); };
    cmdDelete.isDanger = true;
    cmdExit.isDefault = cmdExit.isCancel = true;
    cmdExit.click = [this] { unload(); };
    chkActive.setValue(true);
    barStock.set(40);
    fillLists();
    watchEvents();
    setLayout(column({
        row({column({title(lblName), at(lblSKU)}), stretch(), figure("In stock", lblStock), figure("Weighted cost", lblCost),
             figure("Price", lblPrice), figure("Profit", lblProfit)}),
        pages(tabItems, {generalPage(), suppliersPage(), column({at(txtNotes)}),
                         column({field("Reorder &level:", barStock), at(lblWarning), at(lblMore)})}),
        buttons({at(cmdDelete), stretch(), note("Every field is saved as you leave it"), at(cmdExit)}),
    }));
}

void ItemSheet::fillLists() {
    for (const char* type : {"Standard", "Matrix", "Serialized", "Split"})
        lbxType.add(type);
    lbxType.setListIndex(0);
    for (const char* department : {"Candles & lights", "Garden", "Kitchen", "Toys"}) {
        cboDepartment.add(department);
        lstSuppliers.add(std::string(department) + " Ltd.");
    }
    cboDepartment.setListIndex(0);
    lstSuppliers.setListIndex(1);
    dcxTax.add("Sales tax");
    dcxTax.setListIndex(0);
    GridColumn tier{.heading = "Tier"};
    GridColumn quantity{.heading = "Qty >=", .format = GridColumn::Format::Number};
    GridColumn price{.heading = "Unit Price", .format = GridColumn::Format::Currency};
    grdPrices.setColumns({tier, quantity, price});
    for (const auto& line : std::vector<std::vector<std::string>>{
             {"Retail", "1", "2.55"}, {"Retail", "12", "2.30"}, {"Retail", "48", "2.10"}, {"Trade", "1", "1.95"}, {"Trade", "96", "1.79"}})
        grdPrices.addRow(line);
}

void ItemSheet::watchEvents() {
    for (Control* control : controls()) {
        control->gotFocus = [this, control] { events.push_back(control->name() + " got"); };
        control->lostFocus = [this, control] { events.push_back(control->name() + " lost"); };
        control->validate = [this, control](bool&) { events.push_back(control->name() + " validate"); };
    }
    txtName.change = [this] { events.push_back("txtName=" + txtName.text()); };
    chkActive.click = [this] { events.push_back(chkActive.value() ? "chkActive on" : "chkActive off"); };
    cmdAdjust.click = [this] { events.push_back("cmdAdjust click"); };
    lbxType.click = [this] { events.push_back("lbxType " + lbxType.text()); };
    tabItems.change = [this](int left) { events.push_back("tabItems left " + std::to_string(left)); };
}

Item ItemSheet::generalPage() {
    return row({
        fields({
                   field("&Name:", txtName),
                   field("&Type:", lbxType),
                   field("De&partment:", cboDepartment),
                   field("Tax class:", dcxTax),
                   field("P&rice:", txtPrice),
                   field("In &stock:", txtStock, {at(cmdAdjust)}),
                   row({field("Reorder &Qty:", txtReorder), field("P&hone:", txtPhone)}),
                   row({at(chkActive), at(chkSerial), at(chkStamps)}),
               })
            .stretched(3),
        group(fraPrices, at(grdPrices)).stretched(2),
    });
}

Item ItemSheet::suppliersPage() {
    return row({
        at(lstSuppliers).wide(30),
        column({at(imgUp), at(imgDown)}),
        group(fraCost, column({at(optLast), at(optAverage)})),
        stretch(),
    });
}

OrderList::OrderList(Desk& desk) : Form(desk, "frmOrderList", "Purchase Orders") {
    setIcon("items");
    for (const char* entry : {"All Open PO", "Partial", "Closed"})
        cboShow.add(entry);
    cboShow.setListIndex(0);
    cboSort.add("Sort by Date");
    cboSort.setListIndex(0);
    GridColumn number{.heading = "PO Number", .format = GridColumn::Format::Number};
    GridColumn supplier{.heading = "Supplier"};
    GridColumn code{.heading = "Code", .fixedWidth = true};
    GridColumn date{.heading = "Date", .format = GridColumn::Format::Date};
    GridColumn amount{.heading = "PO Amount", .format = GridColumn::Format::Currency};
    GridColumn open{.heading = "Open Amount", .format = GridColumn::Format::Currency};
    GridColumn status{.heading = "Status", .characters = 10};
    status.editor = GridColumn::Editor::Combo;
    status.choices = {{"Open", "O"}, {"Partial", "P"}, {"Closed", "C"}};
    GridColumn print{.heading = "Print"};
    print.editor = GridColumn::Editor::Check;
    grdOrders.setColumns({number, supplier, code, date, amount, open, status, print});
    const std::vector<std::vector<std::string>> lines = {
        {"1042", "Advanced Bicycles", "ADV-01", "11/18/2026", "4310", "4310", "O", "1"},
        {"1041", "Trikes, Inc.", "TRI-07", "11/17/2026", "982.4", "312", "P", "0"},
        {"1040", "Morgan Bike Accessories", "MOR-11", "11/15/2026", "1204.75", "0", "C", "0"},
        {"1039", "Litware, Inc.", "LIT-02", "11/12/2026", "12480.1", "12480.1", "O", "1"},
        {"1038", "Australia Bike Retailer", "AUS-10", "11/11/2026", "640", "0", "C", "0"},
        {"1037", "Green Lake Bike Company", "GRE-99", "11/10/2026", "2115.6", "880.2", "P", "0"}};
    for (const auto& line : lines)
        grdOrders.addRow(line);
    grdOrders.colorOf = [this](int row, int column) {
        if (column != 6)
            return Color::None;
        const std::string stored = grdOrders.rawText(row, column);
        return stored == "O" ? Color::Yellow : stored == "P" ? Color::Red : Color::Green;
    };
    grdOrders.setStatusText("6 orders · open amount $17,982.30");
    grdOrders.emptyText = "No order matches. Choose another state above, or create one.";
    grdOrders.beforeEdit = [this](int row, int column, bool& cancel) {
        events.push_back("before " + std::to_string(row) + "," + std::to_string(column));
        cancel = column == 0;
    };
    grdOrders.validateEdit = [this](int, int, const std::string& text, bool& cancel) {
        events.push_back("validate " + text);
        cancel = text == "bad";
    };
    grdOrders.changeEdit = [this](std::string& text) { events.push_back("typed " + text); };
    grdOrders.afterEdit = [this](int row, int column) { events.push_back("after " + grdOrders.text(row, column)); };
    grdOrders.rowColChange = [this] { events.push_back("row " + std::to_string(grdOrders.row()) + "," + std::to_string(grdOrders.col())); };
    grdOrders.click = [this] { events.push_back("click"); };
    cmdReceive.isDefault = true;
    cmdClose.isCancel = true;
    cmdClose.click = [this] { unload(); };
    cmdReceive.click = [this] { events.push_back("receive"); };
    cmdCancelPO.setEnabled(false);
    setLayout(column({
        row({title(lblTitle), stretch(), at(cboShow).wide(22), at(cboSort).wide(14)}),
        at(grdOrders).high(14),
        buttons({at(cmdCreate), at(cmdView), at(cmdReceive), at(cmdCancelPO), stretch(), at(cmdClose)}),
    }));
}

SearchPanel::SearchPanel(Desk& desk) : Form(desk, "frmSearchPanel", "Search") {
    setIcon("search");
    for (const char* entry : {"All", "Name", "City"})
        cboField.add(entry);
    cboField.setListIndex(0);
    txtText.placeholder = "Type to search";
    setLayout(row({field("&Field:", cboField), at(txtText).stretched()}));
}

SmallDialog::SmallDialog(Desk& desk) : Form(desk, "frmSmallDialog", "Enter SKU") {
    setFixedSize();
    txtPassword.password = true;
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;
    cmdOK.click = cmdCancel.click = [this] { unload(); };
    setLayout(
        column({at(lblAsk), fields({field("&Code:", txtSKU), field("&Password:", txtPassword)}), buttons({at(cmdOK), at(cmdCancel)})}));
}

} // namespace merchantry::ui::sample
