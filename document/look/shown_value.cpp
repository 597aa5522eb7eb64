#include "document/look/shown_value.h"

#include <algorithm>

#include "appearance/widget_reader.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "document/compute/form_compute.h"
#include "document/lookup/field_options.h"
#include "document/lookup/held_value.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

namespace {

constexpr WIDGET_COLOR RED = {3, {1, 0, 0}};

std::u32string characters_of(const std::string& utf8)
{
    std::u32string out;
    out.reserve(utf8.size());
    const auto* at = reinterpret_cast<const unsigned char*>(utf8.data());
    for (const unsigned char* const end = at + utf8.size(); at < end;)
        out += static_cast<char32_t>(ucs_from_utf8(at, end));
    return out;
}

// Whether the field's own dictionary has "V": what is in memory may be the default.
bool has_value(const CPDFField& field)
{
    if (field.m_value.type == PDF_OBJ_NULL || field.m_def_value.type == PDF_OBJ_NULL)
        return field.m_value.type != PDF_OBJ_NULL || field.m_has_rich_text;
    constexpr CPDFKeySet KEYS{"V"};
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &KEYS);
    return own.dictionary() && own.dict->get_item("V");
}

// The field, or the nearest one above it of its kind, that has a value.
const CPDFField* holder_of(const CPDFField& field)
{
    const CPDFField* holder =
        nearest_field(field, [&field](const CPDFField& at) { return at.m_type != field.m_type || has_value(at); });
    return holder && holder->m_type == field.m_type ? holder : nullptr;
}

std::vector<std::string> texts_of(const CPDFField& field)
{
    const CPDFField* holder = holder_of(field);
    if (!holder)
        return {};
    if (holder->m_value.type == PDF_OBJ_STREAM)
        return {stream_text(*field.m_xref, *holder->m_value.stream)};
    PDF_VALUE_TEXT held = own_value(*holder);
    if (!held.present)
        return {};
    return held.is_list ? std::move(held.items) : std::vector<std::string>{std::move(held.text)};
}

// What a combo box shows of `value`.
std::string text_of_option(const CPDFField& field, CPDFOptionIndex& index, const std::string& value)
{
    const CPDFFieldOptions options(field);
    const int32_t option = index.find(options, value);
    return option >= 0 ? options.shown(option) : value;
}

void set_rows(const CPDFField& field, const std::vector<std::string>& texts, CPDFOptionIndex& index,
              WIDGET_DESCRIPTION& widget)
{
    WIDGET_LOOK& look = widget.look;
    const CPDFFieldOptions options(field);
    const int32_t top = std::clamp(widget.top_row, 0, std::max(options.count() - 1, 0));
    const int32_t last = static_cast<int32_t>(std::min<int64_t>(options.count(), int64_t{top} + LIMIT_DRAWN_ROWS));
    for (int32_t i = top; i < last; ++i)
        look.rows.push_back(characters_of(options.shown(i)));
    for (const std::string& text : texts) {
        const int32_t option = index.find(options, text);
        if (option >= top && option < last)
            look.selected.push_back(static_cast<size_t>(option - top));
    }
}

}  // namespace

void set_shown_value(const CPDFField& field, CPDFOptionIndex& index, CPDFFormCompute* compute,
                     WIDGET_DESCRIPTION& widget)
{
    WIDGET_LOOK& look = widget.look;
    if (look.kind == WIDGET_KIND::PUSH_BUTTON)
        return;
    const std::vector<std::string> texts = texts_of(field);
    if (look.kind == WIDGET_KIND::LIST_BOX) {
        set_rows(field, texts, index, widget);
        return;
    }
    if (texts.empty())
        return;
    const bool combo = look.kind == WIDGET_KIND::COMBO_BOX;
    const std::string text = combo ? text_of_option(field, index, texts.front()) : texts.front();
    const std::optional<PDF_SHOWN_TEXT> formatted = compute ? compute->format(field, text) : std::nullopt;
    look.text = characters_of(formatted ? formatted->text : text);
    if (formatted && formatted->red)
        look.style.color = RED;
}

std::optional<std::string> formatted_text(const CPDFField& field, CPDFOptionIndex& index, CPDFFormCompute& compute)
{
    const PDF_FIELD_KIND_ID kind = field_kind(field).id;
    if ((kind != KIND_TEXT && kind != KIND_COMBO) || !compute.formats(field))
        return {};
    const std::vector<std::string> texts = texts_of(field);
    if (texts.empty())
        return {};
    std::optional<PDF_SHOWN_TEXT> shown =
        compute.format(field, kind == KIND_COMBO ? text_of_option(field, index, texts.front()) : texts.front());
    if (!shown || shown->text == texts.front())
        return {};
    return std::move(shown->text);
}
