// Values put into fields, one by one or as form data, and what brings them back.
#include "capi/form_data.h"
#include "document/lookup/field_text.h"
#include "document/notes.h"
#include "formats/apply_data.h"
#include "formats/fill_report.h"
#include "forms/field.h"

const char* format_name(fw_format format)
{
    constexpr const char* NAMES[] = {"json", "csv", "fdf", "xfdf", "url", "xml", "xfa"};
    return format >= FW_JSON && format <= FW_XFA ? NAMES[format] : nullptr;
}

CPDFStatus fill_document(fw_document& at, const CPDFFormData& data, unsigned flags, std::string* report)
{
    if (CPDFStatus status = check_may_fill(at.document, flags); !status.ok())
        return status;
    std::vector<PDF_DATA_ITEM> items;
    do
        items = plan_data(at.document, data, fill_of(flags));
    while (at.mend());
    for (const PDF_DATA_ITEM& item : items) {
        if (!item.entry.field && item.plan.field)
            at.note_same_names(item.entry.name);
    }
    CPDFStatus status = refusals_of(items);
    std::vector<CPDFField*> calculated;
    if (status.ok() && !(flags & FW_CHECK_ONLY)) {
        at.values_changed();
        status = apply_data(at.document, items, &calculated);
        at.note(at.writes_xfa ? std::string() : xfa_note(at.document, false));
    }
    if (report)
        append_report(*report, at.document, items, calculated);
    return status;
}

CPDFStatus fill_from_file(fw_document& at, CPDFFormData data, unsigned flags, std::string* report)
{
    // Few values are reached faster one by one than through the whole form.
    constexpr size_t MOST_SINGLE_FIELDS = 16;
    PDF_DATA_RULES rules;
    if (flags & FW_IGNORE_UNKNOWN)
        rules.unknown = PDF_UNKNOWN_NAMES::IGNORE;
    CPDFStatus status = data.size() > MOST_SINGLE_FIELDS ? at.load_form() : CPDFStatus();
    if (status.ok())
        status = shape_data(at.document, rules, data);
    return status.ok() ? fill_document(at, data, flags, report) : status;
}

fw_code hand_out_report(fw_code code, const std::string& lines, char** report, size_t* size)
{
    if (!report || (code != FW_OK && lines.empty()))
        return code;
    return call([&] {
        std::string array = "[";
        for (size_t at = 0; at < lines.size();) {
            const size_t end = std::min(lines.find('\n', at), lines.size());
            array += at == 0 ? "\n" : ",\n";
            array.append(lines, at, end - at);
            at = end + 1;
        }
        const fw_code handed = hand_out_text(array, "\n]\n", report, size);
        return handed == FW_OK ? code : handed;
    });
}

namespace {

// What several values, or none, are for a field.
CPDFValue value_of(const CPDFField& field, std::vector<std::string> texts)
{
    if (texts.size() == 1)
        return std::move(texts.front());
    if (!texts.empty() || field.m_type == FIELD_CHOICE)
        return texts;
    return field.m_type == FIELD_BUTTON ? CPDFValue(false) : CPDFValue(std::string());
}

fw_code set_texts(fw_document* document, fw_field field, std::vector<std::string> texts, unsigned flags)
{
    return call_with_field(document, field, [&](fw_document& at, CPDFField& found) {
        PDF_FORM_ENTRY entry;
        entry.name = full_name(found);
        entry.value = value_of(found, std::move(texts));
        entry.is_typed = true;
        entry.field = &found;
        return result_of(fill_document(at, {entry}, flags, nullptr));
    });
}

}  // namespace

fw_code fw_set_value(fw_document* document, fw_field field, const char* value, unsigned flags)
{
    if (!value)
        return bad_argument("the value is NULL");
    return call([&] { return set_texts(document, field, {value}, flags); });
}

fw_code fw_set_values(fw_document* document, fw_field field, const char* const* values, size_t count, unsigned flags)
{
    return call([&] {
        std::vector<std::string> texts;
        for (size_t i = 0; i < count; ++i) {
            if (!values || !values[i])
                return bad_argument("a value is NULL");
            texts.emplace_back(values[i]);
        }
        return set_texts(document, field, std::move(texts), flags);
    });
}

fw_code fw_fill(fw_document* document, fw_format format, const void* data, size_t size, unsigned flags, char** report,
                size_t* report_size)
{
    hand_out<char*>(report, nullptr);
    hand_out(report_size, size_t{0});
    std::string lines;
    const fw_code code = call_with(document, [&](fw_document& at) {
        const char* const name = format <= FW_XFDF ? format_name(format) : nullptr;
        if (!name || (!data && size > 0))
            return bad_argument(name ? "the data are NULL" : "form data are not read in this format");
        CPDFFormData values;
        CPDFStatus status = read_form_bytes({static_cast<const char*>(data), size}, name, values, {});
        if (status.ok())
            status = fill_from_file(at, std::move(values), flags, report ? &lines : nullptr);
        return result_of(status);
    });
    return hand_out_report(code, lines, report, report_size);
}

fw_code fw_reset(fw_document* document, const fw_field* fields, size_t count, unsigned flags)
{
    return call_with(document, [&](fw_document& at) {
        std::vector<CPDFField*> found;
        if (const fw_code code = fields_of(at, fields, count, found); code != FW_OK)
            return code;
        CPDFStatus status = refuse_check_only(flags);
        if (status.ok())
            status = check_may_fill(at.document, flags);
        if (!status.ok())
            return result_of(status);
        at.values_changed();
        status = count == 0 ? at.document.reset(fill_of(flags)) : at.document.reset(found, fill_of(flags));
        at.note(at.writes_xfa ? std::string() : xfa_note(at.document, false));
        return result_of(status);
    });
}

fw_code fw_calculate(fw_document* document)
{
    return call_with(document, [](fw_document& at) {
        if (const CPDFStatus status = check_may_fill(at.document, FW_PLAIN); !status.ok())
            return result_of(status);
        at.values_changed();
        return result_of(at.document.calculate());
    });
}

fw_code fw_revert(fw_document* document)
{
    return call_with(document, [](fw_document& at) {
        if (at.document.has_edits())
            at.all_changed();
        at.document.revert();
        at.values_changed();
        at.forget_notes();
        return FW_OK;
    });
}
