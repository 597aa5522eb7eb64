#include "appearance/font/fallback/glyph_codes.h"

#include <algorithm>
#include <vector>

namespace {

constexpr uint32_t LAST_CODE = 0xFFFF;

// What one section of a CMap may hold.
constexpr size_t SECTION_MAX = 100;

void append_hex(std::string& out, uint32_t value)
{
    for (int shift = 12; shift >= 0; shift -= 4)
        out += "0123456789ABCDEF"[value >> shift & 15];
}

void append_mapping(std::string& out, uint32_t code, const std::u32string& text)
{
    out += '<';
    append_hex(out, code);
    out += "> <";
    for (const char32_t c : text) {
        if (c < 0x10000) {
            append_hex(out, c);
            continue;
        }
        append_hex(out, 0xD800 + ((c - 0x10000) >> 10 & 0x3FF));
        append_hex(out, 0xDC00 + (c & 0x3FF));
    }
    out += ">\n";
}

}  // namespace

uint32_t CPDFGlyphCodes::code_of(const GLYPH_CODE& shown)
{
    std::u32string key(1, static_cast<char32_t>(static_cast<uint32_t>(shown.width) << 16 | shown.glyph));
    key += shown.text;
    const auto known = m_known.find(key);
    if (known != m_known.end())
        return known->second;
    if (m_codes.size() == LAST_CODE)
        return 0;
    const uint32_t code = static_cast<uint32_t>(m_codes.size()) + 1;
    m_known.emplace(std::move(key), code);
    m_codes.emplace(code, shown);
    return code;
}

uint32_t CPDFGlyphCodes::fixed_code(uint32_t code, const GLYPH_CODE& shown)
{
    if (code == 0 || code > LAST_CODE)
        return 0;
    GLYPH_CODE& entry = m_codes.try_emplace(code, shown).first->second;
    if (entry.text.empty())
        entry.text = shown.text;
    return code;
}

bool CPDFGlyphCodes::use(uint32_t code)
{
    const auto at = m_codes.find(code);
    if (at == m_codes.end() || at->second.used)
        return false;
    at->second.used = true;
    return true;
}

std::string write_to_unicode(const CPDFGlyphCodes& codes)
{
    std::vector<const std::pair<const uint32_t, GLYPH_CODE>*> used;
    for (const auto& entry : codes.all()) {
        if (entry.second.used)
            used.push_back(&entry);
    }
    std::string out = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                      "/CIDSystemInfo <</Registry (Adobe) /Ordering (UCS) /Supplement 0>> def\n"
                      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    for (size_t begin = 0; begin < used.size(); begin += SECTION_MAX) {
        const size_t end = std::min(begin + SECTION_MAX, used.size());
        out += std::to_string(end - begin) + " beginbfchar\n";
        for (size_t i = begin; i < end; ++i)
            append_mapping(out, used[i]->first, used[i]->second.text);
        out += "endbfchar\n";
    }
    return out + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}
