#include "tools/xml_name.h"

#include <algorithm>
#include <iterator>

#include "core/text.h"

namespace {

struct RANGE {
    uint32_t first;
    uint32_t last;
};

constexpr RANGE STARTS[] = {{'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},
                            {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
                            {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFC}, {0x10000, 0xEFFFF}};
constexpr RANGE OTHERS[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <size_t N>
bool is_in(const RANGE (&ranges)[N], uint32_t c)
{
    return std::any_of(ranges, ranges + N, [c](const RANGE& range) { return c >= range.first && c <= range.last; });
}

}  // namespace

bool is_xml_name(std::string_view text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = p + text.size();
    if (p == end || !is_in(STARTS, ucs_from_utf8(p, end)))
        return false;
    while (p < end) {
        const uint32_t c = ucs_from_utf8(p, end);
        if (!is_in(STARTS, c) && !is_in(OTHERS, c))
            return false;
    }
    return true;
}
