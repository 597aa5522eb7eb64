#include "document/lookup/value_text.h"

#include <algorithm>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"

namespace {

// Seven decimals give back what the file has, as far as the fixed point keeps it.
std::string text_of_real(VXFIX value)
{
    constexpr uint64_t SCALE = 10000000;
    const uint64_t size = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    const uint64_t fraction = size % VXFIX_ONE;
    const uint64_t scaled = size / VXFIX_ONE * SCALE + (fraction * SCALE + VXFIX_ONE / 2) / VXFIX_ONE;
    std::string text = std::to_string(scaled / SCALE) + "." + std::to_string(SCALE + scaled % SCALE).substr(1);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return value < 0 ? "-" + text : text;
}

// Whether `value` has a text, and that in `out`.
bool scalar_text(const CPDFObj& value, std::string& out)
{
    switch (value.type) {
    case PDF_OBJ_STRING:
        out = utf8_of(value.str);
        return true;
    case PDF_OBJ_NAME:
        out = utf8_of_name(value.name);
        return true;
    case PDF_OBJ_BOOL:
        out = value.ival ? "true" : "false";
        return true;
    case PDF_OBJ_INT:
        out = std::to_string(value.ival);
        return true;
    case PDF_OBJ_REAL:
        out = text_of_real(value.fval);
        return true;
    default:
        return false;
    }
}

}  // namespace

std::string PDF_VALUE_TEXT::joined() const
{
    if (!is_list)
        return text;
    std::string out;
    for (const std::string& item : items) {
        if (&item != &items.front())
            out += ", ";
        out += item;
    }
    return out;
}

PDF_VALUE_TEXT value_text(CPDFXRefTable& xref, const CPDFObj& value)
{
    PDF_VALUE_TEXT result;
    const CPDFArray* array = value.array();
    if (!array) {
        result.present = scalar_text(value, result.text);
        return result;
    }
    result.present = result.is_list = true;
    for (int32_t i = 0; i < array->count; ++i) {
        const CPDFEntryView entry(&xref, &array->items[i]);
        std::string item;
        scalar_text(*entry, item);
        result.items.push_back(std::move(item));
    }
    return result;
}

std::string stream_text(CPDFXRefTable& xref, const CPDFStreamRec& value)
{
    const std::unique_ptr<CPDFStream> stream(xref.make_stream(&value));
    constexpr auto MOST = static_cast<int>(LIMIT_EXPORT_STREAMS + 1);  // tells that there is more
    int len = stream ? std::min(stream->m_data_len, MOST) : 0;
    const VXBlock<unsigned char> data(stream ? stream->buffer_load(MOST, len) : nullptr);
    return utf8_of({len, data.get()});
}
