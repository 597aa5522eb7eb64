// The value that counts for a field.
#pragma once

#include "document/lookup/value_text.h"

class CPDFField;

// The field whose value `field` shows: itself where it has a value or default of its own, rich text included, else the
// nearest one above it of its kind that has; null where none has.
const CPDFField* value_holder(const CPDFField& field);

// The value of the field itself: that of "V" or "DV", see value_text, else the plain text of its rich text.
PDF_VALUE_TEXT own_value(const CPDFField& field);

// The value that `field` shows, of a stream, too.
PDF_VALUE_TEXT held_value(const CPDFField& field);
