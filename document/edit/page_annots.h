// The annotations of a page, changed (ISO 32000-2, 7.7.3.3).
#pragma once

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/object.h"
#include "core/xref_table.h"

class CPDFPageMap;

// Which pages share a list of annotations. Nothing else changes "Annots" of a page to another object meanwhile.
class CPDFAnnotationLists {
public:
    // Both borrowed.
    CPDFAnnotationLists(CPDFXRefTable& xref, CPDFPageMap& pages) : m_xref(xref), m_pages(pages) {}

    // Makes sure that no other page has the list of the page number `page`: one that pages share is copied.
    PDF_CHANGE_RESULT make_own(int32_t page);

private:
    void count();

    CPDFXRefTable& m_xref;                          // borrowed
    CPDFPageMap& m_pages;                           // borrowed
    std::unordered_map<uint32_t, int32_t> m_users;  // how many pages have the list that is this object
};

// Each changes "Annots", which may be missing, direct, or an object of its own.
PDF_CHANGE_RESULT add_annotations(CPDFXRefTable& xref, const PDF_REF& page, const std::vector<PDF_REF>& annotations);
PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page,
                                     const std::unordered_set<uint32_t>& gone);
