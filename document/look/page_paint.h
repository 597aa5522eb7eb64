// Drawing form XObjects on a page, in front of what it shows already (ISO 32000-2, 7.7.3.3 and 8.10).
#pragma once

#include <string>
#include <unordered_map>

#include "appearance/draw/placement.h"
#include "core/object.h"

class CPDFDictionary;

// Collects the drawings of one page, then stores them with its resources. Names of the page's own resources stay.
class CPDFPagePaint {
public:
    // `page` is the page's dictionary, whole, and `xref` the document's; both borrowed while this lives.
    CPDFPagePaint(CPDFXRefTable& xref, const CPDFDictionary& page);

    // `at` stands before the drawing: place_appearance.
    void draw(const PDF_REF& xobject, const PDF_MATRIX& at);
    bool is_empty() const { return m_content.empty(); }

    // Makes the new "Contents" and "Resources" of the page; `save_state` is a stream object with a "q", which all pages
    // share. False when memory runs out.
    bool finish(const PDF_REF& save_state, CPDFObj& contents, CPDFObj& resources);

private:
    std::string name_of(const PDF_REF& xobject);
    bool copy_resources(CPDFObj& out, CPDFDictionary*& xobjects);

    CPDFXRefTable& m_xref;         // borrowed from the caller
    const CPDFDictionary& m_page;  // the same
    std::string m_content;
    CPDFObj m_resources;
    CPDFDictionary* m_xobjects = nullptr;  // borrowed from m_resources
    std::unordered_map<uint32_t, std::string> m_names;
};
