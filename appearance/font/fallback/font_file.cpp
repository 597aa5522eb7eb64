#include "appearance/font/fallback/font_file.h"

#include <ft2build.h>

#include FT_FREETYPE_H
#include FT_CID_H

#include <algorithm>
#include <cmath>

#include "appearance/font/free_type.h"

namespace {

// Bits of "fsType" in the OS/2 table: embedding needs the maker's permission, no subsets, bitmaps only.
constexpr unsigned EMBEDDING_RESTRICTED = 0x0002;
constexpr unsigned EMBEDDING_LICENSES = 0x000F;
constexpr unsigned EMBEDDING_REFUSED = 0x0300;

unsigned u16_at(const std::vector<uint8_t>& bytes, size_t at)
{
    return at + 2 <= bytes.size() ? bytes[at] << 8 | bytes[at + 1] : 0u;
}

std::vector<uint16_t> read_cids(FT_Face face)
{
    FT_Bool keyed = 0;
    std::vector<uint16_t> cids;
    if (FT_Get_CID_Is_Internally_CID_Keyed(face, &keyed) || !keyed)
        return cids;
    cids.resize(static_cast<size_t>(face->num_glyphs));
    for (size_t glyph = 0; glyph < cids.size(); ++glyph) {
        FT_UInt cid = 0;
        if (!FT_Get_CID_From_Glyph_Index(face, static_cast<FT_UInt>(glyph), &cid))
            cids[glyph] = static_cast<uint16_t>(cid);
    }
    return cids;
}

// The character collection's number of each glyph; empty for a font that has none, or can't be read.
std::vector<uint16_t> cids_of(const std::string& path, int index)
{
    const FREE_TYPE library = open_free_type();
    FT_Face face = nullptr;
    return library && !FT_New_Face(library.get(), path.c_str(), index, &face) ? read_cids(face)
                                                                              : std::vector<uint16_t>();
}

}  // namespace

std::unique_ptr<CPDFFontFile> CPDFFontFile::open(const HARFBUZZ& hb, const std::string& path, int index,
                                                 std::string name)
{
    const auto blob = harfbuzz_guard(hb.hb_blob_create_from_file_or_fail(path.c_str()), hb.hb_blob_destroy);
    if (!blob)
        return nullptr;
    hb_face_t* face = hb.hb_face_create(blob.get(), static_cast<unsigned>(index));
    std::unique_ptr<CPDFFontFile> file(new CPDFFontFile(hb, face, std::move(name)));
    return file->is_usable(path, index) ? std::move(file) : nullptr;
}

CPDFFontFile::CPDFFontFile(const HARFBUZZ& hb, hb_face_t* face, std::string name)
    : m_hb(hb), m_face(face), m_font(hb.hb_font_create(face)), m_name(std::move(name))
{
    m_hb.hb_font_make_immutable(m_font);
    m_units = static_cast<float>(m_hb.hb_face_get_upem(m_face));
}

CPDFFontFile::~CPDFFontFile()
{
    m_hb.hb_font_destroy(m_font);
    m_hb.hb_face_destroy(m_face);
}

bool CPDFFontFile::is_usable(const std::string& path, int index)
{
    const unsigned embedding = u16_at(table(HB_TAG('O', 'S', '/', '2'), 10), 8);
    if (embedding & EMBEDDING_REFUSED || (embedding & EMBEDDING_LICENSES) == EMBEDDING_RESTRICTED)
        return false;
    m_is_cff = !table(HB_TAG('C', 'F', 'F', ' '), 1).empty();
    if (m_is_cff)
        m_cids = cids_of(path, index);
    return m_is_cff || !table(HB_TAG('g', 'l', 'y', 'f'), 1).empty();
}

// The first bytes of a table; as many as there are.
std::vector<uint8_t> CPDFFontFile::table(hb_tag_t tag, size_t bytes) const
{
    const auto blob = harfbuzz_guard(m_hb.hb_face_reference_table(m_face, tag), m_hb.hb_blob_destroy);
    unsigned size = 0;
    const char* data = m_hb.hb_blob_get_data(blob.get(), &size);
    return {data, data + std::min<size_t>(size, bytes)};
}

uint32_t CPDFFontFile::glyph_of(char32_t c) const
{
    hb_codepoint_t glyph = 0;
    return m_hb.hb_font_get_nominal_glyph(m_font, c, &glyph) ? glyph : 0;
}

TEXT_FONT_BOX CPDFFontFile::box() const
{
    hb_font_extents_t extents = {};
    m_hb.hb_font_get_extents_for_direction(m_font, HB_DIRECTION_LTR, &extents);
    return {scaled(extents.ascender), -scaled(extents.descender)};
}

FONT_METRICS CPDFFontFile::metrics() const
{
    constexpr size_t BBOX_AT = 36;
    constexpr size_t STYLE_AT = 44;
    const std::vector<uint8_t> head = table(HB_TAG('h', 'e', 'a', 'd'), STYLE_AT + 2);
    const auto thousandths = [](float length) { return static_cast<int>(std::lround(length * 1000)); };
    FONT_METRICS metrics;
    for (size_t i = 0; i < 4; ++i)
        metrics.bbox[i] = thousandths(scaled(static_cast<int16_t>(u16_at(head, BBOX_AT + 2 * i))));
    const TEXT_FONT_BOX lines = box();
    metrics.ascent = thousandths(lines.ascent);
    metrics.descent = -thousandths(lines.descent);
    metrics.bold = u16_at(head, STYLE_AT) & 1;
    metrics.italic = u16_at(head, STYLE_AT) & 2;
    return metrics;
}
