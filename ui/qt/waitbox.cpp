#include "ui/qt/waitbox.h"

#include "ui/qt/skin.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace merchantry::ui {
namespace {

constexpr std::chrono::milliseconds kMoment{300};
constexpr std::chrono::milliseconds kLong{1500};

} // namespace

WaitBox::WaitBox() = default;

WaitBox::~WaitBox() {
    if (hourglass_)
        QApplication::restoreOverrideCursor();
}

bool WaitBox::goOn(std::chrono::milliseconds waited, QWidget* owner) {
    if (waited < kMoment)
        return true;
    if (!hourglass_) {
        hourglass_ = true;
        QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    if (waited >= kLong && box_ == nullptr)
        show(owner);
    QCoreApplication::processEvents(box_ == nullptr ? QEventLoop::ExcludeUserInputEvents : QEventLoop::AllEvents);
    return !givenUp_;
}

void WaitBox::show(QWidget* owner) {
    QApplication::changeOverrideCursor(Qt::ArrowCursor);
    box_ = std::make_unique<QDialog>(owner);
    box_->setWindowTitle(QStringLiteral("Please wait"));
    box_->setWindowModality(Qt::ApplicationModal);
    box_->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    auto* const text =
        new QLabel(QStringLiteral("Another program is saving to this store. As soon as it has finished, your work goes on."));
    text->setWordWrap(true);
    text->setMinimumWidth(360);
    auto* const stop = new QPushButton(QStringLiteral("&Give up"));
    stop->setObjectName(QStringLiteral("cmdGiveUp"));
    QObject::connect(stop, &QPushButton::clicked, box_.get(), &QDialog::reject);
    QObject::connect(box_.get(), &QDialog::rejected, box_.get(), [this] { givenUp_ = true; });
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(stop);
    auto* const all = new QVBoxLayout(box_.get());
    all->setContentsMargins(measure::kEdge, measure::kEdge, measure::kEdge, measure::kEdge);
    all->setSpacing(measure::kGroups);
    all->addWidget(text);
    all->addLayout(buttons);
    box_->show();
}

} // namespace merchantry::ui
