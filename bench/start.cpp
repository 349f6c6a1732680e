// From the start of the process to a login window that takes a name, beside a program that shows an empty window.

#include "app/configstore.h"
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

constexpr int kRuns = 21;

// Starts a program of the folder that this one stands in; the time in milliseconds until it says that its window is painted. What it does
// after that is not measured.
double msUntilPainted(const char* name, const char* argument) {
    const std::string path = (platform::programFolder() / name).string();
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    char said = 0;
    pid_t child = 0;
    const double ms = msOf([&] {
        child = fork();
        if (child == 0) {
            dup2(ends[1], STDOUT_FILENO);
            if (std::freopen("/dev/null", "w", stderr) != nullptr)
                execl(path.c_str(), name, argument, nullptr);
            _exit(127);
        }
        close(ends[1]);
        if (read(ends[0], &said, 1) != 1)
            said = 0;
    });
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (said == 0 || status != 0)
        std::printf("%s FAILED\n", name);
    return ms;
}

// The store is the configured one, as it is for a manager.
void configure(const std::filesystem::path& store) {
    app::ConfigStore configurations(platform::configurationFolder() / "databases.toml");
    configurations.put({"Bench", store.string(), "1", "", "", ""});
    configurations.setDefault("Bench");
    configurations.save();
}

// Windows come up on a display, as a manager's do: where there is none, on one that nobody sees.
void wantDisplay(char** arguments) {
    if (getenv("DISPLAY") != nullptr || getenv("WAYLAND_DISPLAY") != nullptr || getenv("QT_QPA_PLATFORM") != nullptr)
        return;
    execlp("xvfb-run", "xvfb-run", "-a", arguments[0], nullptr);
    std::puts("There is no display and no xvfb-run: the windows are drawn off screen, where an empty one costs next to nothing.");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

} // namespace

int main(int, char** arguments) {
    wantDisplay(arguments);
    const ItemStore items;
    setenv("XDG_CONFIG_HOME", items.folder().c_str(), 1);
    configure(items.file());
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < kRuns; ++i) {
        bare.push_back(msUntilPainted("bench_emptywindow", nullptr));
        ours.push_back(msUntilPainted("merchantry", "--until-login"));
    }
    print("process start to usable login", median(ours), median(bare));
    return 0;
}
