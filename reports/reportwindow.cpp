#include "reports/reportwindow.h"

#include "app/modMain.h"
#include "base/counted.h"
#include "base/errortext.h"
#include "base/numbers.h"
#include "base/text.h"
#include "reports/reportexport.h"
#include "ui/desk.h"
#include "ui/longwork.h"

#include <algorithm>

namespace merchantry::reports {

using namespace ui;
using namespace std::chrono_literals;

namespace {

constexpr auto kPortion = 12ms; // of laying out, between two looks at what the user does
constexpr Twips kWidth = 1080 * kTwipsPerPixel;
constexpr Twips kHeight = 800 * kTwipsPerPixel;

struct Zoom {
    const char* words;
    ReportView::Fit fit;
    int percent;
};
constexpr Zoom kZooms[] = {
    {"Fit width", ReportView::Fit::Width, 100}, {"Fit page", ReportView::Fit::Page, 100}, {"25%", ReportView::Fit::Percent, 25},
    {"50%", ReportView::Fit::Percent, 50},      {"75%", ReportView::Fit::Percent, 75},    {"100%", ReportView::Fit::Percent, 100},
    {"125%", ReportView::Fit::Percent, 125},    {"150%", ReportView::Fit::Percent, 150},  {"200%", ReportView::Fit::Percent, 200},
    {"300%", ReportView::Fit::Percent, 300},    {"400%", ReportView::Fit::Percent, 400},
};

} // namespace

ReportWindow::ReportWindow(Desk& desk, std::string name, std::string caption) : Form(desk, std::move(name), std::move(caption)) {
    setIcon("report");
    setSize(kWidth, kHeight);
    for (const Zoom& zoom : kZooms)
        lbxZoom.add(zoom.words);
    lbxZoom.setListIndex(0);
    lbxZoom.setToolTip("How large the pages are seen (Ctrl+Plus, Ctrl+Minus)");
    txtPage.setToolTip("The page; type a number and press Enter");
    txtPage.alignRight = true;
    txtFind.placeholder = "Find";
    txtFind.setToolTip("Words to look for (Ctrl+F)");
    cmdPrint.setToolTip("Print all pages or some of them (Ctrl+P)");
    cmdExport.setToolTip("Write the report to a file (Ctrl+E)");
    cmdLetters.setToolTip("Write each letter to a PDF of its own, into a folder");
    cmdRefresh.setToolTip("Read the report anew from the store (F5)");
    cmdClose.isCancel = true;

    wire();

    bindKeys();

    setLayout(column({
        row({at(cmdPrint), at(cmdExport), at(cmdLetters), at(cmdRefresh), gap(), at(imgTree), gap(), at(imgFirst), at(imgPrevious),
             at(txtPage).wide(6), at(lblPages), at(imgNext), at(imgLast), gap(), at(lbxZoom).wide(12), stretch()}),
        at(CRViewer1).stretched(),
        buttons({at(lblState).stretched(), at(txtFind).wide(20), at(imgFindPrevious), at(imgFindNext), gap(), at(cmdClose)}),
    }));
}

void ReportWindow::wire() {
    cmdPrint.click = [this] { cmdPrint_Click(); };
    cmdExport.click = [this] { cmdExport_Click(); };
    cmdLetters.click = [this] { cmdLetters_Click(); };
    cmdRefresh.click = [this] { cmdRefresh_Click(); };
    imgTree.click = [this] { CRViewer1.setTreeShown(!CRViewer1.treeShown()); };
    imgFirst.click = [this] { CRViewer1.turnTo(1); };
    imgPrevious.click = [this] { CRViewer1.turnTo(CRViewer1.page() - 1); };
    imgNext.click = [this] { CRViewer1.turnTo(CRViewer1.page() + 1); };
    imgLast.click = [this] {
        if (layOutAll())
            CRViewer1.turnTo(CRViewer1.pageCount());
    };
    imgFindPrevious.click = [this] { find(true); };
    imgFindNext.click = [this] { find(false); };
    lbxZoom.click = [this] { zoomTo(lbxZoom.listIndex()); };
    txtPage.lostFocus = [this] { showPlace(); };
    txtPage.keyDown = [this](const std::string& key, bool& swallow) {
        swallow = key == "Enter";
        if (swallow)
            turnToTyped();
    };
    txtFind.keyDown = [this](const std::string& key, bool& swallow) {
        swallow = key == "Enter" || key == "Shift+Enter";
        if (swallow)
            find(key != "Enter");
    };
    CRViewer1.pageChange = [this] { showPlace(); };
    CRViewer1.zoomChange = [this] { showZoom(); };
    tmrLayout.fire = [this] { tmrLayout_Fire(); };
    cmdClose.click = [this] { unload(); };
}

void ReportWindow::bindKeys() {
    onKey("Ctrl+P", [this] { cmdPrint_Click(); });
    onKey("Ctrl+E", [this] { cmdExport_Click(); });
    onKey("F5", [this] { cmdRefresh_Click(); });
    onKey("F4", [this] {
        if (imgTree.visible())
            imgTree.press();
    });
    onKey("Ctrl+F", [this] {
        if (txtFind.visible() && focus(&txtFind))
            txtFind.selectAll();
    });
    onKey("F3", [this] { find(false); });
    onKey("Shift+F3", [this] { find(true); });
    onKey("PageUp", [this] { imgPrevious.press(); });
    onKey("PageDown", [this] { imgNext.press(); });
    onKey("Ctrl+Home", [this] { imgFirst.press(); });
    onKey("Ctrl+End", [this] { imgLast.press(); });
    onKey("Ctrl+Up", [this] { CRViewer1.turnToGroup(true); });
    onKey("Ctrl+Down", [this] { CRViewer1.turnToGroup(false); });
    for (const char* const plus : {"Ctrl++", "Ctrl+="}) // the same key where "+" needs Shift
        onKey(plus, [this] { zoomStep(1); });
    onKey("Ctrl+-", [this] { zoomStep(-1); });
}

void ReportWindow::attempt(const std::string& what, const std::function<void()>& body) {
    try {
        body();
    } catch (const std::exception& error) {
        desk().message(what + " " + sentenceOf(error), kProduct, MessageIcon::Exclamation);
    }
}

void ReportWindow::tellFailure() {
    if (storeFailure_.empty())
        desk().message("Bad Criteria, please reset and try again!", kProduct);
    else
        desk().message(storeFailure_, kProduct, MessageIcon::Stop);
}

bool ReportWindow::readReport() {
    if (report_ == nullptr)
        throw ReportNotFound();
    auto run = report_->run(desk());
    if (run == nullptr)
        return false;
    tmrLayout.stop();
    CRViewer1.show(nullptr);
    pages_ = std::make_unique<ReportPages>(std::move(run), desk().textMeasure());
    pages_->layOut(kPortion);
    return true;
}

void ReportWindow::viewReport() {
    cmdRefresh.setVisible(false);
    cmdLetters.setVisible(ViewerTools && pages_ != nullptr && hasLetters(pages_->report().definition()));
    for (Control* tool : std::initializer_list<Control*>{&cmdExport, &txtFind, &imgFindPrevious, &imgFindNext, &lbxZoom})
        tool->setVisible(ViewerTools);
    cmdRefresh.setVisible(FifthTool);
    CRViewer1.zoomable = ViewerTools;
    const auto* tree = ViewerTools && pages_ != nullptr ? pages_->tree() : nullptr;
    if (pages_ == nullptr)
        return;
    CRViewer1.show(&pages_->pages(), tree);
    imgTree.setVisible(ViewerTools && tree != nullptr && !pages_->report().definition().groups.empty());
    if (!pages_->pages().complete())
        tmrLayout.start();
    showPlace();
    CRViewer1.setFocus();
}

void ReportWindow::loadReport() {
    desk().waitCursor(true);
    std::string problem;
    try {
        failed_ = !readReport();
        problem = failed_ ? "The report was stopped." : "";
    } catch (const std::exception& error) {
        failed_ = true;
        problem = std::string("The report could not be shown. ") + sentenceOf(error);
        const auto* store = dynamic_cast<const db::DbError*>(&error);
        if (store != nullptr && store->isOfTheStore())
            storeFailure_ = store->what();
    }
    desk().waitCursor(false);
    if (!failed_)
        viewReport();
    else if (report_ != nullptr)
        desk().status(problem);
}

void ReportWindow::Form_Unload(bool& /*cancel*/) {
    desk().setDefaultPrinter(savedPrinter_);
    tmrLayout.stop();
    CRViewer1.show(nullptr);
    pages_.reset();
    report_.reset();
}

void ReportWindow::showPlace() {
    const int pages = CRViewer1.pageCount();
    const bool all = pages_ == nullptr || pages_->pages().complete();
    txtPage.setText(std::to_string(CRViewer1.page()));
    lblPages.setCaption("of " + withThousands(pages) + (all ? "" : " …"));
    imgFirst.setEnabled(CRViewer1.page() > 1);
    imgPrevious.setEnabled(CRViewer1.page() > 1);
    imgNext.setEnabled(CRViewer1.page() < pages);
    imgLast.setEnabled(CRViewer1.page() < pages || !all);
    if (pages_ == nullptr)
        return;
    std::string state = counted(pages_->rowCount(), "row") + ", " + counted(pages, "page");
    if (!all)
        state += " so far, more are being laid out";
    if (!ViewerTools)
        state += ". This report is shown without export, search, zoom and groups.";
    lblState.setCaption(state);
}

void ReportWindow::tmrLayout_Fire() {
    const bool all = pages_ == nullptr || pages_->layOut(kPortion);
    if (all)
        tmrLayout.stop();
    CRViewer1.grown();
    if (focused() != &txtPage || all)
        showPlace();
}

// The rest of the pages at once, for what wants all of them. False when the user stopped it.
bool ReportWindow::layOutAll() {
    if (pages_ == nullptr)
        return false;
    if (pages_->pages().complete())
        return true;
    tmrLayout.stop();
    const bool all = longWork(
        desk(), "Laying out the pages …", [this] { return pages_->layOut(kPortion) ? 100 : -1; },
        [this] { return "Laying out the pages … " + counted(pages_->pages().count(), "page"); });
    CRViewer1.grown();
    showPlace();
    if (!all)
        tmrLayout.start();
    return all;
}

void ReportWindow::turnToTyped() {
    const int wanted = static_cast<int>(std::clamp(numericPrefix(txtPage.text()), 1.0, 1e9));
    if (wanted > CRViewer1.pageCount() && !layOutAll())
        return;
    CRViewer1.turnTo(wanted);
    showPlace();
    txtPage.selectAll();
}

void ReportWindow::zoomTo(int index) {
    if (index < 0)
        return;
    const Zoom& wanted = kZooms[index];
    CRViewer1.zoom(wanted.fit, wanted.percent);
}

void ReportWindow::zoomStep(int steps) {
    CRViewer1.zoomBy(steps);
}

void ReportWindow::showZoom() {
    for (int i = 0; i < static_cast<int>(std::size(kZooms)); ++i) {
        const bool same =
            kZooms[i].fit == CRViewer1.fit() && (CRViewer1.fit() != ReportView::Fit::Percent || kZooms[i].percent == CRViewer1.percent());
        if (same && lbxZoom.listIndex() != i)
            lbxZoom.setListIndex(i);
    }
}

void ReportWindow::find(bool backwards) {
    if (!ViewerTools || pages_ == nullptr || CRViewer1.pageCount() == 0 || txtFind.text().empty() || !layOutAll())
        return;
    ReportSearch search(CRViewer1, txtFind.text(), backwards);
    if (!longWork(desk(), "Looking for \"" + txtFind.text() + "\" …", [&search] { return search.step(); }))
        return;
    showPlace();
    if (!search.found()) {
        CRViewer1.clearSelection();
        desk().beep();
        lblState.setCaption("\"" + txtFind.text() + "\" is not in this report.");
    }
}

void ReportWindow::cmdPrint_Click() {
    attempt("The report could not be printed.", [this] {
        if (savedPrinter_.empty())
            savedPrinter_ = desk().defaultPrinter();
        if (!layOutAll())
            return;
        const std::string& title = pages_->report().definition().title;
        const auto choice = desk().printerSetup(title.empty() ? caption() : title, CRViewer1.pageCount());
        if (!choice)
            return;
        if (putPages(desk(), "Printing \"" + caption() + "\" …", pages_->pages(), choice->first, choice->last, *choice->printer))
            choice->printer->finish();
    });
}

void ReportWindow::cmdExport_Click() {
    if (!ViewerTools || pages_ == nullptr)
        return;
    attempt("The report could not be exported.", [this] {
        const auto file = desk().file(
            {"Export Report", exportFilter(), desk().documentsFolder().string(), true, asFileName(pages_->report().definition().title)});
        if (!file || !layOutAll())
            return;
        lblState.setCaption(exportReport(desk(), *pages_, *file) ? "Written to " + file->string() : "Stopped: nothing was written.");
    });
}

bool ReportWindow::writesOver(const std::vector<LetterFile>& files, const std::filesystem::path& folder) {
    const auto there = std::count_if(files.begin(), files.end(), [&](const LetterFile& one) { return exists(folder / one.name); });
    if (there == 0)
        return true;
    const std::string what = there == 1 ? "One of the files exists" : withThousands(there) + " of the files exist";
    return desk().message(what + " in " + folder.string() + " already. Replace " + (there == 1 ? "it?" : "them?"), kProduct,
                          MessageIcon::Question, MessageButtons::YesNo) == Answer::Yes;
}

void ReportWindow::cmdLetters_Click() {
    attempt("The letters could not be written.", [this] {
        const auto folder = desk().file({.title = "Folder for the Letters",
                                         .filter = "",
                                         .folder = desk().documentsFolder().string(),
                                         .save = false,
                                         .ofFolders = true});
        if (!folder || !layOutAll())
            return;
        const std::vector<LetterFile> files = letterFiles(pages_->letters());
        if (!writesOver(files, *folder))
            return;
        const int written = writeLetters(desk(), *pages_, files, *folder);
        const bool all = written == static_cast<int>(files.size());
        lblState.setCaption((all ? "Written to " : "Stopped; written before to ") + folder->string() + ": " + counted(written, "letter") +
                            ".");
    });
}

void ReportWindow::cmdRefresh_Click() {
    if (!FifthTool || pages_ == nullptr)
        return;
    attempt("The report could not be read again.", [this] {
        const int page = CRViewer1.page();
        if (!readReport())
            return;
        viewReport();
        CRViewer1.turnTo(page);
    });
}

} // namespace merchantry::reports
