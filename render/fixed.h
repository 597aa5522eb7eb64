// Products of fixed-point numbers (VXFIX, 26 fraction bits) within 64 bits.
#pragma once

#include "core/object.h"

// Larger operands give up low bits instead of widening the product. Every operation wraps at 64 bits: nothing saturates
// and nothing overflows in the sense of the language.

constexpr VXFIX fix_add(VXFIX a, VXFIX b)
{
    return static_cast<VXFIX>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

constexpr VXFIX fix_sub(VXFIX a, VXFIX b)
{
    return static_cast<VXFIX>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}

// The low 64 bits of the product of the raw values.
constexpr VXFIX fix_raw_product(VXFIX a, VXFIX b)
{
    return static_cast<VXFIX>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

// Whether `value` lies in -4.0 ... 4.0, both included.
constexpr bool fix_is_small(VXFIX value)
{
    return static_cast<uint64_t>(value) + 0x10000000u < 0x20000001u;
}

// Whether `value` lies in -262144.0 ... 262208.0, the upper end excluded: it goes by the upper 32 bits.
constexpr bool fix_is_moderate(VXFIX value)
{
    return static_cast<uint32_t>(static_cast<uint64_t>(value) >> 32) + 0x1000u < 0x2001u;
}

// Whether `value` lies in -65536.0 ... 65536.0, both included.
constexpr bool fix_is_coordinate(VXFIX value)
{
    constexpr uint64_t BOUND = uint64_t{1} << 42;
    return static_cast<uint64_t>(value) + BOUND <= 2 * BOUND;
}

// a times b, where an operand that is not small gives up its low 12 bits.
constexpr VXFIX fix_product(VXFIX a, VXFIX b)
{
    if (fix_is_small(a))
        return fix_is_small(b) ? fix_raw_product(a, b) >> 26 : fix_raw_product(a, b >> 12) >> 14;
    return fix_is_small(b) ? fix_raw_product(a >> 12, b) >> 14 : fix_raw_product(a >> 12, b >> 12) >> 2;
}

// m times v. A huge m counts with its integer part only; how large v is makes no such difference.
constexpr VXFIX fix_mul(VXFIX m, VXFIX v)
{
    if (fix_is_moderate(m)) [[likely]]
        return fix_product(m, v);
    return fix_raw_product(m >> 26, fix_is_small(v) ? v : v & ~VXFIX{0xFFF});
}

// The same for a coordinate v and a coefficient m above 0, with another rule for what is huge: it goes by the coordinate,
// which then gives up 20 bits.
constexpr VXFIX fix_mul_pos(VXFIX v, VXFIX m)
{
    if (fix_is_coordinate(v)) [[likely]]
        return fix_product(v, m);
    const VXFIX wide = v >> 20;
    if (fix_is_small(m))
        return fix_raw_product(wide, m) >> 6;
    return fix_raw_product(fix_raw_product(m >> 12, wide), 64);
}

// Whether all four lie above 4.0 and below 32772.0, as the coordinates of nearly everything on a page do: one test
// instead of eight, behind which fix_page_product is both of the products above.
constexpr bool fix_are_page_coordinates(VXFIX a, VXFIX b, VXFIX c, VXFIX d)
{
    constexpr uint64_t LEAST = 0x10000001;
    constexpr uint64_t RANGE = uint64_t{1} << 41;
    return ((static_cast<uint64_t>(a) - LEAST) | (static_cast<uint64_t>(b) - LEAST) |
            (static_cast<uint64_t>(c) - LEAST) | (static_cast<uint64_t>(d) - LEAST)) < RANGE;
}

// The product of such a coordinate and a small coefficient of any sign.
constexpr VXFIX fix_page_product(VXFIX v, VXFIX m)
{
    return fix_raw_product(v >> 12, m) >> 14;
}

// Whether all four are small for certain: one test for them, which leaves out 4.0 itself. fix_small_product is the
// product then.
constexpr bool fix_are_small(VXFIX a, VXFIX b, VXFIX c, VXFIX d)
{
    constexpr uint64_t BOUND = 0x10000000;
    return ((static_cast<uint64_t>(a) + BOUND) | (static_cast<uint64_t>(b) + BOUND) |
            (static_cast<uint64_t>(c) + BOUND) | (static_cast<uint64_t>(d) + BOUND)) < 2 * BOUND;
}

constexpr VXFIX fix_small_product(VXFIX a, VXFIX b)
{
    return fix_raw_product(a, b) >> 26;
}
