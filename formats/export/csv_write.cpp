#include "formats/export/data_writer.h"
#include "formats/import/csv.h"

namespace {

// Collects the row of values while the row of names is written.
class CsvWriter : public CPDFDataWriter {
public:
    using CPDFDataWriter::CPDFDataWriter;

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override
    {
        std::string cell;
        if (!csv_cell_of(item.value, "|", cell))
            return refuse_export(item.name, "has several values, one of them with the | that joins them in CSV");
        append_csv_cell(m_out, item.name, m_columns == 0);
        append_csv_cell(m_values, cell, m_columns == 0);
        ++m_columns;
        return {};
    }

    CPDFStatus finish() override
    {
        if (m_columns == 0)
            return CPDFStatus::failed(PDF_CODE::BAD_DATA, "there is no field that a CSV file could have a column for");
        m_out.append("\r\n").append(m_values).append("\r\n");
        return {};
    }

private:
    size_t m_columns = 0;
    std::string m_values;
};

}  // namespace

bool csv_cell_of(const PDF_VALUE_TEXT& value, const std::string& separator, std::string& cell)
{
    cell = !value.present || value.is_list ? "" : value.text;
    for (size_t i = 0; value.present && value.is_list && i < value.items.size(); ++i) {
        if (separator.empty() || value.items[i].find(separator) != std::string::npos)
            return false;
        cell += (i ? separator : "") + value.items[i];
    }
    return true;
}

std::unique_ptr<CPDFDataWriter> make_csv_writer(std::string& out)
{
    return std::make_unique<CsvWriter>(out);
}
