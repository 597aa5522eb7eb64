// Field values as text.
#pragma once

#include <string>
#include <vector>

#include "core/object.h"

// A value in UTF-8: absent, one text, or the texts of an array.
struct PDF_VALUE_TEXT {
    bool present = false;
    bool is_list = false;
    std::string text;                // the text of a value that is no list
    std::vector<std::string> items;  // the texts of a list

    // The text, or the texts of a list joined with ", "; empty when absent.
    std::string joined() const;
};

// The text of `value`: of a text string, name, number or boolean; a list for an array. A dictionary, as signatures have
// it, counts as absent, and so does a stream.
PDF_VALUE_TEXT value_text(CPDFXRefTable& xref, const CPDFObj& value);

// The text of a value that is kept in a stream, as long texts may be (ISO 32000-2, 12.7.5.3). Reading many takes time out
// of proportion to the file, since fields may share one stream. Of one with more than LIMIT_EXPORT_STREAMS bytes the text of
// some more than these.
std::string stream_text(CPDFXRefTable& xref, const CPDFStreamRec& value);
