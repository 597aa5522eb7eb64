#include "tools/fill/fill_data.h"

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "tools/fill/fill_internal.h"

namespace {

// A value for the field that `word` means; for that name where it is not clear.
PDF_FORM_ENTRY meant_entry(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& word,
                           const std::string& value)
{
    PDF_FORM_ENTRY entry = {word, value, PDF_WORDS::STATES_FIRST, true};
    CPDFStatus why;
    if (document.field(word) || document.has_only_xfa())
        return entry;
    entry.field = document.find_field(word, why);
    if (!entry.field)
        return entry;
    entry.name = full_name(*entry.field);
    complain(input.path.text, "note: " + in_quotes(word) + " is taken for the field " + in_quotes(entry.name));
    return entry;
}

// The first '=' behind which the value begins: names may hold one too, so the shortest name that is a field's counts.
// Where none is, the text before the first '=' stands for the name.
size_t find_assign(CPDFDocument& document, std::string_view assignment)
{
    const size_t first = assignment.find('=', 1);
    for (size_t at = first; at != std::string_view::npos; at = assignment.find('=', at + 1)) {
        if (document.field(assignment.substr(0, at)))
            return at;
    }
    return first;
}

}  // namespace

void add_assignments(CPDFDocument& document, const FILL_ARGUMENTS& arguments, CPDFFormData& data)
{
    for (const COMMAND_WORD& assignment : arguments.assignments) {
        const size_t at = find_assign(document, assignment.text);
        data.push_back(
            meant_entry(document, arguments.input, assignment.text.substr(0, at), assignment.text.substr(at + 1)));
    }
}

bool read_constants(CPDFDocument& document, const FILL_ARGUMENTS& arguments, const PDF_DATA_RULES& rules,
                    CPDFFormData& out)
{
    const std::string& file = arguments.data.text;
    CPDFStatus status = file.empty() ? CPDFStatus() : read_form_data(file, out, rules.style);
    if (status.ok() && !out.empty() && out.front().is_cell)
        status = shape_data(document, rules, out);
    else
        fit_data(document, rules, out);
    if (!status.ok()) {
        complain(file, status.text);
        return false;
    }
    const size_t from_file = out.size();
    add_assignments(document, arguments, out);
    bool good = true;
    const auto refuse = [&good](const std::string& where, const std::string& sentence) {
        complain(where, sentence);
        good = false;
    };
    for (size_t i = 0; i < out.size(); ++i) {
        PDF_FORM_ENTRY& entry = out[i];
        if (!is_known_name(document, entry.name))
            refuse(i < from_file ? file : arguments.input.path.text, document.no_field(entry.name).text);
        else if (entry.field && entry.field != document.field(entry.name))
            refuse(arguments.input.path.text,
                   "a batch goes by names, and another field is the first with the name " + in_quotes(entry.name));
        entry.field = nullptr;  // every job has a document of its own
    }
    return good;
}
