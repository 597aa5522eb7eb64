#include "formats/export/data_writer.h"
#include "formats/import/csv.h"
#include "forms/field.h"

namespace {

// Collects the row of values while the row of names is written.
class CsvWriter : public CPDFDataWriter {
public:
    using CPDFDataWriter::CPDFDataWriter;

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override
    {
        if (item.value.is_list && item.value.present)
            return refuse_export(item.name, "has several values, which a cell of CSV can't hold");
        const bool is_empty = item.value.present && item.value.text.empty();
        if (is_empty && item.field.m_def_value.type != PDF_OBJ_NULL)
            return refuse_export(item.name, "is empty but has a default, which an empty cell of CSV can't say");
        append_csv_cell(m_out, item.name, m_columns == 0);
        append_csv_cell(m_values, item.value.present ? item.value.text : "", m_columns == 0);
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

std::unique_ptr<CPDFDataWriter> make_csv_writer(std::string& out)
{
    return std::make_unique<CsvWriter>(out);
}
