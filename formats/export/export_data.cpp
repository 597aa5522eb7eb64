#include "formats/export/export_data.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "core/alloc.h"
#include "core/limits.h"
#include "document/document.h"
#include "document/lookup/export_value.h"
#include "document/lookup/field_text.h"
#include "formats/export/data_writer.h"
#include "forms/field_walk.h"

CPDFDataWriter::~CPDFDataWriter() = default;

CPDFStatus refuse_export(const std::string& name, const char* why)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, "field " + in_quotes(name) + " " + why);
}

namespace {

std::unique_ptr<CPDFDataWriter> make_writer(PDF_DATA_FORMAT format, std::string& out)
{
    switch (format) {
    case PDF_DATA_FORMAT::JSON:
        return make_json_writer(out);
    case PDF_DATA_FORMAT::FDF:
        return make_fdf_writer(out);
    case PDF_DATA_FORMAT::XFDF:
        return make_xfdf_writer(out);
    default:
        return make_csv_writer(out);
    }
}

// Fields by their full names, which are compared anew where their hashes are the same: kept, long ones would take many
// times the size of the file.
struct NAME_HASH {
    size_t operator()(const CPDFField* field) const { return std::hash<std::string>()(full_name(*field)); }
};
struct SAME_NAME {
    bool operator()(const CPDFField* a, const CPDFField* b) const { return full_name(*a) == full_name(*b); }
};

class Exporter {
public:
    Exporter(CPDFDocument& document, PDF_DATA_FORMAT format, PDF_EXPORT_TEXTS texts, CPDFDataWriter& writer)
        : m_document(document),
          m_texts(texts),
          m_by_export(format == PDF_DATA_FORMAT::FDF || format == PDF_DATA_FORMAT::XFDF),
          m_values(document.xref()),
          m_writer(writer)
    {
    }

    CPDFStatus run(const std::vector<CPDFField*>* fields)
    {
        const VXFailureCheck memory;
        const auto visit = [this](CPDFField& field) { add(field); };
        if (!fields)
            for_each_field(m_document.form(), visit);
        for (size_t i = 0; fields && i < fields->size(); ++i)
            for_each_field(*(*fields)[i], visit);
        if (m_status.ok())
            m_status = m_writer.finish();
        if (m_status.ok() && memory.failed())
            m_status = CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to export the values");
        return std::move(m_status);
    }

private:
    void add(const CPDFField& field)
    {
        if (!m_status.ok() || !CPDFExportValues::is_exported(field))
            return;
        if (!m_seen.insert(&field).second)
            return;
        const std::string name = full_name(field);
        PDF_VALUE_TEXT value = m_values.value_of(field);
        if (m_texts == PDF_EXPORT_TEXTS::SHOWN && value.present)
            value.text = m_document.shown_text(field).value_or(value.text);
        const bool is_export = m_by_export && export_of(field, value.text);
        m_status = m_writer.add({name, field, value, is_export});
        if (m_status.ok() && (m_values.over_limit() || m_writer.size() > LIMIT_EXPORT || m_document.read_too_much()))
            m_status = CPDFStatus::failed(PDF_CODE::LIMIT, "the values of the form are larger than what is supported");
    }

    // Other programs know a button with options by its export value. Makes `state` that of the button that is on, where it
    // has one and no other has the same.
    bool export_of(const CPDFField& field, std::string& state)
    {
        if (field.m_type != FIELD_BUTTON || field.m_opt_cnt == 0 || field.m_value.type != PDF_OBJ_NAME)
            return false;
        const std::vector<PDF_BUTTON_CHOICE> choices = m_document.choices_of(field);
        const auto on = std::find_if(choices.begin(), choices.end(), [&field](const PDF_BUTTON_CHOICE& choice) {
            return field.m_value.is_name(choice.state.c_str());
        });
        const auto same = [&on](const PDF_BUTTON_CHOICE& choice) { return choice.export_value == on->export_value; };
        if (on == choices.end() || std::count_if(choices.begin(), choices.end(), same) != 1)
            return false;
        state = on->export_value;
        return true;
    }

    CPDFDocument& m_document;  // borrowed from the caller
    PDF_EXPORT_TEXTS m_texts;
    bool m_by_export;  // whether the format is one that other programs read
    CPDFExportValues m_values;
    CPDFDataWriter& m_writer;                                           // borrowed from the caller
    std::unordered_set<const CPDFField*, NAME_HASH, SAME_NAME> m_seen;  // the first of each name
    CPDFStatus m_status = {};
};

}  // namespace

CPDFStatus write_form_data(CPDFDocument& document, PDF_DATA_FORMAT format, const std::vector<CPDFField*>* fields,
                           std::string& out, PDF_EXPORT_TEXTS texts)
{
    out.clear();
    CPDFStatus status = Exporter(document, format, texts, *make_writer(format, out)).run(fields);
    if (!status.ok())
        out.clear();
    return status;
}

CPDFStatus visit_form_data(CPDFDocument& document, CPDFDataWriter& writer)
{
    return Exporter(document, PDF_DATA_FORMAT::JSON, PDF_EXPORT_TEXTS::VALUES, writer).run(nullptr);
}
