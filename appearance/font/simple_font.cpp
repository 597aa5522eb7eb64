#include "appearance/font/simple_font.h"

#include <algorithm>
#include <array>

#include "appearance/font/cmap.h"
#include "appearance/font/font_encoding.h"
#include "appearance/font/font_program.h"
#include "appearance/font/font_values.h"
#include "appearance/font/mapped_font.h"
#include "appearance/font/standard/glyph_names.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"

namespace {

constexpr size_t CODES = 256;
using CODE_WIDTHS = std::array<float, CODES>;

class SimpleFont : public CPDFMappedFont {
public:
    // `to_unicode` says what codes mean whose glyphs have no telling name. Without a program every code with a width is shown.
    SimpleFont(GLYPH_NAMES names, const CODE_WIDTHS& widths, const FONT_CMAP& to_unicode,
               std::unique_ptr<CPDFFontProgram> program, const TEXT_FONT_BOX& box)
        : m_names(std::move(names)), m_program(std::move(program))
    {
        m_box = box;
        for (unsigned code = 0; code < CODES; ++code)
            m_shown[code] = {code, widths[code]};
        map_codes(to_unicode);
        choose_missing();
    }

    // Symbolic fonts: characters that have no code are shown with the code of their own number.
    void map_codes_to_themselves();

    void append_code(uint32_t code, std::string& bytes) override { bytes += static_cast<char>(code); }

protected:
    const SHOWN_CHARACTER* find(char32_t c) const override;

private:
    struct CHARACTER_CODE {
        char32_t character;
        uint8_t code;
    };
    enum class SEEN : uint8_t { UNKNOWN, NO, YES };

    void map_codes(const FONT_CMAP& to_unicode);
    void map_code(char32_t c, unsigned code);
    void choose_missing();
    bool is_drawn(const CHARACTER_CODE& entry) const;
    bool program_draws(const CHARACTER_CODE& entry) const;
    uint32_t glyph_of(const CHARACTER_CODE& entry) const;

    std::array<SHOWN_CHARACTER, CODES> m_shown;  // by code
    std::vector<CHARACTER_CODE> m_codes;         // sorted
    GLYPH_NAMES m_names;
    std::unique_ptr<CPDFFontProgram> m_program;  // null when there is none to ask
    mutable std::array<SEEN, CODES> m_drawn{};   // what the program answered
};

void SimpleFont::map_code(char32_t c, unsigned code)
{
    if (c != 0 && m_shown[code].advance > 0)
        m_codes.push_back({c, static_cast<uint8_t>(code)});
}

void SimpleFont::map_codes(const FONT_CMAP& to_unicode)
{
    std::array<char32_t, CODES> told{};
    for (const CMAP_ENTRY& entry : to_unicode.characters) {
        if (entry.code < CODES)
            told[entry.code] = entry.value;
    }
    for (unsigned code = 0; code < CODES; ++code) {
        const char32_t named = m_names[code].empty() ? 0 : character_of_glyph(m_names[code]);
        map_code(named ? named : told[code], code);
    }
    std::ranges::stable_sort(m_codes, {}, &CHARACTER_CODE::character);
}

void SimpleFont::map_codes_to_themselves()
{
    const std::vector<CHARACTER_CODE> known = m_codes;
    for (unsigned code = 0; code < CODES; ++code) {
        if (!m_names[code].empty() &&
            !std::ranges::binary_search(known, char32_t{code}, {}, &CHARACTER_CODE::character))
            map_code(code, code);
    }
    std::ranges::stable_sort(m_codes, {}, &CHARACTER_CODE::character);
}

void SimpleFont::choose_missing()
{
    size_t code = '?';
    for (size_t i = 0; i < CODES && m_program; ++i) {
        if (m_names[i].empty() && m_shown[i].advance > 0)
            code = i;
    }
    m_missing = m_shown[code];
}

const SHOWN_CHARACTER* SimpleFont::find(char32_t c) const
{
    auto entry = std::ranges::lower_bound(m_codes, c, {}, &CHARACTER_CODE::character);
    for (; entry != m_codes.end() && entry->character == c; ++entry) {
        if (is_drawn(*entry))
            return &m_shown[entry->code];
    }
    return nullptr;
}

bool SimpleFont::is_drawn(const CHARACTER_CODE& entry) const
{
    if (!m_program)
        return true;
    SEEN& seen = m_drawn[entry.code];
    if (seen == SEEN::UNKNOWN)
        seen = program_draws(entry) ? SEEN::YES : SEEN::NO;
    return seen == SEEN::YES;
}

bool SimpleFont::program_draws(const CHARACTER_CODE& entry) const
{
    if (!m_program->is_readable())
        return true;  // viewers take another font then, as for one that is not embedded
    const uint32_t glyph = glyph_of(entry);
    const bool is_blank = entry.character == ' ' || entry.character == 0xA0;
    return is_blank ? m_program->has_glyph(glyph) : m_program->draws_glyph(glyph);
}

uint32_t SimpleFont::glyph_of(const CHARACTER_CODE& entry) const
{
    const std::string& name = m_names[entry.code];
    if (!m_program->is_truetype())
        return m_program->glyph_of_name(name);
    if (name.empty())
        return m_program->glyph_of_code(entry.code);
    if (const uint32_t glyph = m_program->glyph_of_character(entry.character))
        return glyph;
    const LATIN_GLYPH* latin = find_latin_glyph(name);
    if (const uint32_t glyph = latin ? m_program->glyph_of_mac_code(latin->codes[LATIN_MAC_ROMAN]) : 0)
        return glyph;
    const uint32_t glyph = m_program->glyph_of_name(name);
    return glyph ? glyph : m_program->glyph_of_code(entry.code);
}

// Reads what a dictionary says about a simple font.
class SimpleFontReader {
public:
    SimpleFontReader(CPDFXRefTable& xref, const CPDFDictionary& font)
        : m_xref(xref), m_font(font), m_descriptor(read_descriptor(xref, font))
    {
        const std::string name = name_value(xref, font.get_item("BaseFont"));
        const std::optional<STANDARD_FONT> standard = find_standard_font(name);
        m_substitute = standard ? *standard : substitute();
        m_is_standard_symbolic = standard && is_symbolic(*standard) && m_descriptor.file.num == 0;
    }

    std::unique_ptr<CPDFTextFont> read()
    {
        auto program = std::make_unique<CPDFFontProgram>(m_xref, m_descriptor.file);
        GLYPH_NAMES names = read_glyph_names(m_xref, m_font, *program);
        const FONT_CMAP meaning = read_cmap(stream_value(m_xref, m_font.get_item("ToUnicode"), LIMIT_FONT_TABLE));
        if (!program->is_embedded())
            program.reset();
        else if (meaning.characters.empty() && program->is_readable() && program->is_truetype())
            add_usual_names(names);
        const CODE_WIDTHS widths = read_widths(names);
        auto font = std::make_unique<SimpleFont>(std::move(names), widths, meaning, std::move(program), box());
        if (m_is_standard_symbolic)
            font->map_codes_to_themselves();
        return font;
    }

private:
    // The standard font that a viewer takes for an unknown one.
    STANDARD_FONT substitute() const
    {
        const unsigned variant =
            (m_descriptor.flags & FONT_FORCE_BOLD ? 1 : 0) + (m_descriptor.flags & FONT_ITALIC ? 2 : 0);
        const STANDARD_FONT upright = m_descriptor.flags & FONT_FIXED_PITCH ? STANDARD_FONT::COURIER
                                      : m_descriptor.flags & FONT_SERIF     ? STANDARD_FONT::TIMES
                                                                            : STANDARD_FONT::HELVETICA;
        return static_cast<STANDARD_FONT>(static_cast<unsigned>(upright) + variant);
    }

    // A symbolic TrueType program that nothing tells the meaning of has letters where all encodings have them.
    static void add_usual_names(GLYPH_NAMES& names)
    {
        if (std::ranges::all_of(names, [](const std::string& name) { return name.empty(); }))
            name_common_glyphs(LATIN_MAC_ROMAN, LATIN_WIN_ANSI, names);
    }

    CODE_WIDTHS read_widths(const GLYPH_NAMES& names) const
    {
        CODE_WIDTHS widths;
        CPDFObj scratch;
        const CPDFArray* list = view_obj(&m_xref, m_font.get_item("Widths"), scratch)->array();
        if (!list) {
            for (size_t code = 0; code < CODES; ++code)
                widths[code] = width_of_thousandths(static_cast<float>(standard_width(m_substitute, names[code])));
            return widths;
        }
        widths.fill(m_descriptor.missing_width);
        const int64_t first = resolve_integer(&m_xref, m_font.get_item("FirstChar"));
        for (int64_t code = std::max<int64_t>(first, 0); code < static_cast<int64_t>(CODES); ++code) {
            if (const CPDFObj* width = code - first < list->count ? list->at(static_cast<int>(code - first)) : nullptr)
                widths[static_cast<size_t>(code)] = width_of_thousandths(number_value(m_xref, width));
        }
        return widths;
    }

    TEXT_FONT_BOX box() const
    {
        if (m_descriptor.box.ascent > 0)
            return m_descriptor.box;
        const STANDARD_BOX box = standard_box(m_substitute);
        return {static_cast<float>(box.ascent) / 1000, static_cast<float>(box.descent) / 1000};
    }

    CPDFXRefTable& m_xref;
    const CPDFDictionary& m_font;
    FONT_DESCRIPTOR m_descriptor;
    STANDARD_FONT m_substitute;  // whose metrics count where the dictionary has none
    bool m_is_standard_symbolic;
};

}  // namespace

std::unique_ptr<CPDFTextFont> read_simple_font(CPDFXRefTable& xref, const CPDFDictionary& font)
{
    return SimpleFontReader(xref, font).read();
}

std::unique_ptr<CPDFTextFont> make_standard_font(STANDARD_FONT font)
{
    CPDFDictionary dict;
    dict.set_item_name("Subtype", "Type1");
    dict.set_item_name("BaseFont", standard_font_name(font));
    if (!is_symbolic(font))
        dict.set_item_name("Encoding", "WinAnsiEncoding");
    CPDFXRefTable no_objects;
    return read_simple_font(no_objects, dict);
}
