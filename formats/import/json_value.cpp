#include "formats/import/json_value.h"

#include <nlohmann/json.hpp>
#include <string>

CPDFStatus parse_json(std::string_view text, nlohmann::json& out)
{
    try {
        out = nlohmann::json::parse(text.begin(), text.end());
    } catch (const nlohmann::json::parse_error& error) {
        const std::string what = error.what();
        const std::string_view head = "parse error at ";
        const size_t at = what.find(head);
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, at == std::string::npos ? what : what.substr(at + head.size()));
    }
    return {};
}
