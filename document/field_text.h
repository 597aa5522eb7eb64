// Field names and values as UTF-8.
#pragma once

#include <string>

#include "core/object.h"

class CPDFField;

// The full name as stored, of any length.
std::string full_name(const CPDFField& field);

// The full name without index suffixes.
std::string full_name_without_index(const CPDFField& field);

// The text of a PDF text string, of any length.
std::string utf8_of(const PDF_String& text);

// `text`, UTF-8, as a PDF text string: 8-bit when every character has a place in PDFDocEncoding, UTF-16BE otherwise.
// The caller releases it. Malformed bytes become U+FFFD.
PDF_String pdf_string_of(const std::string& text);
