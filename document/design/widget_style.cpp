#include "document/design/widget_style.h"

#include <algorithm>
#include <list>

#include "appearance/text/default_appearance.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/design/font_home.h"
#include "document/edit/field_tree.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/widget_binder.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

constexpr double LARGEST_SIZE = 1000;  // of text and borders, in points

bool is_mark_button(const PDF_FIELD_KIND& kind)
{
    return kind.id == KIND_CHECK || kind.id == KIND_RADIO;
}

class CPDFStyleCheck {
public:
    CPDFStyleCheck(const CPDFField& field, CPDFRefusals& refusals)
        : m_kind(field_kind(field)), m_field("field " + in_quotes(full_name(field))), m_refusals(refusals)
    {
    }

    void check(const PDF_WIDGET_STYLE& style)
    {
        const bool bare = m_kind.id == KIND_CONTAINER;
        if (bare && style.sets_any())
            refuse_kind("widgets");
        if (!bare && m_kind.id == KIND_SIGNATURE && (style.sets_text() || style.alignment))
            refuse_kind("text");
        else if (!bare && style.alignment && m_kind.type != FIELD_TEXT && m_kind.type != FIELD_CHOICE)
            refuse_kind("alignment");
        if (style.font && is_mark_button(m_kind))
            refuse_kind("font");
        check_number(style.size, "a text size");
        check_number(style.border_width, "a border width");
        if (style.caption)
            check_caption(*style.caption);
    }

private:
    void refuse_kind(const std::string& what)
    {
        m_refusals.add(m_field + " is a " + m_kind.title + ", which has no " + what);
    }

    void check_number(const std::optional<double>& number, const std::string& what)
    {
        if (number && !(*number >= 0 && *number <= LARGEST_SIZE))
            m_refusals.add(m_field + " can't have " + what + " of " + number_syntax(*number) + ": 0 to " +
                           number_syntax(LARGEST_SIZE) + " points are");
    }

    void check_caption(const std::string& caption)
    {
        if (is_mark_button(m_kind) && (caption.size() != 1 || std::string("4l8unH").find(caption) == std::string::npos))
            m_refusals.add(m_field + " is a " + m_kind.title +
                           ", which has a mark instead of a caption: check, circle, cross, diamond, square or star");
        else if (!is_mark_button(m_kind) && m_kind.id != KIND_PUSH && m_kind.id != KIND_CONTAINER)
            refuse_kind("caption");
    }

    const PDF_FIELD_KIND& m_kind;  // borrowed from the table
    std::string m_field;
    CPDFRefusals& m_refusals;  // borrowed from the caller
};

// New entries of one dictionary.
class CPDFNewEntries {
public:
    // Null where the entry goes.
    CPDFObj* add(const char* key, bool goes = false)
    {
        CPDFObj& value = m_values.emplace_back();
        m_changes.push_back({key, goes ? nullptr : &value});
        return &value;
    }

    PDF_CHANGE_RESULT store(CPDFXRefTable& xref, const PDF_REF& ref) const
    {
        return m_changes.empty() ? PDF_CHANGE_RESULT::STORED : xref.change_entries(ref, m_changes);
    }

private:
    std::list<CPDFObj> m_values;
    std::vector<PDF_ENTRY_CHANGE> m_changes;
};

std::string color_syntax(const PDF_FIELD_COLOR& color)
{
    std::string out = "[";
    for (const double value : color)
        out += number_syntax(value) + " ";
    return out + "]";
}

class CPDFStyleWriter {
public:
    CPDFStyleWriter(EDIT_TARGET& target, const CPDFField& field, const PDF_STYLE_TO_APPLY& apply,
                    CPDFInheritedEntries& inherited)
        : m_target(target),
          m_field(field),
          m_inherited(inherited),
          m_style(apply.style),
          m_font(apply.font),
          m_form_appearance(apply.appearance)
    {
    }

    PDF_CHANGE_RESULT write_field()
    {
        CPDFNewEntries entries;
        CPDFObj appearance;
        if (m_style.sets_text()) {
            if (!m_inherited.find(&m_field, "DA", appearance))
                appearance.copy_from(&m_form_appearance);
            write_appearance(appearance, entries);
        }
        if (m_style.alignment)
            entries.add("Q")->set_int(static_cast<int32_t>(*m_style.alignment));
        return entries.store(m_target.xref, m_field.m_ref);
    }

    PDF_CHANGE_RESULT write_widget(const PDF_REF& ref)
    {
        constexpr CPDFKeySet KEYS{"BS", "Border", "DA", "MK", "Q"};
        CPDFObj own;
        m_target.xref.get_entity(own, ref, &KEYS);
        if (!own.dictionary())
            return PDF_CHANGE_RESULT::NO_DICTIONARY;
        CPDFNewEntries entries;
        const bool apart = ref.num != m_field.m_ref.num;
        CPDFObj appearance;
        resolve_obj(&m_target.xref, own.dict->get_item("DA"), appearance);
        if (apart && m_style.sets_text() && appearance.type == PDF_OBJ_STRING)
            write_appearance(appearance, entries);
        if (apart && m_style.alignment && own.dict->get_item("Q"))
            entries.add("Q", true);
        if (m_style.border_color || m_style.background || m_style.caption)
            write_marks(own.dict->get_item("MK"), entries);
        if (m_style.border_width || m_style.border_style)
            write_border(*own.dict, entries);
        return entries.store(m_target.xref, ref);
    }

private:
    void write_appearance(CPDFObj& before, CPDFNewEntries& entries)
    {
        CPDFObj text;
        resolve_obj(&m_target.xref, &before, text);
        TEXT_STYLE style;
        if (text.type == PDF_OBJ_STRING && text.str.buf)
            style = read_default_appearance(
                {reinterpret_cast<const char*>(text.str.buf), static_cast<size_t>(text.str.len)});
        if (!m_font.empty())
            style.font = m_font;
        if (style.font.empty())
            (void)find_font(m_target, "Helvetica", style.font);  // memory is looked at by the caller
        style.size = m_style.size.value_or(style.size);
        if (m_style.color) {
            style.color.count = static_cast<int>(m_style.color->size());
            std::copy(m_style.color->begin(), m_style.color->end(), style.color.values);
        }
        const std::string written = write_default_appearance(style);
        entries.add("DA")->set_string(written.data(), static_cast<int32_t>(written.size()));
    }

    void write_marks(const CPDFObj* before, CPDFNewEntries& entries)
    {
        CPDFObj* marks = entries.add("MK");
        resolve_obj(&m_target.xref, before, *marks);
        CPDFDictionary* dict = marks->dictionary() ? marks->dict : marks->set_dict();
        if (!dict)
            return;
        for (const auto& [key, color] :
             {std::pair("BC", &m_style.border_color), std::pair("BG", &m_style.background)}) {
            CPDFObj value;
            if (*color && !(*color)->empty())
                parse_syntax(color_syntax(**color), value);
            if (*color)
                dict->set_item(key, &value);
        }
        CPDFObj caption;
        if (m_style.caption && !m_style.caption->empty()) {
            caption.type = PDF_OBJ_STRING;
            caption.str = pdf_string_of(*m_style.caption);
        }
        if (m_style.caption)
            dict->set_item("CA", &caption);
    }

    // "BS" counts before "Border", whose width it takes over.
    void write_border(const CPDFDictionary& widget, CPDFNewEntries& entries)
    {
        constexpr const char* STYLES[] = {"S", "D", "B", "I", "U"};
        CPDFObj* border = entries.add("BS");
        resolve_obj(&m_target.xref, widget.get_item("BS"), *border);
        if (!border->dictionary()) {
            border->set_dict();
            const CPDFEntryView plain(&m_target.xref, widget.get_item("Border"));
            if (border->dictionary() && plain->array() && plain->arr->count >= 3)
                border->dict->set_item("W", plain->arr->at(2));
        }
        if (!border->dictionary())
            return;
        CPDFObj width;
        parse_syntax(number_syntax(m_style.border_width.value_or(1)), width);
        if (m_style.border_width || !border->dict->get_item("W"))
            border->dict->set_item("W", &width);
        if (m_style.border_style)
            border->dict->set_item_name("S", STYLES[static_cast<size_t>(*m_style.border_style)]);
    }

    EDIT_TARGET& m_target;  // borrowed, as the following
    const CPDFField& m_field;
    CPDFInheritedEntries& m_inherited;
    const PDF_WIDGET_STYLE& m_style;
    const std::string& m_font;
    const CPDFObj& m_form_appearance;
};

}  // namespace

void check_style(const CPDFField& field, const PDF_WIDGET_STYLE& style, CPDFRefusals& refusals)
{
    CPDFStyleCheck(field, refusals).check(style);
}

CPDFStatus prepare_style(EDIT_TARGET& target, PDF_STYLE_TO_APPLY& style)
{
    constexpr CPDFKeySet KEYS{"DA"};
    CPDFObj form;
    target.xref.get_entity(form, target.form.m_ref, &KEYS);
    resolve_obj(&target.xref, form.dictionary() ? form.dict->get_item("DA") : nullptr, style.appearance);
    return style.style.font ? find_font(target, *style.style.font, style.font) : CPDFStatus();
}

PDF_CHANGE_RESULT apply_style(EDIT_TARGET& target, const CPDFField& field, const PDF_STYLE_TO_APPLY& style,
                              CPDFInheritedEntries& inherited)
{
    CPDFStyleWriter writer(target, field, style, inherited);
    PDF_CHANGE_RESULT result = writer.write_field();
    for (const CPDFAnnotWidget* widget : target.widgets.widgets_of(field))
        result = both(result, writer.write_widget(widget->m_ref));
    return result;
}
