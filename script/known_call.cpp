#include "script/known_call.h"

#include <charconv>
#include <cmath>

#include "script/functions/characters.h"

//   script   = blank name blank arguments blank *( ";" blank )
//   name     = identifier *( "." identifier )
//   arguments = "(" [ value *( "," value ) ] ")"
//   value    = text | number | "true" | "false" | "null" | "[" ... "]" | [ "new" ] "Array" "(" ... ")"
//   blank    = white space, // to the end of the line, /* */

namespace {

constexpr std::string_view WIDE_BLANKS[] = {"\xC2\xA0", "\xEF\xBB\xBF", "\xE2\x80\xA8", "\xE2\x80\xA9"};

constexpr bool is_name_part(char c)
{
    return is_letter(static_cast<unsigned char>(c)) || is_digit(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

constexpr int hex_value(char c)
{
    if (is_digit(static_cast<unsigned char>(c)))
        return c - '0';
    const char32_t small = lower_of(static_cast<unsigned char>(c));
    return small >= 'a' && small <= 'f' ? static_cast<int>(small - 'a') + 10 : -1;
}

constexpr bool is_high_surrogate(char32_t c)
{
    return c >= 0xD800 && c < 0xDC00;
}

// Reading stops at what is not known: the reader has failed then, and all that follows has no meaning.
class CPDFCallReader {
public:
    explicit CPDFCallReader(std::string_view script) : m_text(script) {}

    std::optional<KNOWN_CALL> read()
    {
        const FORM_FUNCTION* function = find_form_function(read_name());
        KNOWN_CALL call{function, {}};
        if (!function || !pass('(') || !read_list(call.arguments, ')', Nesting::LISTS))
            return std::nullopt;
        while (pass(';')) {
        }
        if (m_at != m_text.size())
            return std::nullopt;
        return call;
    }

private:
    enum class Nesting { LISTS, NONE };

    char peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    bool at(std::string_view text) const { return m_text.substr(m_at).starts_with(text); }

    // Passes one kind of blank; false when there is none.
    bool skip_one_blank()
    {
        const size_t before = m_at;
        while (is_blank(static_cast<unsigned char>(peek())))
            ++m_at;
        for (const std::string_view blank : WIDE_BLANKS)
            if (at(blank))
                m_at += blank.size();
        if (at("//"))
            m_at = std::min(m_text.find_first_of("\r\n", m_at), m_text.size());
        if (at("/*") && m_text.find("*/", m_at + 2) != std::string_view::npos)
            m_at = m_text.find("*/", m_at + 2) + 2;
        return m_at != before;
    }

    void skip_blanks()
    {
        while (skip_one_blank()) {
        }
    }

    // Passes `c` and the blanks before and behind it.
    bool pass(char c)
    {
        skip_blanks();
        if (peek() != c || m_at == m_text.size())
            return false;
        ++m_at;
        skip_blanks();
        return true;
    }

    std::string_view read_word()
    {
        const size_t begin = m_at;
        while (m_at < m_text.size() && is_name_part(m_text[m_at]))
            ++m_at;
        return m_text.substr(begin, m_at - begin);
    }

    std::string read_name()
    {
        skip_blanks();
        std::string name(read_word());
        if (pass('.'))
            name.append(".").append(read_word());
        return name;
    }

    // Reads values up to `end`.
    bool read_list(SCRIPT_LIST& out, char end, Nesting nesting)
    {
        if (pass(end))
            return true;
        do {
            SCRIPT_VALUE value;
            if (++m_count > KNOWN_CALL_ARGUMENTS_MAX || !read_value(value, nesting))
                return false;
            out.push_back(std::move(value));
        } while (pass(','));
        return pass(end);
    }

    bool read_value(SCRIPT_VALUE& out, Nesting nesting)
    {
        const char c = peek();
        if (c == '"' || c == '\'')
            return read_text(out.held.emplace<std::string>());
        if (c == '[')
            return nesting == Nesting::LISTS && pass('[') &&
                   read_list(out.held.emplace<SCRIPT_LIST>(), ']', Nesting::NONE);
        if (is_digit(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.')
            return read_number(out.held.emplace<double>());
        return read_word_value(out, nesting);
    }

    bool read_word_value(SCRIPT_VALUE& out, Nesting nesting)
    {
        std::string_view word = read_word();
        if (word == "true" || word == "false")
            out.held = word == "true";
        if (word == "new" && is_blank(static_cast<unsigned char>(peek()))) {
            skip_blanks();
            word = read_word();
        }
        if (word != "Array")
            return word == "null" || std::holds_alternative<bool>(out.held);
        SCRIPT_LIST& list = out.held.emplace<SCRIPT_LIST>();
        // Of a single number that would be the size.
        return nesting == Nesting::LISTS && pass('(') && read_list(list, ')', Nesting::NONE) &&
               !(list.size() == 1 && std::holds_alternative<double>(list[0].held));
    }

    bool read_number(double& out)
    {
        const bool negative = peek() == '-';
        if (negative || peek() == '+') {
            ++m_at;
            skip_blanks();
        }
        const char* begin = m_text.data() + m_at;
        const char* end = m_text.data() + m_text.size();
        // Other bases and signs in a row are left to those who know the language.
        if (begin == end || !(is_digit(static_cast<unsigned char>(*begin)) || *begin == '.') ||
            (*begin == '0' && begin + 1 < end && is_name_part(begin[1])))
            return false;
        const auto result = std::from_chars(begin, end, out);
        m_at = static_cast<size_t>(result.ptr - m_text.data());
        out = negative ? -out : out;
        return result.ec == std::errc() && std::isfinite(out) && !is_name_part(peek());
    }

    bool read_text(std::string& out)
    {
        const char quote = m_text[m_at++];
        char32_t high = 0;  // the first half of a character beyond 16 bits, until the second comes
        while (m_at < m_text.size() && m_text[m_at] != quote) {
            const char c = m_text[m_at++];
            if (c == '\n' || c == '\r')
                return false;
            if (c != '\\')
                out += c;
            else if (!read_escape(out, high))
                return false;
        }
        if (m_at == m_text.size())
            return false;
        ++m_at;
        return true;
    }

    bool read_escape(std::string& out, char32_t& high)
    {
        constexpr std::string_view NAMES = "nrtbfv0";
        constexpr std::string_view MEANINGS("\n\r\t\b\f\v\0", 7);
        if (m_at == m_text.size())
            return false;
        const char c = m_text[m_at++];
        if (c == 'u' || c == 'x')
            return read_code(out, c == 'u' ? 4 : 2, high);
        if (c == '\r' || c == '\n') {  // a text that goes on in the next line
            m_at += c == '\r' && peek() == '\n';
            return true;
        }
        // 012 is a number to some, and a mistake to others.
        if (is_digit(static_cast<unsigned char>(c)) && (c != '0' || is_digit(static_cast<unsigned char>(peek()))))
            return false;
        const size_t index = NAMES.find(c);
        out += index == std::string_view::npos ? c : MEANINGS[index];
        return true;
    }

    bool read_code(std::string& out, int digits, char32_t& high)
    {
        char32_t code = 0;
        for (; digits > 0; --digits, ++m_at) {
            const int value = hex_value(peek());
            if (value < 0)
                return false;
            code = code * 16 + static_cast<char32_t>(value);
        }
        if (is_high_surrogate(code)) {
            high = code;
            return at("\\u");
        }
        if (high)
            code = 0x10000 + ((high - 0xD800) << 10) + (code - 0xDC00);
        high = 0;
        append_character(out, code);
        return true;
    }

    std::string_view m_text;
    size_t m_at = 0;
    size_t m_count = 0;
};

}  // namespace

std::optional<KNOWN_CALL> read_known_call(std::string_view script)
{
    if (script.size() > KNOWN_CALL_SIZE_MAX)
        return std::nullopt;
    return CPDFCallReader(script).read();
}

SCRIPT_VALUE run_known_call(const KNOWN_CALL& call, FIELD_EVENT& event, const CPDFFieldValues& fields)
{
    FORM_CALL form_call{call.arguments, event, fields};
    return call.function->run(form_call);
}
