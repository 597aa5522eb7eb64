#include "engine/sign.h"

#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

std::string text_of(CPDFXRefTable* xref, const CPDFObj* entry)
{
    const CPDFEntryView value(xref, entry);
    if (value->type == PDF_OBJ_NAME && value->name)
        return value->name;
    if (value->type == PDF_OBJ_STRING && value->str.buf)
        return {reinterpret_cast<const char*>(value->str.buf), static_cast<size_t>(value->str.len)};
    return {};
}

}  // namespace

void CPDFSign::load(CPDFXRefTable* xref, const CPDFDictionary* dict)
{
    const CPDFEntryView contents(xref, dict->get_item("Contents"));
    m_data_cnt = contents->type == PDF_OBJ_STRING ? contents->str.len : 0;
    m_filter = text_of(xref, dict->get_item(CPDFDictionary::sm_tag_filter));
    m_sub_filter = text_of(xref, dict->get_item("SubFilter"));
    m_name = text_of(xref, dict->get_item("Name"));
    m_date = text_of(xref, dict->get_item("M"));
    m_byte_range.clear();
    const CPDFEntryView range_view(xref, dict->get_item("ByteRange"));
    const CPDFArray* range = range_view->array();
    for (int32_t i = 0; range && i < range->count; ++i)
        m_byte_range.push_back(resolve_integer(xref, &range->items[i]));
}
