#include "ui/reportview.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/pagesview.h"
#include "ui/qt/reporttree.h"
#include "ui/qt/roles.h"

#include <QShortcut>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace merchantry::ui {
namespace {

constexpr int kTreeWidth = 220;

// The group tree and the pages beside each other.
class ReportViewDrawing : public Drawing {
public:
    ReportViewDrawing(FormWindow& host, ReportView& view, QWidget* parent)
        : Drawing(host, view, new QFrame(parent)), view_(view), model_(new ReportTree(widget_)) {
        setLook(*widget_, "panel");
        widget_->setMinimumSize(480, 320);
        auto* inside = new QVBoxLayout(widget_);
        inside->setContentsMargins(1, 1, 1, 1);
        auto* parts = new QSplitter(widget_);
        inside->addWidget(parts);
        tree_ = new QTreeView(parts);
        tree_->setModel(model_);
        tree_->setHeaderHidden(true);
        tree_->setUniformRowHeights(true);
        tree_->setAccessibleName(QStringLiteral("Groups of the report"));
        tree_->setFocusPolicy(Qt::StrongFocus);
        setLook(*tree_, "reporttree");
        tree_->hide();
        pages_ = new PagesView(host, view, parts);
        parts->addWidget(tree_);
        parts->addWidget(pages_);
        parts->setStretchFactor(0, 0);
        parts->setStretchFactor(1, 1);
        parts->setChildrenCollapsible(false);
        parts->setSizes({kTreeWidth, 4 * kTreeWidth});
        QObject::connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, widget_,
                         [this](const QModelIndex& now) { chosen(now); });
        QObject::connect(tree_, &QTreeView::clicked, widget_, [this](const QModelIndex& now) { chosen(now); });
        // Between the pages and the groups by keyboard.
        auto* const away = new QShortcut(Qt::Key_F6, pages_, nullptr, nullptr, Qt::WidgetShortcut);
        QObject::connect(away, &QShortcut::activated, tree_, [this] {
            if (tree_->isVisible())
                tree_->setFocus();
        });
        auto* const back = new QShortcut(Qt::Key_F6, tree_, nullptr, nullptr, Qt::WidgetShortcut);
        QObject::connect(back, &QShortcut::activated, pages_, [this] { pages_->setFocus(); });
        host.watch(*pages_, view);
    }

    QWidget* focusTarget() const override { return pages_; }
    bool wide() const override { return true; }
    bool tall() const override { return true; }
    void forget() override {
        pages_->forget();
        model_->follow(nullptr);
    }
    void restyle() override { pages_->viewport()->update(); }

    void refresh(Aspect aspect) override {
        switch (aspect) {
        case Aspect::Rows:
            model_->follow(view_.tree());
            showTree();
            pages_->pagesChanged();
            break;
        case Aspect::Items:
            showTree();
            break;
        case Aspect::Choice:
            pages_->turned();
            markBranch();
            break;
        case Aspect::Text:
            markBranch();
            break;
        case Aspect::Cells:
            pages_->selectionChanged();
            break;
        case Aspect::Look:
            pages_->zoomed();
            break;
        default:
            break;
        }
    }

private:
    void showTree() {
        tree_->setVisible(view_.treeShown() && model_->rowCount() > 0);
        const auto* branches = view_.tree();
        tree_->setRootIsDecorated(branches != nullptr && std::any_of(branches->begin(), branches->end(),
                                                                     [](const PageBranch& branch) { return branch.level > 0; }));
    }
    void chosen(const QModelIndex& branch) {
        if (marking_ || !branch.isValid() || host_.form() == nullptr)
            return;
        const int page = model_->pageOf(branch) + 1;
        host_.act([&] { view_.turnTo(page); });
    }
    void markBranch() {
        const QModelIndex branch = model_->at(view_.page() - 1);
        const QModelIndex now = tree_->currentIndex();
        if (!branch.isValid() || (now.isValid() && model_->pageOf(now) == view_.page() - 1))
            return;
        marking_ = true;
        tree_->setCurrentIndex(branch);
        marking_ = false;
    }

    ReportView& view_;
    ReportTree* model_;
    QTreeView* tree_;
    PagesView* pages_;
    bool marking_ = false;
};

} // namespace

Drawn drawReportView(FormWindow& host, ReportView& view, QWidget* parent) {
    return std::make_unique<ReportViewDrawing>(host, view, parent);
}

} // namespace merchantry::ui
