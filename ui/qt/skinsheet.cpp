#include "ui/qt/skin.h"

#include <utility>

namespace merchantry::ui {
namespace {

// What of the look Qt's own widgets can be told by a sheet. Words in braces are the tokens. What a sheet would paint over (cells,
// ticks, tabs) is painted by its own drawing.
const char* const kSheet = R"(
* { outline: none; }
QToolTip { background: {ink}; color: {paper}; border: none; padding: 6px 8px; }
QLabel { background: transparent; }
QLabel[look="caption"], QLabel[look="note"] { color: {dim}; }
QLabel[look="link"] { color: {accent}; padding: 4px 2px; }
QLabel[look="title"] { font-size: 20px; font-weight: 600; }
QLabel[look="figure"] { font-size: 18px; font-weight: 600; }
QLabel[look="heading"] { font-weight: 600; }
QLabel[look="status"], QLabel[look="gridstatus"] { color: {dim}; font-size: 12px; }
QLabel[look="gridstatus"] { border-top: 1px solid {line}; }

QLineEdit, QPlainTextEdit, QComboBox[look] { background: {panel}; color: {ink}; border: 1px solid {line}; border-radius: 6px;
  selection-background-color: {accent}; selection-color: {accentInk}; }
QLineEdit { padding: 0 9px; }
QPlainTextEdit { padding: 4px 5px; }
QComboBox[look] { padding: 0 28px 0 11px; }
QLineEdit:hover, QPlainTextEdit:hover, QComboBox[look]:hover { border-color: {strongLine}; }
QLineEdit[readOnly="true"], QPlainTextEdit[readOnly="true"], QLineEdit:disabled, QPlainTextEdit:disabled, QComboBox[look]:disabled,
QComboBox[readOnly="true"] { background: {head}; color: {dim}; border-color: {line}; }
QLineEdit:focus, QPlainTextEdit:focus, QComboBox[look]:focus { border: 2px solid {accent}; }
QLineEdit:focus { padding: 0 8px; }
QPlainTextEdit:focus { padding: 3px 4px; }
QComboBox[look]:focus { padding: 0 27px 0 10px; }
QLineEdit[look="cell"], QLineEdit[look="cell"]:focus { border: 2px solid {accent}; border-radius: 4px; padding: 0 6px; }
QComboBox[look="cell"], QComboBox[look="cell"]:focus { border: 2px solid {accent}; border-radius: 4px; padding: 0 6px; }
QComboBox[look] QLineEdit, QComboBox[look] QLineEdit:focus { border: none; background: transparent; padding: 0; margin-left: -2px; }
QComboBox[look]::drop-down { border: none; width: 28px; }
QComboBox[look]::down-arrow { image: none; width: 0; height: 0; }
QComboBox QAbstractItemView { background: {panel}; color: {ink}; border: 1px solid {line}; padding: 4px;
  selection-background-color: {soft}; selection-color: {ink}; }
QListView[look="list"] { background: {panel}; color: {ink}; border: 1px solid {line}; border-radius: 6px; padding: 4px; }
QListView[look="list"]:focus { border: 2px solid {accent}; padding: 3px; }
QListView[look="list"]::item, QComboBox QAbstractItemView::item { min-height: 28px; padding: 0 6px; border-radius: 4px; }
QListView[look="list"]::item:hover, QComboBox QAbstractItemView::item:hover { background: {head}; color: {ink}; }
QListView[look="list"]::item:selected, QComboBox QAbstractItemView::item:selected { background: {soft}; color: {ink}; }

QTreeView[look="reporttree"] { background: {panel}; color: {ink}; border: none; border-right: 1px solid {line}; padding: 6px;
  show-decoration-selected: 0; }
QTreeView[look="reporttree"]::item { min-height: 26px; padding: 0 4px; border-radius: 4px; }
QTreeView[look="reporttree"]::item:hover { background: {head}; color: {ink}; }
QTreeView[look="reporttree"]::item:selected { background: {soft}; color: {ink}; }
QSplitter::handle { background: transparent; }

QPushButton { background: {panel}; color: {ink}; border: 1px solid {line}; border-radius: 6px; padding: 0 15px; min-height: 30px; }
QPushButton:hover { background: {soft}; border-color: {accent}; }
QPushButton:pressed { background: {line}; }
QPushButton:focus { border: 2px solid {accent}; padding: 0 14px; min-height: 28px; }
QPushButton:disabled { color: {dim}; background: {head}; border-color: {head}; }
QPushButton[kind="default"] { background: {accent}; color: {accentInk}; border-color: {accent}; font-weight: 600; }
QPushButton[kind="default"]:hover { background: {accentOver}; border-color: {accentOver}; }
QPushButton[kind="default"]:focus { border: 2px solid {ink}; }
QPushButton[kind="default"]:disabled { color: {dim}; background: {head}; border-color: {head}; }
QPushButton[kind="quiet"] { min-height: 20px; padding: 0 11px; border-color: {accent}; }
QPushButton[kind="quiet"]:focus { min-height: 18px; padding: 0 10px; }
QPushButton[kind="danger"] { color: {danger}; }
QPushButton[kind="danger"]:hover { background: {partial}; color: {ink}; border-color: {danger}; }
QPushButton[kind="danger"]:focus { border: 2px solid {danger}; }
QPushButton[kind="danger"]:disabled { color: {dim}; }

QFrame[look="panel"] { background: {panel}; border: 1px solid {line}; border-radius: 8px; }
QFrame[look="panel"][current="true"] { border-color: {accent}; }
QFrame[look="bare"] { background: transparent; border: none; }
QFrame[look="group"] { background: transparent; border: 1px solid {line}; border-radius: 8px; }
QWidget[look="float"] { background: {soft}; border: 1px solid {accent}; border-radius: 8px; }
QTableView { background: transparent; border: none; }
QTableView QHeaderView { background: transparent; border: none; }
QAbstractScrollArea::corner { background: transparent; border: none; }

QMenuBar { background: {panel}; color: {ink}; border-bottom: 1px solid {line}; padding: 3px 8px; }
QMenuBar::item { background: transparent; padding: 5px 12px; border-radius: 6px; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: {soft}; }
QMenu { background: {panel}; color: {ink}; border: 1px solid {line}; padding: 6px; }
QMenu::item { padding: 6px 28px 6px 12px; border-radius: 4px; }
QMenu::item:selected { background: {soft}; }
QMenu::item:disabled { color: {dim}; }
QMenu::separator { height: 1px; background: {line}; margin: 6px 8px; }

QWidget[look="bar"] { background: {panel}; border-bottom: 1px solid {line}; }
QLabel[look="status"] { background: {panel}; border-top: 1px solid {line}; }
QToolButton { background: transparent; color: {ink}; border: 1px solid transparent; border-radius: 6px; padding: 6px 10px; }
QToolButton:hover { background: {soft}; }
QToolButton:pressed { background: {line}; }
QToolButton:focus { border: 2px solid {accent}; padding: 5px 9px; }
QToolButton:disabled { color: {dim}; }
QDialog QToolButton { padding: 2px; }
QDialog QRadioButton::indicator, QDialog QCheckBox::indicator { width: 14px; height: 14px; background: {panel};
  border: 1px solid {strongLine}; border-radius: 3px; }
QDialog QRadioButton::indicator { border-radius: 8px; }
QDialog QRadioButton::indicator:checked { width: 6px; height: 6px; border: 5px solid {accent}; }
QDialog QCheckBox::indicator:checked { background: {accent}; border-color: {accent}; }
QDialog QRadioButton::indicator:disabled, QDialog QCheckBox::indicator:disabled { background: {head}; border-color: {line}; }
QToolButton[look="image"] { padding: 4px; background: {panel}; border-color: {line}; }
QToolButton[look="image"]:focus { padding: 3px; border-color: {accent}; }

QProgressBar { background: {head}; border: none; border-radius: 4px; max-height: 8px; min-height: 8px; }
QProgressBar::chunk { background: {accent}; border-radius: 4px; }

QScrollBar { background: transparent; }
QScrollBar:vertical { width: 12px; margin: 2px; }
QScrollBar:horizontal { height: 12px; margin: 2px; }
QScrollBar::handle { background: {line}; border-radius: 4px; }
QScrollBar::handle:hover { background: {strongLine}; }
QScrollBar::handle:vertical { min-height: 32px; }
QScrollBar::handle:horizontal { min-width: 32px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
)";

} // namespace

QString Skin::sheet() const {
    const Tokens& t = tokens_;
    const std::pair<const char*, QColor> words[] = {{"paper", t.paper},     {"panel", t.panel},         {"ink", t.ink},
                                                    {"dim", t.dim},         {"line", t.line},           {"strongLine", t.strongLine},
                                                    {"accent", t.accent},   {"accentInk", t.accentInk}, {"accentOver", t.accentOver},
                                                    {"soft", t.soft},       {"head", t.head},           {"alternate", t.alternate},
                                                    {"partial", t.partial}, {"danger", t.danger}};
    QString sheet = QString::fromLatin1(kSheet);
    for (const auto& [word, color] : words)
        sheet.replace(QLatin1Char('{') + QLatin1String(word) + QLatin1Char('}'), color.name());
    return sheet;
}

} // namespace merchantry::ui
