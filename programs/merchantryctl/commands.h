#pragma once

#include <string>
#include <vector>

// The subcommands of merchantryctl, one source file each, with what main reads from the command line for them. Each gives the exit code:
// 0 done, 1 failed. What they throw is told by main.
namespace merchantry::programs {

// A command line that says what cannot be done; main tells it as a wrong use of the program.
struct UsageError {
    std::string reason;
};

struct SqlOptions {
    std::vector<std::string> files; // the store, or files of recorded answers
    std::string server;             // connection string of the store, or of where to check answers
    bool check = false;
    bool csv = false;
};
int runSql(const SqlOptions& options); // throws UsageError unless it is one store

struct StoreOptions {
    std::string file;   // path of a store file
    std::string server; // connection string of a store on a server, instead of the file
    std::string other;  // the backup, or where to copy
    std::string folder; // of many backups; instead of the other
    int keep = 0;
    bool prove = false;
    bool demo = false;
    bool empty = false;
    bool items = false;
};
// The store is a file or on a server; throws UsageError unless it is just one of them.
int createStore(const StoreOptions& options);
int checkStore(const StoreOptions& options);
int upgradeStore(const StoreOptions& options);
int backupStore(const StoreOptions& options);
int restoreStore(const StoreOptions& options);
int copyStore(const StoreOptions& options);

struct PlayOptions {
    std::string store;
    std::vector<std::string> scripts;
    bool fresh = false;
    bool statements = false;
};
int runPlay(const PlayOptions& options);

struct ReportOptions {
    std::string file;
    std::string store;
    std::string out; // empty for standard output
    std::string where;
    std::string sort;
    bool descending = false;
    std::vector<std::string> parameters;
};
int runReport(const ReportOptions& options);

} // namespace merchantry::programs
