#include "document/edit/field_appearance.h"

#include <algorithm>
#include <initializer_list>

#include "document/edit/new_object.h"

namespace {

// Appends numbers and the operator behind them.
void put(std::string& out, std::initializer_list<double> numbers, const char* op)
{
    for (const double number : numbers)
        out += number_syntax(number) + " ";
    out.append(op).append("\n");
}

// A circle out of four Bezier curves.
void put_circle(std::string& out, double x, double y, double radius)
{
    constexpr double HANDLE = 0.5523;
    const double r = radius;
    const double h = radius * HANDLE;
    put(out, {x + r, y}, "m");
    put(out, {x + r, y + h, x + h, y + r, x, y + r}, "c");
    put(out, {x - h, y + r, x - r, y + h, x - r, y}, "c");
    put(out, {x - r, y - h, x - h, y - r, x, y - r}, "c");
    put(out, {x + h, y - r, x + r, y - h, x + r, y}, "c");
}

constexpr const char* COLORS = "1 g 0.6 G 1 w\n";

void put_box(std::string& out, double width, double height)
{
    out += COLORS;
    put(out, {0.5, 0.5, std::max(width - 1, 0.0), std::max(height - 1, 0.0)}, "re");
    out += "B\n";
}

void put_check_mark(std::string& out, double width, double height)
{
    const double side = std::min(width, height);
    const double left = (width - side) / 2;
    const double bottom = (height - side) / 2;
    out += "0 G\n";
    put(out, {side / 9}, "w");
    put(out, {left + side * 0.22, bottom + side * 0.5}, "m");
    put(out, {left + side * 0.42, bottom + side * 0.27}, "l");
    put(out, {left + side * 0.78, bottom + side * 0.75}, "l");
    out += "S\n";
}

void put_radio(std::string& out, double width, double height, bool on)
{
    const double radius = std::min(width, height) / 2;
    out += COLORS;
    put_circle(out, width / 2, height / 2, std::max(radius - 0.5, 0.0));
    out += "b\n";
    if (!on)
        return;
    out += "0 g\n";
    put_circle(out, width / 2, height / 2, radius / 2);
    out += "f\n";
}

}  // namespace

std::string look_content(PDF_LOOK look, double width, double height)
{
    std::string out = "q\n";
    const bool radio = look == PDF_LOOK::RADIO_OFF || look == PDF_LOOK::RADIO_ON;
    if (radio)
        put_radio(out, width, height, look == PDF_LOOK::RADIO_ON);
    else
        put_box(out, width, height);
    if (look == PDF_LOOK::CHECK_ON)
        put_check_mark(out, width, height);
    return out + "Q\n";
}

std::string look_entries(double width, double height)
{
    return "/Type/XObject/Subtype/Form/BBox[0 0 " + number_syntax(width) + " " + number_syntax(height) +
           "]/Resources<<>>";
}
