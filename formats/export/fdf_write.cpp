#include <cstring>

#include "document/lookup/field_text.h"
#include "file/syntax/serialize.h"
#include "formats/export/data_writer.h"
#include "formats/export/name_path.h"
#include "forms/field.h"

// file  = header, one object << /FDF << /Fields [ *field ] >> >>, trailer
// field = << /T (partial name) [/V value] [/Kids [ *field ]] >>

namespace {

void write_text(std::string& out, const std::string& text)
{
    PDF_String string = pdf_string_of(text);
    CPDFObj object;
    object.set_string(string.buf, string.len);
    string.release();
    write_object(out, object);
}

class FdfWriter : public CPDFDataWriter {
public:
    // The second line tells programs that look for it that the file is binary.
    explicit FdfWriter(std::string& out) : CPDFDataWriter(out)
    {
        m_out = "%FDF-1.2\n%\xE2\xE3\xCF\xD3\n1 0 obj\n<</FDF<</Fields[";
    }

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override
    {
        if (!item.value.present)
            return {};
        const CPDFNamePath::STEP step = m_path.move_to(item.name);
        close(step.closed);
        for (const std::string_view part : step.opened)
            open(part);
        m_out += "/V";
        return write_value(item);
    }

    CPDFStatus finish() override
    {
        close(m_has_kids.size());
        m_out += "\n]>>>>\nendobj\ntrailer\n<</Root 1 0 R>>\n%%EOF\n";
        return {};
    }

private:
    void open(std::string_view part)
    {
        if (m_has_kids.empty()) {
            m_out += '\n';
        } else if (!m_has_kids.back()) {
            m_out += "/Kids[";
            m_has_kids.back() = true;
        }
        m_out += "<</T";
        write_text(m_out, std::string(part));
        m_has_kids.push_back(false);
    }

    void close(size_t count)
    {
        for (; count > 0; --count) {
            m_out += m_has_kids.back() ? "]>>" : ">>";
            m_has_kids.pop_back();
        }
    }

    CPDFStatus write_value(const PDF_EXPORT_ITEM& item)
    {
        if (item.field.m_type == FIELD_BUTTON && !item.is_export)
            return write_state(item);
        if (!item.value.is_list) {
            write_text(m_out, item.value.text);
            return {};
        }
        m_out += '[';
        for (const std::string& text : item.value.items)
            write_text(m_out, text);
        m_out += ']';
        return {};
    }

    // The states of buttons are names. The field's own goes out byte by byte.
    CPDFStatus write_state(const PDF_EXPORT_ITEM& item)
    {
        const std::string& state = item.value.text;
        if (item.field.m_value.type == PDF_OBJ_NAME) {
            write_object(m_out, item.field.m_value);
            return {};
        }
        if (std::memchr(state.data(), 0, state.size()))
            return refuse_export(item.name, "has a state with a zero byte, which FDF can't hold");
        CPDFObj name;
        name.set_name(state.c_str());
        write_object(m_out, name);
        return {};
    }

    CPDFNamePath m_path;
    std::vector<bool> m_has_kids;  // of the open fields
};

}  // namespace

std::unique_ptr<CPDFDataWriter> make_fdf_writer(std::string& out)
{
    return std::make_unique<FdfWriter>(out);
}
