#pragma once

#include "reports/letterfiles.h"
#include "reports/reportpages.h"
#include "reports/rptfile.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/reportview.h"
#include "ui/textbox.h"

#include <optional>
#include <string>

namespace merchantry::reports {

// A window with the pages of one report: what frmReport_Generate, frmViewer and frmOrphanedItems are in common. Turning pages, the page
// box, selecting, copying and printing are always there. Of the viewer's five features that are switched, four go together, the viewer
// tools: export, search, zoom and the group tree. The fifth reads the report anew.
class ReportWindow : public ui::Form {
public:
    // The five switches; may be set before the window is shown and after.
    bool ViewerTools = false;
    bool FifthTool = false;

protected:
    ReportWindow(ui::Desk& desk, std::string name, std::string caption);

    RptFilePtr report_; // what is shown; null when it could not be opened

    // Runs the report and takes its pages. False when the user stopped it; throws what the report or the store has against it.
    bool readReport();
    // Gives the pages to the viewer and sets the switches.
    void viewReport();
    // As Form_Load of a report window has it: a failure is kept, for the window to close itself at its activation. It is told in the status
    // line of the main window, nowhere else.
    void loadReport();
    bool failed_ = false;
    // What a screen with criteria of its own says of it: that they are bad, or what the disk or another program has against the reading.
    void tellFailure();
    void Form_Unload(bool& cancel) override;

private:
    void wire();
    void bindKeys();
    std::string storeFailure_; // the store's own sentence, empty when it is not to blame

    void showPlace();
    void showZoom();
    void zoomTo(int index);
    void zoomStep(int steps);
    void turnToTyped();
    void find(bool backwards);
    void tmrLayout_Fire();
    bool layOutAll();
    void cmdPrint_Click();
    void cmdExport_Click();
    void cmdLetters_Click();
    bool writesOver(const std::vector<LetterFile>& files, const std::filesystem::path& folder);
    void cmdRefresh_Click();
    void attempt(const std::string& what, const std::function<void()>& body);

    ui::Button cmdPrint{*this, "cmdPrint", "&Print"};
    ui::Button cmdExport{*this, "cmdExport", "&Export"};
    ui::Button cmdLetters{*this, "cmdLetters", "Each to a &File..."};
    ui::Button cmdRefresh{*this, "cmdRefresh", "&Read Again"};
    ui::Image imgTree{*this, "imgTree", "tree", "Show or hide the groups (F4)"};
    ui::Image imgFirst{*this, "imgFirst", "arrow-first", "First page (Ctrl+Home)"};
    ui::Image imgPrevious{*this, "imgPrevious", "arrow-left", "Previous page (PageUp)"};
    ui::TextBox txtPage{*this, "txtPage"};
    ui::Label lblPages{*this, "lblPages"};
    ui::Image imgNext{*this, "imgNext", "arrow-right", "Next page (PageDown)"};
    ui::Image imgLast{*this, "imgLast", "arrow-last", "Last page (Ctrl+End)"};
    ui::ListBox lbxZoom{*this, "lbxZoom"};
    ui::TextBox txtFind{*this, "txtFind"};
    ui::Image imgFindPrevious{*this, "imgFindPrevious", "arrow-up", "Find the one before (Shift+F3)"};
    ui::Image imgFindNext{*this, "imgFindNext", "arrow-down", "Find the next (F3)"};
    ui::ReportView CRViewer1{*this, "CRViewer1"};
    ui::Label lblState{*this, "lblState"};
    ui::Button cmdClose{*this, "cmdClose", "&Close"};
    ui::Timer tmrLayout{*this, "tmrLayout", 10};

    std::unique_ptr<ReportPages> pages_;
    std::string savedPrinter_; // the default before the first print; empty without any
};

} // namespace merchantry::reports
