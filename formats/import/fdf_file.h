// The objects of an FDF file (ISO 32000-2, 12.7.8), which has no cross-reference table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/xref_table.h"
#include "file/file_reader.h"
#include "file/syntax/lexer.h"

class CPDFParser;

// Finds the objects by walking over the file once. `data` is borrowed.
class CPDFFdfFile {
public:
    CPDFFdfFile(const uint8_t* data, size_t size);

    // Finds every object and the FDF dictionary. Returns why that fails, with the byte where; empty when it does not.
    std::string start();

    CPDFXRefTable& xref() { return m_xref; }

    // The FDF dictionary. Null before start() succeeded.
    const CPDFDictionary* fdf() const { return m_fdf.dictionary(); }

    // Whether objects were read so often that further ones read as absent.
    bool exhausted() { return m_reader.budget().exhausted(); }

private:
    bool scan_object();
    bool pass_stream(CPDFParser& parser, const CPDFObj& dict);
    bool take_trailer();
    bool find_fdf();
    bool fail(const uint8_t* at, const std::string& why);

    const uint8_t* m_data;
    CPDFLexer m_lexer;
    CPDFFileReader m_reader;
    CPDFXRefTable m_xref;
    PDF_REF m_root = {0, 0};       // what the trailer names
    PDF_REF m_candidate = {0, 0};  // the last object with an entry "FDF"
    CPDFObj m_fdf;
    std::string m_fault;
};
