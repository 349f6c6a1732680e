#include "ui/qt/menu.h"

#include "ui/gestures.h"
#include "ui/menu.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QToolButton>

#include <algorithm>

namespace merchantry::ui {
namespace {

// Where a window is too narrow for their words, the buttons show their icons alone.
class Bar : public QWidget {
public:
    using QWidget::QWidget;
    void add(QToolButton* button) {
        worded_ += button->sizeHint().width();
        button->setMinimumWidth(button->iconSize().width());
        layout()->addWidget(button);
        buttons_.push_back(button);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        const QMargins edges = layout()->contentsMargins();
        const int room = width() - edges.left() - edges.right() - layout()->spacing() * static_cast<int>(buttons_.size());
        for (QToolButton* button : buttons_)
            button->setToolButtonStyle(room < worded_ || button->text().isEmpty() ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
    }

private:
    std::vector<QToolButton*> buttons_;
    int worded_ = 0; // so wide with words
};

class ToolbarDrawing : public Drawing {
public:
    ToolbarDrawing(FormWindow& host, Toolbar& bar, QWidget* parent) : Drawing(host, bar, new Bar(parent)), bar_(bar) {
        setLook(*widget_, "bar");
        widget_->setAttribute(Qt::WA_StyledBackground);
        widget_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        auto* box = new QHBoxLayout(widget_);
        box->setContentsMargins(measure::kEdge - 10, 6, measure::kEdge - 10, 6);
        box->setSpacing(2);
        for (const ToolButton& button : bar.buttons())
            static_cast<Bar*>(widget_)->add(made(button));
        box->addStretch(1);
    }

    bool wide() const override { return true; }
    void refresh(Aspect aspect) override {
        for (std::size_t i = 0; aspect == Aspect::State && i < made_.size(); ++i)
            made_[i]->setEnabled(bar_.buttonEnabled(bar_.buttons()[i].key));
        if (aspect == Aspect::Look)
            for (std::size_t i = 0; i < made_.size(); ++i)
                made_[i]->setIcon(host_.skin().icon(toQt(bar_.buttons()[i].icon), host_.skin().tokens().accent));
    }

private:
    QToolButton* made(const ToolButton& button) {
        auto* tool = new QToolButton(widget_);
        tool->setText(QLatin1Char(' ') + toQt(button.caption)); // a little room behind the icon
        tool->setToolTip(plainTip(toQt(button.toolTip)));
        tool->setIconSize(QSize(measure::kIcon, measure::kIcon));
        tool->setToolButtonStyle(button.caption.empty() ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
        tool->setFocusPolicy(Qt::NoFocus);
        tool->setAccessibleName(toQt(button.toolTip));
        QObject::connect(tool, &QToolButton::clicked, widget_, [this, key = button.key] {
            host_.act([&] {
                if (host_.finishEdit())
                    gestures::press(bar_, key);
            });
        });
        made_.push_back(tool);
        return tool;
    }

    Toolbar& bar_;
    std::vector<QToolButton*> made_;
};

} // namespace

std::unique_ptr<MenuDrawing> MenuDrawing::of(FormWindow& host) {
    const auto& controls = host.form()->controls();
    const bool any = std::any_of(controls.begin(), controls.end(), [](const Control* c) { return c->role() == Role::MenuEntry; });
    return any ? std::unique_ptr<MenuDrawing>(new MenuDrawing(host)) : nullptr;
}

MenuDrawing::MenuDrawing(FormWindow& host) : host_(host), bar_(new QMenuBar(&host)) {
    bar_->setNativeMenuBar(false);
    for (Control* control : host.form()->controls())
        if (auto* entry = dynamic_cast<MenuEntry*>(control); entry != nullptr && entry->parent() == nullptr)
            add(nullptr, *entry);
}

void MenuDrawing::add(QMenu* menu, MenuEntry& entry) {
    QAction* action = nullptr;
    if (!entry.children().empty()) {
        QMenu* const inner = menu == nullptr ? bar_->addMenu(toQt(entry.caption())) : menu->addMenu(toQt(entry.caption()));
        for (MenuEntry* child : entry.children())
            add(inner, *child);
        action = inner->menuAction();
    } else if (entry.caption() == "-" && menu != nullptr) {
        action = menu->addSeparator();
    } else {
        action = menu == nullptr ? bar_->addAction(toQt(entry.caption())) : menu->addAction(toQt(entry.caption()));
        QObject::connect(action, &QAction::triggered, bar_, [this, &entry] {
            host_.act([&] {
                if (host_.finishEdit())
                    gestures::press(entry);
            });
        });
    }
    action->setObjectName(toQt(entry.name()));
    actions_[&entry] = action;
    refresh(entry);
}

void MenuDrawing::refresh(Control& entry) {
    const auto found = actions_.find(&entry);
    if (found == actions_.end())
        return;
    found->second->setEnabled(entry.enabled());
    found->second->setVisible(entry.visible());
    found->second->setStatusTip(toQt(entry.toolTip()));
}

Drawn drawToolbar(FormWindow& host, Toolbar& bar, QWidget* parent) {
    return std::make_unique<ToolbarDrawing>(host, bar, parent);
}

} // namespace merchantry::ui
