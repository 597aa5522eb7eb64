#include "formats/export/export_form.h"

#include <algorithm>

#include "core/alloc.h"
#include "formats/export/submit_data.h"

namespace {

using FIELDS = std::vector<CPDFField*>;
using NOTES = std::vector<std::string>;

template <PDF_DATA_FORMAT format>
CPDFStatus write_data(CPDFDocument& document, const FIELDS& fields, PDF_EXPORT_TEXTS texts, std::string& out,
                      NOTES* /*notes*/)
{
    return write_form_data(document, format, fields.empty() ? nullptr : &fields, out, texts);
}

CPDFStatus write_url(CPDFDocument& document, const FIELDS& fields, PDF_EXPORT_TEXTS /*texts*/, std::string& out,
                     NOTES* /*notes*/)
{
    return write_url_data(document, fields, out);
}

CPDFStatus write_xml(CPDFDocument& document, const FIELDS& fields, PDF_EXPORT_TEXTS /*texts*/, std::string& out,
                     NOTES* notes)
{
    return write_xml_data(document, fields, out, notes);
}

CPDFStatus write_xfa(CPDFDocument& document, const FIELDS& /*fields*/, PDF_EXPORT_TEXTS /*texts*/, std::string& out,
                     NOTES* notes)
{
    return write_xfa_data(document, out, notes);
}

constexpr PDF_EXPORT_FORMAT FORMATS[] = {
    {"url", false, false, write_url},
    {"xml", false, false, write_xml},
    {"xfa", false, true, write_xfa},
    {"json", true, false, write_data<PDF_DATA_FORMAT::JSON>},
    {"fdf", true, false, write_data<PDF_DATA_FORMAT::FDF>},
    {"xfdf", true, false, write_data<PDF_DATA_FORMAT::XFDF>},
    {"csv", true, false, write_data<PDF_DATA_FORMAT::CSV>},
};

CPDFStatus check_request(const PDF_EXPORT_FORMAT& format, const FIELDS& fields, PDF_EXPORT_TEXTS texts)
{
    const std::string name = format.name;
    if (format.is_whole && !fields.empty())
        return CPDFStatus::failed(PDF_CODE::BAD_REQUEST,
                                  "the format " + name + " has the data of all fields, not of some");
    if (!format.has_full_names && texts == PDF_EXPORT_TEXTS::SHOWN)
        return CPDFStatus::failed(PDF_CODE::BAD_REQUEST,
                                  "the format " + name + " has values, not what is shown of them");
    return {};
}

}  // namespace

std::span<const PDF_EXPORT_FORMAT> export_formats()
{
    return FORMATS;
}

const PDF_EXPORT_FORMAT* find_export_format(std::string_view name)
{
    const auto* const found = std::find_if(std::begin(FORMATS), std::end(FORMATS),
                                           [name](const PDF_EXPORT_FORMAT& at) { return name == at.name; });
    return found == std::end(FORMATS) ? nullptr : found;
}

CPDFStatus export_form(CPDFDocument& document, const PDF_EXPORT_FORMAT& format, const FIELDS& fields,
                       PDF_EXPORT_TEXTS texts, std::string& out, NOTES* notes)
{
    out.clear();
    CPDFStatus status = check_request(format, fields, texts);
    if (!status.ok())
        return status;
    const VXFailureCheck memory;
    status = format.write(document, fields, texts, out, notes);
    if (memory.failed())
        status = CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to export the values");
    if (!status.ok())
        out.clear();
    return status;
}
