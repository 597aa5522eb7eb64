#include "file/syntax/serialize.h"

#include <charconv>

#include "core/array.h"
#include "core/dictionary.h"
#include "file/syntax/lexer.h"

namespace {

constexpr char HEX[] = "0123456789ABCDEF";

template <typename Int>
void write_int(std::string& out, Int value)
{
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, end.ptr);
}

bool is_plain_in_name(char byte)
{
    const auto c = static_cast<uint8_t>(byte);
    return is_regular(c) && c > 0x20 && c < 0x7F && c != '#';
}

void write_name(std::string& out, const char* name)
{
    out += '/';
    while (name && *name) {
        const char* plain = name;
        while (is_plain_in_name(*name))
            ++name;
        out.append(plain, static_cast<size_t>(name - plain));
        if (!*name)
            break;
        const auto c = static_cast<uint8_t>(*name++);
        out += '#';
        out += HEX[c >> 4];
        out += HEX[c & 15];
    }
}

// Text that is mostly unprintable is shorter and safer as hexadecimal digits.
bool prefers_hex(const PDF_String& str)
{
    int32_t odd = 0;
    for (int32_t i = 0; i < str.len; ++i)
        odd += str.buf[i] < 0x20 || str.buf[i] >= 0x7F;
    return odd > str.len / 2;
}

void write_string(std::string& out, const PDF_String& str)
{
    if (prefers_hex(str)) {
        out += '<';
        for (int32_t i = 0; i < str.len; ++i) {
            out += HEX[str.buf[i] >> 4];
            out += HEX[str.buf[i] & 15];
        }
        out += '>';
        return;
    }
    out += '(';
    const char* bytes = reinterpret_cast<const char*>(str.buf);
    int32_t done = 0;
    for (int32_t i = 0; i < str.len; ++i) {
        const char c = bytes[i];
        if (c != '(' && c != ')' && c != '\\' && c != '\r')
            continue;
        out.append(bytes + done, static_cast<size_t>(i - done));
        out += '\\';
        out += c == '\r' ? 'r' : c;  // a bare CR would read back as LF
        done = i + 1;
    }
    out.append(done < str.len ? bytes + done : "", static_cast<size_t>(str.len > done ? str.len - done : 0));
    out += ')';
}

// Whether the value begins and ends with a delimiter, so that nothing need keep it apart from its neighbours.
bool is_delimited(const CPDFObj& value)
{
    return value.type == PDF_OBJ_STRING || value.type == PDF_OBJ_ARRAY || value.type == PDF_OBJ_DICT;
}

// Whether the value begins with a delimiter.
bool opens_delimited(const CPDFObj& value)
{
    return is_delimited(value) || value.type == PDF_OBJ_NAME;
}

void write_array(std::string& out, const CPDFArray& array)
{
    out += '[';
    for (int32_t i = 0; i < array.count; ++i) {
        if (i > 0 && !opens_delimited(array.items[i]) && !is_delimited(array.items[i - 1]))
            out += ' ';
        write_object(out, array.items[i]);
    }
    out += ']';
}

}  // namespace

void write_real(std::string& out, VXFIX value)
{
    constexpr uint64_t FRACTION = VXFIX_ONE - 1;
    uint64_t fixed = static_cast<uint64_t>(value);
    if (value < 0) {
        out += '-';
        fixed = 0 - fixed;
    }
    const bool whole = fixed >= VXFIX_ONE;
    if (whole)
        write_int(out, fixed >> 26);
    // The fewest decimals that lead back to the same fixed-point number.
    uint64_t scale = 1;
    uint64_t decimals = 0;
    int digits = 0;
    for (; digits <= 8; ++digits, scale *= 10) {
        decimals = ((fixed & FRACTION) * scale + VXFIX_ONE / 2) >> 26;
        if (decimals < scale && ((decimals << 26) + scale / 2) / scale == (fixed & FRACTION))
            break;
    }
    if (digits == 0) {
        if (!whole)
            out += '0';
        return;
    }
    out += '.';
    const size_t at = out.size();
    write_int(out, decimals);
    out.insert(at, static_cast<size_t>(digits) - (out.size() - at), '0');
}

void write_dictionary(std::string& out, const CPDFDictionary& dict)
{
    out += "<<";
    for (int32_t i = 0; i < dict.count; ++i) {
        const CPDFObj& value = dict.items[i]->value;
        if (value.type == PDF_OBJ_NULL)
            continue;
        write_entry(out, dict.items[i]->key(), value);
    }
    out += ">>";
}

void write_entry(std::string& out, const char* key, const CPDFObj& value)
{
    write_name(out, key);
    if (!opens_delimited(value))
        out += ' ';
    write_object(out, value);
}

void write_object(std::string& out, const CPDFObj& obj)
{
    switch (obj.type) {
    case PDF_OBJ_BOOL:
        out += obj.ival ? "true" : "false";
        break;
    case PDF_OBJ_INT:
        write_int(out, obj.ival);
        break;
    case PDF_OBJ_REAL:
        write_real(out, obj.fval);
        break;
    case PDF_OBJ_STRING:
        write_string(out, obj.str);
        break;
    case PDF_OBJ_NAME:
        write_name(out, obj.name);
        break;
    case PDF_OBJ_ARRAY:
        write_array(out, *obj.arr);
        break;
    case PDF_OBJ_DICT:
        write_dictionary(out, *obj.dict);
        break;
    case PDF_OBJ_REF:
        write_int(out, obj.ref.num);
        out += ' ';
        write_int(out, obj.ref.gen);
        out += " R";
        break;
    case PDF_OBJ_STREAM:
        write_dictionary(out, obj.stream->dict);
        break;
    default:
        out += "null";
        break;
    }
}
