#include "appearance/font/composite_font.h"

#include <algorithm>
#include <unordered_map>

#include "appearance/font/cmap.h"
#include "appearance/font/font_program.h"
#include "appearance/font/font_values.h"
#include "appearance/font/mapped_font.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"

namespace {

// The widths of "W" and "DW", by CID.
class CidWidths {
public:
    void read(CPDFXRefTable& xref, const CPDFDictionary& cid_font);
    float width_of(uint32_t cid) const;

private:
    struct WIDTH_RUN {
        uint32_t first;
        uint32_t last;
        float width;
    };

    void add(int64_t first, int64_t last, float width)
    {
        if (first >= 0 && last >= first && last <= 0xFFFF && m_runs.size() < LIMIT_FONT_WIDTHS)
            m_runs.push_back({static_cast<uint32_t>(first), static_cast<uint32_t>(last), width});
    }

    std::vector<WIDTH_RUN> m_runs;  // sorted
    float m_usual = 1;
};

void CidWidths::read(CPDFXRefTable& xref, const CPDFDictionary& cid_font)
{
    if (const CPDFObj* usual = cid_font.get_item("DW"))
        m_usual = width_of_thousandths(number_value(xref, usual));
    CPDFObj scratch;
    const CPDFArray* list = view_obj(&xref, cid_font.get_item("W"), scratch)->array();
    for (int32_t i = 0; list && i + 1 < list->count;) {
        const int64_t first = resolve_integer(&xref, list->at(i));
        CPDFObj inner;
        const CPDFObj* next = view_obj(&xref, list->at(i + 1), inner);
        if (const CPDFArray* each = next->array()) {
            for (int32_t k = 0; k < each->count; ++k)
                add(first + k, first + k, width_of_thousandths(number_value(xref, each->at(k))));
            i += 2;
        } else {
            add(first, integer_value(*next), width_of_thousandths(number_value(xref, list->at(i + 2))));
            i += 3;
        }
    }
    std::ranges::stable_sort(m_runs, {}, &WIDTH_RUN::first);
}

float CidWidths::width_of(uint32_t cid) const
{
    auto after = std::ranges::upper_bound(m_runs, cid, {}, &WIDTH_RUN::first);
    return after != m_runs.begin() && (--after)->last >= cid ? after->width : m_usual;
}

class CompositeFont : public CPDFMappedFont {
public:
    CompositeFont(CPDFXRefTable& xref, const CPDFDictionary& font, const CPDFDictionary& cid_font);

    // Without "ToUnicode" a text can be seen, and not be copied out: others come first, and this font is shaped as the last.
    bool has(char32_t c) const override { return !m_characters.empty() && CPDFMappedFont::has(c); }

    void append_code(uint32_t code, std::string& bytes) override
    {
        for (int i = m_code_bytes - 1; i >= 0; --i)
            bytes += static_cast<char>(code >> (8 * i));
    }

protected:
    const SHOWN_CHARACTER* find(char32_t c) const override;

private:
    struct ANSWER {
        bool is_shown = false;
        SHOWN_CHARACTER shown;
    };

    bool read_encoding(CPDFXRefTable& xref, const CPDFObj* entry);
    void read_glyph_numbers(CPDFXRefTable& xref, const CPDFObj* entry);
    ANSWER look_up(char32_t c) const;
    bool try_code(uint32_t code, char32_t c, ANSWER& answer) const;
    bool cid_of_code(uint32_t code, uint32_t& cid) const;
    bool code_of_cid(uint32_t cid, uint32_t& code) const;
    uint32_t glyph_of_cid(uint32_t cid) const;
    uint32_t cid_of_glyph(uint32_t glyph) const;

    std::vector<CMAP_ENTRY> m_characters;  // by "ToUnicode", sorted by character
    std::vector<CMAP_ENTRY> m_cids;        // by "Encoding", sorted by code; empty for Identity-H
    std::string m_glyph_numbers;           // "CIDToGIDMap": two bytes for each CID; empty when they are equal
    CidWidths m_widths;
    int m_code_bytes = 2;
    bool m_is_usable = false;
    std::unique_ptr<CPDFFontProgram> m_program;
    mutable std::unordered_map<char32_t, ANSWER> m_answers;
};

CompositeFont::CompositeFont(CPDFXRefTable& xref, const CPDFDictionary& font, const CPDFDictionary& cid_font)
{
    const FONT_DESCRIPTOR descriptor = read_descriptor(xref, cid_font);
    m_box = descriptor.box.ascent > 0 ? descriptor.box : TEXT_FONT_BOX{0.88F, 0.12F};  // the box of an ideograph
    m_program = std::make_unique<CPDFFontProgram>(xref, descriptor.file);
    m_widths.read(xref, cid_font);
    m_is_usable = descriptor.file.num != 0 && read_encoding(xref, font.get_item("Encoding"));
    m_missing = {0, m_widths.width_of(0)};
    if (!m_is_usable)
        return;
    read_glyph_numbers(xref, cid_font.get_item("CIDToGIDMap"));
    m_characters = read_cmap(stream_value(xref, font.get_item("ToUnicode"), LIMIT_FONT_TABLE)).characters;
    std::ranges::stable_sort(m_characters, {}, &CMAP_ENTRY::value);
}

bool CompositeFont::read_encoding(CPDFXRefTable& xref, const CPDFObj* entry)
{
    if (name_value(xref, entry) == "Identity-H")
        return true;
    FONT_CMAP map = read_cmap(stream_value(xref, entry, LIMIT_FONT_TABLE));
    if (!map.complete || map.cids.empty() || map.code_bytes < 1 || map.code_bytes > 4)
        return false;
    m_cids = std::move(map.cids);
    m_code_bytes = map.code_bytes;
    std::ranges::stable_sort(m_cids, {}, &CMAP_ENTRY::code);
    return true;
}

void CompositeFont::read_glyph_numbers(CPDFXRefTable& xref, const CPDFObj* entry)
{
    m_glyph_numbers = stream_value(xref, entry, LIMIT_FONT_TABLE);
    m_glyph_numbers.resize(std::min<size_t>(m_glyph_numbers.size() & ~size_t{1}, 0x20000));
}

bool CompositeFont::cid_of_code(uint32_t code, uint32_t& cid) const
{
    cid = code;
    if (m_cids.empty())
        return code <= 0xFFFF;
    const auto found = std::ranges::lower_bound(m_cids, code, {}, &CMAP_ENTRY::code);
    if (found == m_cids.end() || found->code != code)
        return false;
    cid = found->value;
    return true;
}

bool CompositeFont::code_of_cid(uint32_t cid, uint32_t& code) const
{
    code = cid;
    if (m_cids.empty())
        return true;
    const auto found = std::ranges::find(m_cids, cid, &CMAP_ENTRY::value);
    if (found == m_cids.end())
        return false;
    code = found->code;
    return true;
}

uint32_t CompositeFont::glyph_of_cid(uint32_t cid) const
{
    if (m_glyph_numbers.empty())
        return m_program->glyph_of_cid(cid);
    const size_t at = size_t{cid} * 2;
    if (at >= m_glyph_numbers.size())
        return 0;
    return static_cast<uint32_t>(static_cast<uint8_t>(m_glyph_numbers[at]) << 8 |
                                 static_cast<uint8_t>(m_glyph_numbers[at + 1]));
}

uint32_t CompositeFont::cid_of_glyph(uint32_t glyph) const
{
    if (m_glyph_numbers.empty())
        return m_program->cid_of_glyph(glyph);
    const auto cids = static_cast<uint32_t>(m_glyph_numbers.size() / 2);
    for (uint32_t cid = 0; cid < cids; ++cid) {
        if (glyph_of_cid(cid) == glyph)
            return cid;
    }
    return 0;
}

// Whether `code` shows `c`; `answer` then tells how.
bool CompositeFont::try_code(uint32_t code, char32_t c, ANSWER& answer) const
{
    uint32_t cid = 0;
    if (!cid_of_code(code, cid))
        return false;
    const uint32_t glyph = glyph_of_cid(cid);
    const bool is_blank = c == ' ' || c == 0xA0 || c == 0x3000;
    answer.shown = {code, m_widths.width_of(cid)};
    answer.is_shown =
        answer.shown.advance > 0 && (is_blank ? m_program->has_glyph(glyph) : m_program->draws_glyph(glyph));
    return answer.is_shown;
}

CompositeFont::ANSWER CompositeFont::look_up(char32_t c) const
{
    ANSWER answer;
    auto entry = std::ranges::lower_bound(m_characters, uint32_t{c}, {}, &CMAP_ENTRY::value);
    for (; entry != m_characters.end() && entry->value == c; ++entry) {
        if (try_code(entry->code, c, answer))
            return answer;
    }
    const uint32_t glyph = m_characters.empty() ? m_program->glyph_of_character(c) : 0;
    uint32_t code = 0;
    if (glyph && code_of_cid(cid_of_glyph(glyph), code))
        try_code(code, c, answer);
    return answer;
}

const SHOWN_CHARACTER* CompositeFont::find(char32_t c) const
{
    if (!m_is_usable)
        return nullptr;
    const auto [answer, is_new] = m_answers.try_emplace(c);
    if (is_new)
        answer->second = look_up(c);
    return answer->second.is_shown ? &answer->second.shown : nullptr;
}

}  // namespace

std::unique_ptr<CPDFTextFont> read_composite_font(CPDFXRefTable& xref, const CPDFDictionary& font)
{
    CPDFObj list;
    CPDFObj scratch;
    const CPDFArray* descendants = view_obj(&xref, font.get_item("DescendantFonts"), list)->array();
    const CPDFDictionary* cid_font =
        descendants ? view_obj(&xref, descendants->at(0), scratch)->any_dictionary() : nullptr;
    const CPDFDictionary none;
    return std::make_unique<CompositeFont>(xref, font, cid_font ? *cid_font : none);
}
