#include "ui/page.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/qtdesk.h"
#include "ui/qt/texts.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QToolButton>

#include <stdexcept>

namespace merchantry::ui {
namespace {

// A printer with a job begun at its first page. Gone unfinished it withdraws what was not printed yet.
class Paper : public PageSink {
public:
    explicit Paper(std::unique_ptr<QPrinter> printer) : printer_(std::move(printer)) {}
    ~Paper() override {
        if (painter_.isActive()) {
            printer_->abort();
            painter_.end();
        }
    }
    void put(const Page& page) override {
        if (!painter_.isActive()) {
            begin(page);
        } else if (!printer_->newPage()) {
            throw std::runtime_error("The printer " + fromQt(printer_->printerName()) + " takes no more pages.");
        }
        // The page as large as it is, or as large as the paper lets it be.
        const QRectF paper = printer_->paperRect(QPrinter::DevicePixel);
        const double scale = std::min({printer_->resolution() / 1440.0, paper.width() / page.width, paper.height() / page.height});
        painter_.save();
        painter_.scale(scale, scale);
        paintPage(painter_, page);
        painter_.restore();
    }
    void finish() override {
        if (painter_.isActive() && !painter_.end())
            throw std::runtime_error("The printer " + fromQt(printer_->printerName()) + " did not take the pages.");
    }

private:
    void begin(const Page& page) {
        printer_->setFullPage(true);
        printer_->setPageOrientation(page.width > page.height ? QPageLayout::Landscape : QPageLayout::Portrait);
        if (!painter_.begin(printer_.get()))
            throw std::runtime_error("The printer " + fromQt(printer_->printerName()) + " cannot be reached.");
    }

    std::unique_ptr<QPrinter> printer_;
    QPainter painter_;
};

} // namespace

std::string QtDesk::defaultPrinter() {
    return defaultPrinter_ ? *defaultPrinter_ : fromQt(QPrinterInfo::defaultPrinterName());
}

void QtDesk::setDefaultPrinter(const std::string& printer) {
    if (QPrinterInfo::availablePrinterNames().contains(toQt(printer)))
        defaultPrinter_ = printer;
}

// The dialogue's own look for a file would open the files that it lists; see QtDesk::file.
static void browseWith(QtDesk& desk, QPrintDialog& dialog) {
    auto* const browse = dialog.findChild<QToolButton*>(QStringLiteral("fileBrowser"));
    auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
    if (browse == nullptr || name == nullptr)
        return;
    QObject::disconnect(browse, &QToolButton::clicked, nullptr, nullptr);
    QObject::connect(browse, &QToolButton::clicked, &dialog, [&desk, name] {
        const QFileInfo now(name->text());
        if (const auto file = desk.file({"Print to File", "PDF (*.pdf)|*.pdf", fromQt(now.path()), true, fromQt(now.completeBaseName())}))
            name->setText(QString::fromStdString(file->string()));
    });
}

std::optional<PrintChoice> QtDesk::printerSetup(const std::string& title, int pages) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    const QString usual = toQt(defaultPrinter());
    if (!usual.isEmpty())
        printer->setPrinterName(usual);
    printer->setDocName(toQt(title));
    QPrintDialog dialog(printer.get());
    dialog.setWindowTitle(toQt(title));
    dialog.setOption(QAbstractPrintDialog::PrintPageRange);
    dialog.setMinMax(1, pages);
    printer->setFromTo(1, pages);
    printer->setPrintRange(QPrinter::AllPages);
    dialog.setWindowModality(Qt::ApplicationModal);
    browseWith(*this, dialog);
    standOver(dialog, owner(nullptr));
    runDialog(dialog);
    if (dialog.result() != QDialog::Accepted)
        return std::nullopt;
    setDefaultPrinter(fromQt(printer->printerName()));
    PrintChoice choice{nullptr, 1, pages};
    if (printer->printRange() == QPrinter::PageRange && printer->fromPage() > 0) {
        choice.first = std::min(printer->fromPage(), pages);
        choice.last = std::clamp(printer->toPage(), choice.first, pages);
    }
    choice.printer = std::make_unique<Paper>(std::move(printer));
    return choice;
}

std::unique_ptr<PageSink> QtDesk::pdf(const std::filesystem::path& file, const std::string& title) {
    return pdfFile(toQt(file.string()), toQt(title));
}

} // namespace merchantry::ui
