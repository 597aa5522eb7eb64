// Where an appearance stream comes to stand on its page (ISO 32000-2, 12.5.5, algorithm 8).
#pragma once

#include <array>
#include <optional>

// A transformation [a b c d e f], and corners [x1 y1 x2 y2] of a rectangle in any order.
using PDF_MATRIX = std::array<double, 6>;
using PDF_RECTANGLE = std::array<double, 4>;

// The matrix for "cm" before the form XObject with this "BBox" and "Matrix" is shown, so that it fills `rect`; "Matrix" is
// not in it, since showing the form applies that. Nothing where the appearance has no extent or numbers are no numbers.
std::optional<PDF_MATRIX> place_appearance(const PDF_RECTANGLE& bbox, const PDF_MATRIX& matrix,
                                           const PDF_RECTANGLE& rect);
