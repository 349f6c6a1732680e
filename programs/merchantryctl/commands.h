#pragma once

#include <CLI/CLI.hpp>

// The subcommands of merchantryctl, one source file each. Each adds itself to the program and sets the exit code: 0 done, 1 failed.
// What they throw is told by main.
namespace merchantry::programs {

void addStoreCommand(CLI::App& program, int& exitCode);
void addSqlCommand(CLI::App& program, int& exitCode);
void addPlayCommand(CLI::App& program, int& exitCode);
void addReportCommand(CLI::App& program, int& exitCode);

} // namespace merchantry::programs
