#include "ui/desk.h"

#include "base/platform/platform.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/page.h"

#include <algorithm>

namespace merchantry::ui {
namespace {

bool contains(const std::vector<Form*>& forms, const Form& form) {
    return std::find(forms.begin(), forms.end(), &form) != forms.end();
}

} // namespace

Desk::Desk() = default;
Desk::~Desk() = default;

std::shared_ptr<Form> Desk::keep(std::shared_ptr<Form> form) {
    alive_.push_back(form);
    return form;
}

bool Desk::isClosed(const Form& form) {
    return form.closed();
}

void Desk::present(Form& form, bool modal) {
    form.ensureLoaded();
    if (form.closed())
        return;
    form.shown(modal);
    if (contains(open_, form)) {
        std::erase(open_, &form);
        open_.push_back(&form);
    } else {
        open_.push_back(&form);
    }
    opened(form);
    giveKeyboard(form);
    form.activate();
    if (!form.closed() && form.focused() == nullptr)
        form.focusFirst();
}

void Desk::show(Form& form) {
    present(form, false);
}

void Desk::showModal(Form& form) {
    present(form, true);
    runUntil([&form] { return form.closed() || form.hidden(); });
    if (Form* next = top(); next != nullptr && keyboard_ == &form)
        giveKeyboard(*next);
}

void Desk::showFloating(Form& panel) {
    if (!contains(floating_, panel))
        floating_.push_back(&panel);
    present(panel, false);
}

bool Desk::floating(const Form& form) const {
    return contains(floating_, form);
}

Form* Desk::top() const {
    for (auto form = open_.rbegin(); form != open_.rend(); ++form)
        if (!(*form)->hidden() && !floating(**form))
            return *form;
    return nullptr;
}

bool Desk::covered(const Form& form) const {
    for (auto other = open_.rbegin(); other != open_.rend() && *other != &form; ++other)
        if ((*other)->modal() && !(*other)->hidden())
            return true;
    return false;
}

void Desk::closed(Form& form) {
    std::erase(open_, &form);
    std::erase(floating_, &form);
    vanished(form);
    if (keyboard_ != &form)
        return;
    keyboard_ = nullptr;
    if (Form* next = top())
        giveKeyboard(*next);
}

void Desk::giveKeyboard(Form& form) {
    if (keyboard_ == &form)
        return;
    Form* const before = keyboard_;
    keyboard_ = &form;
    if (before != nullptr)
        before->focusAway();
    if (keyboard_ == &form)
        form.focusBack();
}

void Desk::sweep() {
    for (auto& [type, form] : instances_)
        if (form != nullptr && form->closed())
            form.reset();
    std::erase_if(alive_, [](const std::shared_ptr<Form>& form) { return form->closed(); });
}

void Desk::dismissAll() {
    open_.clear();
    floating_.clear();
    keyboard_ = nullptr;
    instances_.clear();
    alive_.clear();
}

void Desk::timerStarted(Timer& timer) {
    armTimer(timer);
}

void Desk::timerStopped(Timer& timer) {
    disarmTimer(timer);
}

std::string Desk::defaultPrinter() {
    const std::vector<std::string> all = printers();
    return all.empty() ? "" : all.front();
}

std::optional<PrintChoice> Desk::printerSetup(const std::string& /*title*/, int /*pages*/) {
    return std::nullopt;
}

std::unique_ptr<PageSink> Desk::pdf(const std::filesystem::path& /*file*/, const std::string& /*title*/) {
    return nullptr;
}

const TextMeasure& Desk::textMeasure() const {
    static const FixedMeasure letters;
    return letters;
}

bool Desk::waitForStore(std::chrono::milliseconds waited) {
    constexpr std::chrono::seconds kLongest{20};
    return waited < kLongest;
}

void Desk::showHelp(const Form& form) {
    const std::filesystem::path folder = programFolder() / "help";
    const std::filesystem::path own = folder / (form.name() + ".htm");
    std::error_code unknown;
    browse((std::filesystem::exists(own, unknown) ? own : folder / "Cover2.htm").string());
}

std::filesystem::path Desk::programFolder() const {
    return platform::programFolder();
}

std::filesystem::path Desk::documentsFolder() const {
    return platform::documentsFolder();
}

} // namespace merchantry::ui
