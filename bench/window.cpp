// frmItemLookup on 100,000 items, from the call to the painted window, beside the load of its rows alone.

#include "app/frmLogin.h"
#include "app/modMain.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "catalog/itemlistform.h"
#include "programs/desktop.h"
#include "programs/screens.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 11;

// Notes that the table of the list has been painted, not only its frame.
class PaintWatch : public QObject {
public:
    bool painted = false;

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->objectName() == QStringLiteral("qt_scrollarea_viewport"))
            painted = true;
        return false;
    }
};

// Shows the list as a screen does, until it is painted; closing it again is not measured.
void showPainted(ui::QtDesk& desk, PaintWatch& watch) {
    watch.painted = false;
    desk.enter([&] { desk.show(desk.form<catalog::frmItemLookup>()); });
    while (!watch.painted)
        QCoreApplication::processEvents();
}

// Alternating, with the closing outside of the watch.
void measure(ui::QtDesk& desk, PaintWatch& watch) {
    std::vector<double> shown;
    std::vector<double> loaded;
    for (int i = 0; i < kRuns; ++i) {
        loaded.push_back(msOf([] { app::openDirect("sp_GetAllItems 1, 0", db::CursorType::Static, db::LockType::ReadOnly); }));
        shown.push_back(msOf([&] { showPainted(desk, watch); }));
        desk.enter([&] { desk.form<catalog::frmItemLookup>().unload(); });
        QCoreApplication::processEvents();
    }
    print("frmItemLookup on 100,000 items until painted", median(shown), median(loaded));
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const ItemStore items;
    qputenv("XDG_CONFIG_HOME", items.folder().c_str());
    QApplication application(argc, argv);
    ui::QtDesk desk(application, ui::Tone::Light);
    const programs::ConfigFor config(items.file().string());
    app::modMain().desk = &desk;
    app::modMain().configFile = config.file();
    programs::bindDoors(desk);
    desk.enter([] { app::StartUpSystem(); });
    PaintWatch watch;
    application.installEventFilter(&watch);
    measure(desk, watch);
    app::resetModMain();
    return 0;
}
