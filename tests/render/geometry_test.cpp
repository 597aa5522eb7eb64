#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "render/matrix.h"

namespace {

// The rules of the products once more, from the magnitude classes, in integers that nothing overflows.
__extension__ typedef __int128 Wide;

constexpr Wide POINT = Wide{1} << 26;

VXFIX low64(Wide value)
{
    return static_cast<VXFIX>(static_cast<uint64_t>(value));
}

Wide floor_div(Wide value, int bits)
{
    const Wide divisor = Wide{1} << bits;
    return (value - ((value % divisor) + divisor) % divisor) / divisor;
}

int dropped(Wide value)
{
    return -4 * POINT <= value && value <= 4 * POINT ? 0 : 12;
}

Wide product(Wide a, Wide b)
{
    const Wide whole = low64(floor_div(a, dropped(a)) * floor_div(b, dropped(b)));
    return floor_div(whole, 26 - dropped(a) - dropped(b));
}

Wide model_mul(Wide m, Wide v)
{
    if (-262144 * POINT <= m && m < 262144 * POINT + (Wide{1} << 32))
        return product(m, v);
    return low64(floor_div(m, 26) * floor_div(v, dropped(v)) * (Wide{1} << dropped(v)));
}

Wide model_mul_pos(Wide v, Wide m)
{
    if (-65536 * POINT <= v && v <= 65536 * POINT)
        return product(v, m);
    const Wide w = floor_div(v, 20);
    return dropped(m) == 0 ? floor_div(low64(w * m), 6) : low64(floor_div(m, 12) * w * 64);
}

void model_point(const _VXMATRIX& m, bool of_bound, VXFIX& x, VXFIX& y)
{
    const bool turned = m.b != 0 || m.c != 0;
    const auto scaled = [&](VXFIX scale, VXFIX v) {
        if (turned || !of_bound)
            return model_mul(scale, v);
        return scale > 0 ? model_mul_pos(v, scale) : model_mul(v, scale);
    };
    const Wide to_x = scaled(m.a, x) + (turned ? model_mul(m.c, y) : 0) + m.e;
    y = low64(scaled(m.d, y) + (turned ? model_mul(m.b, x) : 0) + m.f);
    x = low64(to_x);
}

_VXRECTF model_bound(const _VXMATRIX& m, const _VXRECTF& rect)
{
    _VXRECTF bound = {INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
    for (VXFIX x : {rect.x0, rect.x1}) {
        for (const VXFIX y : {rect.y0, rect.y1}) {
            VXFIX to_x = x;
            VXFIX to_y = y;
            model_point(m, true, to_x, to_y);
            bound.add_point(to_x, to_y);
        }
    }
    return bound;
}

_VXMATRIX model_multiply(const _VXMATRIX& t, const _VXMATRIX& o)
{
    const auto sum = [](VXFIX p, VXFIX q, VXFIX r, VXFIX s, VXFIX rest) {
        return low64(model_mul(p, q) + model_mul(r, s) + rest);
    };
    return {sum(t.a, o.a, t.b, o.c, 0), sum(t.a, o.b, t.b, o.d, 0),   sum(t.c, o.a, t.d, o.c, 0),
            sum(t.c, o.b, t.d, o.d, 0), sum(t.e, o.a, t.f, o.c, o.e), sum(t.e, o.b, t.f, o.d, o.f)};
}

// Both ends of every class, the values beside them, and the limits of the type.
std::vector<VXFIX> edges()
{
    std::vector<VXFIX> all = {0, INT64_MIN, INT64_MIN + 1, INT64_MAX};
    for (const int bits : {12, 26, 28, 29, 41, 42, 44, 62}) {
        for (const VXFIX more : {VXFIX{-1}, VXFIX{0}, VXFIX{1}, (VXFIX{1} << 32) - 1, VXFIX{1} << 32})
            all.insert(all.end(), {(VXFIX{1} << bits) + more, -(VXFIX{1} << bits) - more});
    }
    return all;
}

// Numbers of every magnitude, often those of usual matrices and pages.
class Numbers {
public:
    VXFIX any() { return m_random() % 8 ? raw() >> (m_random() % 64) : m_edges[m_random() % m_edges.size()]; }
    VXFIX element() { return m_random() % 32 ? raw() >> (34 + m_random() % 4) : any(); }
    VXFIX coordinate()
    {
        if (m_random() % 8 == 0)
            return 4 * VXFIX_ONE + static_cast<VXFIX>(m_random() % 17) - 8;
        return m_random() % 32 ? static_cast<VXFIX>(m_random() >> (21 + m_random() % 8)) : any();
    }

private:
    VXFIX raw() { return static_cast<VXFIX>(m_random()); }

    std::mt19937_64 m_random{7};
    std::vector<VXFIX> m_edges = edges();
};

template <typename T>
bool same(const T& a, const T& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(FixedTest, ProductsFollowTheMagnitudeClasses)
{
    const auto check = [](VXFIX a, VXFIX b) {
        EXPECT_EQ(fix_mul(a, b), static_cast<VXFIX>(model_mul(a, b))) << a << " * " << b;
        EXPECT_EQ(fix_mul_pos(a, b), static_cast<VXFIX>(model_mul_pos(a, b))) << a << " * " << b;
    };
    for (const VXFIX a : edges()) {
        for (const VXFIX b : edges())
            check(a, b);
    }
    Numbers numbers;
    for (int i = 0; i < 100000; ++i)
        check(numbers.any(), numbers.any());
    EXPECT_EQ(fix_mul(VXFIX_ONE, 0x10000FFF), 0x10000000);
    EXPECT_EQ(fix_mul(4096 * VXFIX_ONE, 3 * VXFIX_ONE), 12288 * VXFIX_ONE);
    EXPECT_EQ(fix_mul((VXFIX{1} << 50) + 0x3FFFFFF, 5 * VXFIX_ONE), 83886080 * VXFIX_ONE);
    EXPECT_EQ(fix_mul(16 * VXFIX_ONE, VXFIX{1} << 62), 0);
}

TEST(MatrixTest, OperationsFollowTheProducts)
{
    Numbers numbers;
    for (int i = 0; i < 50000 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const auto next = [&] { return i % 2 ? numbers.element() : numbers.any(); };
        const auto place = [&] { return i % 2 ? numbers.coordinate() : numbers.any(); };
        _VXMATRIX m = {next(), next(), next(), next(), next(), next()};
        if (i % 3 == 0)
            m.b = m.c = 0;
        _VXMATRIX other = {next(), next(), next(), next(), next(), next()};
        _VXRECTF rect = {place(), place(), place(), place()};
        VXFIX x = rect.x0, y = rect.y1, model_x = x, model_y = y;
        model_point(m, false, model_x, model_y);
        m.transform_point(x, y);
        EXPECT_TRUE(x == model_x && y == model_y);
        const _VXRECTF bound = model_bound(m, rect);
        m.get_bound(rect);
        EXPECT_TRUE(same(rect, bound));
        const _VXMATRIX multiplied = model_multiply(m, other);
        m.do_multiply(other);
        EXPECT_TRUE(same(m, multiplied));
        const _VXMATRIX square = model_multiply(other, other);
        other.do_multiply(other);
        EXPECT_TRUE(same(other, square));
    }
}

}  // namespace
