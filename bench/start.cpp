// From the start of the process to a login window that takes a name, beside a program that shows an empty window.

#include "base/platform/platform.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 15;

// Runs a program of the folder that this one stands in, to its end.
void runProgram(const char* name, std::vector<std::string> arguments) {
    const std::string path = (platform::programFolder() / name).string();
    arguments.insert(arguments.begin(), path);
    std::vector<char*> raw;
    for (std::string& argument : arguments)
        raw.push_back(argument.data());
    raw.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stderr) == nullptr)
            _exit(126);
        execv(path.c_str(), raw.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0)
        std::printf("%s FAILED\n", name);
}

} // namespace

int main() {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const ItemStore items;
    setenv("XDG_CONFIG_HOME", items.folder().c_str(), 1);
    ratio(
        "process start to usable login", kRuns,
        [&] {
            runProgram("merchantry", {"--store", items.file().string(), "--until-login"});
        },
        [] { runProgram("bench_emptywindow", {}); });
    return 0;
}
