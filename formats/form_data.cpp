#include "formats/form_data.h"

#include "document/file_bytes.h"
#include "formats/csv.h"
#include "formats/json_data.h"

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

CPDFStatus read_form_data(const std::string& path, CPDFFormData& out)
{
    out.clear();
    const std::string suffix = suffix_of(path);
    if (suffix == ".fdf" || suffix == ".xfdf") {
        return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                  "data in " + suffix + " files is not supported yet: give a .json or .csv file");
    }
    if (suffix != ".json" && suffix != ".csv")
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "the name of a data file ends with .json or .csv");
    CPDFFileBytes file;
    CPDFStatus status = file.open(path);
    if (!status.ok())
        return status;
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    return suffix == ".json" ? read_json_data(text, out) : read_csv_data(text, out);
}
