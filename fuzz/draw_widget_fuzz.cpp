// A widget from choices: its kind, box, border, colours, default appearance, text and rows. Its picture has only numbers and
// operators that a content stream knows, in pairs where they are pairs.
#include <cmath>
#include <cstring>

#include "appearance/draw/widget_picture.h"
#include "file/syntax/lexer.h"
#include "fuzz/fuzz_bytes.h"
#include "tests/appearance/even_font.h"

namespace {

double length(FuzzBytes& bytes)
{
    constexpr double ODD[] = {0, -1, 1e-9, 0.5, 1e9, 1e300, INFINITY, NAN};
    const uint8_t first = bytes.byte();
    return first < 240 ? first + bytes.byte() / 16.0 : ODD[first % std::size(ODD)];
}

WIDGET_COLOR color(FuzzBytes& bytes)
{
    constexpr int COUNTS[] = {0, 1, 3, 4};
    WIDGET_COLOR color;
    color.count = COUNTS[bytes.below(4)];
    for (int i = 0; i < color.count; ++i)
        color.values[i] = bytes.byte() / 255.0;
    return color;
}

std::u32string characters(FuzzBytes& bytes)
{
    constexpr char32_t FIRST[] = {' ', 'a', 0, 0x5D0, 0x600, 0x4E00, 0x300, 0x1F600};
    std::u32string text;
    for (const char c : bytes.text())
        text += static_cast<char32_t>(FIRST[static_cast<uint8_t>(c) >> 5] + (static_cast<uint8_t>(c) & 31));
    return text;
}

WIDGET_LOOK look_of(FuzzBytes& bytes, EvenChoice& fonts)
{
    constexpr int ROTATIONS[] = {0, 90, 180, 270, 360, -90, 45};
    WIDGET_LOOK look;
    look.kind = static_cast<WIDGET_KIND>(bytes.below(9));
    look.width = length(bytes);
    look.height = length(bytes);
    look.rotation = ROTATIONS[bytes.below(std::size(ROTATIONS))];
    look.border = {length(bytes), static_cast<BORDER_STYLE>(bytes.below(5)), {}};
    for (size_t dashes = bytes.below(4); dashes > 0; --dashes)
        look.border.dashes.push_back(length(bytes));
    look.border_color = color(bytes);
    look.background = color(bytes);
    look.style = read_default_appearance(bytes.text());
    look.alignment = static_cast<TEXT_ALIGNMENT>(bytes.below(3));
    look.text = characters(bytes);
    look.cells = static_cast<int8_t>(bytes.byte()) * (bytes.byte() ? 1 : 1 << 20);
    for (size_t rows = bytes.below(8); rows > 0; --rows)
        look.rows.push_back(characters(bytes));
    for (size_t selected = bytes.below(4); selected > 0; --selected)
        look.selected.push_back(bytes.below(8));
    look.top_row = bytes.below(16);
    fonts.m_own.m_advance = bytes.below(4) ? 0.5f : 0;
    fonts.m_own.m_box = {bytes.below(4) ? 0.75f : 0, 0.25f};
    look.fonts = &fonts;
    return look;
}

// The content of a picture, token by token.
class ContentCheck {
public:
    explicit ContentCheck(const std::string& content)
        : m_lexer(reinterpret_cast<const uint8_t*>(content.data()),
                  reinterpret_cast<const uint8_t*>(content.data()) + content.size())
    {
        for (m_lexer.skip_space(); !m_lexer.done(); m_lexer.skip_space())
            pass_token();
        check(m_saved == 0 && m_text == 0 && m_marked == 0, "a pair of operators is not complete");
    }

private:
    void pass_token()
    {
        const uint8_t c = m_lexer.peek();
        if (c == '(') {
            m_lexer.skip_literal();
        } else if (c == '<') {
            m_lexer.skip_hex();
        } else if (c == '[' || c == ']') {
            m_lexer.move_to(m_lexer.at() + 1);
        } else {
            const uint8_t* begin = m_lexer.at();
            m_lexer.move_to(begin + (c == '/'));
            m_lexer.skip_regular();
            check(m_lexer.at() > begin, "a bracket has no sense");
            if (c != '/')
                pass_word({reinterpret_cast<const char*>(begin), static_cast<size_t>(m_lexer.at() - begin)});
        }
    }

    void pass_word(std::string_view word)
    {
        if (word.find_first_not_of("+-.0123456789") == std::string_view::npos)
            return;
        constexpr std::string_view KNOWN[] = {"Tf", "Td", "Tj", "TJ", "Tm", "Ts", "Tc", "Tz", "Tw", "TL",
                                              "T*", "g",  "G",  "rg", "RG", "k",  "K",  "w",  "d",  "re",
                                              "m",  "l",  "c",  "h",  "f",  "f*", "S",  "s",  "B",  "b",
                                              "n",  "W",  "W*", "cm", "Do", "M",  "j",  "J"};
        if (word == "q" || word == "Q")
            count(m_saved, word == "q");
        else if (word == "BT" || word == "ET")
            count(m_text, word == "BT");
        else if (word == "BMC" || word == "BDC" || word == "EMC")
            count(m_marked, word != "EMC");
        else if (std::find(std::begin(KNOWN), std::end(KNOWN), word) == std::end(KNOWN)) {
            std::fprintf(stderr, "%.*s\n", static_cast<int>(word.size()), word.data());
            fault("no operator of a content stream");
        }
    }

    void count(int& open, bool opens)
    {
        open += opens ? 1 : -1;
        check(open >= 0, "a pair of operators ends before it begins");
    }

    CPDFLexer m_lexer;
    int m_saved = 0;
    int m_text = 0;
    int m_marked = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzBytes bytes(data, size);
    EvenChoice fonts;
    const auto state = static_cast<WIDGET_STATE>(bytes.below(2));
    const WIDGET_PICTURE picture = draw_widget(look_of(bytes, fonts), state);
    check(std::isfinite(picture.width) && std::isfinite(picture.height), "the box of a picture is no number");
    for (const double value : picture.matrix)
        check(std::isfinite(value), "the matrix of a picture is no number");
    ContentCheck{picture.content};
    return 0;
}
