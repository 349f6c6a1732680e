#include "tests/scratchfolder.h"
#include "tests/ui/qt/sampleforms.h"
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/pictures.h"
#include "ui/qt/qtdesk.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QImage>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace merchantry::ui {
namespace {

template <class F> void picture(QtDesk& desk, const std::filesystem::path& folder, const char* name) {
    F& form = desk.form<F>();
    desk.show(form);
    for (const Tone tone : {Tone::Light, Tone::Dark}) {
        desk.setTone(tone);
        savePicture(desk, form, folder / (std::string(name) + (tone == Tone::Light ? "-light.png" : "-dark.png")));
    }
    form.unload();
}

} // namespace

// Pictures stay for whoever asks by MERCHANTRY_PICTURES; otherwise they go to a scratch folder.
TEST(Pictures, EveryFormIsDrawnInBothTones) {
    QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), Tone::Light);
    const char* const kept = std::getenv("MERCHANTRY_PICTURES");
    const ScratchFolder scratch;
    const std::filesystem::path folder = kept != nullptr ? kept : scratch.path();
    std::filesystem::create_directories(folder);
    desk.status("Demo store · Register 1");
    picture<sample::Shell>(desk, folder, "shell");
    picture<sample::ItemSheet>(desk, folder, "item");
    picture<sample::OrderList>(desk, folder, "orders");
    picture<sample::SmallDialog>(desk, folder, "dialog");
    const QImage light((folder / "item-light.png").c_str());
    const QImage dark((folder / "item-dark.png").c_str());
    ASSERT_FALSE(light.isNull());
    EXPECT_EQ(light.size(), dark.size());
    EXPECT_EQ(light.pixelColor(2, 2), lightTokens().paper);
    EXPECT_EQ(dark.pixelColor(2, 2), darkTokens().paper);
}

// What comes up only while the user does something; drawn for whoever asks.
TEST(Pictures, BoxesPagesAndEdits) {
    const char* const kept = std::getenv("MERCHANTRY_PICTURES");
    if (kept == nullptr)
        GTEST_SKIP() << "MERCHANTRY_PICTURES names no folder";
    const std::filesystem::path folder = kept;
    for (const Tone tone : {Tone::Light, Tone::Dark}) {
        const std::string end = tone == Tone::Light ? "-light.png" : "-dark.png";
        QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), tone);
        auto& item = desk.form<sample::ItemSheet>();
        desk.show(item);
        for (const int page : {1, 2, 3}) {
            item.tabItems.setCurrent(page);
            savePicture(desk, item, folder / ("item-page" + std::to_string(page) + end));
        }
        auto& list = desk.form<sample::OrderList>();
        desk.show(list);
        QApplication::setActiveWindow(desk.window(list));
        desk.showFloating(desk.form<sample::SearchPanel>());
        gestures::select(list.grdOrders, 2, 1);
        QCoreApplication::processEvents();
        QTest::keyClick(desk.window(list)->focusWidget(), Qt::Key_F2);
        savePicture(desk, list, folder / ("orders-edit" + end));
        auto& shell = desk.form<sample::Shell>();
        desk.show(shell);
        QMenu* const menu = desk.window(shell)->menuBar()->actions().first()->menu();
        menu->popup(QPoint(20, 20));
        menu->setActiveAction(menu->actions().first());
        menu->grab().save(QString::fromStdString((folder / ("menu" + end)).string()));
        menu->hide();
        auto* const combo = dynamic_cast<QComboBox*>(desk.window(list)->drawing(list.cboShow)->widget());
        combo->showPopup();
        combo->view()->window()->grab().save(QString::fromStdString((folder / ("combo" + end)).string()));
        combo->hidePopup();
        for (const MessageIcon icon : {MessageIcon::Stop, MessageIcon::Question, MessageIcon::Exclamation, MessageIcon::Information}) {
            QTimer::singleShot(50, qApp, [&] {
                for (QWidget* widget : QApplication::topLevelWidgets())
                    if (auto* box = dynamic_cast<QDialog*>(widget); box != nullptr && box->isVisible()) {
                        box->grab().save(
                            QString::fromStdString((folder / ("box" + std::to_string(static_cast<int>(icon)) + end)).string()));
                        box->reject();
                    }
            });
            desk.message(icon == MessageIcon::Stop
                             ? "This item has transactions, orders or other rows that refer to it, and therefore it can not be deleted. "
                               "You may make it inactive instead."
                             : "Are you certain you wish to delete this Department?",
                         "Delete Department?", icon, MessageButtons::YesNoCancel);
        }
    }
}

} // namespace merchantry::ui
