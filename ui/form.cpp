#include "ui/form.h"

#include "base/guard.h"
#include "base/lettercase.h"
#include "base/textorder.h"
#include "ui/button.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::ui {
namespace {

void collect(const Item& item, std::vector<Control*>& found) {
    if (item.control() != nullptr)
        found.push_back(item.control());
    for (const Item& child : item.children())
        collect(child, found);
}

// Tells every control which frame or page it stands in.
void settle(const Item& item, Control* container, int page) {
    if (item.control() != nullptr)
        item.control()->putInto(container, page);
    const bool opens = item.kind() == Item::Kind::Group || item.kind() == Item::Kind::Pages;
    int index = 0;
    for (const Item& child : item.children()) {
        settle(child, opens && item.control() != nullptr ? item.control() : container, item.kind() == Item::Kind::Pages ? index : page);
        ++index;
    }
}

// Holds a flag up for its own lifetime.
struct Raised {
    explicit Raised(bool& raised) : flag(raised) { flag = true; }
    ~Raised() { flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
    bool& flag;
};

template <class Wanted> Button* findButton(const std::vector<Control*>& controls, Wanted wanted) {
    for (Control* control : controls)
        if (auto* button = dynamic_cast<Button*>(control); button != nullptr && wanted(*button))
            return button;
    return nullptr;
}

bool isField(const Control* control) {
    const Role role = control->role();
    return role == Role::TextBox || role == Role::ListBox || role == Role::ComboBox || role == Role::Grid;
}

bool standsOn(const Control& container, const Control& control) {
    const Control* around = control.container();
    while (around != nullptr && around != &container)
        around = around->container();
    return around != nullptr;
}

} // namespace

Form::Form(Desk& desk, std::string name, std::string caption) : desk_(desk), name_(std::move(name)), caption_(std::move(caption)) {}

Form::~Form() = default;

void Form::add(Control& control) {
    controls_.push_back(&control);
}

void Form::remove(Control& control) {
    std::erase(controls_, &control);
    if (focused_ == &control)
        focused_ = nullptr;
}

void Form::setCaption(std::string caption) {
    caption_ = std::move(caption);
    if (view_ != nullptr)
        view_->formChanged();
}

void Form::ensureLoaded() {
    if (loaded_)
        return;
    desk_.loading(*this);
    loaded_ = true;
    Form_Load();
}

void Form::unload() {
    if (closed_ || unloading_)
        return;
    bool cancel = false;
    {
        const Restore unloading(unloading_, true);
        if (loaded_)
            Form_Unload(cancel);
    }
    if (cancel)
        return;
    closed_ = true;
    desk_.closed(*this);
}

void Form::hide() {
    hidden_ = true;
    if (view_ != nullptr)
        view_->formChanged();
}

Control* Form::find(const std::string& name) const {
    for (Control* control : controls_)
        if (sameText(control->name(), name))
            return control;
    return nullptr;
}

std::vector<Control*> Form::tabOrder() const {
    std::vector<Control*> order;
    collect(layout_, order);
    return order;
}

namespace {

bool dropsWhatWasTyped(const Control* control) {
    const auto* button = dynamic_cast<const Button*>(control);
    return button != nullptr && button->drops;
}

} // namespace

bool Form::focus(Control* control) {
    if (control == focused_)
        return true;
    if (control != nullptr && (!control->takesFocus() || !control->obstacle().empty()))
        return false;
    Control* const old = focused_;
    if (old != nullptr) {
        bool cancel = false;
        if (old->validate && !away_ && !dropsWhatWasTyped(control))
            old->validate(cancel);
        if (cancel)
            return false;
        // The old control has lost the focus before its event runs, as it would on a window.
        focused_ = control;
        if (old->lostFocus && !away_) {
            const Raised between(moving_);
            old->lostFocus();
        }
        if (closed_ || focused_ != control)
            return focused_ == control;
    }
    focused_ = control;
    if (view_ != nullptr)
        view_->focusChanged();
    if (control != nullptr && control->gotFocus && !away_)
        control->gotFocus();
    return true;
}

void Form::focusAway() {
    if (away_)
        return;
    away_ = true;
    if (focused_ != nullptr && focused_->lostFocus && !moving_)
        focused_->lostFocus();
}

void Form::focusBack() {
    if (!away_)
        return;
    away_ = false;
    if (focused_ != nullptr && focused_->gotFocus && !moving_)
        focused_->gotFocus();
}

// What Tab can stop at now, in order.
std::vector<Control*> Form::tabStops() const {
    std::vector<Control*> order = tabOrder();
    std::erase_if(order, [](Control* control) { return !control->tabStop() || !control->obstacle().empty(); });
    return order;
}

void Form::focusFirst() {
    const std::vector<Control*> order = tabStops();
    const auto first = std::find_if(order.begin(), order.end(), isField);
    if (first != order.end())
        focus(*first);
    else
        focusNext();
}

void Form::focusFirstOn(const Control& tabs) {
    for (Control* control : tabStops())
        if (isField(control) && standsOn(tabs, *control)) {
            focus(control);
            return;
        }
}

void Form::focusNext(bool backwards) {
    std::vector<Control*> order = tabStops();
    if (order.empty()) {
        focus(nullptr);
        return;
    }
    if (backwards)
        std::reverse(order.begin(), order.end());
    const auto here = std::find(order.begin(), order.end(), focused_);
    const auto next = here == order.end() || here + 1 == order.end() ? order.begin() : here + 1;
    if (*next == focused_)
        focus(nullptr); // alone on the form: leaving it is still leaving it
    focus(*next);
}

bool Form::pressKey(const std::string& key) {
    const auto found = keys_.find(key);
    if (found == keys_.end())
        return false;
    found->second();
    return true;
}

Button* Form::defaultButton() const {
    return findButton(controls_, [](const Button& button) { return button.isDefault; });
}

Button* Form::cancelButton() const {
    return findButton(controls_, [](const Button& button) { return button.isCancel; });
}

void Form::touched(const Control& control) {
    touched_ = touched_ || std::find(aside_.begin(), aside_.end(), &control) == aside_.end();
}

void Form::setSize(Twips width, Twips height) {
    if (width_ == width && height_ == height)
        return;
    width_ = width;
    height_ = height;
    if (view_ != nullptr)
        view_->formChanged();
    if (loaded_ && !closed_)
        Form_Resize();
}

void Form::setMinimised(bool on) {
    minimised_ = on;
}

const Form::Operation* Form::operation(const std::string& name) const {
    const auto found = operations_.find(lowerCase(name));
    return found == operations_.end() ? nullptr : &found->second;
}

void Form::offer(std::string operation, Operation procedure) {
    operations_[lowerCase(operation)] = std::move(procedure);
}

void Form::shown(bool asModal) {
    modal_ = asModal;
    hidden_ = false;
}

void Form::activate() {
    if (!closed_)
        Form_Activate();
}

void Form::setLayout(Item layout) {
    layout_ = std::move(layout);
    settle(layout_, nullptr, 0);
}

} // namespace merchantry::ui
