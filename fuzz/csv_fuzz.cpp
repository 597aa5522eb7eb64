// Any bytes as CSV. Rows that were read are written and read back the same.
#include "formats/import/csv.h"
#include "fuzz/data_check.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows rows_of(std::string_view text)
{
    Rows rows;
    CPDFCsvReader reader(text);
    for (std::vector<std::string> cells; reader.next(cells);)
        rows.push_back(cells);
    return rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    check_data(data, size, read_csv_data);
    const Rows rows = rows_of({reinterpret_cast<const char*>(data), size});
    std::string text;
    for (const auto& row : rows) {
        for (const std::string& cell : row)
            append_csv_cell(text, cell, &cell == row.data());
        text += "\r\n";
    }
    check(rows_of(text) == rows, "what is written reads back as something else");
    return 0;
}
