#include "ui/qt/qtdesk.h"
#include "ui/qt/texts.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

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

} // namespace

std::optional<std::filesystem::path> QtDesk::file(const FileDialog& wish) {
    QFileDialog dialog(nullptr, toQt(wish.title), toQt(wish.folder));
    dialog.setAcceptMode(wish.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(wish.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
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
