#include "formats/import/form_data.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/limits.h"
#include "document/lookup/field_text.h"
#include "formats/import/csv.h"
#include "formats/import/data_text.h"
#include "formats/import/fdf_data.h"
#include "formats/import/json_data.h"
#include "formats/import/xfdf_data.h"

std::string suffix_of(std::string_view path)
{
    const size_t dot = path.rfind('.');
    if (dot == std::string_view::npos || path.find('/', dot) != std::string_view::npos)
        return {};
    std::string suffix(path.substr(dot));
    for (char& c : suffix)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return suffix;
}

CPDFStatus check_no_spreadsheet(const std::string& suffix)
{
    if (suffix == ".xlsx" || suffix == ".xls" || suffix == ".ods")
        return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                  "spreadsheets are not read as they are: save the sheet as CSV UTF-8");
    return {};
}

namespace {

struct DATA_FORMAT {
    std::string_view name;
    CPDFStatus (*read)(std::string_view text, CPDFFormData& out);  // null for CSV, which has styles
};

constexpr DATA_FORMAT FORMATS[] = {
    {"json", read_json_data}, {"csv", nullptr}, {"fdf", read_fdf_data}, {"xfdf", read_xfdf_data}};

const DATA_FORMAT* find_format(std::string_view name)
{
    const auto* const found =
        std::find_if(std::begin(FORMATS), std::end(FORMATS), [name](const DATA_FORMAT& at) { return at.name == name; });
    return found == std::end(FORMATS) ? nullptr : found;
}

CPDFStatus read_text(std::string_view text, const DATA_FORMAT& format, CPDFFormData& out, const PDF_CSV_STYLE& style)
{
    if (text.size() > LIMIT_DATA_FILE)
        return CPDFStatus::failed(PDF_CODE::LIMIT,
                                  "a data file has at most " + std::to_string(LIMIT_DATA_FILE >> 20) + " MiB");
    const VXFailureCheck memory;
    CPDFStatus status = format.read ? format.read(text, out) : read_csv_row(text, style, out);
    return memory.failed() ? CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to read it") : status;
}

}  // namespace

CPDFStatus read_form_data(const std::string& path, CPDFFormData& out)
{
    return read_form_data(path, out, {});
}

CPDFStatus read_form_data(const std::string& path, CPDFFormData& out, const PDF_CSV_STYLE& style)
{
    out.clear();
    const std::string suffix = suffix_of(path);
    const DATA_FORMAT* const format = suffix.empty() ? nullptr : find_format(std::string_view(suffix).substr(1));
    if (!format) {
        CPDFStatus status = check_no_spreadsheet(suffix);
        return !status.ok() ? status
                            : CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                                 "the name of a data file ends with .json, .csv, .fdf or .xfdf");
    }
    CPDFDataText file;
    CPDFStatus status = file.open(path);
    return status.ok() ? read_text(file.text(), *format, out, style) : status;
}

CPDFStatus read_form_bytes(std::string_view bytes, std::string_view format, CPDFFormData& out,
                           const PDF_CSV_STYLE& style)
{
    out.clear();
    const DATA_FORMAT* const found = find_format(format);
    if (!found)
        return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, "there is no data format " + in_quotes(std::string(format)) +
                                                             ": json, csv, fdf or xfdf");
    CPDFDataText text;
    CPDFStatus status = text.take(bytes);
    return status.ok() ? read_text(text.text(), *found, out, style) : status;
}
