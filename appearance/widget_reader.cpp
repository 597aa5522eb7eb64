#include "appearance/widget_reader.h"

#include <algorithm>
#include <cmath>

#include "appearance/form_fonts.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

namespace {

constexpr CPDFKeySet WIDGET_KEYS{"AP", "AS", "BS", "Border", "DA", "MK", "Q", "Rect", "TI", "F"};
constexpr CPDFKeySet FIELD_KEYS{"DA", "Q", "TI"};

double number_of(CPDFXRefTable& xref, const CPDFObj* entry)
{
    const CPDFEntryView value(&xref, entry);
    return value->type == PDF_OBJ_REAL ? static_cast<double>(value->fval) / static_cast<double>(VXFIX_ONE)
                                       : integer_value(*value);
}

WIDGET_KIND kind_of(const CPDFField& field)
{
    const uint32_t flags = effective_flags(field);
    switch (field_kind(field.m_type, flags).id) {
    case KIND_CHECK:
        return WIDGET_KIND::CHECK_BOX;
    case KIND_RADIO:
        return WIDGET_KIND::RADIO_BUTTON;
    case KIND_PUSH:
        return WIDGET_KIND::PUSH_BUTTON;
    case KIND_COMBO:
        return WIDGET_KIND::COMBO_BOX;
    case KIND_LIST:
        return WIDGET_KIND::LIST_BOX;
    default:
        break;
    }
    if (flags & FIELD_PASSWORD)
        return WIDGET_KIND::PASSWORD;
    if (flags & FIELD_MULTILINE)
        return WIDGET_KIND::LINES;
    const bool comb = (flags & FIELD_COMB) && !(flags & FIELD_FILE_SELECT) && max_length(field) > 0;
    return comb ? WIDGET_KIND::COMB : WIDGET_KIND::TEXT;
}

WIDGET_COLOR read_color(CPDFXRefTable& xref, const CPDFObj* entry)
{
    const CPDFEntryView list(&xref, entry);
    WIDGET_COLOR color;
    const CPDFArray* values = list->array();
    if (!values || (values->count != 1 && values->count != 3 && values->count != 4))
        return color;
    color.count = values->count;
    for (int i = 0; i < color.count; ++i)
        color.values[i] = std::clamp(number_of(xref, values->at(i)), 0.0, 1.0);
    return color;
}

void read_dashes(CPDFXRefTable& xref, const CPDFObj* entry, std::vector<double>& dashes)
{
    constexpr int32_t MOST = 16;
    const CPDFEntryView list(&xref, entry);
    const CPDFArray* values = list->array();
    if (!values || values->count == 0)
        return;
    dashes.clear();
    for (int i = 0; i < std::min(values->count, MOST); ++i)
        dashes.push_back(number_of(xref, values->at(i)));
}

BORDER_STYLE style_of(const CPDFObj& name)
{
    constexpr std::pair<const char*, BORDER_STYLE> STYLES[] = {{"D", BORDER_STYLE::DASHED},
                                                               {"B", BORDER_STYLE::BEVELED},
                                                               {"I", BORDER_STYLE::INSET},
                                                               {"U", BORDER_STYLE::UNDERLINE}};
    for (const auto& [key, style] : STYLES) {
        if (name.is_name(key))
            return style;
    }
    return BORDER_STYLE::SOLID;
}

// "BS", or else "Border" (ISO 32000-2, 12.5.4).
WIDGET_BORDER read_border(CPDFXRefTable& xref, const CPDFDictionary& widget)
{
    WIDGET_BORDER border;
    const CPDFEntryView styled(&xref, widget.get_item("BS"));
    if (const CPDFDictionary* dict = styled->dictionary()) {
        const CPDFEntryView style(&xref, dict->get_item("S"));
        border.style = style_of(*style);
        if (const CPDFObj* width = dict->get_item("W"))
            border.width = number_of(xref, width);
        read_dashes(xref, dict->get_item("D"), border.dashes);
        return border;
    }
    const CPDFEntryView plain(&xref, widget.get_item("Border"));
    const CPDFArray* values = plain->array();
    if (values && values->count >= 3)
        border.width = number_of(xref, values->at(2));
    if (values && values->count >= 4) {
        border.style = BORDER_STYLE::DASHED;
        read_dashes(xref, values->at(3), border.dashes);
    }
    return border;
}

std::u32string read_caption(CPDFXRefTable& xref, const CPDFObj* entry)
{
    constexpr int MOST = 255;
    const CPDFEntryView caption(&xref, entry);
    wchar_t text[MOST + 1] = {};
    if (caption->type == PDF_OBJ_STRING)
        cvt_text_to_ucs(&caption->str, text, MOST);
    return {text, text + ucs_len(text)};
}

// The resources of the appearance that a widget has so far.
void read_shown_resources(CPDFXRefTable& xref, const CPDFDictionary& widget, CPDFObj& out)
{
    const CPDFEntryView appearances(&xref, widget.get_item("AP"));
    const CPDFEntryView normal(&xref, appearances->dictionary() ? appearances->dict->get_item("N") : nullptr);
    if (normal->type == PDF_OBJ_STREAM)
        resolve_obj(&xref, normal->stream->dict.get_item("Resources"), out);
}

}  // namespace

CPDFWidgetReader::CPDFWidgetReader(CPDFXRefTable& xref, CPDFFormFonts& fonts, const CPDFDictionary* form)
    : m_xref(xref), m_fonts(fonts)
{
    if (!form)
        return;
    resolve_obj(&xref, form->get_item("DR"), m_default_resources);
    update(m_form, *form);
}

void CPDFWidgetReader::update(HANDED_DOWN& values, const CPDFDictionary& dict)
{
    const CPDFEntryView appearance(&m_xref, dict.get_item("DA"));
    if (appearance->type == PDF_OBJ_STRING)
        values.appearance.copy_from(&*appearance);
    if (const CPDFObj* quadding = dict.get_item("Q"))
        values.quadding = resolve_integer(&m_xref, quadding);
    if (const CPDFObj* top = dict.get_item("TI"))
        values.top_row = resolve_integer(&m_xref, top);
}

const CPDFWidgetReader::HANDED_DOWN& CPDFWidgetReader::above(const CPDFField* field)
{
    if (!field)
        return m_form;
    const auto known = m_handed_down.find(field->m_ref.num);
    if (known != m_handed_down.end())
        return known->second;
    const HANDED_DOWN& higher = above(field->m_parent);
    HANDED_DOWN values;
    values.appearance.copy_from(&higher.appearance);
    values.quadding = higher.quadding;
    values.top_row = higher.top_row;
    CPDFObj own;
    m_xref.get_entity(own, field->m_ref, &FIELD_KEYS);
    if (own.dictionary())
        update(values, *own.dict);
    HANDED_DOWN& kept = m_handed_down[field->m_ref.num];
    kept.appearance.take(values.appearance);
    kept.quadding = values.quadding;
    kept.top_row = values.top_row;
    return kept;
}

bool CPDFWidgetReader::read(const CPDFField& field, const PDF_REF& ref, WIDGET_DESCRIPTION& out)
{
    m_xref.get_entity(out.dictionary, ref, &WIDGET_KEYS);
    const CPDFDictionary* widget = out.dictionary.dictionary();
    const CPDFEntryView corners(&m_xref, widget ? widget->get_item("Rect") : nullptr);
    const CPDFArray* rect = corners->array();
    if (!rect || rect->count != 4)
        return false;
    WIDGET_LOOK& look = out.look;
    look.kind = kind_of(field);
    look.width = std::fabs(number_of(m_xref, rect->at(2)) - number_of(m_xref, rect->at(0)));
    look.height = std::fabs(number_of(m_xref, rect->at(3)) - number_of(m_xref, rect->at(1)));
    look.cells = look.kind == WIDGET_KIND::COMB ? max_length(field) : 0;
    read_frame(*widget, look);
    HANDED_DOWN values;
    const HANDED_DOWN& higher = above(ref.num == field.m_ref.num ? field.m_parent : &field);
    values.appearance.copy_from(&higher.appearance);
    values.quadding = higher.quadding;
    values.top_row = higher.top_row;
    update(values, *widget);
    out.top_row = values.top_row;
    read_text(*widget, values, look);
    return true;
}

void CPDFWidgetReader::read_frame(const CPDFDictionary& widget, WIDGET_LOOK& look)
{
    look.border = read_border(m_xref, widget);
    const CPDFEntryView entry(&m_xref, widget.get_item("MK"));
    const CPDFDictionary* marks = entry->dictionary();
    if (!marks)
        return;
    look.rotation = resolve_integer(&m_xref, marks->get_item("R"));
    if (look.kind == WIDGET_KIND::CHECK_BOX || look.kind == WIDGET_KIND::RADIO_BUTTON ||
        look.kind == WIDGET_KIND::PUSH_BUTTON)
        look.text = read_caption(m_xref, marks->get_item("CA"));
    look.border_color = read_color(m_xref, marks->get_item("BC"));
    look.background = read_color(m_xref, marks->get_item("BG"));
}

void CPDFWidgetReader::read_text(const CPDFDictionary& widget, const HANDED_DOWN& values, WIDGET_LOOK& look)
{
    if (values.appearance.type == PDF_OBJ_STRING && values.appearance.str.buf)
        look.style = read_default_appearance(
            {reinterpret_cast<const char*>(values.appearance.str.buf), static_cast<size_t>(values.appearance.str.len)});
    if (look.kind == WIDGET_KIND::CHECK_BOX || look.kind == WIDGET_KIND::RADIO_BUTTON)
        look.style.font = "ZaDb";
    look.alignment = static_cast<TEXT_ALIGNMENT>(std::clamp(values.quadding, 0, 2));
    CPDFObj shown;
    const CPDFDictionary* defaults = m_default_resources.dictionary();
    read_shown_resources(m_xref, widget, shown);
    look.fonts = &m_fonts.choice(look.style.font, defaults, shown.dictionary());
}
