#include "formats/export/data_writer.h"
#include "formats/export/json_text.h"

namespace {

// file = "{" [pair *("," pair)] "}", with a line for each pair
class JsonWriter : public CPDFDataWriter {
public:
    explicit JsonWriter(std::string& out) : CPDFDataWriter(out) { m_out = "{"; }

    CPDFStatus add(const PDF_EXPORT_ITEM& item) override
    {
        if (!item.value.present)
            return {};
        m_out += m_out.size() > 1 ? ",\n" : "\n";
        append_json_text(m_out, item.name);
        m_out += ": ";
        append_json_value(m_out, item.value);
        return {};
    }

    CPDFStatus finish() override
    {
        m_out += m_out.size() > 1 ? "\n}\n" : "}\n";
        return {};
    }
};

}  // namespace

std::unique_ptr<CPDFDataWriter> make_json_writer(std::string& out)
{
    return std::make_unique<JsonWriter>(out);
}
