#include "formats/import/form_data.h"

#include <utility>

#include "core/alloc.h"
#include "core/limits.h"
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

CPDFStatus read_form_data(const std::string& path, CPDFFormData& out)
{
    return read_form_data(path, out, {});
}

CPDFStatus read_form_data(const std::string& path, CPDFFormData& out, const PDF_CSV_STYLE& style)
{
    out.clear();
    const std::string suffix = suffix_of(path);
    using Read = CPDFStatus (*)(std::string_view, CPDFFormData&);
    constexpr std::pair<std::string_view, Read> READERS[] = {
        {".json", read_json_data}, {".csv", nullptr}, {".fdf", read_fdf_data}, {".xfdf", read_xfdf_data}};
    for (const auto& [name, read] : READERS) {
        if (suffix != name)
            continue;
        CPDFDataText file;
        CPDFStatus status = file.open(path);
        if (!status.ok())
            return status;
        if (file.text().size() > LIMIT_DATA_FILE) {
            return CPDFStatus::failed(PDF_CODE::LIMIT,
                                      "a data file has at most " + std::to_string(LIMIT_DATA_FILE >> 20) + " MiB");
        }
        const VXFailureCheck memory;
        status = read ? read(file.text(), out) : read_csv_row(file.text(), style, out);
        return memory.failed() ? CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to read it")
                               : status;
    }
    const CPDFStatus status = check_no_spreadsheet(suffix);
    return !status.ok()
               ? status
               : CPDFStatus::failed(PDF_CODE::BAD_DATA, "the name of a data file ends with .json, .csv, .fdf or .xfdf");
}
