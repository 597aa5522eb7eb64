// Any bytes as JSON. What was read is written and reads back the same.
#include "formats/export/json_text.h"
#include "formats/import/json_data.h"
#include "fuzz/data_check.h"

namespace {

std::string text_of(const CPDFValue& value)
{
    std::string out;
    if (const bool* flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&value)) {
        append_json_text(out, *text);
        return out;
    }
    for (const std::string& text : std::get<std::vector<std::string>>(value)) {
        out += out.empty() ? "" : ",";
        append_json_text(out, text);
    }
    return "[" + out + "]";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const CPDFFormData entries = check_data(data, size, read_json_data);
    std::string text;
    for (const PDF_FORM_ENTRY& entry : entries) {
        text += text.empty() ? "{" : ",";
        append_json_text(text, entry.name);
        text += ":" + text_of(entry.value);
    }
    CPDFFormData again;
    check(text.empty() || read_json_data(text + "}", again).ok(), "what is written can't be read");
    check(std::equal(entries.begin(), entries.end(), again.begin(), again.end(),
                     [](const auto& a, const auto& b) { return a.name == b.name && a.value == b.value; }),
          "what is written reads back as something else");
    return 0;
}
