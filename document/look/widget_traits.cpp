#include "document/look/widget_traits.h"

#include <algorithm>
#include <string_view>

#include "appearance/text/default_appearance.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/page_box.h"
#include "forms/field.h"

namespace {

constexpr int HIDDEN = 1 << 1;
constexpr int PRINT = 1 << 2;
constexpr int NO_VIEW = 1 << 5;

SCRIPT_DISPLAY display_of(int flags)
{
    if (flags & HIDDEN)
        return SCRIPT_DISPLAY::HIDDEN;
    if (flags & NO_VIEW)
        return SCRIPT_DISPLAY::NO_VIEW;
    return flags & PRINT ? SCRIPT_DISPLAY::VISIBLE : SCRIPT_DISPLAY::NO_PRINT;
}

std::vector<double> read_color(CPDFXRefTable& xref, const CPDFDictionary* marks, const char* key)
{
    std::vector<double> color;
    const CPDFEntryView list(&xref, marks ? marks->get_item(key) : nullptr);
    const CPDFArray* values = list->array();
    if (!values || (values->count != 1 && values->count != 3 && values->count != 4))
        return color;
    for (int32_t i = 0; i < values->count; ++i) {
        const CPDFEntryView value(&xref, values->at(i));
        color.push_back(value->type == PDF_OBJ_REAL ? static_cast<double>(value->fval) / static_cast<double>(VXFIX_ONE)
                                                    : integer_value(*value));
    }
    return color;
}

// Without a default appearance, and without a colour in it, text is black. False where `dict` has none.
bool read_text_color(CPDFXRefTable& xref, const CPDFDictionary* dict, std::vector<double>& color)
{
    const CPDFEntryView appearance(&xref, dict ? dict->get_item("DA") : nullptr);
    if (appearance->type != PDF_OBJ_STRING)
        return false;
    const PDF_String& bytes = appearance->str;
    const TEXT_STYLE style = read_default_appearance(
        {reinterpret_cast<const char*>(bytes.buf), static_cast<size_t>(std::max(bytes.len, 0))});
    if (style.color.count > 0)
        color.assign(style.color.values, style.color.values + style.color.count);
    return true;
}

}  // namespace

void read_widget_traits(const CPDFField& field, const PDF_REF& ref, const CPDFDictionary* form, SCRIPT_FIELD& out)
{
    constexpr CPDFKeySet KEYS{"DA", "F", "MK", "Rect"};
    constexpr CPDFKeySet APPEARANCE{"DA"};
    CPDFXRefTable& xref = *field.m_xref;
    CPDFObj widget;
    xref.get_entity(widget, ref, &KEYS);
    const CPDFDictionary* dict = widget.dictionary();
    if (!dict)
        return;
    if (PDF_BOX box; read_box(xref, dict->get_item("Rect"), box))
        out.rect = {box.x0, box.y1, box.x1, box.y0};
    out.display = display_of(resolve_integer(&xref, dict->get_item("F")));
    const CPDFEntryView marks(&xref, dict->get_item("MK"));
    out.colors[SCRIPT_FILL_COLOR] = read_color(xref, marks->dictionary(), "BG");
    out.colors[SCRIPT_STROKE_COLOR] = read_color(xref, marks->dictionary(), "BC");
    std::vector<double>& color = out.colors[SCRIPT_TEXT_COLOR] = {0};
    bool found = read_text_color(xref, dict, color);
    for (const CPDFField* at = &field; at && !found; at = at->m_parent) {
        CPDFObj own;
        if (at->m_ref.num != ref.num)
            xref.get_entity(own, at->m_ref, &APPEARANCE);
        found = read_text_color(xref, own.dictionary(), color);
    }
    if (!found)
        read_text_color(xref, form, color);
}

PDF_CHANGE_RESULT set_widget_display(CPDFXRefTable& xref, const PDF_REF& ref, SCRIPT_DISPLAY display)
{
    constexpr CPDFKeySet KEYS{"F"};
    CPDFObj widget;
    xref.get_entity(widget, ref, &KEYS);
    if (!widget.dictionary())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    const int before = resolve_integer(&xref, widget.dict->get_item("F"));
    if (display_of(before) == display)
        return PDF_CHANGE_RESULT::STORED;
    int flags = before & ~(HIDDEN | NO_VIEW);
    if (display == SCRIPT_DISPLAY::HIDDEN)
        flags |= HIDDEN;
    else
        flags = display == SCRIPT_DISPLAY::NO_PRINT ? flags & ~PRINT : flags | PRINT;
    flags |= display == SCRIPT_DISPLAY::NO_VIEW ? NO_VIEW : 0;
    CPDFObj value;
    value.set_int(flags);
    const PDF_ENTRY_CHANGE changes[] = {{"F", &value}};
    return xref.change_entries(ref, changes);
}
