#include "appearance/font/fallback/fallback_font.h"

#include <algorithm>
#include <cmath>

#include "core/library_calls.h"

namespace {

// Characters that are shaped at a time: some scripts take more than linear time over what belongs together.
constexpr size_t PIECE_MAX = 1024;

// Characters before and after a piece that decide on its shape.
constexpr size_t CONTEXT = 16;

// Characters that one cluster gives back; the rest is drawn only.
constexpr size_t CLUSTER_TEXT_MAX = 64;

// By how much a width in whole thousandths may be wrong.
constexpr float WIDTH_ERROR = 0.0006f;

int width_entry(float width)
{
    return static_cast<int>(std::lround(std::clamp(width, 0.0f, 32.0f) * 1000));
}

constexpr char32_t THAI_AM = 0x0E33;
constexpr char32_t LAO_AM = 0x0EB3;

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
    const VXLibraryCalls memory;
    const HARFBUZZ& hb = m_file.harfbuzz();
    const size_t from = begin - std::min(begin, CONTEXT);
    const size_t to = end + std::min(text.size() - end, CONTEXT);
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
    std::vector<TEXT_GLYPH> shaped;
    shaped.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        const uint32_t cluster = static_cast<uint32_t>(from) + infos[i].cluster;
        shaped.push_back({infos[i].codepoint, cluster, m_file.scaled(places[i].x_advance),
                          m_file.scaled(places[i].x_offset), m_file.scaled(places[i].y_offset)});
    }
    add_clusters(text, end, right_to_left, shaped, glyphs);
}

// Appends what was shaped with codes in place of glyph numbers. A cluster's text ends where that of the next one begins.
void CPDFFallbackFont::add_clusters(std::u32string_view text, size_t end, bool right_to_left,
                                    const std::vector<TEXT_GLYPH>& shaped, std::vector<TEXT_GLYPH>& glyphs)
{
    size_t previous = end;
    for (size_t i = 0; i < shaped.size();) {
        size_t next = i + 1;
        while (next < shaped.size() && shaped[next].cluster == shaped[i].cluster)
            ++next;
        const size_t begin = shaped[i].cluster;
        const size_t text_end = right_to_left ? previous : next < shaped.size() ? shaped[next].cluster : end;
        const std::u32string_view part = text.substr(begin, std::min(text_end - begin, CLUSTER_TEXT_MAX));
        std::vector<TEXT_GLYPH> cluster(&shaped[i], &shaped[i] + (next - i));
        join_vowel_am(part, cluster);
        add_cluster(part, right_to_left, cluster, glyphs);
        previous = begin;
        i = next;
    }
}

// Shaping takes the vowel AM of Thai and Lao apart into a ring above the letter and the vowel AA. As one glyph, which stands
// where AA does and has the ring over its left side, it gives its text back.
void CPDFFallbackFont::join_vowel_am(std::u32string_view text, std::vector<TEXT_GLYPH>& cluster) const
{
    const char32_t vowel = text.empty() ? U'\0' : text.back();
    if ((vowel != THAI_AM && vowel != LAO_AM) || cluster.size() != text.size() + 1)
        return;
    const uint32_t joined = m_file.glyph_of(vowel);
    if (joined == 0 || cluster.back().code != m_file.glyph_of(vowel - 1))
        return;
    cluster.back().code = joined;
    cluster.back().advance = m_file.width(joined);
    cluster.erase(cluster.begin() + (text.size() > 1 ? 1 : 0));
}

// In the order of reading, each glyph of a cluster stands for one character, the first one for those too many as well, and
// the last ones for nothing when there are not enough.
void CPDFFallbackFont::add_cluster(std::u32string_view characters, bool right_to_left,
                                   const std::vector<TEXT_GLYPH>& cluster, std::vector<TEXT_GLYPH>& glyphs)
{
    const size_t count = cluster.size();
    const std::u32string text = taken_apart(characters, count);
    const size_t surplus = text.size() > count ? text.size() - count : 0;
    for (size_t i = 0; i < count; ++i) {
        const size_t place = right_to_left ? count - 1 - i : i;
        const size_t begin = std::min(text.size(), place == 0 ? 0 : place + surplus);
        add_glyph(cluster[i], std::u32string_view(text).substr(begin, place == 0 ? 1 + surplus : 1), right_to_left,
                  glyphs);
    }
}

// `text` with characters as their equal parts, as shaping may have taken them, while there are fewer than `count`.
std::u32string CPDFFallbackFont::taken_apart(std::u32string_view text, size_t count) const
{
    const HARFBUZZ& hb = m_file.harfbuzz();
    std::u32string parts(text);
    for (size_t i = 0; i < parts.size() && parts.size() < count;) {
        hb_codepoint_t first = 0;
        hb_codepoint_t second = 0;
        if (hb.hb_unicode_decompose(hb.hb_unicode_funcs_get_default(), parts[i], &first, &second) && second != 0)
            parts.replace(i, 1, {static_cast<char32_t>(first), static_cast<char32_t>(second)});
        else
            ++i;
    }
    return parts;
}

void CPDFFallbackFont::add_glyph(const TEXT_GLYPH& shaped, std::u32string_view text, bool right_to_left,
                                 std::vector<TEXT_GLYPH>& glyphs)
{
    const bool apart = must_stand_apart(text, right_to_left);
    const TEXT_GLYPH first = coded(shaped, apart ? text.substr(0, 1) : text);
    if (!right_to_left)
        glyphs.push_back(first);
    const TEXT_GLYPH empty = {m_empty_glyph, shaped.cluster};
    for (size_t i = 1; apart && i < text.size(); ++i)
        glyphs.push_back(coded(empty, text.substr(right_to_left ? text.size() - i : i, 1)));
    if (right_to_left)
        glyphs.push_back(first);
}

// Several characters of one code come back in the wrong order where text runs from right to left, and readers split
// those above U+FFFF. There, glyphs that draw nothing stand for all but the first.
bool CPDFFallbackFont::must_stand_apart(std::u32string_view text, bool right_to_left) const
{
    if (text.size() < 2 || m_empty_glyph == 0 || m_file.is_cff())
        return false;
    return right_to_left || std::any_of(text.begin(), text.end(), [](char32_t c) { return c > 0xFFFF; });
}

// The glyph with a code in place of its number.
TEXT_GLYPH CPDFFallbackFont::coded(const TEXT_GLYPH& shaped, std::u32string_view text)
{
    // A mark is as wide as it takes to come back to where it was moved from: readers see a gap there otherwise.
    const float width = shaped.advance == 0 ? std::max(0.0f, -shaped.x_offset) : m_file.width(shaped.code);
    const GLYPH_CODE shown = {shaped.code, std::u32string(text), width_entry(width)};
    TEXT_GLYPH glyph = shaped;
    if (m_file.is_cff())
        glyph.code = m_codes.fixed_code(m_file.has_cids() ? m_file.cid_of(shaped.code) : shaped.code, shown);
    else
        glyph.code = m_codes.code_of(shown);
    const auto known = m_codes.all().find(glyph.code);
    const int given = known == m_codes.all().end() ? width_entry(m_file.width(0)) : known->second.width;
    glyph.kern = shaped.advance - static_cast<float>(given) / 1000;
    if (std::abs(glyph.kern) < WIDTH_ERROR)
        glyph.kern = 0;
    return glyph;
}

void CPDFFallbackFont::append_code(uint32_t code, std::string& bytes)
{
    bytes += static_cast<char>(code >> 8 & 0xFF);
    bytes += static_cast<char>(code & 0xFF);
    m_has_news |= m_codes.use(code);
}
