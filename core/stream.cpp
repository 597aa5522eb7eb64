#include "core/stream.h"

#include "core/alloc.h"

namespace {

constexpr int FIRST_STEP = 1024;
constexpr int LAST_STEP = 65536;

// Grows `data` to `capacity` + 4 bytes, the room of a terminator included; on failure releases it.
bool grow(VXBlock<unsigned char>& data, int64_t capacity)
{
    void* grown = VXRealloc(data.get(), static_cast<size_t>(capacity) + 4);
    if (!grown) {
        data.reset();
        return false;
    }
    static_cast<void>(data.release());
    data.reset(static_cast<unsigned char*>(grown));
    return true;
}

}  // namespace

CPDFStream::~CPDFStream() = default;

unsigned char* CPDFStream::buffer_load(int max, int& len)
{
    const int64_t estimate = len > 0 ? len : m_data_len > 0 ? m_data_len : 0;
    int64_t capacity = (estimate + 1023) / 1024 * 1024;
    len = 0;
    if (capacity > INT32_MAX - 2 * LAST_STEP)
        return nullptr;
    VXBlock<unsigned char> data(static_cast<unsigned char*>(VXAlloc(static_cast<size_t>(capacity) + 4)));
    if (!data)
        return nullptr;

    // The first read asks for the whole estimate, later ones for steps that double.
    int64_t total = 0;
    int64_t step = capacity;
    int64_t next_step = FIRST_STEP;
    for (bool first = true;; first = false) {
        const int64_t got = step > 0 ? read_data(data.get() + total, static_cast<int>(step)) : 0;
        total += got;
        if (got < step)
            break;
        capacity += next_step;
        if ((!first && capacity > max) || capacity > INT32_MAX - 4)
            break;
        if (!grow(data, capacity))
            return nullptr;
        step = next_step;
        if (next_step < LAST_STEP)
            next_step *= 2;
    }
    data.get()[total] = 0;
    len = static_cast<int>(total);
    return data.release();
}
