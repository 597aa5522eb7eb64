// The packets of an XFA form in their streams (ISO 32000-2, Annex K).
#pragma once

#include <string>

#include "core/object.h"
#include "file/status.h"

class CPDFXRefTable;

struct PDF_XFA_PACKETS {
    PDF_REF data_ref = {0, 0};  // the stream of the data set, or of all packets; number 0 when there is none
    bool is_single = false;     // whether it has all packets
    std::string data;           // the text of that stream
    std::string
        form_template;  // the text of the template, empty for one stream, where there is none and where it is too large
};

// Reads the packets of the form whose entry in the catalog is `form`. Fails where there is no data set or it is too large.
CPDFStatus read_xfa_packets(CPDFXRefTable& xref, const CPDFObj* form, PDF_XFA_PACKETS& out);

// Makes `text` the data of the stream `ref`, compressed.
CPDFStatus store_xfa_stream(CPDFXRefTable& xref, const PDF_REF& ref, const std::string& text);
