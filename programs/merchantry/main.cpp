#include "app/frmLogin.h"
#include "app/modMain.h"
#include "programs/desktop.h"
#include "programs/merchantry/fonts.h"
#include "programs/screens.h"
#include "programs/storehost.h"
#include "ui/qt/qtdesk.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <thread>

namespace {

using namespace merchantry;

struct Options {
    std::string store;
    std::vector<std::string> plays;
    std::string pictures;
    std::string tone;
    bool untilLogin = false;
};

ui::Tone toneOf(const Options& options) {
    if (options.tone == "light")
        return ui::Tone::Light;
    return options.tone == "dark" ? ui::Tone::Dark : ui::Tone::System;
}

constexpr int kBadUsage = 2;

// Options of the toolkit, with whether a value follows.
constexpr std::pair<std::string_view, bool> kToolkit[] = {
    {"-platform", true},        {"-platformpluginpath", true}, {"-platformtheme", true}, {"-plugin", true},
    {"-style", true},           {"-stylesheet", true},         {"-display", true},       {"-geometry", true},
    {"-qwindowgeometry", true}, {"-qwindowicon", true},        {"-qwindowtitle", true},  {"-session", true},
    {"-reverse", false},        {"-widgetcount", false}};

// Throws for the first word that neither the program nor the toolkit knows.
void refuseUnknown(const std::vector<std::string>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto* const known =
            std::find_if(std::begin(kToolkit), std::end(kToolkit), [&](const auto& option) { return option.first == words[i]; });
        if (known == std::end(kToolkit))
            throw CLI::ExtrasError("Merchantry", {words[i]});
        i += known->second ? 1 : 0;
    }
}

// Says when the first window has been painted and ends the run, for measuring the start.
class UntilPainted : public QObject {
public:
    explicit UntilPainted(ui::QtDesk& desk) : desk_(desk) { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->isWidgetType() && static_cast<QWidget*>(object)->isWindow())
            QTimer::singleShot(0, this, [this] {
                std::cout << "painted" << std::endl;
                desk_.enter([this] { desk_.end(); });
            });
        return false;
    }

private:
    ui::QtDesk& desk_;
};

// The program as a manager starts it; with a store named, that one instead of the configured.
int runDesktop(QApplication& application, const Options& options) {
    ui::QtDesk desk(application, toneOf(options));
    programs::ConfigFor config(options.store);
    app::ModMain& session = app::modMain();
    session.desk = &desk;
    session.configFile = config.file();
    session.storeMaker = programs::storeMaker();
    programs::bindDoors(desk);
    const auto watch = options.untilLogin ? std::make_unique<UntilPainted>(desk) : nullptr;
    return desk.run([&] { desk.show(desk.form<app::frmLogin>()); });
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App program("Merchantry: the store-management program");
    program.set_version_flag("--version", MERCHANTRY_VERSION);
    program.add_option("--store", options.store, "Open this store, its file or a connection string, instead of the configured one");
    program.add_option("--play", options.plays, "Run screen scripts in the desktop, each on a copy of the store given with --store");
    program.add_option("--pictures", options.pictures,
                       "Where the pictures go: those of the scripts, or else one of every form, light and dark");
    program.add_option("--skin", options.tone, "light or dark; the system's when not given")->check(CLI::IsMember({"light", "dark"}));
    program.add_flag("--until-login", options.untilLogin, "Leave when the login window has been drawn, for measuring the start");
    program.allow_extras(); // the toolkit's own
    try {
        program.parse(argc, argv);
        refuseUnknown(program.remaining());
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : kBadUsage;
    }

    // The fonts of the machine are looked up while the toolkit starts: the first text on the first window waits for them.
    const std::jthread fonts(programs::lookUpFonts);
    QApplication application(argc, argv);
    QApplication::setApplicationName("Merchantry");
    QApplication::setDesktopFileName("merchantry");
    const ui::Tone tone = toneOf(options);
    if (!options.plays.empty())
        return programs::playInDesktop(application, tone, options.store, options.plays, options.pictures);
    if (!options.pictures.empty())
        return programs::pictureEveryForm(application, options.store, options.pictures);
    return runDesktop(application, options);
}
