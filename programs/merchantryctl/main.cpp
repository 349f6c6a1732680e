#include "programs/merchantryctl/commands.h"

#include <exception>
#include <iostream>

namespace {

constexpr int kUsage = 2;

int runProgram(int count, char** arguments) {
    int exitCode = 0;
    CLI::App program("The store without a window.", "merchantryctl");
    program.set_version_flag("--version", MERCHANTRY_VERSION);
    program.require_subcommand(1);
    merchantry::programs::addSqlCommand(program, exitCode);
    merchantry::programs::addStoreCommand(program, exitCode);
    merchantry::programs::addPlayCommand(program, exitCode);
    merchantry::programs::addReportCommand(program, exitCode);
    try {
        program.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : kUsage;
    }
    return exitCode;
}

} // namespace

int main(int count, char** arguments) {
    try {
        return runProgram(count, arguments);
    } catch (const std::exception& error) {
        std::cerr << "merchantryctl: " << error.what() << "\n";
        return 1;
    }
}
