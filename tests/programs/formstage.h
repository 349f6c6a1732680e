#pragma once

#include "ui/desk.h"
#include "ui/form.h"
#include "ui/play/player.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>

#include <map>
#include <memory>
#include <set>

namespace merchantry::programs {

// Draws the forms of a script in windows; a test looks at those that the script wants a picture of.
class FormStage : public ui::play::Stage {
public:
    void prepared(ui::Form& form) override { windows_[&form] = new ui::FormWindow(painter_, form); }
    void opened(ui::Form& form) override {
        ui::FormWindow* const window = windows_.at(&form);
        ui::FormWindow* const over = below(form);
        if (form.desk().floating(form) && over != nullptr)
            over->embed(*window);
        else
            window->open(over);
    }
    void vanished(ui::Form& form) override {
        if (ui::FormWindow* const window = windowOf(&form))
            window->retire();
        windows_.erase(&form);
    }
    void settle() override { QCoreApplication::processEvents(); }
    const ui::TextMeasure* textMeasure() const override { return &painter_.textMeasure(); }
    void picture(ui::Form& form, const std::string& name) override {
        if (ui::FormWindow* const window = windowOf(&form)) {
            QCoreApplication::processEvents();
            seen.insert(form.name());
            look(*window, form, name);
        }
    }

    std::set<std::string> seen;

protected:
    virtual void look(ui::FormWindow& window, ui::Form& form, const std::string& name) = 0;

private:
    ui::FormWindow* windowOf(const ui::Form* form) const {
        const auto found = windows_.find(form);
        return found == windows_.end() ? nullptr : found->second;
    }
    // The newest window but for the form's own.
    ui::FormWindow* below(const ui::Form& form) const {
        const auto& open = form.desk().openForms();
        for (auto other = open.rbegin(); other != open.rend(); ++other)
            if (ui::FormWindow* const window = *other == &form ? nullptr : windowOf(*other);
                window != nullptr && window->isVisible() && !form.desk().floating(**other))
                return window;
        return nullptr;
    }

    ui::QtDesk painter_{*static_cast<QApplication*>(QApplication::instance()), ui::Tone::Light};
    std::map<const ui::Form*, ui::FormWindow*> windows_;
};

// Plays the script that opens every form, on an empty store; gives what went wrong, and every form that was not opened.
std::string playEveryForm(FormStage& stage);

} // namespace merchantry::programs
