#include "appearance/font/fallback/fallback_font.h"

#include <algorithm>

namespace {

// Characters that are shaped at a time: some scripts take more than linear time over what belongs together.
constexpr size_t PIECE_MAX = 4096;

struct SCRIPT_PIECE {
    size_t begin;
    size_t end;
    hb_script_t script;
};

bool is_script(hb_script_t script)
{
    return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED && script != HB_SCRIPT_UNKNOWN;
}

// What all scripts share goes with what is before it, or after it at the front.
std::vector<SCRIPT_PIECE> pieces_of(const HARFBUZZ& hb, std::u32string_view text, size_t begin, size_t end)
{
    hb_unicode_funcs_t* characters = hb.hb_unicode_funcs_get_default();
    std::vector<SCRIPT_PIECE> pieces;
    for (size_t i = begin; i < end; ++i) {
        const hb_script_t script = hb.hb_unicode_script(characters, text[i]);
        if (!pieces.empty() && pieces.back().end - pieces.back().begin < PIECE_MAX) {
            SCRIPT_PIECE& last = pieces.back();
            if (!is_script(last.script))
                last.script = script;
            if (!is_script(script) || script == last.script) {
                ++last.end;
                continue;
            }
        }
        pieces.push_back({i, i + 1, is_script(script) || pieces.empty() ? script : pieces.back().script});
    }
    return pieces;
}

}  // namespace

void CPDFFallbackFont::shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
                             std::vector<TEXT_GLYPH>& glyphs)
{
    std::vector<SCRIPT_PIECE> pieces = pieces_of(m_file.harfbuzz(), text, begin, end);
    if (right_to_left)
        std::reverse(pieces.begin(), pieces.end());
    for (const SCRIPT_PIECE& piece : pieces)
        shape_script(text, piece.begin, piece.end, piece.script, right_to_left, glyphs);
}

void CPDFFallbackFont::shape_script(std::u32string_view text, size_t begin, size_t end, hb_script_t script,
                                    bool right_to_left, std::vector<TEXT_GLYPH>& glyphs)
{
    static_assert(sizeof(char32_t) == sizeof(uint32_t));
    // Clusters are then counted from `from`, as far before the piece as shaping looks.
    const HARFBUZZ& hb = m_file.harfbuzz();
    const size_t from = begin - std::min<size_t>(begin, 16);
    const size_t to = end + std::min<size_t>(text.size() - end, 16);
    const auto buffer = harfbuzz_guard(hb.hb_buffer_create(), hb.hb_buffer_destroy);
    hb.hb_buffer_set_flags(buffer.get(), HB_BUFFER_FLAG_REMOVE_DEFAULT_IGNORABLES);
    hb.hb_buffer_add_utf32(buffer.get(), reinterpret_cast<const uint32_t*>(text.data() + from),
                           static_cast<int>(to - from), static_cast<unsigned>(begin - from),
                           static_cast<int>(end - begin));
    hb.hb_buffer_set_direction(buffer.get(), right_to_left ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb.hb_buffer_set_script(buffer.get(), script);
    hb.hb_shape(m_file.font(), buffer.get(), nullptr, 0);

    unsigned count = 0;
    const hb_glyph_info_t* infos = hb.hb_buffer_get_glyph_infos(buffer.get(), &count);
    const hb_glyph_position_t* places = hb.hb_buffer_get_glyph_positions(buffer.get(), &count);
    const size_t first = glyphs.size();
    for (unsigned i = 0; i < count; ++i) {
        const uint32_t cluster = static_cast<uint32_t>(from) + infos[i].cluster;
        glyphs.push_back({infos[i].codepoint, cluster, m_file.scaled(places[i].x_advance),
                          m_file.scaled(places[i].x_offset), m_file.scaled(places[i].y_offset)});
    }
    set_codes(text, end, right_to_left, glyphs.data() + first, count);
}

// Makes codes of the glyph numbers in `glyphs`, which stand for the text up to `end`: cluster by cluster as it is read.
void CPDFFallbackFont::set_codes(std::u32string_view text, size_t end, bool right_to_left, TEXT_GLYPH* glyphs,
                                 size_t count)
{
    const ptrdiff_t step = right_to_left ? -1 : 1;
    TEXT_GLYPH* at = right_to_left ? glyphs + count - 1 : glyphs;
    while (count > 0) {
        size_t same = 1;
        while (same < count && at[static_cast<ptrdiff_t>(same) * step].cluster == at->cluster)
            ++same;
        TEXT_GLYPH* next = at + static_cast<ptrdiff_t>(same) * step;
        const size_t text_end = same < count ? next->cluster : end;
        set_cluster_codes(text.substr(at->cluster, text_end - at->cluster), at, step, same);
        at = next;
        count -= same;
    }
}

// The first glyph stands for what is left when each other one has a character of the end; without enough of them, the
// last glyphs stand for nothing.
void CPDFFallbackFont::set_cluster_codes(std::u32string_view text, TEXT_GLYPH* first, ptrdiff_t step, size_t count)
{
    const size_t surplus = text.size() > count ? text.size() - count : 0;
    for (size_t i = 0; i < count; ++i) {
        TEXT_GLYPH& glyph = first[static_cast<ptrdiff_t>(i) * step];
        const size_t length = std::min(text.size(), i == 0 ? 1 + surplus : 1);
        glyph.code = code_of(glyph.code, text.substr(0, length));
        text.remove_prefix(length);
    }
}

uint32_t CPDFFallbackFont::code_of(uint32_t glyph, std::u32string_view text)
{
    if (!m_file.is_cff())
        return m_codes.code_of(glyph, text);
    return m_codes.fixed_code(m_file.has_cids() ? m_file.cid_of(glyph) : glyph, glyph, text);
}

void CPDFFallbackFont::append_code(uint32_t code, std::string& bytes)
{
    bytes += static_cast<char>(code >> 8 & 0xFF);
    bytes += static_cast<char>(code & 0xFF);
    m_has_news |= m_codes.use(code);
}
