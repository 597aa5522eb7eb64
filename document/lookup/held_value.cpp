#include "document/lookup/held_value.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "document/lookup/rich_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

bool has_only_rich_text(const CPDFField& field)
{
    return field.m_has_rich_text && field.m_type == FIELD_TEXT && field.m_value.type == PDF_OBJ_NULL;
}

PDF_VALUE_TEXT rich_value(const CPDFField& field)
{
    constexpr CPDFKeySet RICH_KEYS{"RV"};
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &RICH_KEYS);
    const CPDFEntryView rich(field.m_xref, own.dictionary() ? own.dict->get_item("RV") : nullptr);
    PDF_VALUE_TEXT value;
    value.present = rich->type == PDF_OBJ_STRING || rich->type == PDF_OBJ_STREAM;
    if (value.present)
        value.text =
            plain_text(rich->type == PDF_OBJ_STRING ? utf8_of(rich->str) : stream_text(*field.m_xref, *rich->stream));
    return value;
}

}  // namespace

const CPDFField* value_holder(const CPDFField& field)
{
    if (field.m_type == FIELD_UNKNOWN)
        return &field;
    const CPDFField* holder = nearest_field(field, [&field](const CPDFField& at) {
        return at.m_type != field.m_type || at.m_value.type != PDF_OBJ_NULL || at.m_has_rich_text;
    });
    return holder && holder->m_type == field.m_type ? holder : nullptr;
}

PDF_VALUE_TEXT own_value(const CPDFField& field)
{
    return has_only_rich_text(field) ? rich_value(field) : value_text(*field.m_xref, field.m_value);
}

PDF_VALUE_TEXT held_value(const CPDFField& field)
{
    const CPDFField* holder = value_holder(field);
    PDF_VALUE_TEXT value = holder ? own_value(*holder) : PDF_VALUE_TEXT();
    if (holder && holder->m_value.type == PDF_OBJ_STREAM) {
        value.present = true;
        value.text = stream_text(*holder->m_xref, *holder->m_value.stream);
    }
    return value;
}
