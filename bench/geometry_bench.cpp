// Measures the drawing arithmetic: matrices against the plain 128-bit product, colour conversion against a copy of its
// output. Each works on 1 MiB. Prints the ratios behind the table.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "render/color_space.h"
#include "render/matrix.h"

namespace {

__extension__ typedef __int128 WIDE;

constexpr size_t INPUT_BYTES = 1 << 20;

VXFIX wide_mul(VXFIX a, VXFIX b)
{
    return static_cast<VXFIX>((static_cast<WIDE>(a) * b) >> 26);
}

struct WideMatrix : _VXMATRIX {
    void interval(VXFIX& low, VXFIX& high, VXFIX scale, VXFIX offset) const
    {
        const VXFIX p = wide_mul(low, scale) + offset;
        const VXFIX q = wide_mul(high, scale) + offset;
        low = std::min(p, q);
        high = std::max(p, q);
    }

    void get_bound(_VXRECTF& rect) const
    {
        if (is_axis_aligned()) {
            interval(rect.x0, rect.x1, a, e);
            interval(rect.y0, rect.y1, d, f);
            return;
        }
        _VXRECTF bound = {INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
        for (const VXFIX x : {rect.x0, rect.x1}) {
            for (const VXFIX y : {rect.y0, rect.y1})
                bound.add_point(wide_mul(a, x) + wide_mul(c, y) + e, wide_mul(b, x) + wide_mul(d, y) + f);
        }
        rect = bound;
    }

    void do_multiply(const _VXMATRIX& o)
    {
        const _VXMATRIX t = *this;
        a = wide_mul(t.a, o.a) + wide_mul(t.b, o.c);
        b = wide_mul(t.a, o.b) + wide_mul(t.b, o.d);
        c = wide_mul(t.c, o.a) + wide_mul(t.d, o.c);
        d = wide_mul(t.c, o.b) + wide_mul(t.d, o.d);
        e = wide_mul(t.e, o.a) + wide_mul(t.f, o.c) + o.e;
        f = wide_mul(t.e, o.b) + wide_mul(t.f, o.d) + o.f;
    }
};

VXFIX fix(double value)
{
    return static_cast<VXFIX>(value * static_cast<double>(VXFIX_ONE));
}

class Numbers {
public:
    VXFIX in(double low, double high) { return fix(std::uniform_real_distribution<double>(low, high)(m_random)); }

private:
    std::mt19937_64 m_random{1};
};

// Rectangles on a page of 600 by 800 points.
std::vector<_VXRECTF> page_rectangles()
{
    Numbers numbers;
    std::vector<_VXRECTF> rects(INPUT_BYTES / sizeof(_VXRECTF));
    for (_VXRECTF& rect : rects) {
        const VXFIX x = numbers.in(0, 500);
        const VXFIX y = numbers.in(0, 780);
        rect = {x, y, x + numbers.in(5, 100), y + numbers.in(5, 20)};
    }
    return rects;
}

// `reach` is how far they move, in points.
template <typename Matrix>
std::vector<Matrix> matrices(double reach)
{
    Numbers numbers;
    std::vector<Matrix> all(INPUT_BYTES / sizeof(Matrix));
    for (Matrix& m : all) {
        m.a = numbers.in(-2, 2);
        m.b = numbers.in(-2, 2);
        m.c = numbers.in(-2, 2);
        m.d = numbers.in(-2, 2);
        m.e = numbers.in(-reach, reach);
        m.f = numbers.in(-reach, reach);
    }
    return all;
}

template <typename Matrix>
Matrix page_matrix(bool turned)
{
    Matrix m{};
    (turned ? m.b : m.a) = fix(1.5);
    (turned ? m.c : m.d) = fix(turned ? 1.5 : -1.5);
    m.e = fix(3);
    m.f = fix(1188);
    return m;
}

template <typename Matrix>
void get_bound(benchmark::State& state, bool turned)
{
    const std::vector<_VXRECTF> rects = page_rectangles();
    std::vector<_VXRECTF> out(rects.size());
    Matrix matrix = page_matrix<Matrix>(turned);
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix);
        for (size_t i = 0; i < rects.size(); ++i) {
            out[i] = rects[i];
            matrix.get_bound(out[i]);
        }
        benchmark::ClobberMemory();
    }
}

template <typename Matrix>
void do_multiply(benchmark::State& state, double reach)
{
    const std::vector<Matrix> all = matrices<Matrix>(reach);
    std::vector<Matrix> out(all.size());
    Matrix matrix = page_matrix<Matrix>(false);
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix);
        for (size_t i = 0; i < all.size(); ++i) {
            out[i] = all[i];
            out[i].do_multiply(matrix);
        }
        benchmark::ClobberMemory();
    }
}

enum class BATCH { RGB, GRAY, RGB2, RGB4 };

size_t output_bytes(BATCH which)
{
    return INPUT_BYTES * (which == BATCH::RGB ? 4 : which == BATCH::RGB4 ? 1 : 2);
}

void convert(CPDFCSBase& space, BATCH which, unsigned char* out, const unsigned char* in)
{
    auto* pixels = reinterpret_cast<_VXRGBA*>(out);
    constexpr int COUNT = INPUT_BYTES;
    switch (which) {
    case BATCH::RGB:
        return space.batch_rgb(pixels, in, COUNT);
    case BATCH::GRAY:
        return space.batch_gray(out, in, COUNT);
    case BATCH::RGB2:
        return space.batch_rgb2(pixels, in, COUNT);
    case BATCH::RGB4:
        return space.batch_rgb4(pixels, in, COUNT);
    }
}

void batch(benchmark::State& state, BATCH which)
{
    std::mt19937 random(1);
    std::vector<unsigned char> in(INPUT_BYTES);
    for (unsigned char& byte : in)
        byte = static_cast<unsigned char>(random());
    std::vector<unsigned char> out(output_bytes(which));
    CPDFCSDeviceGray gray;
    CPDFCSBase* space = &gray;
    for (auto _ : state) {
        benchmark::DoNotOptimize(space);
        convert(*space, which, out.data(), in.data());
        benchmark::ClobberMemory();
    }
}

void copy(benchmark::State& state, BATCH which)
{
    const std::vector<unsigned char> in(output_bytes(which), 1);
    std::vector<unsigned char> out(in.size());
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), in.size());
        benchmark::ClobberMemory();
    }
}

// Keeps the medians by name.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name == "median")
                medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }
    }

    std::map<std::string, double> medians;
};

using Body = std::function<void(benchmark::State&)>;

struct RACE {
    std::string name;
    Body ours;
    const char* other;
    Body theirs;
};

template <typename Run, typename... Values>
Body with(Run run, Values... values)
{
    return [=](benchmark::State& state) { run(state, values...); };
}

const RACE RACES[] = {
    {"get_bound, page upright", with(get_bound<_VXMATRIX>, false), "128-bit", with(get_bound<WideMatrix>, false)},
    {"get_bound, page on its side", with(get_bound<_VXMATRIX>, true), "128-bit", with(get_bound<WideMatrix>, true)},
    {"do_multiply, near", with(do_multiply<_VXMATRIX>, 4.0), "128-bit", with(do_multiply<WideMatrix>, 4.0)},
    {"do_multiply, on a page", with(do_multiply<_VXMATRIX>, 800.0), "128-bit", with(do_multiply<WideMatrix>, 800.0)},
    {"batch_rgb", with(batch, BATCH::RGB), "memcpy", with(copy, BATCH::RGB)},
    {"batch_gray", with(batch, BATCH::GRAY), "memcpy", with(copy, BATCH::GRAY)},
    {"batch_rgb2", with(batch, BATCH::RGB2), "memcpy", with(copy, BATCH::RGB2)},
    {"batch_rgb4", with(batch, BATCH::RGB4), "memcpy", with(copy, BATCH::RGB4)},
};

void add_run(const std::string& name, const Body& body)
{
    constexpr int REPETITIONS = 9;
    constexpr double SECONDS = 0.05;
    benchmark::RegisterBenchmark(name.c_str(), body)
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(SECONDS)
        ->Repetitions(REPETITIONS)
        ->ReportAggregatesOnly();
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (const RACE& race : RACES) {
        add_run(race.name, race.ours);
        add_run(race.name + ", " + race.other, race.theirs);
    }
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nTime by that of the other, medians:\n");
    for (const RACE& race : RACES) {
        const double theirs = reporter.medians[race.name + ", " + race.other];
        if (theirs > 0)
            std::printf("  %-28s %5.2f of %s\n", race.name.c_str(), reporter.medians[race.name] / theirs, race.other);
    }
    return 0;
}
