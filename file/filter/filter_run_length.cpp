// Run-length data (ISO 32000-2, 7.4.5): (length 0..127, length + 1 bytes | length 129..255, one byte to repeat
// 257 - length times)*, 128.
#include "file/filter/filters_internal.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint8_t END_OF_DATA = 128;
constexpr size_t LONGEST_RUN = 128;

}  // namespace

bool decode_run_length(const CPDFFilterInput& in, CPDFBytes& out)
{
    const uint8_t* at = in.data;
    const uint8_t* end = in.data + in.size;
    while (end - at > 1 && *at != END_OF_DATA && out.size() < in.limit) {
        const uint8_t length = *at++;
        uint8_t* to = out.room(LONGEST_RUN);
        if (!to)
            return false;
        if (length < END_OF_DATA) {
            const size_t count = std::min<size_t>(length + size_t{1}, static_cast<size_t>(end - at));
            std::memcpy(to, at, count);
            at += count;
            out.added(count);
        } else {
            const size_t count = size_t{257} - length;
            std::memset(to, *at++, count);
            out.added(count);
        }
    }
    return true;
}
