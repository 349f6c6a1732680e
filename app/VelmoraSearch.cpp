#include "app/VelmoraSearch.h"

#include "app/frmFieldSearch.h"
#include "base/text.h"

namespace merchantry::app {

VelmoraSearch::~VelmoraSearch() {
    Close();
}

void VelmoraSearch::Initialise(const std::string& fieldList, ui::Form& /*owner*/, int leftPixels, int /*reserved*/, int /*mode*/) {
    fieldList_ = fieldList;
    leftPixels_ = leftPixels;
}

void VelmoraSearch::Show() {
    if (panel_ != nullptr)
        return;
    panel_ = &desk_.newForm<frmFieldSearch>();
    panel_->setFields(split(fieldList_, delimiter_));
    panel_->changed = [this](const std::string& field, const std::string& text) {
        if (FieldSearch)
            FieldSearch(field, text);
    };
    panel_->gone = [this] { panel_ = nullptr; };
    desk_.showFloating(*panel_);
}

void VelmoraSearch::Search(const std::string& field, const std::string& text) {
    if (panel_ != nullptr)
        panel_->setSearch(field, text);
}

void VelmoraSearch::Close() {
    if (panel_ != nullptr)
        panel_->unload();
}

} // namespace merchantry::app
