#include "programs/merchantryctl/commands.h"

#include "app/db/embedded/filehead.h"
#include "base/errortext.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

namespace {

using namespace merchantry::programs;

constexpr int kUsage = 2;
constexpr const char* kServerHelp = "A store on a server: \"Data Source=HOST[,PORT]; Initial Catalog=DATABASE; User ID=LOGIN[; "
                                    "Password=WORD][; Encrypt=no]\". Without a password that of MERCHANTRY_PASSWORD counts";

void addSql(CLI::App& program, SqlOptions& options, int& exitCode) {
    CLI::App* sql =
        program.add_subcommand("sql", "Run T-SQL batches from standard input, or typed at a prompt, on a store; GO ends a batch");
    sql->footer(
        "The store is taken as it is: procedures that wait to be renewed, and a store of an earlier version, stay so. \"store upgrade\" "
        "renews them.");
    sql->add_flag("--check", options.check, "The files hold recorded answers; run each on an empty store and tell what differs");
    sql->add_flag("--csv", options.csv, "Rows as comma-separated values");
    sql->add_option("--server", options.server, kServerHelp);
    sql->add_option("FILE", options.files, "The store file, or the files to check");
    sql->callback([&] { exitCode = runSql(options); });
}

void addStore(CLI::App& program, StoreOptions& options, int& exitCode) {
    CLI::App* store = program.add_subcommand("store", "Make, check, upgrade, copy, back up and restore stores");
    store->require_subcommand(1);
    const auto action = [&](const char* name, const char* what, int (*run)(const StoreOptions&)) {
        CLI::App* command = store->add_subcommand(name, what);
        command->callback([run, &options, &exitCode] { exitCode = run(options); });
        return command;
    };
    const auto onFile = [&](CLI::App* command) {
        command->add_option("FILE", options.file, "The store file")->required();
        return command;
    };
    const auto onEither = [&](CLI::App* command) {
        command->add_option("--server", options.server, kServerHelp);
        command->add_option("FILE", options.file, "The store file");
        return command;
    };
    CLI::App* made = onEither(action("create", "Make a new store", createStore));
    made->add_flag("--demo", options.demo, "With demo goods and two years of sales");
    made->add_flag("--empty", options.empty, "With nothing but the rows that every store starts with (the default)");
    CLI::App* checked = onEither(action("check", "Look for damage and broken rules, and prove the stock by its ledger", checkStore));
    checked->add_flag("--items", options.items, "List every item whose stock differs from its ledger");
    onEither(action("upgrade", "Bring a store to this program's version, keeping a copy of a store file", upgradeStore));
    CLI::App* moved = action("copy", "Copy a store into a new one, between a file and a server in either direction", copyStore);
    moved->add_option("FROM", options.file, "The store: a file, or a connection string as --server takes it")->required();
    moved->add_option("TO", options.other, "The store to make, likewise")->required();
    CLI::App* copied = onFile(action("backup", "Copy a store file that may be in use", backupStore));
    CLI::Option* target = copied->add_option("TARGET", options.other, "The copy to make");
    CLI::Option* folder = copied->add_option("--to", options.folder, "Make it in this folder, under a name of its own");
    folder->excludes(target);
    copied->add_option("--keep", options.keep, "How many of this store's backups stay in that folder; all when not given")
        ->needs(folder)
        ->check(CLI::PositiveNumber);
    copied->add_flag("--prove", options.prove, "Restore it into a scratch store and compare")->needs(folder);
    CLI::App* restored = onFile(action("restore", "Overwrite a store file with a backup", restoreStore));
    restored->add_option("BACKUP", options.other, "The backup to take")->required();
}

void addPlay(CLI::App& program, PlayOptions& options, int& exitCode) {
    CLI::App* play = program.add_subcommand("play", "Run screen scripts on a store, without a window");
    play->add_option("--store", options.store, "The store file, or the connection string of a store on a server")->required();
    play->add_flag("--fresh", options.fresh, "Each script on a copy of its own; the store stays as it is");
    play->add_flag("--statements", options.statements, "Show the statements that the screens send");
    play->add_option("SCRIPT", options.scripts, "Scripts, in this order")->required();
    play->callback([&] { exitCode = runPlay(options); });
}

void addReport(CLI::App& program, ReportOptions& options, int& exitCode) {
    CLI::App* report = program.add_subcommand("report", "Run a report file on a store");
    report->add_option("FILE", options.file, "The report file (.rpt)")->required();
    report->add_option("--store", options.store, "The store file, or the connection string of a store on a server")->required();
    report->add_option("--out", options.out,
                       "Where to: the ending tells the kind; rows as comma-separated values on standard output without it");
    report->add_option("--where", options.where, "Conditions, as \"Item.Active = 1\"");
    report->add_option("--sort", options.sort, "The column to sort by");
    report->add_flag("--descending", options.descending, "The largest first");
    report->add_option("--parameter", options.parameters,
                       "Parameters in their order, for reports that want others than conditions and order");
    report->callback([&] { exitCode = runReport(options); });
}

int runProgram(int count, char** arguments) {
    int exitCode = 0;
    SqlOptions sql;
    StoreOptions store;
    PlayOptions play;
    ReportOptions report;
    CLI::App program("The store without a window.", "merchantryctl");
    program.set_version_flag("--version", MERCHANTRY_VERSION);
    program.require_subcommand(1);
    addSql(program, sql, exitCode);
    addStore(program, store, exitCode);
    addPlay(program, play, exitCode);
    addReport(program, report, exitCode);
    try {
        program.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : kUsage;
    }
    return exitCode;
}

// What was found beside a store, however the command ended.
int told(int exitCode) {
    if (const std::string notice = merchantry::db::takeStoreNotice(); !notice.empty())
        std::cerr << notice << "\n";
    return exitCode;
}

} // namespace

int main(int count, char** arguments) {
    try {
        return told(runProgram(count, arguments));
    } catch (const UsageError& error) {
        std::cerr << error.reason << "\nRun with --help for more information.\n";
        return kUsage;
    } catch (const std::exception& error) {
        std::cerr << "merchantryctl: " << merchantry::sentenceOf(error) << "\n";
        return told(1);
    }
}
