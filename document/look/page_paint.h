// Drawing form XObjects on a page, in front of what it shows already (ISO 32000-2, 7.7.3.3 and 8.10).
#pragma once

#include <string>
#include <unordered_map>

#include "core/entry_change.h"
#include "core/object.h"
#include "document/lookup/page_box.h"

class CPDFDictionary;

// Where the bounding box `box` of a form XObject with "Matrix" `matrix` (six numbers) comes to stand so that it fills
// `rect`: the matrix to put before it (ISO 32000-2, 12.5.5), a scale and a shift. False when the box is empty.
struct PDF_PLACEMENT {
    double scale_x, scale_y, shift_x, shift_y;
};
bool place_in(const PDF_BOX& box, const double (&matrix)[6], const PDF_BOX& rect, PDF_PLACEMENT& out);

// Collects the drawings of one page, then stores them with its resources. Names of the page's own resources stay.
class CPDFPagePaint {
public:
    // `page` is the page's dictionary, whole, and `xref` the document's; both borrowed while this lives.
    CPDFPagePaint(CPDFXRefTable& xref, const CPDFDictionary& page);

    void draw(const PDF_REF& xobject, const PDF_PLACEMENT& at);
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
