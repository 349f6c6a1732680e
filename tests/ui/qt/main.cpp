#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

namespace {

// Every test has settings of its own, so that none finds the window sizes that another left.
class FreshSettings : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        folder_ = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", folder_->path().toUtf8());
    }
    std::unique_ptr<QTemporaryDir> folder_;
};

} // namespace

// Without a screen of the machine's: on one that is large enough for the biggest window at 200 %.
int main(int argc, char** argv) {
    const QTemporaryDir folder;
    QFile screen(folder.filePath(QStringLiteral("screen.json")));
    if (!screen.open(QIODevice::WriteOnly))
        return 1;
    screen.write(R"({"synchronousWindowSystemEvents": false, "windowFrameMargins": false,
        "screens": [{"name": "test", "x": 0, "y": 0, "width": 3840, "height": 2400, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    screen.close();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toUtf8());
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new FreshSettings);
    return RUN_ALL_TESTS();
}
