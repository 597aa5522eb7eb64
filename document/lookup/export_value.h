// The values of fields as they are exported.
#pragma once

#include <cstddef>

#include "core/limits.h"
#include "document/lookup/field_options.h"
#include "document/lookup/value_text.h"

class CPDFField;
class CPDFXRefTable;

// Reads one field after the other; what all of them may cost together is bounded.
class CPDFExportValues {
public:
    // `xref` is borrowed.
    explicit CPDFExportValues(CPDFXRefTable& xref) : m_xref(xref) {}

    // Whether the field is of a kind that takes values, and has a name of its own.
    static bool is_exported(const CPDFField& field);

    // The value of an exported field, such that filling the field with it changes nothing: a text or state, or for a
    // choice the export values of several options in their order. Absent where the field has no value of its own kind;
    // no option of a choice is none, too, unless it has a default that would show instead.
    PDF_VALUE_TEXT value_of(const CPDFField& field);

    // Whether the values cost more than the limits allow: the last one may be wrong then.
    bool over_limit() const { return m_stream_bytes > LIMIT_EXPORT_STREAMS; }

private:
    void read_text(const CPDFField& field, PDF_VALUE_TEXT& value);
    void read_choice(const CPDFField& field, PDF_VALUE_TEXT& value);

    CPDFXRefTable& m_xref;
    size_t m_stream_bytes = 0;
    CPDFOptionIndex m_options;
};
