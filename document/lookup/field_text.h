// Field names and values as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "core/object.h"
#include "file/status.h"

class CPDFAcroForm;
class CPDFField;

// The fully qualified name (ISO 32000-2, 12.7.4.2): every partial name from the top down as stored, joined with '.'.
// Unlike CPDFField::get_full_name2 it keeps names that begin with '#', and it has any length up to LIMIT_FULL_NAME.
// Fields without a name add nothing.
std::string full_name(const CPDFField& field);

// The full name without index suffixes.
std::string full_name_without_index(const CPDFField& field);

// Names for lists of a form's fields: a field without a name of its own shows as '#' and its place among those beside it,
// counted from 0, behind the name of the field above it.
class CPDFNumberedNames {
public:
    // `form` is borrowed.
    explicit CPDFNumberedNames(const CPDFAcroForm& form) : m_form(form) {}

    // Fast when fields are asked for in tree order.
    std::string name_of(const CPDFField& field);

private:
    int32_t place_of(const CPDFField& field);

    const CPDFAcroForm& m_form;
    int32_t m_last = 0;  // the place of a field at the top that was asked for last
};

// The text of a PDF text string, of any length.
std::string utf8_of(const PDF_String& text);

// The position of the first byte of `text` that is not UTF-8; npos when all of it is.
size_t find_malformed(std::string_view text);
inline bool is_utf8(std::string_view text)
{
    return find_malformed(text) == std::string_view::npos;
}

// The characters of a name, which are UTF-8 by custom (ISO 32000-2, 7.3.5); other bytes are read as PDFDocEncoding.
std::string utf8_of_name(const std::string& name);

// `text` between quotes, for a sentence. The middle of a long one is left out: names differ at their ends.
std::string in_quotes(std::string_view text);

// The refusal of a name that no field has.
CPDFStatus no_such_field(std::string_view name);

// `text`, UTF-8, as a PDF text string: 8-bit when every character is one that PDFDocEncoding and Latin-1 share, UTF-16BE
// otherwise. The caller releases it. Malformed bytes become U+FFFD, and so does U+001B, which PDF text has no way to say.
PDF_String pdf_string_of(const std::string& text);
