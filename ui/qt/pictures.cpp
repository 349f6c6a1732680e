#include "ui/qt/pictures.h"

#include "ui/form.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/texts.h"

#include <QApplication>
#include <QPixmap>

#include <stdexcept>

namespace merchantry::ui {

void savePicture(QtDesk& desk, const Form& form, const std::filesystem::path& file) {
    FormWindow* const window = desk.window(form);
    if (window == nullptr)
        throw std::runtime_error("no window of " + form.name());
    QCoreApplication::processEvents();
    if (!window->grab().save(toQt(file.string()), "PNG"))
        throw std::runtime_error("cannot write " + file.string());
}

void savePicture(QtDesk& desk, const Form& form, const std::filesystem::path& file, int width, int height) {
    FormWindow* const window = desk.window(form);
    const QSize own = window == nullptr ? QSize() : window->size();
    if (window != nullptr)
        window->resize(width, height);
    savePicture(desk, form, file);
    if (desk.window(form) != nullptr)
        window->resize(own);
}

} // namespace merchantry::ui
