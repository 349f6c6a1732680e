#pragma once

#include <span>

namespace merchantry::app {

// What stands behind a command of the main window.
enum class CommandKind {
    Menu,    // a submenu
    Line,    // a line between commands
    Own,     // a procedure of frmMain, by the command's name
    Screen,  // a screen without arguments, modal; target: its form
    Report,  // criteria of a report; target: its key
    Message, // only says something; target: the text
};

// One row of the main window's menu. The table is the menu: its order is the order on the screen. Reports stand in it as their files say.
struct CommandRow {
    const char* parent; // name of the menu it stands in, empty for the bar
    const char* name;
    const char* caption;
    bool closesReports;
    CommandKind kind;
    const char* target;
};

std::span<const CommandRow> commandTable();

} // namespace merchantry::app
