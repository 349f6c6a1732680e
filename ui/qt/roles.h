#pragma once

#include "ui/qt/drawing.h"

#include <memory>

namespace merchantry::ui {

class Button;
class Chart;
class CheckBox;
class ComboBox;
class Frame;
class Grid;
class Image;
class Label;
class ListBox;
class OptionButton;
class ProgressBar;
class ReportView;
class TabSet;
class TextBox;
class Toolbar;

// One function a role, each in the file of the role's name. The widget is made a child of the parent.
using Drawn = std::unique_ptr<Drawing>;
Drawn drawLabel(FormWindow& host, Label& label, QWidget* parent);
Drawn drawTextBox(FormWindow& host, TextBox& box, QWidget* parent);
Drawn drawButton(FormWindow& host, Button& button, QWidget* parent);
Drawn drawImage(FormWindow& host, Image& image, QWidget* parent);
Drawn drawCheckBox(FormWindow& host, CheckBox& box, QWidget* parent);
Drawn drawOption(FormWindow& host, OptionButton& option, QWidget* parent);
Drawn drawList(FormWindow& host, ListBox& list, QWidget* parent);
Drawn drawCombo(FormWindow& host, ComboBox& combo, QWidget* parent);
Drawn drawFrame(FormWindow& host, Frame& frame, QWidget* parent);
Drawn drawTabSet(FormWindow& host, TabSet& tabs, QWidget* parent);
Drawn drawGrid(FormWindow& host, Grid& grid, QWidget* parent);
Drawn drawChart(FormWindow& host, Chart& chart, QWidget* parent);
Drawn drawProgress(FormWindow& host, ProgressBar& bar, QWidget* parent);
Drawn drawToolbar(FormWindow& host, Toolbar& bar, QWidget* parent);
Drawn drawReportView(FormWindow& host, ReportView& view, QWidget* parent);
// An unseen widget for a control whose role has no place on a window.
Drawn drawNothing(FormWindow& host, Control& control, QWidget* parent);

} // namespace merchantry::ui
