// A program that shows an empty window, says when it is painted, and leaves: the least that a start can take.

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {

class EmptyWindow : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override {
        QTimer::singleShot(0, qApp, [] {
            std::puts("painted");
            std::fflush(stdout);
            QCoreApplication::quit();
        });
    }
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    EmptyWindow window;
    window.resize(480, 320);
    window.show();
    return QApplication::exec();
}
