#include "core/xml_token.h"
#include "formats/export/data_writer.h"
#include "formats/export/name_path.h"

// file  = <xfdf> <fields> *field </fields> </xfdf>
// field = <field name="partial name"> *( <value> text </value> ) *field </field>

namespace {

// Appends character data; false when XML has not all of its characters. Line ends and tabs are spelled where a reader
// would make other white space of them.
bool append_xml(std::string& out, std::string_view text, std::string_view spelled)
{
    for (const char c : text) {
        if (spelled.find(c) == std::string_view::npos)
            out += c;
        else
            out.append("&#").append(std::to_string(c)).append(";");
    }
    return find_xml_forbidden(text) == std::string_view::npos;
}

class XfdfWriter : public CPDFDataWriter {
public:
    explicit XfdfWriter(std::string& out) : CPDFDataWriter(out)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                "<xfdf xmlns=\"http://ns.adobe.com/xfdf/\" xml:space=\"preserve\">\n<fields>\n";
    }

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override
    {
        if (!item.value.present)
            return {};
        const CPDFNamePath::STEP step = m_path.move_to(item.name);
        close(step.closed);
        bool fits = true;
        for (const std::string_view part : step.opened) {
            m_out += "<field name=\"";
            fits = append_xml(m_out, part, "&<>\"\t\n\r") && fits;
            m_out += "\">";
        }
        m_depth = m_path.depth();
        if (!fits)
            return refuse_export(item.name, "has a control character in its name, which XML can't hold");
        if (!item.value.is_list)
            fits = write_value(item.value.text);
        for (const std::string& text : item.value.items)
            fits = write_value(text) && fits;
        return fits ? CPDFStatus()
                    : refuse_export(item.name, "has a control character in its value, which XML can't hold");
    }

    CPDFStatus finish() override
    {
        close(m_depth);
        m_out += "</fields>\n</xfdf>\n";
        return {};
    }

private:
    bool write_value(const std::string& text)
    {
        m_out += "<value>";
        const bool fits = append_xml(m_out, text, "&<>\r");
        m_out += "</value>";
        return fits;
    }

    void close(size_t count)
    {
        m_depth -= count;
        for (; count > 0; --count)
            m_out += "</field>";
        m_out += m_depth == 0 && m_out.back() == '>' ? "\n" : "";
    }

    CPDFNamePath m_path;
    size_t m_depth = 0;  // fields that are open
};

}  // namespace

std::unique_ptr<CPDFDataWriter> make_xfdf_writer(std::string& out)
{
    return std::make_unique<XfdfWriter>(out);
}
