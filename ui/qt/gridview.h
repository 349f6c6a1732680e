#pragma once

#include "ui/grid.h"

#include <QPointer>
#include <QTableView>

namespace merchantry::ui {

class FormWindow;
class GridModel;

// The table of a grid. Rows are of one height; the current row, the selection and the colours are read from the grid when a cell is
// painted, so the table keeps no selection of its own. Mouse and keys go to the grid's user… members.
class GridView : public QTableView {
public:
    GridView(FormWindow& host, Grid& grid, QWidget* parent);

    // After any change of the grid's rows, columns or cells.
    void reload();
    // The current row or the editing changed.
    void follow();
    void restyle();
    void forget();
    // Commits the edit under way; false when it was refused.
    bool finishEdit();
    QWidget* editor() const { return editor_; }
    // Sum of the widths that the columns ask for.
    int wishedWidth() const;

    std::function<void(bool on)> onFocus; // the keyboard came, or went

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    bool act(const std::function<void()>& procedure);
    void layOutColumns();
    void fitColumns();
    void narrowWords(const std::vector<int>& columns, int missing);
    bool isWords(int column) const;
    int contentWidth(int column) const;
    void hideColumns();
    void rememberWidths();

    void select(int row, int column);
    std::vector<std::string> textsOf(int row);
    void extendTo(int row);
    void moveBy(int rows, int columns);
    void step(int rows, bool extend);
    bool moveKey(int key, bool extend);
    int neighbour(int column, int step) const;

    // Editing. A check cell is turned at once; others get an editor over the cell.
    void beginEdit(int row, int column, const QString* typed = nullptr);
    void turnCheck(int row, int column);
    void openEditor(int row, int column, const QString* typed);
    void openText(int row, int column, const QString* typed);
    void openCombo(int row, int column);
    void placeEditor();
    bool commit();
    void dropEditor();
    QString editorText() const;

    FormWindow& host_;
    Grid& grid_;
    GridModel* model_;
    QPointer<QWidget> editor_;
    int editRow_ = 0;
    int editColumn_ = 0;
    int laidOutFor_ = -1;    // number of columns that have their widths
    QList<int> asked_;       // the widths that content asked for so far
    bool dragged_ = false;   // the user set the widths
    bool layingOut_ = false; // widths that change now are not the user's
    int shown_ = 0;          // the row last scrolled to
    int wishes_ = 0;         // of the grid to show its row at the top
    QPoint pressedAt_;
    int pressedRow_ = 0; // 0 when the press selected nothing or began a drag
    int pressedColumn_ = 0;
    struct Click {
        int row = 0;
        int column = 0;
        std::vector<std::string> texts; // of the row, before the click did anything
    };
    Click firstClick_;         // of what may become a double click
    bool secondPress_ = false; // on the cell that was current
    bool committing_ = false;
};

} // namespace merchantry::ui
