#pragma once

#include "exchange/import/zipfile.h"

#include <pugixml.hpp>
#include <string>

namespace merchantry::exchange {

// The name without its prefix of a namespace: programs choose prefixes as they like.
std::string_view localName(const char* name);
// The first child of that local name; null when there is none.
pugi::xml_node childNamed(const pugi::xml_node& node, std::string_view name);
pugi::xml_attribute attributeNamed(const pugi::xml_node& node, std::string_view name);

// A part of a workbook whose root holds a long list of like elements ("sheetData" of "row"s): unpacked and parsed in pieces of whole
// elements, so that no tree of all of it is built. What stands around the list is kept as text.
class XmlPieces {
public:
    // `list` is the element that holds the like ones.
    XmlPieces(ZipFile& file, const std::string& part, const std::string& list, const std::string& element);

    // The next elements as children of a document, which lives until the next call; null behind the last. Throws FileRefused.
    const pugi::xml_document* next();
    std::int64_t bytes() const { return part_.bytes(); }
    // What stands before the list, and behind it once next gave null.
    const std::string& head() const { return head_; }
    const std::string& tail() const { return rest_; }

private:
    void readHead(const std::string& list);
    std::size_t lastElement() const;
    const pugi::xml_document* parse(std::size_t length);

    ZipFile::Part part_;
    std::string open_;  // "<x:row"
    std::string close_; // "</x:sheetData>"
    std::string head_;
    std::string rest_;  // read and not parsed yet
    std::string piece_; // what the document points into
    pugi::xml_document document_;
    bool more_ = true; // of the part
    bool over_ = false;
};

// An element out of text around a list, parsed; an empty document when it is not there.
pugi::xml_document elementIn(const std::string& text, const std::string& name);
// A whole part. Throws FileRefused for what is no XML.
pugi::xml_document parsedPart(ZipFile& file, const std::string& part);

} // namespace merchantry::exchange
