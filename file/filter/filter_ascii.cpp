// ASCIIHex data (ISO 32000-2, 7.4.2): pairs of digits, ">". ASCII85 data (7.4.3): groups of five characters "!".."u" for
// four bytes, "z" for four zeros, a last group of n characters for n - 1 bytes, "~>". White space goes anywhere.
#include "file/filter/filters_internal.h"
#include "file/syntax/lexer.h"

namespace {

constexpr uint8_t BASE = 85;

const uint8_t* skip_space(const uint8_t* at, const uint8_t* end)
{
    while (at < end && is_space(*at))
        ++at;
    return at;
}

// The `count` leading bytes of a group.
bool put_group(CPDFBytes& out, uint32_t group, size_t count)
{
    uint8_t* to = out.room(4);
    if (!to)
        return false;
    for (int shift = 24; shift >= 0; shift -= 8)
        *to++ = static_cast<uint8_t>(group >> shift);
    out.added(count);
    return true;
}

// A group cut short is filled up with the highest digit, which leaves its leading bytes as they were encoded.
bool put_last_group(CPDFBytes& out, uint64_t group, size_t digits)
{
    if (digits < 2)
        return true;
    for (size_t i = digits; i < 5; ++i)
        group = group * BASE + BASE - 1;
    return group > UINT32_MAX || put_group(out, static_cast<uint32_t>(group), digits - 1);
}

}  // namespace

bool decode_ascii_hex(const CPDFFilterInput& in, CPDFBytes& out)
{
    uint8_t* to = out.room(in.size / 2 + 1);
    if (!to)
        return false;
    size_t digits = 0;
    uint8_t byte = 0;
    for (size_t i = 0; i < in.size; ++i) {
        const int digit = hex_digit(in.data[i]);
        if (digit < 0 && is_space(in.data[i]))
            continue;
        if (digit < 0)
            break;
        byte = static_cast<uint8_t>(byte << 4 | digit);
        if (++digits % 2 == 0)
            *to++ = byte;
    }
    if (digits % 2 != 0)
        *to = static_cast<uint8_t>(byte << 4);
    out.added((digits + 1) / 2);
    return true;
}

bool decode_ascii85(const CPDFFilterInput& in, CPDFBytes& out)
{
    if (!out.reserve(in.size / 5 * 4 + 4))
        return false;
    const uint8_t* end = in.data + in.size;
    const uint8_t* at = skip_space(in.data, end);
    // The start mark of other uses of this encoding.
    if (end - at > 1 && at[0] == '<' && at[1] == '~')
        at += 2;
    uint64_t group = 0;
    size_t digits = 0;
    for (; at < end && out.size() < in.limit; ++at) {
        if (is_space(*at))
            continue;
        if (*at == 'z' && digits == 0) {
            if (!put_group(out, 0, 4))
                return false;
            continue;
        }
        if (*at < '!' || *at > 'u')
            break;
        group = group * BASE + (*at - '!');
        if (++digits < 5)
            continue;
        if (group > UINT32_MAX)
            return true;
        if (!put_group(out, static_cast<uint32_t>(group), 4))
            return false;
        group = 0;
        digits = 0;
    }
    return put_last_group(out, group, digits);
}
