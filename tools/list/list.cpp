#include <CLI/CLI.hpp>
#include <memory>
#include <tuple>

#include "document/document.h"
#include "forms/field_walk.h"
#include "tools/list/list_internal.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct LIST_ARGUMENTS {
    COMMAND_INPUT input;
    bool json = false;
    bool all = false;
    bool in_full = false;
    bool summary = false;
};

constexpr const char* FOOTER =
    R"(The table fits the terminal, or 80 columns where there is none: what is too long
is cut, and flags stand there only where there is room. `get` and the like take
a part of a name that only one field has, or the number of a field in the list.
Control characters are shown as escapes.

The value is that of the field, or its default value where it has none, or that
of the field above it; of rich text the plain text. What a format of the form,
such as one for dates, makes of the value stands beside it (shown). A long text
that is kept in a stream is left to `formwork get`.

Where no field takes a value but the form has XFA data, as dynamic forms are
made, their values are shown, of the kind "data", under the paths by which fill
takes them.)";

int list_fields(const LIST_ARGUMENTS& arguments)
{
    CPDFDocument document;
    const bool with_notes = (arguments.json || arguments.in_full) && !arguments.summary;
    if (!open_document(document, arguments.input, with_notes ? PDF_LOAD::FORM_AND_NOTES : PDF_LOAD::WHOLE_FORM))
        return COMMAND_REFUSED;
    if (!document.permits_filling())
        complain(arguments.input.path.text, "note: the file's permissions forbid to fill the form");
    document.form();
    note_adopted(document, arguments.input);
    if (arguments.summary)
        return end_with(put_list_summary(document, arguments.json ? LIST_FORM::JSON : LIST_FORM::TEXT),
                        arguments.input.path.text);
    const PDF_LISTED what = arguments.all ? PDF_LISTED::ALL : PDF_LISTED::NAMED;
    const std::vector<PDF_XFA_VALUE> data = xfa_values_of(document, arguments.input);
    if (arguments.json) {
        do
            std::ignore = document.reading();  // meets what is broken in the pages
        while (mend_document(document, arguments.input));
        return end_with(write_list_json(document, what, data, put), arguments.input.path.text);
    }
    int64_t fields = 0;
    auto listed = static_cast<int64_t>(data.size());
    for_each_field(document.form(), [&](const CPDFField& field) {
        ++fields;
        listed += is_listed(field, what);
    });
    if (terminal_columns() && listed) {
        if (const CPDFStatus status = put_list_summary(document, LIST_FORM::TEXT); !status.ok())
            return end_with(status, arguments.input.path.text);
        put("\n");
    }
    size_t same = 0;
    if (listed)
        same = (arguments.in_full ? put_list_long : put_list_table)(document, what, data);
    else
        put(printable(arguments.input.path.text) + " has no form fields" + (fields ? " with a name" : "") + "\n");
    if (same)
        complain(arguments.input.path.text, "note: " + std::to_string(same) +
                                                (same == 1 ? " field has" : " fields have") +
                                                " the name of one before: numbers tell them apart");
    return put_done();
}

}  // namespace

std::vector<PDF_XFA_VALUE> xfa_values_of(CPDFDocument& document, const COMMAND_INPUT& input)
{
    std::vector<PDF_XFA_VALUE> values;
    if (!document.has_only_xfa())
        return values;
    if (const CPDFStatus status = document.xfa_values(values); !status.ok()) {
        complain(input.path.text, "note: " + status.text);
        values.clear();
    }
    return values;
}

void add_list_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<LIST_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("list", "Shows the fields of a form, their values and flags");
    add_input(verb, arguments->input);
    verb.add_flag("--json", arguments->json, "as a JSON array, one object for each field");
    verb.add_flag("--long", arguments->in_full, "also labels, what fields take, flags; nothing cut");
    verb.add_flag("--summary", arguments->summary, "only what there is: pages, fields by kind, ...");
    verb.add_flag("--all", arguments->all, "also fields without a name, under numbered names");
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return list_fields(*arguments); }; });
}
