#include "appearance/font/font_program.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_CID_H
#include FT_FONT_FORMATS_H

#include <algorithm>
#include <cstring>
#include <string_view>

#include "appearance/font/font_values.h"
#include "core/limits.h"

namespace {

// Whether the bytes begin as one of the formats of embedded programs: TrueType, OpenType, Type 1, CFF. The library knows
// more, some of them packed, and none of them belongs into a PDF file.
bool is_known_format(const std::string& bytes)
{
    constexpr std::string_view BEGINNINGS[] = {{"\0\1\0\0", 4}, "true", "OTTO", "ttcf", "%!", "\x80\1", {"\1\0", 2}};
    return std::ranges::any_of(BEGINNINGS, [&](std::string_view mark) { return bytes.starts_with(mark); });
}

bool has_own_cids(FT_Face face)
{
    FT_Bool is_cid = 0;
    return FT_Get_CID_Is_Internally_CID_Keyed(face, &is_cid) == 0 && is_cid;
}

}  // namespace

void CPDFFontProgram::load()
{
    CPDFObj reference;
    reference.set_ref(m_file);
    m_bytes = stream_value(m_xref, &reference, LIMIT_FONT_FILE);
    if (is_known_format(m_bytes))
        m_library = open_free_type();
    if (!m_library)
        return;
    const auto* bytes = reinterpret_cast<const FT_Byte*>(m_bytes.data());
    if (FT_New_Memory_Face(m_library.get(), bytes, static_cast<FT_Long>(m_bytes.size()), 0, &m_face) != 0)
        m_face = nullptr;
}

FT_FaceRec_* CPDFFontProgram::face()
{
    if (!m_loaded && is_embedded())
        load();
    m_loaded = true;
    return m_face;
}

bool CPDFFontProgram::is_truetype()
{
    const char* format = face() ? FT_Get_Font_Format(m_face) : nullptr;
    return format && std::strcmp(format, "TrueType") == 0;
}

void CPDFFontProgram::name_own_glyphs(GLYPH_NAMES& names)
{
    constexpr FT_Encoding OWN[] = {FT_ENCODING_ADOBE_CUSTOM, FT_ENCODING_ADOBE_STANDARD, FT_ENCODING_ADOBE_EXPERT,
                                   FT_ENCODING_ADOBE_LATIN_1};
    const bool has_own = face() && std::ranges::any_of(OWN, [this](FT_Encoding encoding) {
                             return FT_Select_Charmap(m_face, encoding) == 0;
                         });
    if (!has_own || !FT_HAS_GLYPH_NAMES(m_face))
        return name_latin_glyphs(LATIN_STANDARD, names);
    for (unsigned code = 0; code < names.size(); ++code) {
        char name[64] = "";
        const FT_UInt glyph = FT_Get_Char_Index(m_face, code);
        if (glyph && FT_Get_Glyph_Name(m_face, glyph, name, sizeof name) == 0)
            names[code] = name;
    }
}

uint32_t CPDFFontProgram::glyph_of_name(const std::string& name)
{
    return face() && FT_HAS_GLYPH_NAMES(m_face) ? FT_Get_Name_Index(m_face, name.c_str()) : 0;
}

uint32_t CPDFFontProgram::glyph_in(uint32_t encoding, uint32_t code)
{
    if (!face() || FT_Select_Charmap(m_face, static_cast<FT_Encoding>(encoding)) != 0)
        return 0;
    return FT_Get_Char_Index(m_face, code);
}

uint32_t CPDFFontProgram::glyph_of_character(char32_t c)
{
    return glyph_in(FT_ENCODING_UNICODE, c);
}

uint32_t CPDFFontProgram::glyph_of_mac_code(uint8_t code)
{
    return glyph_in(FT_ENCODING_APPLE_ROMAN, code);
}

uint32_t CPDFFontProgram::glyph_of_code(uint8_t code)
{
    constexpr uint32_t PRIVATE_AREA = 0xF000;
    for (const uint32_t symbol : {PRIVATE_AREA + code, uint32_t{code}}) {
        if (const uint32_t glyph = glyph_in(FT_ENCODING_MS_SYMBOL, symbol))
            return glyph;
    }
    return glyph_of_mac_code(code);
}

uint32_t CPDFFontProgram::glyph_of_cid(uint32_t cid)
{
    // A bare CFF program is asked by CID; in an OpenType one the glyphs have numbers of their own.
    if (!face() || !FT_IS_SFNT(m_face) || !has_own_cids(m_face))
        return cid;
    if (m_glyph_of_cid.empty()) {
        m_glyph_of_cid.resize(0x10000);
        for (FT_Long glyph = std::min<FT_Long>(m_face->num_glyphs, 0x10000) - 1; glyph > 0; --glyph)
            m_glyph_of_cid[cid_of_glyph(static_cast<uint32_t>(glyph)) & 0xFFFF] = static_cast<uint16_t>(glyph);
    }
    return cid < m_glyph_of_cid.size() ? m_glyph_of_cid[cid] : 0;
}

uint32_t CPDFFontProgram::cid_of_glyph(uint32_t glyph)
{
    FT_UInt cid = glyph;
    if (face() && has_own_cids(m_face) && FT_Get_CID_From_Glyph_Index(m_face, glyph, &cid) != 0)
        return 0;
    return cid;
}

bool CPDFFontProgram::has_glyph(uint32_t glyph)
{
    // The outline is not scaled and its parts are not put together: no instructions of the program run.
    constexpr FT_Int32 HOW = FT_LOAD_NO_RECURSE | FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
    return glyph != 0 && face() && FT_Load_Glyph(m_face, glyph, HOW) == 0;
}

bool CPDFFontProgram::draws_glyph(uint32_t glyph)
{
    if (!has_glyph(glyph))
        return false;
    const FT_GlyphSlotRec& slot = *m_face->glyph;
    return slot.format == FT_GLYPH_FORMAT_COMPOSITE ? slot.num_subglyphs > 0 : slot.outline.n_points > 0;
}
