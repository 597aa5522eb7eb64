#include "formats/import/xfdf_data.h"

#include "core/limits.h"
#include "document/lookup/field_text.h"
#include "formats/import/entry_list.h"
#include "formats/import/xml_reader.h"

// See the grammar in xfdf_write.cpp. <f>, <ids>, <annots> and others may stand beside <fields>.

namespace {

constexpr size_t ROOT_DEPTH = 1;
constexpr size_t FIELDS_DEPTH = 2;
constexpr const char* TOO_MUCH = "the values are more than what is supported";

class XfdfReader {
public:
    XfdfReader(std::string_view text, CPDFFormData& out) : m_xml(text), m_entries(out, text.size()) {}

    CPDFStatus run()
    {
        CPDFXmlReader::TOKEN token = m_xml.next();
        while (token != CPDFXmlReader::END && token != CPDFXmlReader::FAULT)
            token = take(token);
        return m_xml.status();
    }

private:
    using TOKEN = CPDFXmlReader::TOKEN;

    // A field that is open.
    struct LEVEL {
        std::string name;
        std::vector<std::string> values;
        bool has_rich_text = false;
        bool is_added = false;
    };

    TOKEN take(TOKEN token)
    {
        if (token == CPDFXmlReader::OPEN)
            return open();
        if (token == CPDFXmlReader::TEXT) {
            const bool is_blank = m_xml.text().find_first_not_of(" \t\r\n") == std::string::npos;
            return is_blank ? m_xml.next() : m_xml.refuse("there is text outside a value");
        }
        if (m_levels.empty())
            return m_xml.next();  // the end of <fields> or of the root
        const bool fits = add_level();
        m_levels.pop_back();
        return fits ? m_xml.next() : m_xml.refuse(m_why);
    }

    TOKEN open()
    {
        const std::string_view name = m_xml.name();
        if (m_xml.depth() == ROOT_DEPTH)
            return name == "xfdf"
                       ? m_xml.next()
                       : m_xml.refuse("the root element is <" + std::string(name.substr(0, 40)) + ">, not <xfdf>");
        if (m_xml.depth() == FIELDS_DEPTH)
            return name == "fields" ? m_xml.next() : skip();
        if (name == "field")
            return open_field();
        if (name == "value" && !m_levels.empty())
            return read_value();
        if (name == "value-richtext" && !m_levels.empty())
            m_levels.back().has_rich_text = true;
        return skip();
    }

    TOKEN skip()
    {
        const TOKEN token = m_xml.skip_element();
        return token == CPDFXmlReader::FAULT ? token : m_xml.next();
    }

    TOKEN open_field()
    {
        const std::string* part = m_xml.attribute("name");
        if (!part)
            return m_xml.refuse("a field has no name");
        LEVEL level;
        const std::string above = m_levels.empty() ? "" : m_levels.back().name;
        if (!CPDFEntryList::join(above, m_levels.empty(), *part, level.name))
            return m_xml.refuse("the name of a field is too long");
        // The entry of the field around comes first, as it stands in the file.
        if (!m_levels.empty() && !m_levels.back().values.empty() && !add_level())
            return m_xml.refuse(m_why);
        m_levels.push_back(std::move(level));
        return m_xml.next();
    }

    TOKEN read_value()
    {
        std::string text;
        TOKEN token = m_xml.next();
        for (; token == CPDFXmlReader::TEXT; token = m_xml.next())
            text += m_xml.text();
        if (token == CPDFXmlReader::OPEN)
            return m_xml.refuse("there is an element in a value");
        if (token != CPDFXmlReader::CLOSE)
            return token;
        LEVEL& level = m_levels.back();
        if (level.is_added)
            return m_xml.refuse("a value of field " + in_quotes(level.name) + " stands behind the fields in it");
        if (level.values.size() >= LIMIT_DATA_VALUES)
            return m_xml.refuse(TOO_MUCH);
        level.values.push_back(std::move(text));
        return m_xml.next();
    }

    // Makes an entry of the innermost field, once, if it has a value. False, with m_why set, when it can't.
    bool add_level()
    {
        LEVEL& level = m_levels.back();
        if (level.is_added)
            return true;
        if (level.values.empty()) {
            m_why = "field " + in_quotes(level.name) + " has rich text only, which is not supported";
            return !level.has_rich_text;
        }
        level.is_added = true;
        CPDFValue value;
        if (level.values.size() == 1)
            value = std::move(level.values.front());
        else
            value = std::move(level.values);
        m_why = TOO_MUCH;
        return m_entries.add(level.name, std::move(value), PDF_WORDS::EXPORT_FIRST);
    }

    CPDFXmlReader m_xml;
    CPDFEntryList m_entries;
    std::vector<LEVEL> m_levels;
    std::string m_why;
};

}  // namespace

CPDFStatus read_xfdf_data(std::string_view text, CPDFFormData& out)
{
    out.clear();
    CPDFStatus status = XfdfReader(text, out).run();
    if (!status.ok())
        out.clear();
    return status;
}
