#include "tools/extract/form_row.h"

#include "document/document.h"
#include "document/xfa/data_value.h"
#include "formats/export/data_writer.h"
#include "formats/export/export_data.h"
#include "formats/export/json_text.h"
#include "formats/import/csv.h"

namespace {

class RowWriter : public CPDFDataWriter {
public:
    RowWriter(const std::string& file, const TABLE_STYLE& style, FORM_ROW& row)
        : CPDFDataWriter(row.text), m_style(style), m_row(row)
    {
        if (!m_style.is_json)
            return;
        m_out = "{\"file\":";
        append_json_text(m_out, file);
        m_out += ",\"values\":{";
        m_begin = m_out.size();
    }

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override { return add(item.name, item.value); }

    CPDFStatus add(const std::string& name, const PDF_VALUE_TEXT& value)
    {
        if (m_style.columns && !m_style.columns->contains(name))
            return {};
        return m_style.is_json ? add_pair(name, value) : add_cell(name, value);
    }

    CPDFStatus finish() override
    {
        m_out += m_style.is_json ? "}}\n" : "";
        return {};
    }

private:
    CPDFStatus add_pair(const std::string& name, const PDF_VALUE_TEXT& value)
    {
        if (!value.present)
            return {};
        m_out += m_out.size() > m_begin ? "," : "";
        append_json_text(m_out, name);
        m_out += ':';
        append_json_value(m_out, value);
        return {};
    }

    CPDFStatus add_cell(const std::string& name, const PDF_VALUE_TEXT& value)
    {
        std::string cell;
        if (!csv_cell_of(value, m_style.list_separator, cell))
            return refuse_export(name, "has several values, which --list-separator can't tell apart");
        const size_t begin = m_out.size() + 1;  // behind the comma
        append_csv_cell(m_out, cell, false);
        m_row.cells.push_back({name, begin, m_out.size() - begin});
        return {};
    }

    const TABLE_STYLE& m_style;  // borrowed from the caller, as the following
    FORM_ROW& m_row;
    size_t m_begin = 0;
};

// A form that has its values in the XFA data alone.
CPDFStatus add_xfa_values(CPDFDocument& document, RowWriter& writer)
{
    std::vector<PDF_XFA_VALUE> values;
    CPDFStatus status = document.xfa_values(values);
    for (size_t i = 0; i < values.size() && status.ok(); ++i)
        status = writer.add(values[i].path, {true, false, values[i].value, {}});
    return status.ok() ? writer.finish() : status;
}

}  // namespace

CPDFStatus read_row(CPDFDocument& document, const std::string& file, const TABLE_STYLE& style, FORM_ROW& row)
{
    RowWriter writer(file, style, row);
    return document.has_only_xfa() ? add_xfa_values(document, writer) : visit_form_data(document, writer);
}
