// Writes the operators of a content stream (ISO 32000-2, 7.8.2). The bytes depend on nothing but the calls.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "appearance/text/color.h"

enum class PAINT_USE { FILL, STROKE };

class CPDFContentWriter {
public:
    CPDFContentWriter() { m_bytes.reserve(256); }

    // An operand: at most three decimals, in the shortest form. What is no number, or out of all reason, becomes one that is.
    void number(double value);
    void name(std::string_view name);
    void string(std::string_view bytes);

    // The operator with the operands that were written just before, or with numbers.
    void op(std::string_view op);
    void op(std::initializer_list<double> operands, std::string_view op);

    // Bytes as they are, between operators.
    void raw(std::string_view bytes) { m_bytes += bytes; }

    // Nothing for a colour of no values.
    void color(const WIDGET_COLOR& color, PAINT_USE use);

    // Paths; the circle around x, y.
    void rectangle(double x, double y, double width, double height);
    void line(double x1, double y1, double x2, double y2);
    void circle(double x, double y, double radius);

    std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

// The value as it is written: rounded to thousandths.
double rounded(double value);
