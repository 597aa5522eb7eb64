// Changes single entries of a dictionary in its PDF text, so that the other entries are copied and never built.
#pragma once

#include <cstdint>
#include <string>

#include "core/entry_change.h"
#include "core/pdf_string.h"

class CPDFLexer;

// Copies well-formed dictionaries with no more white space than their tokens need, without comments and with short
// numbers.
class CPDFSplicer {
public:
    // The cursor of `text` is in front of a dictionary. Makes `out`, which is empty, the text of that dictionary with the
    // changed entries behind the others, and moves the cursor behind the dictionary. False, with `out` empty, when
    // there is none, when it is damaged, deep or has a key written with escapes, and when memory runs out.
    bool splice(CPDFLexer& text, PDF_ENTRY_CHANGES changes, PDF_String& out);

private:
    bool copy_entries(CPDFLexer& text, PDF_ENTRY_CHANGES changes);
    bool copy_value(CPDFLexer& text);
    void skip_gap(CPDFLexer& text);
    void pass_decimals(CPDFLexer& text);
    bool pass_bracket(CPDFLexer& text);
    void flush(const uint8_t* end);

    std::string m_copy;              // kept for the next copy, for its room
    const uint8_t* m_run = nullptr;  // borrowed; what follows of the text is not copied yet
    uint64_t m_dicts = 0;            // a bit for every open container, the innermost lowest: 1 for a dictionary
    int m_depth = 0;
};
