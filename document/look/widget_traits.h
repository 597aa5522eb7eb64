// How the widgets of a field show, as far as scripts ask and tell.
#pragma once

#include "core/entry_change.h"
#include "core/object.h"
#include "script/sandbox/message.h"

class CPDFDictionary;
class CPDFField;

// Reads where the widget `ref` of `field` is, how it is displayed and its colours; what the widget and the fields above it
// leave open the form dictionary says, null for none.
void read_widget_traits(const CPDFField& field, const PDF_REF& ref, const CPDFDictionary* form, SCRIPT_FIELD& out);

// Shows or hides a widget by "F" (ISO 32000-2, 12.5.3); nothing changes where it is so already.
PDF_CHANGE_RESULT set_widget_display(CPDFXRefTable& xref, const PDF_REF& ref, SCRIPT_DISPLAY display);
