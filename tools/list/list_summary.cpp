#include <array>
#include <numeric>
#include <string>
#include <utility>

#include "document/document.h"
#include "document/summary.h"
#include "tools/list/list_internal.h"
#include "tools/verb.h"

namespace {

std::string count_of(size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string kinds_of(const PDF_SUMMARY& summary, const char* separator, const char* quote, const char* comma)
{
    std::string list;
    for (int id = 0; id < KIND_COUNT; ++id) {
        if (const size_t count = summary.fields[static_cast<size_t>(id)]; count > 0) {
            list += (list.empty() ? "" : comma) +
                    (quote + std::string(field_kind(static_cast<PDF_FIELD_KIND_ID>(id)).name));
            list += quote + std::string(separator) + std::to_string(count);
        }
    }
    return list;
}

void put_lines(const PDF_SUMMARY& summary)
{
    const size_t fields = std::accumulate(summary.fields.begin(), summary.fields.end(), size_t{0});
    put(count_of(static_cast<size_t>(summary.pages), "page") + ", " + count_of(fields, "field"));
    put(fields ? ": " + kinds_of(summary, " ", "", ", ") + "\n" : "\n");
    put(std::to_string(summary.filled) + " filled, " + std::to_string(summary.required_empty) +
        " required and empty\n");
    const struct {
        bool is_so;
        std::string line;
    } lines[] = {
        {summary.same_names > 0, count_of(summary.same_names, "field") + " with the name of another one"},
        {summary.signatures > 0, "signed: " + count_of(summary.signatures, "signature")},
        {summary.locked > 0, count_of(summary.locked, "field") + " locked by signatures"},
        {summary.certified, "certified: not every change is allowed"},
        {summary.encrypted, "encrypted"},
        {summary.has_xfa && !summary.is_dynamic, "static XFA: data beside the fields, see fill --xfa"},
        {summary.is_dynamic, "dynamic XFA: the fields are only its last page image; see export --as xfa"},
        {summary.with_scripts > 0, "scripts of " + count_of(summary.with_scripts, "field")},
        {summary.document_scripts > 0, count_of(summary.document_scripts, "script") + " of the document"},
        {summary.needs_drawing, "asks viewers to draw the fields"},
        {summary.tagged, "tagged"},
    };
    for (const auto& at : lines) {
        if (at.is_so)
            put(at.line + "\n");
    }
}

void put_object(const PDF_SUMMARY& summary)
{
    std::string out =
        "{\"pages\":" + std::to_string(summary.pages) + ",\"fields\":{" + kinds_of(summary, ":", "\"", ",") + "}";
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
    put(out + ",\"xfa\":" + xfa + "}\n");
}

}  // namespace

CPDFStatus put_list_summary(CPDFDocument& document, LIST_FORM form)
{
    PDF_SUMMARY summary;
    CPDFStatus status = document.summarize(summary);
    if (status.ok())
        (form == LIST_FORM::JSON ? put_object : put_lines)(summary);
    return status;
}
