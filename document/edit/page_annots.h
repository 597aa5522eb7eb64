// The annotations of a page, changed (ISO 32000-2, 7.7.3.3).
#pragma once

#include <unordered_set>

#include "core/object.h"
#include "core/xref_table.h"

class CPDFPageMap;

// Makes sure that no other page has the list of annotations of the page number `page`: one that pages share is copied.
PDF_CHANGE_RESULT own_annotations(CPDFXRefTable& xref, CPDFPageMap& pages, int32_t page);

// Each changes "Annots", which may be missing, direct, or an object of its own.
PDF_CHANGE_RESULT add_annotation(CPDFXRefTable& xref, const PDF_REF& page, const PDF_REF& annotation);
PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page,
                                     const std::unordered_set<uint32_t>& gone);
