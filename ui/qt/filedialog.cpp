#include "ui/qt/qtdesk.h"
#include "ui/qt/texts.h"

#include <QAbstractFileIconProvider>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStyle>

namespace merchantry::ui {
namespace {

// ".xlsx" of "Workbook (*.xlsx)"; empty for all files.
QString endingOf(const QString& filter) {
    static const QRegularExpression pattern(QStringLiteral(R"(\(\*(\.\w+))"));
    return pattern.match(filter).captured(1);
}

// What stands behind the last dot of "Sales 3.4" is no ending.
QString withEnding(const QString& path, const QString& ending) {
    static const QRegularExpression some(QStringLiteral(R"(\.[A-Za-z]\w{0,4}$)"));
    return some.match(QFileInfo(path).fileName()).hasMatch() ? path : path + ending;
}

// Icons and kinds of files by their names alone. The usual ones open each file to look what it is; closing the store's own file again drops
// every lock that this process has on it, and the next program to close the store takes its log away.
class NamesOnly : public QAbstractFileIconProvider {
public:
    QIcon icon(const QFileInfo& file) const override {
        return QApplication::style()->standardIcon(file.isDir() ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
    }
    QIcon icon(IconType type) const override {
        return QApplication::style()->standardIcon(type == File ? QStyle::SP_FileIcon : QStyle::SP_DirIcon);
    }
    QString type(const QFileInfo& file) const override { return file.isDir() ? QStringLiteral("Folder") : file.suffix(); }
};

} // namespace

std::optional<std::filesystem::path> QtDesk::file(const FileDialog& wish) {
    QFileDialog dialog(nullptr, toQt(wish.title), toQt(wish.folder));
    dialog.setAcceptMode(wish.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(wish.ofFolders ? QFileDialog::Directory : wish.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::ShowDirsOnly, wish.ofFolders);
    static NamesOnly names;
    dialog.setIconProvider(&names);
    dialog.setNameFilters(fileFilters(wish.filter));
    dialog.setWindowModality(Qt::ApplicationModal);
    const auto takeEnding = [&dialog](const QString& filter) { dialog.setDefaultSuffix(endingOf(filter)); };
    if (wish.save) {
        takeEnding(dialog.selectedNameFilter());
        QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, takeEnding);
        dialog.selectFile(toQt(wish.name));
    }
    standOver(dialog, owner(nullptr));
    while (true) {
        runDialog(dialog);
        if (dialog.result() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
            return std::nullopt;
        const QString chosen = dialog.selectedFiles().first();
        const QString file = wish.save ? withEnding(chosen, endingOf(dialog.selectedNameFilter())) : chosen;
        // The dialogue has asked about the name as it was typed.
        if (file == chosen || !QFileInfo::exists(file) ||
            message(fromQt(QFileInfo(file).fileName()) + " exists already. Replace it?", wish.title, MessageIcon::Question,
                    MessageButtons::YesNo) == Answer::Yes)
            return std::filesystem::path(fromQt(file));
    }
}

} // namespace merchantry::ui
