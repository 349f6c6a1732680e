#pragma once

#include "ui/desk.h"

#include <functional>
#include <string>

namespace merchantry::app {

class frmFieldSearch;

// The field search of a list screen: a small panel that floats beside the list, with the fields to search and a text. One object per open
// list screen. Used in this order: delimiter, Initialise, Show, Close.
class VelmoraSearch {
public:
    explicit VelmoraSearch(ui::Desk& desk) : desk_(desk) {}
    ~VelmoraSearch();

    // With which the field names of Initialise are joined.
    const std::string& Delimiter() const { return delimiter_; }
    // The field list, the list's form, the horizontal position of its grid in pixels; the last two numbers are 0 and 3 and carry nothing.
    void Initialise(const std::string& fieldList, ui::Form& owner, int leftPixels, int reserved, int mode);
    void Show();
    // Puts a search into the shown panel as if the user had typed it. Nothing happens for a field that it does not offer.
    void Search(const std::string& field, const std::string& text);
    void Close();

    // The chosen field's caption and the text, whenever the user changes either.
    std::function<void(const std::string& field, const std::string& text)> FieldSearch;

private:
    ui::Desk& desk_;
    std::string delimiter_ = "|";
    std::string fieldList_;
    int leftPixels_ = 0;
    frmFieldSearch* panel_ = nullptr;
};

} // namespace merchantry::app
