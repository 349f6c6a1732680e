#include "ui/qt/drawing.h"

#include "ui/chart.h"
#include "ui/frame.h"
#include "ui/gestures.h"
#include "ui/qt/roles.h"
#include "ui/qt/skin.h"
#include "ui/qt/texts.h"
#include "ui/reportview.h"

#include <QFontMetrics>
#include <QLabel>
#include <QStyle>

namespace merchantry::ui {

void Drawing::wish(int characters, int lines) {
    const QFontMetrics metrics(widget_->font());
    if (characters > 0)
        widget_->setFixedWidth(characters * metrics.averageCharWidth() + 24);
    if (lines > 0)
        widget_->setMinimumHeight(lines * metrics.lineSpacing() + 16);
}

void Drawing::refreshCommon() {
    if (widget_->isEnabled() != control_.enabled())
        widget_->setEnabled(control_.enabled());
    widget_->setToolTip(plainTip(toQt(control_.toolTip())));
    if (widget_->isVisibleTo(widget_->parentWidget()) != control_.visible())
        widget_->setVisible(control_.visible());
    if (companion_ != nullptr) {
        companion_->setVisible(control_.visible());
        companion_->setEnabled(control_.enabled());
    }
}

std::unique_ptr<Drawing> draw(FormWindow& host, Control& control, QWidget* parent) {
    switch (control.role()) {
    case Role::Label:
        return drawLabel(host, static_cast<Label&>(control), parent);
    case Role::TextBox:
        return drawTextBox(host, static_cast<TextBox&>(control), parent);
    case Role::Button:
        return drawButton(host, static_cast<Button&>(control), parent);
    case Role::Image:
        return drawImage(host, static_cast<Image&>(control), parent);
    case Role::CheckBox:
        return drawCheckBox(host, static_cast<CheckBox&>(control), parent);
    case Role::OptionButton:
        return drawOption(host, static_cast<OptionButton&>(control), parent);
    case Role::ListBox:
        return drawList(host, static_cast<ListBox&>(control), parent);
    case Role::ComboBox:
        return drawCombo(host, static_cast<ComboBox&>(control), parent);
    case Role::Frame:
        return drawFrame(host, static_cast<Frame&>(control), parent);
    case Role::TabSet:
        return drawTabSet(host, static_cast<TabSet&>(control), parent);
    case Role::Grid:
        return drawGrid(host, static_cast<Grid&>(control), parent);
    case Role::ProgressBar:
        return drawProgress(host, static_cast<ProgressBar&>(control), parent);
    case Role::Toolbar:
        return drawToolbar(host, static_cast<Toolbar&>(control), parent);
    case Role::ReportView:
        return drawReportView(host, static_cast<ReportView&>(control), parent);
    case Role::Chart:
        return drawChart(host, static_cast<Chart&>(control), parent);
    case Role::MenuEntry:
    case Role::Timer:
        break;
    }
    return drawNothing(host, control, parent);
}

} // namespace merchantry::ui
