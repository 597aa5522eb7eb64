#include "formats/import/fdf_data.h"

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "formats/import/entry_list.h"
#include "formats/import/fdf_file.h"

namespace {

class FdfReader {
public:
    FdfReader(std::string_view bytes, CPDFFormData& out)
        : m_file(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), m_entries(out, bytes.size())
    {
    }

    std::string run()
    {
        m_fault = m_file.start();
        if (m_fault.empty()) {
            CPDFObj scratch;
            const CPDFObj* encoding = view_obj(&m_file.xref(), m_file.fdf()->get_item("Encoding"), scratch);
            const CPDFObj* fields = m_file.fdf()->get_item("Fields");
            if (encoding->type == PDF_OBJ_NAME && !encoding->is_name("PDFDocEncoding"))
                fail("the texts are in " + utf8_of_name(encoding->name) + ", which is not supported");
            else if (fields)
                read_fields(*fields, nullptr, 0);
        }
        if (m_file.exhausted())
            m_fault = "the file takes more work to read than its size justifies";
        return std::move(m_fault);
    }

private:
    bool fail(const std::string& why)
    {
        m_fault = why;
        return false;
    }

    // `above` is the name of the field with these "Kids", null for the fields at the top.
    bool read_fields(const CPDFObj& list, const std::string* above, int depth)
    {
        const std::string where = above ? "the kids of field \"" + *above + "\"" : "the fields of the file";
        CPDFObj scratch;
        const CPDFArray* fields = view_obj(&m_file.xref(), &list, scratch)->array();
        if (!fields)
            return fail(where + " are no array");
        if (depth >= LIMIT_FIELD_DEPTH)
            return fail(where + " nest deeper than " + std::to_string(LIMIT_FIELD_DEPTH) + " levels");
        for (int32_t i = 0; i < fields->count; ++i) {
            CPDFObj own;
            const CPDFDictionary* field = view_obj(&m_file.xref(), &fields->items[i], own)->dictionary();
            if (!field)
                return fail("entry " + std::to_string(i + 1) + " of " + where + " is no field");
            if (!read_field(*field, above, depth))
                return false;
        }
        return true;
    }

    bool read_field(const CPDFDictionary& field, const std::string* above, int depth)
    {
        CPDFObj scratch;
        const CPDFObj* part = view_obj(&m_file.xref(), field.get_item("T"), scratch);
        std::string name;
        if (part->type == PDF_OBJ_STRING) {
            if (!CPDFEntryList::join(above ? *above : "", !above, utf8_of(part->str), name))
                return fail("the name of a field is longer than " + std::to_string(LIMIT_FULL_NAME) + " bytes");
        } else if (above) {
            name = *above;
        } else {
            return fail("a field of the file has no name");
        }
        const CPDFObj* value = field.get_item("V");
        const CPDFObj* kids = field.get_item("Kids");
        if (!value && field.get_item("RV"))
            return fail("field \"" + name + "\" has rich text only, which is not supported");
        return (!value || read_value(*value, name)) && (!kids || read_fields(*kids, &name, depth + 1));
    }

    bool read_value(const CPDFObj& entry, const std::string& name)
    {
        CPDFObj scratch;
        const CPDFObj& value = *view_obj(&m_file.xref(), &entry, scratch);
        if (value.type == PDF_OBJ_NULL && entry.type == PDF_OBJ_REF && !m_file.xref().entry_of(entry.ref.num))
            return fail("the value of field \"" + name + "\" is object " + std::to_string(entry.ref.num) +
                        ", which is not in the file");
        if (value.type == PDF_OBJ_NULL || (value.type == PDF_OBJ_NAME && !*value.name))
            return true;
        PDF_VALUE_TEXT text;
        if (value.type == PDF_OBJ_STREAM) {
            text.present = true;
            text.text = stream_text(m_file.xref(), *value.stream);
            m_stream_bytes += text.text.size() + value.stream->data_len;
            if (m_stream_bytes > LIMIT_EXPORT_STREAMS)
                return fail("the values in streams are larger than what is supported");
        } else if (is_value(value)) {
            text = value_text(m_file.xref(), value);
        }
        if (!text.present)
            return fail("the value of field \"" + name + "\" is neither a text, a name, a number nor a list of them");
        const PDF_WORDS words = value.type == PDF_OBJ_NAME ? PDF_WORDS::STATES_FIRST : PDF_WORDS::EXPORT_FIRST;
        const bool fits = text.is_list ? m_entries.add(name, std::move(text.items), words)
                                       : m_entries.add(name, std::move(text.text), words);
        return fits || fail("the values are more than what is supported");
    }

    // Lists within lists, and what has no text, would be taken for empty texts.
    bool is_value(const CPDFObj& value)
    {
        const CPDFArray* list = value.array();
        for (int32_t i = 0; list && i < list->count; ++i) {
            CPDFObj scratch;
            const PDF_VALUE_TEXT text = value_text(m_file.xref(), *view_obj(&m_file.xref(), &list->items[i], scratch));
            if (!text.present || text.is_list)
                return false;
        }
        return true;
    }

    CPDFFdfFile m_file;
    CPDFEntryList m_entries;
    size_t m_stream_bytes = 0;
    std::string m_fault;
};

}  // namespace

CPDFStatus read_fdf_data(std::string_view bytes, CPDFFormData& out)
{
    out.clear();
    std::string fault = FdfReader(bytes, out).run();
    if (fault.empty())
        return {};
    out.clear();
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(fault));
}
