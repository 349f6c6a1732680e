// Puts the first page of each report into one picture, for the documentation.
#include "app/serverstore.h"
#include "reports/engine/report.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/texts.h"

#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <iostream>
#include <sstream>

using namespace merchantry;

namespace {

constexpr int kGap = 10; // pixels
constexpr int kCaption = 30;
constexpr int kSharper = 3; // pages are drawn larger and made small

// "PurchaseOrder.rpt=5,7" is a file with its parameters.
std::pair<std::filesystem::path, reports::ParameterTexts> fileAndParameters(const std::string& argument) {
    const std::size_t equals = argument.find('=');
    reports::ParameterTexts texts;
    if (equals != std::string::npos) {
        std::istringstream list(argument.substr(equals + 1));
        for (std::string text; std::getline(list, text, ',');)
            texts.push_back(text);
    }
    return {argument.substr(0, equals), texts};
}

QImage firstPage(db::Session& session, const std::filesystem::path& file, const reports::ParameterTexts& parameters, int side) {
    const auto report = reports::Report::run(session, reports::readDefinition(file), parameters);
    const ui::QtTextMeasure measure;
    const ui::Page page = reports::allPages(*report, measure)->page(0);
    const double scale = static_cast<double>(side) * kSharper / std::max(page.width, page.height);
    QImage image(static_cast<int>(page.width * scale), static_cast<int>(page.height * scale), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(scale, scale);
    ui::paintPage(painter, page);
    painter.end();
    return image.scaled(image.size() / kSharper, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void draw(QPainter& painter, const QRect& cell, const QImage& page, const QString& name) {
    const QPoint at(cell.x() + (cell.width() - page.width()) / 2, cell.y() + kGap);
    painter.drawImage(at, page);
    painter.setPen(QColor(0xb0, 0xb4, 0xba));
    painter.drawRect(QRect(at, page.size()).adjusted(-1, -1, 0, 0));
    painter.setPen(Qt::black);
    painter.drawText(QRect(cell.x(), at.y() + page.height(), cell.width(), kCaption), Qt::AlignCenter, name);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App program("Puts the first page of each report into one picture", "reportsheet");
    std::string store;
    std::string out;
    int columns = 6;
    int side = 290;
    std::vector<std::string> files;
    program.add_option("--store", store, "The store: its file, or a connection string")->required();
    program.add_option("--out", out, "The picture (.png)")->required();
    program.add_option("--columns", columns, "Pages side by side")->check(CLI::Range(1, 20));
    program.add_option("--side", side, "The longer side of a page, in pixels")->check(CLI::Range(50, 2000));
    program.add_option("FILE", files, "Report files; FILE=1,2 sets parameters")->required();
    CLI11_PARSE(program, argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const int count = static_cast<int>(files.size());
    const QSize cell(side + kGap, side + kGap + kCaption);
    QImage sheet(std::min(columns, count) * cell.width(), (count + columns - 1) / columns * cell.height(), QImage::Format_RGB32);
    sheet.fill(QColor(0xf4, 0xf5, 0xf7));
    QPainter painter(&sheet);
    QFont font = ui::pageFont(18, false);
    font.setPixelSize(13);
    painter.setFont(font);
    try {
        const auto session = app::openStore(store);
        for (int i = 0; i < count; ++i) {
            const auto [file, parameters] = fileAndParameters(files[static_cast<std::size_t>(i)]);
            draw(painter, QRect(QPoint(i % columns * cell.width(), i / columns * cell.height()), cell),
                 firstPage(*session, file, parameters, side), ui::toQt(file.filename().string()));
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    painter.end();
    const QImage small = sheet.convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither | Qt::AvoidDither);
    if (!small.save(ui::toQt(out))) {
        std::cerr << "Cannot write " << out << ".\n";
        return 1;
    }
    return 0;
}
