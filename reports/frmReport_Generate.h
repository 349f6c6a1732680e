#pragma once

#include "reports/reportwindow.h"

#include <array>
#include <string>
#include <vector>

namespace merchantry::reports {

// The standard report window. One of the three operations comes first, then it is shown; a report that cannot be shown makes the window
// close itself when it is activated.
class frmReport_Generate : public ReportWindow {
public:
    explicit frmReport_Generate(ui::Desk& desk);

    // The report of a key with the conditions of slots 0 to count, joined as they are, and the order. Says why when it cannot be opened.
    void Generate(const std::string& key, const std::vector<std::string>& conditions, int count, bool ascending,
                  const std::string& sortField);
    // A report that the caller has opened and given its parameters. The viewer tools are off; the caller may switch them on.
    void GenerateFromRpt(RptFilePtr report);
    // A report file of the user's own.
    void CustomGenerate(const std::string& fileName);

    // The criteria in the words of the screen that made them, for pages and exports. After Generate.
    void setCriteria(const std::string& words);

private:
    void Form_Load() override;
    void Form_Activate() override;

    std::string Where_;
    bool Custom_ = false;
    std::string CustomFile_;
};

} // namespace merchantry::reports
