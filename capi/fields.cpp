// Finding fields, and what there is to know of one.
#include <algorithm>

#include "capi/document.h"
#include "document/lookup/field_notes.h"
#include "document/lookup/field_options.h"
#include "document/lookup/field_text.h"
#include "document/lookup/held_value.h"
#include "document/lookup/page_map.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

namespace {

std::vector<std::string> texts_of(const PDF_VALUE_TEXT& value)
{
    if (!value.present)
        return {};
    return value.is_list ? value.items : std::vector{value.text};
}

std::optional<std::string> first_of(std::vector<std::string> texts)
{
    return texts.empty() ? std::nullopt : std::optional(std::move(texts.front()));
}

std::optional<std::string> text_of(CPDFDocument& document, const CPDFField& field, fw_text which)
{
    switch (which) {
    case FW_NAME:
        return full_name(field);
    case FW_VALUE:
        return first_of(texts_of(held_value(field)));
    case FW_DEFAULT:
        return first_of(texts_of(value_text(document.xref(), field.m_def_value)));
    case FW_LABEL:
        return document.field_notes().label_of(field.m_ref);
    case FW_MAPPING_NAME:
        return document.field_notes().mapping_name_of(field.m_ref);
    case FW_SHOWN_TEXT:
        return document.shown_text(field);
    case FW_FORMAT:
        if (std::string words = document.format_words(field); !words.empty())
            return words;
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<std::string> list_of(CPDFDocument& document, const CPDFField& field, fw_list which)
{
    std::vector<std::string> out;
    if (which == FW_VALUES)
        return texts_of(held_value(field));
    if (which == FW_OPTION_VALUES || which == FW_OPTION_TEXTS) {
        const CPDFFieldOptions options(field);
        for (int32_t i = 0; i < options.count(); ++i)
            out.push_back(which == FW_OPTION_VALUES ? options.value(i) : options.shown(i));
    } else if (field.m_type == FIELD_BUTTON && field_kind(field).takes_value) {
        for (const PDF_BUTTON_CHOICE& choice : document.choices_of(field))
            out.push_back(which == FW_STATES ? utf8_of_name(choice.state) : choice.export_value);
    }
    return out;
}

int32_t page_of(CPDFDocument& document, const PDF_REF& widget)
{
    return document.field_notes().page_of(widget, document.pages());
}

int32_t first_page(CPDFDocument& document, const CPDFField& field)
{
    for (const CPDFAnnotWidget* widget : document.widgets_of(field)) {
        if (const int32_t page = page_of(document, widget->m_ref); page > 0)
            return page;
    }
    return 0;
}

int64_t number_of(CPDFDocument& document, const CPDFField& field, fw_number which)
{
    switch (which) {
    case FW_KIND:
        return field_kind(field).id;
    case FW_FIELD_FLAGS:
        return effective_flags(field);
    case FW_MAX_LENGTH:
        return field.m_type == FIELD_TEXT ? std::max(0, max_length(field)) : 0;
    case FW_OBJECT:
        return field.m_ref.num;
    case FW_PAGE:
        return first_page(document, field);
    case FW_SIGNED:
        return field.m_type == FIELD_SIGNATURE && field.m_sign ? 1 : 0;
    }
    return 0;
}

// The kept texts of a field that are those of now.
FIELD_TEXTS_KEPT& kept_texts(fw_document& at, fw_field field)
{
    FIELD_TEXTS_KEPT& kept = at.handles.texts_of(field);
    if (kept.change != at.change)
        kept = {};
    kept.change = at.change;
    return kept;
}

// Runs `operation(const std::vector<std::string>&)` on a list of the field.
template <typename Operation>
fw_code call_with_list(fw_document* document, fw_field field, fw_list which, const Operation& operation) noexcept
{
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        if (which < FW_VALUES || which > FW_STATE_VALUES)
            return bad_argument("there is no such list");
        std::optional<std::vector<std::string>>& list = kept_texts(at, field).lists[which];
        if (!list)
            list = list_of(at.document, found, which);
        return operation(*list);
    });
}

bool has_object(CPDFDocument& document, const CPDFField& field, uint32_t object)
{
    if (field.m_ref.num == object)
        return true;
    const auto widgets = document.widgets_of(field);
    return std::any_of(widgets.begin(), widgets.end(), [object](const auto* at) { return at->m_ref.num == object; });
}

// The field that a word means, of a file that is sound or repaired.
CPDFField* find(fw_document& at, const char* name, unsigned flags, CPDFStatus& why)
{
    CPDFField* found = nullptr;
    do {
        why = {};
        if (flags & FW_GUESS)
            found = at.document.find_field(name, why);
        else
            found = at.document.field(name);
    } while (at.mend());
    if (!found && why.ok())
        why = at.document.no_field(name);
    return found;
}

}  // namespace

fw_code fw_field_count(fw_document* document, size_t* count)
{
    hand_out(count, size_t{0});
    return call_with(document, [&](fw_document& at) {
        const CPDFStatus status = at.load_list();
        hand_out(count, at.list.size());
        return result_of(status);
    });
}

fw_code fw_field_at(fw_document* document, size_t index, fw_field* field)
{
    hand_out(field, fw_field{0});
    return call_with(document, [&](fw_document& at) {
        if (const CPDFStatus status = at.load_list(); !status.ok())
            return result_of(status);
        if (index >= at.list.size())
            return bad_argument("the form has " + std::to_string(at.list.size()) + " fields");
        hand_out(field, at.handles.handle_of(at.document, at.list[index]));
        return FW_OK;
    });
}

fw_code fw_find_field(fw_document* document, const char* name, unsigned flags, fw_field* field)
{
    hand_out(field, fw_field{0});
    return call_with(document, [&](fw_document& at) {
        if (!name)
            return bad_argument("the name is NULL");
        CPDFStatus why;
        CPDFField* const found = find(at, name, flags, why);
        hand_out(field, at.handles.handle_of(at.document, found));
        return found ? FW_OK : result_of(why);
    });
}

fw_code fw_field_of_object(fw_document* document, uint32_t object, fw_field* field)
{
    hand_out(field, fw_field{0});
    return call_with(document, [&](fw_document& at) {
        if (const CPDFStatus status = at.load_list(); !status.ok())
            return result_of(status);
        const auto found = std::find_if(at.list.begin(), at.list.end(), [&](const CPDFField* listed) {
            return has_object(at.document, *listed, object);
        });
        if (found == at.list.end())
            return fail_with(FW_NO_FIELD, "no field has the object " + std::to_string(object));
        hand_out(field, at.handles.handle_of(at.document, *found));
        return FW_OK;
    });
}

fw_code fw_field_text(fw_document* document, fw_field field, fw_text which, const char** text)
{
    hand_out<const char*>(text, nullptr);
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        if (which < FW_NAME || which > FW_FORMAT)
            return bad_argument("there is no such text");
        auto& kept = kept_texts(at, field).texts[which];
        if (!kept)
            kept = text_of(at.document, found, which);
        hand_out(text, *kept ? (*kept)->c_str() : nullptr);
        return FW_OK;
    });
}

fw_code fw_field_number(fw_document* document, fw_field field, fw_number which, int64_t* number)
{
    hand_out(number, int64_t{0});
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        if (which < FW_KIND || which > FW_SIGNED)
            return bad_argument("there is no such number");
        hand_out(number, number_of(at.document, found, which));
        return FW_OK;
    });
}

fw_code fw_item_count(fw_document* document, fw_field field, fw_list which, size_t* count)
{
    hand_out(count, size_t{0});
    return call_with_list(document, field, which, [count](const std::vector<std::string>& list) {
        hand_out(count, list.size());
        return FW_OK;
    });
}

fw_code fw_item(fw_document* document, fw_field field, fw_list which, size_t index, const char** text)
{
    hand_out<const char*>(text, nullptr);
    return call_with_list(document, field, which, [index, text](const std::vector<std::string>& list) {
        if (index >= list.size())
            return bad_argument("the list has " + std::to_string(list.size()) + " texts");
        hand_out(text, list[index].c_str());
        return FW_OK;
    });
}

fw_code fw_widget_count(fw_document* document, fw_field field, size_t* count)
{
    hand_out(count, size_t{0});
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        hand_out(count, at.document.widgets_of(found).size());
        return FW_OK;
    });
}

fw_code fw_widget_at(fw_document* document, fw_field field, size_t index, fw_widget* widget)
{
    hand_out(widget, fw_widget{});
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        const auto widgets = at.document.widgets_of(found);
        if (index >= widgets.size())
            return bad_argument("the field has " + std::to_string(widgets.size()) + " widgets");
        const PDF_REF& ref = widgets[index]->m_ref;
        const PDF_BOX box = at.document.field_notes().rect_of(ref).value_or(PDF_BOX{});
        hand_out(widget, fw_widget{page_of(at.document, ref), ref.num, box.x0, box.y0, box.x1, box.y1});
        return FW_OK;
    });
}
