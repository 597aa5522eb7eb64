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

    CPDFStatus run()
    {
        m_status = m_file.start();
        if (m_status.ok()) {
            const CPDFEntryView encoding(&m_file.xref(), m_file.fdf()->get_item("Encoding"));
            const CPDFObj* fields = m_file.fdf()->get_item("Fields");
            if (encoding->type == PDF_OBJ_NAME && !encoding->is_name("PDFDocEncoding"))
                fail("the texts are in " + utf8_of_name(encoding->name) + ", which is not supported");
            else if (fields)
                read_fields(*fields, nullptr, 0);
        }
        if (m_file.exhausted())
            fail("the file takes more work to read than its size justifies");
        return std::move(m_status);
    }

private:
    bool fail(const std::string& why)
    {
        m_status = CPDFStatus::failed(PDF_CODE::BAD_DATA, why);
        return false;
    }

    // `above` is the name of the field with these "Kids", null for the fields at the top.
    bool read_fields(const CPDFObj& list, const std::string* above, int depth)
    {
        const std::string where = above ? "the kids of field \"" + *above + "\"" : "the fields of the file";
        const CPDFEntryView view(&m_file.xref(), &list);
        const CPDFArray* fields = view->array();
        if (!fields)
            return fail(where + " are no array");
        if (depth >= LIMIT_FIELD_DEPTH)
            return fail(where + " nest deeper than " + std::to_string(LIMIT_FIELD_DEPTH) + " levels");
        for (int32_t i = 0; i < fields->count; ++i) {
            const CPDFEntryView field(&m_file.xref(), &fields->items[i]);
            if (!field->dictionary())
                return fail("entry " + std::to_string(i + 1) + " of " + where + " is no field");
            if (!read_field(*field->dictionary(), above, depth))
                return false;
        }
        return true;
    }

    bool read_field(const CPDFDictionary& field, const std::string* above, int depth)
    {
        const CPDFEntryView part(&m_file.xref(), field.get_item("T"));
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
            return fail("field " + in_quotes(name) + " has rich text only, which is not supported");
        return (!value || read_value(*value, name)) && (!kids || read_fields(*kids, &name, depth + 1));
    }

    bool read_value(const CPDFObj& entry, const std::string& name)
    {
        const CPDFEntryView view(&m_file.xref(), &entry);
        const CPDFObj& value = *view;
        if (value.type == PDF_OBJ_NULL && entry.type == PDF_OBJ_REF && !m_file.xref().entry_of(entry.ref.num))
            return fail("the value of field " + in_quotes(name) + " is object " + std::to_string(entry.ref.num) +
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
            return fail("the value of field " + in_quotes(name) +
                        " is neither a text, a name, a number nor a list of them");
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
            const CPDFEntryView item(&m_file.xref(), &list->items[i]);
            const PDF_VALUE_TEXT text = value_text(m_file.xref(), *item);
            if (!text.present || text.is_list)
                return false;
        }
        return true;
    }

    CPDFFdfFile m_file;
    CPDFEntryList m_entries;
    size_t m_stream_bytes = 0;
    CPDFStatus m_status;
};

}  // namespace

CPDFStatus read_fdf_data(std::string_view bytes, CPDFFormData& out)
{
    out.clear();
    CPDFStatus status = FdfReader(bytes, out).run();
    if (!status.ok())
        out.clear();
    return status;
}
