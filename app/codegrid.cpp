#include "app/codegrid.h"

#include "app/titles.h"
#include "base/text.h"
#include "ui/desk.h"
#include "ui/form.h"

namespace merchantry::app {

using namespace ui;

namespace {

constexpr int kKey = 0;

} // namespace

CodeGrid::CodeGrid(Grid& grid, CodeTable table) : grid_(grid), table_(std::move(table)) {
    grid_.beforeEdit = [this](int row, int column, bool& cancel) { cancel = column == kKey || table_.fixed(row); };
    grid_.endEdit = [this](int, int column, std::string& text) { endName(column, text); };
    grid_.afterEdit = [this](int, int) { tellChanged(); };
    grid_.rowColChange = grid_.afterRefresh = [this] { tellChanged(); };
    grid_.error = [this](const std::string& message, bool& handled) {
        handled = true;
        refused(message);
    };
}

void CodeGrid::load() {
    guarded(table_.loading, [this] { open(); });
}

void CodeGrid::open() {
    const int row = grid_.row();
    release();
    rows_ = openBroker(table_.procedure, db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
    grid_.bind(rows_.get());
    if (row >= 1)
        grid_.setCurrent(std::min(row, grid_.dataRows()), grid_.col());
}

void CodeGrid::release() {
    grid_.bind(nullptr);
    closeRows(rows_);
}

bool CodeGrid::add() {
    return guarded(table_.adding, [this] {
        if (rows_ == nullptr)
            return; // they could not be loaded
        rows_->addRow(table_.newRow());
        grid_.setCurrent(grid_.dataRows(), table_.nameColumn);
        grid_.setFocus();
    });
}

void CodeGrid::remove() {
    if (grid_.form().desk().message(table_.question, table_.questionCaption, MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    if (!grid_.selected())
        return;
    if (table_.stays(grid_.row()))
        grid_.form().desk().message(table_.baseRefusal, kProduct);
    else
        removeRow(grid_.row());
}

// The rows are read again also after a refusal: somebody else may have deleted the row.
void CodeGrid::removeRow(int row) {
    if (table_.removing.tag.empty())
        grid_.removeRow(row);
    else
        guarded(table_.removing, [&] { rows_->removeRow(row - 1); });
    load();
}

void CodeGrid::endName(int column, std::string& text) {
    if (column != table_.nameColumn || !trimmed(text).empty())
        return;
    if (table_.emptyName != nullptr)
        grid_.form().desk().message(table_.emptyName, kProduct);
    text = table_.nameForEmpty;
}

std::int64_t CodeGrid::key(int row) const {
    return row < 1 || row > grid_.dataRows() ? -1 : grid_.value(row, kKey).toInteger();
}

// Without a fresh read a row that somebody else changed would be refused again and again.
void CodeGrid::refused(const std::string& message) {
    Desk& desk = grid_.form().desk();
    if (table_.writeRefused != nullptr)
        desk.message(table_.writeRefused, kProduct);
    else
        desk.message(message, grid_.form().caption(), MessageIcon::Exclamation);
    load();
}

void CodeGrid::tellChanged() {
    if (changed)
        changed();
}

} // namespace merchantry::app
