// Pictures of widgets as streams of the document (ISO 32000-2, 8.10 and 12.5.5).
#pragma once

#include "appearance/draw/widget_picture.h"
#include "core/object.h"

class CPDFFormFonts;
class CPDFXRefTable;

// Stores `picture` as a new form XObject, compressed where that pays; the fonts that it names stay objects of their own.
// Object number 0 when memory runs out.
PDF_REF store_picture(CPDFXRefTable& xref, CPDFFormFonts& fonts, const WIDGET_PICTURE& picture);
