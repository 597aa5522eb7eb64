// The form as JSON, and its values in every format.
#include "capi/form_data.h"
#include "document/summary.h"
#include "document/xfa/data_value.h"
#include "formats/export/export_form.h"
#include "formats/list/list_json.h"
#include "formats/list/summary_json.h"

namespace {

CPDFStatus list_json(fw_document& at, unsigned flags, std::string& text)
{
    CPDFStatus status = at.load_form();
    std::vector<PDF_XFA_VALUE> data;
    if (status.ok() && at.document.has_only_xfa())
        status = at.document.xfa_values(data);
    if (!status.ok())
        return status;
    const PDF_LISTED what = flags & FW_ALL_FIELDS ? PDF_LISTED::ALL : PDF_LISTED::NAMED;
    do {
        text.clear();
        status = write_list_json(at.document, what, data, [&text](std::string_view piece) { text += piece; });
    } while (status.ok() && at.mend());
    return status;
}

}  // namespace

fw_code fw_list_json(fw_document* document, unsigned flags, char** json, size_t* size)
{
    return call_for_text(document, json, size,
                         [flags](fw_document& at, std::string& text) { return result_of(list_json(at, flags, text)); });
}

fw_code fw_summary_json(fw_document* document, char** json, size_t* size)
{
    return call_for_text(document, json, size, [](fw_document& at, std::string& text) {
        PDF_SUMMARY summary;
        CPDFStatus status = at.load_form();
        if (status.ok())
            status = at.document.summarize(summary);
        text = summary_json(summary);
        return result_of(status);
    });
}

fw_code fw_export(fw_document* document, fw_format format, const fw_field* fields, size_t count, unsigned flags,
                  char** data, size_t* size)
{
    return call_for_text(document, data, size, [&](fw_document& at, std::string& text) {
        const char* const name = format_name(format);
        const PDF_EXPORT_FORMAT* const known = name ? find_export_format(name) : nullptr;
        if (!known)
            return bad_argument("form data are not written in this format");
        if (const CPDFStatus status = at.load_form(); !status.ok())
            return result_of(status);
        std::vector<CPDFField*> found;
        if (const fw_code code = fields_of(at, fields, count, found); code != FW_OK)
            return code;
        const PDF_EXPORT_TEXTS texts = flags & FW_SHOWN ? PDF_EXPORT_TEXTS::SHOWN : PDF_EXPORT_TEXTS::VALUES;
        std::vector<std::string> notes;
        const CPDFStatus status = export_form(at.document, *known, found, texts, text, &notes);
        at.note_all(notes);
        return result_of(status);
    });
}
