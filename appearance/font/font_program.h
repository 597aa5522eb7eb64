// A font program as a file embeds it, asked which glyphs it has.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "appearance/font/free_type.h"
#include "appearance/font/standard/glyph_encoding.h"
#include "core/xref_table.h"

struct FT_FaceRec_;

// The stream is read with the first question. A program that can't be read answers 0, false or nothing. Glyph 0 is the one
// for missing characters.
class CPDFFontProgram {
public:
    // `file` is the stream; number 0 for a font that is not embedded. The store outlives the program.
    CPDFFontProgram(CPDFXRefTable& xref, const PDF_REF& file) : m_xref(xref), m_file(file) {}
    CPDFFontProgram(const CPDFFontProgram&) = delete;
    CPDFFontProgram& operator=(const CPDFFontProgram&) = delete;

    bool is_embedded() const { return m_file.num != 0; }
    bool is_readable() { return face() != nullptr; }

    // Whether codes of a simple font find their glyphs through "cmap" tables; otherwise through glyph names.
    bool is_truetype();

    // Sets the names that the program gives to codes itself; those of StandardEncoding when it gives none.
    void name_own_glyphs(GLYPH_NAMES& names);

    uint32_t glyph_of_name(const std::string& name);
    uint32_t glyph_of_character(char32_t c);
    // The glyph of a code by the tables for symbolic fonts.
    uint32_t glyph_of_code(uint8_t code);
    // The glyph of a code of MacRomanEncoding.
    uint32_t glyph_of_mac_code(uint8_t code);

    // Between the CIDs and the glyphs of a program that has CIDs of its own; the same number in others.
    uint32_t glyph_of_cid(uint32_t cid);
    uint32_t cid_of_glyph(uint32_t glyph);

    // Whether the program has the glyph, and whether there is something in it to see. Subsets keep numbers and drop outlines.
    bool has_glyph(uint32_t glyph);
    bool draws_glyph(uint32_t glyph);

private:
    FT_FaceRec_* face();
    void load();
    uint32_t glyph_in(uint32_t encoding, uint32_t code);

    // What is said to be unused is so where programs do without font programs.
    [[maybe_unused]] CPDFXRefTable& m_xref;
    PDF_REF m_file;
    std::string m_bytes;                             // what the face reads from
    FREE_TYPE m_library;                             // and with it the face
    [[maybe_unused]] FT_FaceRec_* m_face = nullptr;  // borrowed from the library
    [[maybe_unused]] bool m_loaded = false;
    std::vector<uint16_t> m_glyph_of_cid;  // empty until it is needed
};
