#include "formats/list/summary_json.h"

#include "document/summary.h"

namespace {

std::string fields_json(const PDF_SUMMARY& summary)
{
    std::string list;
    for (const auto& [name, count] : kinds_of(summary))
        list += (list.empty() ? "\"" : ",\"") + name + "\":" + std::to_string(count);
    return list;
}

}  // namespace

std::vector<std::pair<std::string, size_t>> kinds_of(const PDF_SUMMARY& summary)
{
    std::vector<std::pair<std::string, size_t>> kinds;
    for (int id = 0; id < KIND_COUNT; ++id) {
        if (const size_t count = summary.fields[static_cast<size_t>(id)]; count > 0)
            kinds.emplace_back(field_kind(static_cast<PDF_FIELD_KIND_ID>(id)).name, count);
    }
    return kinds;
}

std::string summary_json(const PDF_SUMMARY& summary)
{
    std::string out = "{\"pages\":" + std::to_string(summary.pages) + ",\"fields\":{" + fields_json(summary) + "}";
    const std::pair<const char*, size_t> counts[] = {
        {"filled", summary.filled},
        {"requiredEmpty", summary.required_empty},
        {"sameNames", summary.same_names},
        {"signatures", summary.signatures},
        {"locked", summary.locked},
        {"fieldsWithScripts", summary.with_scripts},
        {"documentScripts", summary.document_scripts},
    };
    for (const auto& [key, count] : counts)
        out += std::string(",\"") + key + "\":" + std::to_string(count);
    const std::pair<const char*, bool> facts[] = {{"certified", summary.certified},
                                                  {"encrypted", summary.encrypted},
                                                  {"needsDrawing", summary.needs_drawing},
                                                  {"tagged", summary.tagged}};
    for (const auto& [key, is_so] : facts)
        out += std::string(",\"") + key + (is_so ? "\":true" : "\":false");
    const char* xfa = summary.is_dynamic ? "\"dynamic\"" : summary.has_xfa ? "\"static\"" : "null";
    return out + ",\"xfa\":" + xfa + "}\n";
}
