#include <cstdio>
#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "engine/sign.h"
#include "forms/field.h"
#include "forms/field_edit.h"

namespace {

// Copies `text` into `size` bytes, cut at a whole UTF-8 character.
void put_text(const char* text, char* buf, int size)
{
    size_t len = std::strlen(text);
    const auto room = static_cast<size_t>(size) - 1;
    if (len > room) {
        len = room;
        while (len > 0 && (static_cast<unsigned char>(text[len]) & 0xC0) == 0x80)
            --len;
    }
    std::memcpy(buf, text, len);
    buf[len] = 0;
}

void put_string(const PDF_String& text, char* buf, int size)
{
    const VXBlock<wchar_t> wide(vx_alloc_array<wchar_t>(static_cast<size_t>(size) + 1));
    buf[0] = 0;
    if (!wide)
        return;
    cvt_text_to_ucs(&text, wide.get(), size);
    cvt_utol(wide.get(), buf, size - 1);
}

void put_real(VXFIX value, char* buf, int size)
{
    constexpr float UNIT = 1.0F / static_cast<float>(VXFIX_ONE);
    char digits[64];
    std::snprintf(digits, sizeof digits, "%f", static_cast<double>(static_cast<float>(value) * UNIT));
    ansi_repc(digits, ',', '.');
    put_text(digits, buf, size);
}

}  // namespace

void CPDFField::get_vaue(char* buf, int size)
{
    if (!buf || size <= 0)
        return;
    buf[0] = 0;
    char digits[16];
    switch (m_value.type) {
    case PDF_OBJ_BOOL:
        put_text(m_value.ival ? "true" : "false", buf, size);
        break;
    case PDF_OBJ_INT:
        std::snprintf(digits, sizeof digits, "%d", m_value.ival);
        put_text(digits, buf, size);
        break;
    case PDF_OBJ_REAL:
        put_real(m_value.fval, buf, size);
        break;
    case PDF_OBJ_STRING:
        put_string(m_value.str, buf, size);
        break;
    case PDF_OBJ_NAME:
        put_text(m_value.name ? m_value.name : "", buf, size);
        break;
    case PDF_OBJ_ARRAY:
        if (m_value.arr->count == 1) {
            const CPDFEntryView only(m_xref, &m_value.arr->items[0]);
            if (only->type == PDF_OBJ_STRING)
                put_string(only->str, buf, size);
        }
        break;
    default:
        break;
    }
}

void CPDFField::set_read_only(int on)
{
    CPDFObj flags;
    flags.set_int(
        static_cast<int32_t>(on ? m_flags | FIELD_READ_ONLY : m_flags & ~static_cast<uint32_t>(FIELD_READ_ONLY)));
    if (change_entries(*this, {{"Ff", &flags}}) == PDF_CHANGE_RESULT::NO_DICTIONARY)
        return;
    m_flags = static_cast<uint32_t>(flags.ival);
    m_has_flags = true;
}

void CPDFField::set_edit_value(const PDF_String* value)
{
    if (m_type != FIELD_TEXT)
        return;
    CPDFObj text;  // aside, for `value` may be the field's own
    text.set_string(value->buf, value->len);
    m_value.take(text);
    store_entry("V", m_value);
}

void CPDFField::set_edit_appearnce(const PDF_String* da)
{
    if (m_type != FIELD_TEXT)
        return;
    CPDFObj text;
    text.set_string(da->buf, da->len);
    m_da.take(text);
    store_entry("DA", m_da);
}

PDF_String* CPDFField::get_edit_value()
{
    for (CPDFField* field = this; field && field->m_type == FIELD_TEXT; field = field->m_parent) {
        if (field->m_value.type == PDF_OBJ_STRING)
            return &field->m_value.str;
    }
    return nullptr;
}

PDF_String* CPDFField::get_edit_apperance()
{
    const bool has_text = m_type == FIELD_TEXT || m_type == FIELD_CHOICE;
    return has_text && m_da.type == PDF_OBJ_STRING ? &m_da.str : nullptr;
}

int CPDFField::is_signed()
{
    return m_type == FIELD_SIGNATURE && m_sign && m_sign->m_data_cnt > 0;
}

int CPDFField::has_sign()
{
    if (is_signed())
        return 1;
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (m_kids[i] && m_kids[i]->has_sign())
            return 1;
    }
    return 0;
}
