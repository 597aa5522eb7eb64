#include "appearance/draw/placement.h"

#include <algorithm>
#include <cmath>

namespace {

// Thinner appearances show nothing, and stretching them leads out of all numbers.
constexpr double EXTENT_MIN = 1e-6;

struct EXTENT {
    double low;
    double high;
};

// Where x and y of the corners of a rectangle come to, as weights of both and a shift.
EXTENT extent_of(const PDF_RECTANGLE& r, double by_x, double by_y, double shift)
{
    const double ends[] = {r[0] * by_x + r[1] * by_y, r[2] * by_x + r[1] * by_y, r[0] * by_x + r[3] * by_y,
                           r[2] * by_x + r[3] * by_y};
    return {*std::min_element(ends, ends + 4) + shift, *std::max_element(ends, ends + 4) + shift};
}

}  // namespace

std::optional<PDF_MATRIX> place_appearance(const PDF_RECTANGLE& bbox, const PDF_MATRIX& m, const PDF_RECTANGLE& rect)
{
    const EXTENT x = extent_of(bbox, m[0], m[2], m[4]);
    const EXTENT y = extent_of(bbox, m[1], m[3], m[5]);
    if (!(x.high - x.low > EXTENT_MIN && y.high - y.low > EXTENT_MIN))
        return std::nullopt;
    const double across = std::abs(rect[2] - rect[0]) / (x.high - x.low);
    const double up = std::abs(rect[3] - rect[1]) / (y.high - y.low);
    const PDF_MATRIX placed = {
        across, 0, 0, up, std::min(rect[0], rect[2]) - x.low * across, std::min(rect[1], rect[3]) - y.low * up};
    if (!std::all_of(placed.begin(), placed.end(), [](double value) { return std::isfinite(value); }))
        return std::nullopt;
    return placed;
}
