#include "appearance/text/default_appearance.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

// A default appearance is a piece of content stream: operands, then their operator.
//   name  /Helv #20 escapes     number  12  -.5  +3     operator  Tf rg ...
// Strings, arrays and dictionaries have no business there and are passed over.

namespace {

constexpr double STRETCH_MAX = 10;

constexpr int OPERANDS_MAX = 6;

bool is_space(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0';
}

bool is_delimiter(char c)
{
    return std::string_view("()<>[]{}/%").find(c) != std::string_view::npos;
}

class CPDFStyleReader {
public:
    explicit CPDFStyleReader(std::string_view bytes) : m_bytes(bytes) {}

    TEXT_STYLE read()
    {
        for (std::string_view token = next(); !token.empty(); token = next()) {
            double number;
            if (token[0] == '/' || read_number(token, number))
                push(token);
            else
                carry_out(token);
        }
        return std::move(m_style);
    }

private:
    // The next token, empty at the end. A name keeps its slash.
    std::string_view next()
    {
        while (m_at < m_bytes.size()) {
            const char c = m_bytes[m_at];
            if (c == '(')
                skip_string();
            else if (c == '%')
                m_at = std::min(m_bytes.find_first_of("\r\n", m_at), m_bytes.size());
            else if (is_space(c) || (is_delimiter(c) && c != '/'))
                ++m_at;
            else
                return word();
        }
        return {};
    }

    std::string_view word()
    {
        const size_t begin = m_at++;
        while (m_at < m_bytes.size() && !is_space(m_bytes[m_at]) && !is_delimiter(m_bytes[m_at]))
            ++m_at;
        return m_bytes.substr(begin, m_at - begin);
    }

    void skip_string()
    {
        int depth = 0;
        for (; m_at < m_bytes.size(); ++m_at) {
            const char c = m_bytes[m_at];
            if (c == '\\')
                ++m_at;
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
            if (depth == 0)
                break;
        }
        m_at = std::min(m_at + 1, m_bytes.size());
    }

    static bool read_number(std::string_view token, double& number)
    {
        if (token[0] == '+')
            token.remove_prefix(1);
        const char* end = token.data() + token.size();
        const auto result = std::from_chars(token.data(), end, number, std::chars_format::fixed);
        return result.ec == std::errc() && result.ptr == end && std::isfinite(number);
    }

    void push(std::string_view token)
    {
        if (m_count == OPERANDS_MAX)
            std::move(m_operands + 1, m_operands + OPERANDS_MAX, m_operands);
        else
            ++m_count;
        m_operands[m_count - 1] = token;
    }

    // The operand that is `back` places before the operator, 1 for the last; `otherwise` when it is no number.
    double number_at(int back, double otherwise) const
    {
        double number;
        return back <= m_count && read_number(m_operands[m_count - back], number) ? number : otherwise;
    }

    void carry_out(std::string_view op)
    {
        if (op == "Tf")
            set_font();
        else if (op == "Ts")
            m_style.rise = std::clamp(number_at(1, 0), -TEXT_SIZE_MAX, TEXT_SIZE_MAX);
        else if (op == "Tc")
            m_style.spacing = std::clamp(number_at(1, 0), -TEXT_SIZE_MAX, TEXT_SIZE_MAX);
        else if (op == "Tz")
            set_stretch(number_at(1, 100) / 100);
        else if (op == "g")
            set_color(1);
        else if (op == "rg")
            set_color(3);
        else if (op == "k")
            set_color(4);
        else if (op == "sc" || op == "scn")
            set_color(m_count);  // of the device colour space that has so many components
        m_count = 0;
    }

    void set_font()
    {
        const double size = number_at(1, 0);
        m_style.size = size > 0 ? std::min(size, TEXT_SIZE_MAX) : 0;
        if (m_count < 2 || m_operands[m_count - 2][0] != '/')
            return;
        m_style.font.clear();
        const std::string_view name = m_operands[m_count - 2].substr(1);
        for (size_t i = 0; i < name.size(); ++i) {
            unsigned char byte = static_cast<unsigned char>(name[i]);
            if (byte == '#' && i + 2 < name.size() &&
                std::from_chars(name.data() + i + 1, name.data() + i + 3, byte, 16).ptr == name.data() + i + 3)
                i += 2;
            m_style.font += static_cast<char>(byte);
        }
    }

    void set_stretch(double stretch)
    {
        m_style.stretch = stretch > 0 ? std::clamp(stretch, 1 / STRETCH_MAX, STRETCH_MAX) : 1;
    }

    void set_color(int count)
    {
        if (count > m_count || (count != 1 && count != 3 && count != 4))
            return;
        m_style.color.count = count;
        for (int i = 0; i < count; ++i)
            m_style.color.values[i] = std::clamp(number_at(count - i, 0), 0.0, 1.0);
    }

    std::string_view m_bytes;
    size_t m_at = 0;
    std::string_view m_operands[OPERANDS_MAX];
    int m_count = 0;
    TEXT_STYLE m_style;
};

}  // namespace

TEXT_STYLE read_default_appearance(std::string_view bytes)
{
    return CPDFStyleReader(bytes).read();
}

namespace {

std::string number_text(double number)
{
    constexpr int DECIMALS = 4;
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, DECIMALS);
    std::string text(digits, end.ec == std::errc() ? end.ptr : digits);
    text.erase(text.find_last_not_of('0') + 1);
    if (!text.empty() && text.back() == '.')
        text.pop_back();
    return text;
}

std::string name_text(const std::string& name)
{
    constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text = "/";
    for (const char c : name) {
        if (c > ' ' && c < '\x7f' && !is_delimiter(c) && c != '#')
            text += c;
        else
            text += {'#', DIGITS[static_cast<unsigned char>(c) >> 4], DIGITS[static_cast<unsigned char>(c) & 15]};
    }
    return text;
}

}  // namespace

std::string write_default_appearance(const TEXT_STYLE& style)
{
    std::string out = name_text(style.font) + " " + number_text(style.size) + " Tf";
    const WIDGET_COLOR& color = style.color;
    for (int i = 0; i < color.count; ++i)
        out += " " + number_text(color.values[i]);
    out += color.count == 3 ? " rg" : color.count == 4 ? " k" : color.count == 1 ? " g" : " 0 g";
    const std::pair<double, const char*> others[] = {
        {style.rise, "Ts"}, {style.spacing, "Tc"}, {style.stretch == 1 ? 0 : style.stretch * 100, "Tz"}};
    for (const auto& [value, op] : others)
        out += value == 0 ? "" : " " + number_text(value) + " " + op;
    return out;
}
