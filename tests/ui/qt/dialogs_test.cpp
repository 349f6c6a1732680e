// The system's own dialogues, as they stand where it has none: readable in both skins, and a job that bears its report's name.
#include "ui/page.h"
#include "ui/qt/qtdesk.h"
#include "ui/qt/skin.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace merchantry::ui {
namespace {

void soon(std::function<void()> act) {
    QTimer::singleShot(0, qApp, std::move(act));
}

QDialog* box() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* dialog = dynamic_cast<QDialog*>(widget); dialog != nullptr && dialog->isVisible())
            return dialog;
    return nullptr;
}

// How far the most different of what is drawn in this part of a widget stands out from the ground, which most of it is.
double standsOut(QWidget& widget, const QRect& part) {
    const QImage drawn = widget.grab(part).toImage();
    QHash<QRgb, int> count;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            ++count[drawn.pixel(x, y)];
    const auto ground = std::max_element(count.begin(), count.end());
    double most = 1;
    for (auto ink = count.begin(); ink != count.end(); ++ink)
        most = std::max(most, contrast(QColor(ink.key()), QColor(ground.key())));
    return most;
}

// The right end of a list, where its arrow stands, without the frame.
QRect arrowOf(const QWidget& list) {
    return QRect(list.width() - 20, 4, 16, list.height() - 8);
}

} // namespace

TEST(Dialogs, HeadingsArrowsAndChoicesStandOutInBothSkins) {
    for (const Tone tone : {Tone::Light, Tone::Dark}) {
        QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), tone);
        soon([] {
            ASSERT_NE(box(), nullptr);
            auto* const headings = box()->findChild<QHeaderView*>();
            ASSERT_NE(headings, nullptr);
            EXPECT_GE(standsOut(*headings, QRect(0, 2, headings->sectionSize(0), headings->height() - 4)), 4.5) << "heading";
            auto* const types = box()->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
            EXPECT_GE(standsOut(*types, arrowOf(*types)), 3.0) << "arrow of the file types";
            box()->reject();
        });
        desk.file({"Open", "PDF (*.pdf)|*.pdf", QDir::tempPath().toStdString(), false});
        soon([] {
            ASSERT_NE(box(), nullptr);
            for (auto* button : box()->findChildren<QPushButton*>())
                if (button->text().startsWith(QLatin1String("&Options")))
                    button->click();
            QCoreApplication::processEvents();
            int seen = 0;
            for (auto* choice : box()->findChildren<QRadioButton*>())
                if (choice->isVisible() && choice->isEnabled()) {
                    EXPECT_GE(standsOut(*choice, QRect(0, 0, 18, choice->height())), 3.0) << choice->text().toStdString();
                    ++seen;
                }
            EXPECT_GE(seen, 2);
            for (auto* list : box()->findChildren<QComboBox*>())
                if (list->isVisible() && list->isEnabled()) {
                    EXPECT_GE(standsOut(*list, arrowOf(*list)), 3.0) << "arrow in the print dialogue";
                }
            box()->reject();
        });
        EXPECT_FALSE(desk.printerSetup("Receivables Aging", 3));
    }
}

TEST(Dialogs, APrintJobBearsTheNameOfItsReport) {
    QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), Tone::Light);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("out.pdf"));
    soon([&] {
        auto* const dialog = dynamic_cast<QPrintDialog*>(box());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->printer()->docName(), QStringLiteral("Receivables Aging"));
        EXPECT_EQ(dialog->printer()->toPage(), 3);
        dialog->findChild<QLineEdit*>(QStringLiteral("filename"))->setText(path);
        for (auto* button : dialog->findChildren<QPushButton*>())
            if (button->text().remove(QLatin1Char('&')) == QLatin1String("Print"))
                button->click();
    });
    auto choice = desk.printerSetup("Receivables Aging", 3);
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->first, 1);
    EXPECT_EQ(choice->last, 3);
    choice->printer->put(Page());
    choice->printer->finish();
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    // A title in a PDF is UTF-16 with its high byte first.
    QByteArray title;
    for (const char letter : std::string("Receivables Aging"))
        title += QByteArray(1, '\0') + letter;
    EXPECT_TRUE(written.readAll().contains(title));
}

// Closing a file drops every lock that the process has on it: a look into the store's folder must not open the store.
TEST(Dialogs, ListAFolderWithoutOpeningItsFiles) {
    const QTemporaryDir folder;
    const QString store = folder.filePath(QStringLiteral("my.store"));
    QFile made(store);
    ASSERT_TRUE(made.open(QIODevice::WriteOnly));
    made.write("SQLite format 3");
    made.close();
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, QFile::encodeName(store).constData(), IN_OPEN | IN_CLOSE), 0);
    QtDesk desk(*static_cast<QApplication*>(QApplication::instance()), Tone::Light);
    bool listed = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&, times = 0]() mutable {
        QDialog* const dialog = box();
        if (dialog == nullptr)
            return;
        for (const auto* view : dialog->findChildren<QAbstractItemView*>())
            for (int row = 0; view->model() != nullptr && row < view->model()->rowCount(view->rootIndex()); ++row)
                listed = listed || view->model()->index(row, 0, view->rootIndex()).data().toString() == QStringLiteral("my.store");
        if (++times > 20)
            dialog->reject();
    });
    look.start(20);
    desk.file({"Browse", "All Files (*.*)|*.*", folder.path().toStdString(), false});
    EXPECT_TRUE(listed);
    char event[4096];
    EXPECT_LT(read(watch, event, sizeof event), 0) << "the store was opened";
    close(watch);
}

} // namespace merchantry::ui
