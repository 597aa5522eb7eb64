#include "appearance/draw/content_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace {

// A quarter circle as a Bézier curve.
constexpr double KAPPA = 0.5523;

constexpr double NUMBER_MAX = 1e6;

int64_t thousandths(double value)
{
    return std::isfinite(value) ? std::llround(std::clamp(value, -NUMBER_MAX, NUMBER_MAX) * 1000) : 0;
}

bool is_text(unsigned char byte)
{
    return byte >= 0x20 && byte != 0x7F;
}

}  // namespace

double rounded(double value)
{
    return static_cast<double>(thousandths(value)) / 1000;
}

void CPDFContentWriter::number(double value)
{
    int64_t left = thousandths(value);
    if (left < 0) {
        m_bytes += '-';
        left = -left;
    }
    char digits[24];
    const char* end = std::to_chars(digits, digits + sizeof digits, left / 1000).ptr;
    left %= 1000;
    if (left == 0 || end - digits > 1 || digits[0] != '0')
        m_bytes.append(digits, static_cast<size_t>(end - digits));
    if (left != 0) {
        m_bytes += '.';
        for (int64_t place = 100; left != 0; left %= place, place /= 10)
            m_bytes += static_cast<char>('0' + left / place);
    }
    m_bytes += ' ';
}

void CPDFContentWriter::name(std::string_view name)
{
    m_bytes += '/';
    for (const char c : name) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte < 0x7F && std::string_view("()<>[]{}/%#").find(c) == std::string_view::npos) {
            m_bytes += c;
            continue;
        }
        m_bytes += '#';
        m_bytes += "0123456789ABCDEF"[byte >> 4];
        m_bytes += "0123456789ABCDEF"[byte & 15];
    }
    m_bytes += ' ';
}

void CPDFContentWriter::string(std::string_view bytes)
{
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return is_text(static_cast<unsigned char>(c)); })) {
        m_bytes += '(';
        for (const char c : bytes) {
            if (c == '(' || c == ')' || c == '\\')
                m_bytes += '\\';
            m_bytes += c;
        }
        m_bytes += ") ";
        return;
    }
    m_bytes += '<';
    for (const char c : bytes) {
        const unsigned char byte = static_cast<unsigned char>(c);
        m_bytes += "0123456789ABCDEF"[byte >> 4];
        m_bytes += "0123456789ABCDEF"[byte & 15];
    }
    m_bytes += "> ";
}

void CPDFContentWriter::op(std::string_view op)
{
    m_bytes += op;
    m_bytes += '\n';
}

void CPDFContentWriter::op(std::initializer_list<double> operands, std::string_view operation)
{
    for (const double operand : operands)
        number(operand);
    op(operation);
}

void CPDFContentWriter::color(const WIDGET_COLOR& color, PAINT_USE use)
{
    const std::string_view operators[2][5] = {{"", "g", "", "rg", "k"}, {"", "G", "", "RG", "K"}};
    if (color.count < 0 || color.count > 4)
        return;
    const std::string_view operation = operators[use == PAINT_USE::STROKE][color.count];
    if (operation.empty())
        return;
    for (int i = 0; i < color.count; ++i)
        number(color.values[i]);
    op(operation);
}

void CPDFContentWriter::rectangle(double x, double y, double width, double height)
{
    op({x, y, width, height}, "re");
}

void CPDFContentWriter::line(double x1, double y1, double x2, double y2)
{
    op({x1, y1}, "m");
    op({x2, y2}, "l");
}

void CPDFContentWriter::circle(double x, double y, double radius)
{
    const double k = radius * KAPPA;
    op({x + radius, y}, "m");
    op({x + radius, y + k, x + k, y + radius, x, y + radius}, "c");
    op({x - k, y + radius, x - radius, y + k, x - radius, y}, "c");
    op({x - radius, y - k, x - k, y - radius, x, y - radius}, "c");
    op({x + k, y - radius, x + radius, y - k, x + radius, y}, "c");
}
