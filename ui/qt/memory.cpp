#include "ui/qt/memory.h"

#include "base/platform/platform.h"
#include "ui/qt/texts.h"

#include <QSettings>

namespace merchantry::ui {
namespace {

QString fileName() {
    std::error_code error;
    try {
        return toQt((platform::configurationFolder() / "windows.ini").string());
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    }
}

QString key(const std::string& form, const char* what) {
    return toQt(form) + QLatin1Char('/') + QLatin1String(what);
}

} // namespace

QSize rememberedSize(const std::string& form, const QSize& otherwise) {
    const QSize size = QSettings(fileName(), QSettings::IniFormat).value(key(form, "size")).toSize();
    return size.isEmpty() ? otherwise : size;
}

void rememberSizeOf(const std::string& form, const QSize& size) {
    QSettings(fileName(), QSettings::IniFormat).setValue(key(form, "size"), size);
}

QList<int> rememberedWidths(const std::string& form, const std::string& grid, int columns) {
    QList<int> widths;
    const QStringList kept = QSettings(fileName(), QSettings::IniFormat).value(key(form, grid.c_str())).toStringList();
    for (const QString& width : kept)
        widths << std::clamp(width.toInt(), 24, 2000);
    return widths.size() == columns ? widths : QList<int>();
}

void rememberWidthsOf(const std::string& form, const std::string& grid, const QList<int>& widths) {
    QStringList kept;
    for (const int width : widths)
        kept << QString::number(width);
    QSettings(fileName(), QSettings::IniFormat).setValue(key(form, grid.c_str()), kept);
}

std::string rememberedText(const std::string& form, const std::string& what) {
    return fromQt(QSettings(fileName(), QSettings::IniFormat).value(key(form, what.c_str())).toString());
}

void rememberText(const std::string& form, const std::string& what, const std::string& text) {
    QSettings(fileName(), QSettings::IniFormat).setValue(key(form, what.c_str()), toQt(text));
}

} // namespace merchantry::ui
