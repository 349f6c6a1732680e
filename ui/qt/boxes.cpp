#include "ui/qt/boxes.h"

#include "ui/qt/skin.h"
#include "ui/qt/texts.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace merchantry::ui {
namespace {

constexpr int kTextWidth = 420;

struct Choice {
    const char* caption;
    Answer answer;
};

// The buttons in their order; the first is the default, the last is what Escape answers.
std::vector<Choice> choices(MessageButtons buttons) {
    switch (buttons) {
    case MessageButtons::Ok:
        return {{"OK", Answer::Ok}};
    case MessageButtons::OkCancel:
        return {{"OK", Answer::Ok}, {"Cancel", Answer::Cancel}};
    case MessageButtons::YesNo:
        return {{"&Yes", Answer::Yes}, {"&No", Answer::No}};
    case MessageButtons::YesNoCancel:
        return {{"&Yes", Answer::Yes}, {"&No", Answer::No}, {"Cancel", Answer::Cancel}};
    }
    return {};
}

QIcon sign(const Skin& skin, MessageIcon icon) {
    const Tokens& t = skin.tokens();
    switch (icon) {
    case MessageIcon::Stop:
        return skin.icon(QStringLiteral("stop"), t.danger);
    case MessageIcon::Question:
        return skin.icon(QStringLiteral("question"), t.accent);
    case MessageIcon::Exclamation:
        return skin.icon(QStringLiteral("exclamation"), t.caution);
    case MessageIcon::Information:
        return skin.icon(QStringLiteral("information"), t.accent);
    case MessageIcon::None:
        break;
    }
    return {};
}

class Box : public QDialog {
public:
    explicit Box(const std::string& caption) {
        setWindowTitle(toQt(caption));
        setWindowModality(Qt::ApplicationModal);
        setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
        auto* outer = new QVBoxLayout(this);
        outer->setContentsMargins(measure::kEdge, measure::kEdge, measure::kEdge, measure::kEdge);
        outer->setSpacing(measure::kEdge);
        outer->setSizeConstraint(QLayout::SetFixedSize);
        body = new QHBoxLayout;
        body->setSpacing(measure::kGroups);
        foot = new QHBoxLayout;
        foot->setSpacing(measure::kRelated);
        foot->addStretch();
        outer->addLayout(body);
        outer->addLayout(foot);
    }

    QPushButton* addButton(const QString& caption, bool isDefault) {
        auto* button = new QPushButton(caption, this);
        button->setAutoDefault(true);
        button->setDefault(isDefault);
        button->setMinimumWidth(88);
        if (isDefault)
            button->setProperty("kind", "default");
        foot->addWidget(button);
        return button;
    }

    QHBoxLayout* body;
    QHBoxLayout* foot;
};

QLabel* bodyText(const std::string& text) {
    auto* label = new QLabel(toQt(text));
    label->setObjectName(QStringLiteral("text"));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setMinimumWidth(200);
    const int asked = label->fontMetrics().size(0, label->text()).width();
    if (asked > kTextWidth) {
        label->setWordWrap(true);
        label->setFixedWidth(kTextWidth);
    }
    return label;
}

} // namespace

Answer showBox(const Skin& skin, QWidget* owner, const Message& message, const std::function<void(QWidget&)>& wait) {
    Box box(message.caption);
    if (const QIcon icon = sign(skin, message.icon); !icon.isNull()) {
        auto* picture = new QLabel;
        picture->setPixmap(icon.pixmap(QSize(32, 32), box.devicePixelRatioF()));
        box.body->addWidget(picture, 0, Qt::AlignTop);
    }
    box.body->addWidget(bodyText(message.text), 1);
    const auto offered = choices(message.buttons);
    Answer answer = offered.back().answer;
    // Enter never answers a warning's question with yes.
    const bool warns = message.icon == MessageIcon::Exclamation && message.buttons == MessageButtons::YesNo;
    const Answer usual = warns ? Answer::No : offered.front().answer;
    for (const Choice& choice : offered) {
        auto* button = box.addButton(QString::fromLatin1(choice.caption), choice.answer == usual);
        if (choice.answer == usual)
            button->setFocus();
        QObject::connect(button, &QPushButton::clicked, &box, [&answer, &box, choice] {
            answer = choice.answer;
            box.accept();
        });
    }
    standOver(box, owner);
    wait(box);
    return answer;
}

std::optional<std::string> showInput(const Skin&, QWidget* owner, const Input& input, const std::function<void(QWidget&)>& wait) {
    Box box(input.title);
    auto* column = new QVBoxLayout;
    column->setSpacing(measure::kRelated);
    auto* line = new QLineEdit(toQt(input.preset));
    line->setFixedHeight(measure::kField);
    line->setMinimumWidth(kTextWidth - 80);
    line->selectAll();
    column->addWidget(bodyText(input.prompt));
    column->addWidget(line);
    box.body->addLayout(column);
    auto* ok = box.addButton(QStringLiteral("OK"), true);
    auto* cancel = box.addButton(QStringLiteral("Cancel"), false);
    QObject::connect(ok, &QPushButton::clicked, &box, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &box, &QDialog::reject);
    line->setFocus();
    standOver(box, owner);
    wait(box);
    if (box.result() != QDialog::Accepted)
        return std::nullopt;
    return fromQt(line->text());
}

} // namespace merchantry::ui
