#include "document/edit/new_object.h"

#include <charconv>
#include <cstring>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "file/syntax/parser.h"
#include "file/syntax/serialize.h"

void parse_syntax(const std::string& text, CPDFObj& out)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    CPDFParser parser(bytes, bytes + text.size(), nullptr);
    parser.parse(out, nullptr);
}

PDF_REF new_object(CPDFXRefTable& xref, const std::string& text)
{
    const VXFailureCheck memory;
    CPDFObj object;
    parse_syntax(text, object);
    const PDF_REF ref = {xref.new_obj_num(), 0};
    if (!memory.failed())
        xref.take_changed(ref, object);
    return memory.failed() ? PDF_REF{0, 0} : ref;
}

PDF_REF new_stream(CPDFXRefTable& xref, const std::string& entries, const std::string& data)
{
    const VXFailureCheck memory;
    const PDF_REF ref = {xref.new_obj_num(), 0};
    CPDFObj dict;
    parse_syntax("<<" + entries + ">>", dict);
    VXBlock<unsigned char> bytes(vx_alloc_array<unsigned char>(data.size()));
    if (memory.failed() || !bytes)
        return {0, 0};
    std::memcpy(bytes.get(), data.data(), data.size());
    const auto stored = xref.take_stream(ref, *dict.dict, bytes.release(), static_cast<int>(data.size()));
    return stored == PDF_CHANGE_RESULT::STORED ? ref : PDF_REF{0, 0};
}

std::string string_syntax(const std::string& text)
{
    CPDFObj value;
    value.type = PDF_OBJ_STRING;
    value.str = pdf_string_of(text);
    std::string out;
    write_object(out, value);
    return out;
}

std::string name_syntax(const std::string& name)
{
    CPDFObj value;
    value.set_name(name.c_str());
    std::string out;
    write_object(out, value);
    return out;
}

std::string ref_syntax(const PDF_REF& ref)
{
    return std::to_string(ref.num) + " " + std::to_string(ref.gen) + " R";
}

std::string number_syntax(double number, int decimals)
{
    char digits[64];
    const std::to_chars_result end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, decimals);
    std::string text(digits, end.ec == std::errc() ? end.ptr : digits);
    text.erase(text.find_last_not_of('0') + 1);
    if (!text.empty() && text.back() == '.')
        text.pop_back();
    return text;
}
