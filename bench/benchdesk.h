#pragma once

#include "app/frmLogin.h"
#include "app/modMain.h"
#include "bench/itemstore.h"
#include "bench/paintwatch.h"
#include "programs/desktop.h"
#include "programs/screens.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>

namespace merchantry::bench {

// The desktop program on a store, without a screen unless one was named, its settings kept in the store's folder. `Desk` is the desk that a
// measurement wants.
template <class Desk = ui::QtDesk> class BenchDesk {
public:
    BenchDesk(int& argc, char** argv, const ItemStore& items)
        : application_(prepared(argc, items), argv), desk(application_, ui::Tone::Light), config_(items.file().string()) {
        application_.installEventFilter(&watch);
        app::modMain().desk = &desk;
        app::modMain().configFile = config_.file();
        programs::bindDoors(desk);
        desk.enter([] { app::StartUpSystem(); });
    }
    ~BenchDesk() { app::resetModMain(); }
    BenchDesk(const BenchDesk&) = delete;
    BenchDesk& operator=(const BenchDesk&) = delete;

private:
    static int& prepared(int& argc, const ItemStore& items) {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_CONFIG_HOME", items.folder().c_str());
        return argc;
    }

    QApplication application_;

public:
    Desk desk;
    PaintWatch watch;

private:
    programs::ConfigFor config_;
};

} // namespace merchantry::bench
