#include <numeric>
#include <string>

#include "document/document.h"
#include "document/summary.h"
#include "formats/list/summary_json.h"
#include "tools/list/list_internal.h"
#include "tools/verb.h"

namespace {

std::string count_of(size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string kind_words(const PDF_SUMMARY& summary)
{
    std::string list;
    for (const auto& [name, count] : kinds_of(summary))
        list += (list.empty() ? ": " : ", ") + name + " " + std::to_string(count);
    return list;
}

void put_lines(const PDF_SUMMARY& summary)
{
    const size_t fields = std::accumulate(summary.fields.begin(), summary.fields.end(), size_t{0});
    put(count_of(static_cast<size_t>(summary.pages), "page") + ", " + count_of(fields, "field") + kind_words(summary) +
        "\n");
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

}  // namespace

CPDFStatus put_list_summary(CPDFDocument& document, LIST_FORM form)
{
    PDF_SUMMARY summary;
    CPDFStatus status = document.summarize(summary);
    if (!status.ok())
        return status;
    if (form == LIST_FORM::JSON)
        put(summary_json(summary));
    else
        put_lines(summary);
    return status;
}
