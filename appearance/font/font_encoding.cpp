#include "appearance/font/font_encoding.h"

#include <optional>

#include "appearance/font/font_program.h"
#include "appearance/font/font_values.h"
#include "appearance/font/standard/standard_font.h"
#include "core/array.h"
#include "core/dictionary.h"

namespace {

std::optional<LATIN_ENCODING> encoding_named(const std::string& name)
{
    if (name == "WinAnsiEncoding")
        return LATIN_WIN_ANSI;
    if (name == "MacRomanEncoding")
        return LATIN_MAC_ROMAN;
    return name == "StandardEncoding" ? std::optional(LATIN_STANDARD) : std::nullopt;
}

void apply_differences(CPDFXRefTable& xref, const CPDFArray& differences, GLYPH_NAMES& names)
{
    int64_t code = 0;
    for (int32_t i = 0; i < differences.count; ++i) {
        CPDFObj scratch;
        const CPDFObj* item = view_obj(&xref, differences.at(i), scratch);
        if (const char* name = item->name_text()) {
            if (code >= 0 && code < static_cast<int64_t>(names.size()))
                names[static_cast<size_t>(code)] = name == std::string(".notdef") ? "" : name;
            ++code;
        } else {
            code = integer_value(*item);
        }
    }
}

class EncodingReader {
public:
    EncodingReader(CPDFXRefTable& xref, const CPDFDictionary& font, CPDFFontProgram& program)
        : m_xref(xref),
          m_program(program),
          m_standard(find_standard_font(name_value(xref, font.get_item("BaseFont")))),
          m_is_truetype(name_value(xref, font.get_item("Subtype")) == "TrueType")
    {
    }

    GLYPH_NAMES read(const CPDFObj* entry)
    {
        CPDFObj scratch;
        const CPDFObj* encoding = view_obj(&m_xref, entry, scratch);
        const CPDFDictionary* dict = encoding->any_dictionary();
        if (!dict) {
            name_by(encoding->name_text() ? encoding->name_text() : "");
            return std::move(m_names);
        }
        const std::string base = name_value(m_xref, dict->get_item("BaseEncoding"));
        CPDFObj list;
        const CPDFArray* differences = view_obj(&m_xref, dict->get_item("Differences"), list)->array();
        if (base.empty() && m_is_truetype)
            name_latin_glyphs(LATIN_STANDARD, m_names);
        else
            name_by(base);
        if (differences)
            apply_differences(m_xref, *differences, m_names);
        return std::move(m_names);
    }

private:
    // By the encoding of that name, or by the font's own where there is none.
    void name_by(const std::string& encoding)
    {
        const bool is_symbolic_font = m_standard && is_symbolic(*m_standard) && !m_program.is_embedded();
        if (const std::optional<LATIN_ENCODING> latin = encoding_named(encoding); latin && !is_symbolic_font)
            return name_latin_glyphs(*latin, m_names);
        if (m_program.is_readable()) {
            if (!m_program.is_truetype())
                m_program.name_own_glyphs(m_names);
            return;
        }
        if (m_is_truetype)  // viewers do not agree on which it is
            return name_common_glyphs(LATIN_STANDARD, LATIN_WIN_ANSI, m_names);
        if (encoding == "PDFDocEncoding")  // no name that the standard knows, so some ignore it
            return name_common_glyphs(LATIN_STANDARD, LATIN_PDF_DOC, m_names);
        name_own_glyphs(m_standard.value_or(STANDARD_FONT::HELVETICA), m_names);
    }

    CPDFXRefTable& m_xref;
    CPDFFontProgram& m_program;
    std::optional<STANDARD_FONT> m_standard;
    bool m_is_truetype;
    GLYPH_NAMES m_names;
};

}  // namespace

GLYPH_NAMES read_glyph_names(CPDFXRefTable& xref, const CPDFDictionary& font, CPDFFontProgram& program)
{
    return EncodingReader(xref, font, program).read(font.get_item("Encoding"));
}
