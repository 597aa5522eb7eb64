#include "formats/export/submit_data.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/array.h"
#include "core/text.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/xml_fit.h"
#include "forms/acro_form.h"
#include "forms/field_walk.h"

namespace {

void list_refs(const std::vector<CPDFField*>& fields, CPDFArray& refs)
{
    for (const CPDFField* field : fields)
        refs.append_ref(field->m_ref);
}

// The buttons of a radio group whose value is a number are told by their widgets.
void bind_radio_groups(CPDFDocument& document)
{
    const CPDFField* numbered = nullptr;
    for_each_field(document.form(), [&numbered](const CPDFField& field) {
        const char* value = field.m_type == FIELD_BUTTON ? field.m_value.name_text() : nullptr;
        if (value && *value >= '0' && *value <= '9')
            numbered = &field;
    });
    if (numbered)
        document.widgets_of(*numbered);
}

void note_fields(const char* why, const std::vector<std::string>& names, std::vector<std::string>& notes)
{
    constexpr size_t MOST = 10;
    if (names.empty())
        return;
    std::string list;
    for (size_t i = 0; i < std::min(names.size(), MOST); ++i)
        list += (i ? ", " : "") + in_quotes(names[i]);
    if (names.size() > MOST)
        list += " and " + std::to_string(names.size() - MOST) + " more";
    notes.push_back(std::string("the XML is not well-formed, for ") + why + list);
}

void note_misfits(CPDFDocument& document, const std::vector<CPDFField*>& fields, std::vector<std::string>* notes)
{
    if (!notes)
        return;
    CPDFNumberedNames all(document.form());
    std::vector<std::string> names;
    std::vector<std::string> values;
    const auto look_at = [&](const CPDFField& field) {
        if (field.m_type == FIELD_BUTTON && (field.m_flags & FIELD_PUSH_BUTTON))
            return;
        if (!has_xml_name(field))
            names.push_back(all.name_of(field));
        if (!has_xml_value(field))
            values.push_back(all.name_of(field));
    };
    if (fields.empty())
        for_each_field(document.form(), look_at);
    for (const CPDFField* field : fields)
        look_at(*field);
    note_fields("the names of these fields are no XML names: ", names, *notes);
    note_fields("XML can't hold the values of these fields: ", values, *notes);
}

}  // namespace

CPDFStatus write_url_data(CPDFDocument& document, const std::vector<CPDFField*>& fields, std::string& out)
{
    bind_radio_groups(document);
    CPDFArray refs;
    list_refs(fields, refs);
    const VXBlock<char> text(document.form().get_url_para(&refs, 0));
    const VXBlock<char> ascii(text ? cvt_url_to_ascii(text.get()) : nullptr);
    if (ascii)
        out = ascii.get();
    return {};
}

CPDFStatus write_xml_data(CPDFDocument& document, const std::vector<CPDFField*>& fields, std::string& out,
                          std::vector<std::string>* notes)
{
    note_misfits(document, fields, notes);
    CPDFArray refs;
    list_refs(fields, refs);
    const VXBlock<char> text(document.form().get_url_xml(&refs, 0));
    if (text)
        out = text.get();
    return {};
}

CPDFStatus write_xfa_data(CPDFDocument& document, std::string& out, std::vector<std::string>* notes)
{
    if (document.has_xfa())
        return document.read_xfa(out, notes);
    note_misfits(document, {}, notes);
    int len = 0;
    const VXBlock<char> text(document.form().get_xfa_data(len));
    if (text)
        out.assign(text.get(), static_cast<size_t>(len));
    return {};
}
