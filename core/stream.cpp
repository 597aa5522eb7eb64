#include "core/stream.h"

#include "core/growable.h"

namespace {

constexpr int FIRST_STEP = 1024;
constexpr int LAST_STEP = 65536;
constexpr int64_t END_ROOM = 4;  // behind the capacity, for the terminator

}  // namespace

CPDFStream::~CPDFStream() = default;

unsigned char* CPDFStream::buffer_load(int max, int& len)
{
    const int64_t estimate = len > 0 ? len : m_data_len > 0 ? m_data_len : 0;
    int64_t capacity = (estimate + 1023) / 1024 * 1024;
    len = 0;
    if (capacity > INT32_MAX - 2 * LAST_STEP)
        return nullptr;
    CPDFGrowable<unsigned char, FIRST_STEP> data;
    if (!data.reserve(static_cast<size_t>(capacity + END_ROOM)))
        return nullptr;

    // The first read asks for the whole estimate, later ones for steps that double.
    int64_t total = 0;
    int64_t step = capacity;
    int64_t next_step = FIRST_STEP;
    for (bool first = true;; first = false) {
        const int64_t got = step > 0 ? read_data(data.data() + total, static_cast<int>(step)) : 0;
        total += got;
        if (got < step)
            break;
        capacity += next_step;
        if ((!first && capacity > max) || capacity > INT32_MAX - END_ROOM)
            break;
        if (!data.reserve(static_cast<size_t>(capacity + END_ROOM)))
            return nullptr;
        step = next_step;
        if (next_step < LAST_STEP)
            next_step *= 2;
    }
    data.data()[total] = 0;
    len = static_cast<int>(total);
    return data.release();
}
