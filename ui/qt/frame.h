#pragma once

#include <QFrame>

class QLabel;

namespace merchantry::ui {

// The words by which the style sheet tells widgets apart: "caption", "note", "title", "figure", "panel".
void setLook(QWidget& widget, const char* look);

// A box with a heading above it. Bare: the heading alone, for content with a frame of its own.
class GroupPanel : public QWidget {
public:
    explicit GroupPanel(QWidget* parent);
    void setHeading(const QString& heading);
    void setBare(bool bare);
    QWidget* body() const { return body_; }

private:
    QLabel* heading_;
    QFrame* body_;
};

} // namespace merchantry::ui
