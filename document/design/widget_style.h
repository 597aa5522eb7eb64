// How the widgets of a field look, as their dictionaries say it (ISO 32000-2, 12.5.4, 12.5.6.19 and 12.7.4.3).
#pragma once

#include <string>

#include "core/object.h"
#include "document/design/field_design.h"

class CPDFInheritedEntries;

// Notes in `refusals` what of `style` does not fit the kind of `field` or can't be.
void check_style(const CPDFField& field, const PDF_WIDGET_STYLE& style, CPDFRefusals& refusals);

// A style that many fields get.
struct PDF_STYLE_TO_APPLY {
    const PDF_WIDGET_STYLE& style;
    std::string font;    // its resource name; empty to keep the one that is there
    CPDFObj appearance;  // "DA" of the form, for fields without one
};

// Reads what is the same for all fields, and puts a font that the form lacks into it.
CPDFStatus prepare_style(EDIT_TARGET& target, PDF_STYLE_TO_APPLY& style);

// Writes "DA" and "Q" of the field and of the widgets that have their own, and "MK" and "BS" of all its widgets.
PDF_CHANGE_RESULT apply_style(EDIT_TARGET& target, const CPDFField& field, const PDF_STYLE_TO_APPLY& style,
                              CPDFInheritedEntries& inherited);
