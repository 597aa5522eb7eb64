#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "formats/apply_data.h"
#include "formats/fill_report.h"
#include "tools/fill/fill_data.h"
#include "tools/fill/fill_internal.h"

namespace {

// Few values are reached faster one by one than through the whole form.
constexpr size_t MOST_SINGLE_FIELDS = 16;

bool open_for_fill(CPDFDocument& document, const FILL_ARGUMENTS& arguments, size_t values)
{
    set_up(document, arguments.scripts, arguments.output);
    return open_document(document, arguments.input,
                         values <= MOST_SINGLE_FIELDS ? PDF_LOAD::NAMED_FIELDS : PDF_LOAD::WHOLE_FORM) &&
           (arguments.force || may_fill(document, arguments.input));
}

// The report goes to standard output unless the filled file does.
void put_report(CPDFDocument& document, const FILL_ARGUMENTS& arguments, const std::vector<PDF_DATA_ITEM>& items,
                const std::vector<CPDFField*>& calculated)
{
    std::string report;
    append_report(report, document, items, calculated);
    if (arguments.output.output.text == "-" && !arguments.dry_run)
        std::fwrite(report.data(), 1, report.size(), stderr);
    else
        put(report);
}

// Returns whether there are none.
bool complain_of_refusals(const FILL_ARGUMENTS& arguments, const std::vector<PDF_DATA_ITEM>& items)
{
    constexpr size_t MOST = 1000;
    size_t refused = 0;
    for (const PDF_DATA_ITEM& item : items) {
        if (!item.status.ok() && ++refused <= MOST)
            complain(arguments.input.path.text, item.status.text);
    }
    if (refused > MOST)
        complain(arguments.input.path.text, std::to_string(refused - MOST) + " more values are refused");
    return refused == 0;
}

int fill_once(const FILL_ARGUMENTS& arguments)
{
    CPDFFormData data;
    PDF_DATA_RULES rules;
    if (!open_rules(arguments.reading, rules))
        return COMMAND_REFUSED;
    if (!arguments.data.text.empty()) {
        const CPDFStatus status = read_form_data(arguments.data.text, data, rules.style);
        if (!status.ok())
            return end_with(status, arguments.data.text);
        if (data.empty())
            complain(arguments.data.text, "note: the file has no values");
    }
    CPDFDocument document;
    if (!open_for_fill(document, arguments, data.size() + arguments.assignments.size()))
        return COMMAND_REFUSED;
    const CPDFFormData from_file = data;
    std::vector<PDF_DATA_ITEM> items;
    do {
        data = from_file;
        if (const CPDFStatus shaped = shape_data(document, rules, data); !shaped.ok())
            return end_with(shaped, arguments.data.text);
        add_assignments(document, arguments, data);
        items = plan_data(document, data, arguments.how());
    } while (mend_document(document, arguments.input));
    for (const PDF_DATA_ITEM& item : items) {
        if (!item.entry.field)
            note_same_names(document, arguments.input, item.entry.name);
    }
    const bool accepted = complain_of_refusals(arguments, items);
    std::vector<CPDFField*> calculated;
    CPDFStatus status = apply_data(document, items, &calculated);
    if (!status.ok())
        return end_with(status, arguments.input.path.text);
    if (arguments.report)
        put_report(document, arguments, items, calculated);
    if (!accepted || arguments.dry_run)
        note_scripts(document, arguments.scripts, arguments.input);
    if (!accepted)
        return COMMAND_REFUSED;
    if (arguments.dry_run)
        return put_done();
    note_xfa(document, arguments.input, arguments.xfa);
    if (arguments.xfa)
        status = write_xfa(document, arguments.input);
    if (status.ok() && arguments.flatten)
        status = document.flatten(arguments.edit());
    if (status.ok())
        status = save_computed(document, arguments.input, arguments.output, arguments.scripts);
    return end_with(status, arguments.input.path.text);
}

bool read_jobs(FILL_ARGUMENTS& arguments)
{
    constexpr int MOST_JOBS = 256;
    const std::string& text = arguments.jobs.text;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), arguments.job_count);
    return error == std::errc() && end == text.data() + text.size() && arguments.job_count >= 1 &&
           arguments.job_count <= MOST_JOBS;
}

// Whether the result goes to a place that makes sense.
CPDFStatus check_place(FILL_ARGUMENTS& arguments)
{
    const std::string& output = arguments.output.output.text;
    if (!arguments.batch.text.empty()) {
        if (CPDFStatus status = check_batch(arguments); !status.ok())
            return status;
    }
    if (arguments.dry_run && output.empty() && !arguments.output.in_place)
        return {};
    if (is_same_file(output, arguments.data.text))
        return wrong_usage(in_quotes(output) + " is the file with the data");
    return check_output(arguments.input, arguments.output);
}

CPDFStatus check_usage(FILL_ARGUMENTS& arguments)
{
    const bool has_data = !arguments.assignments.empty() || !arguments.data.text.empty();
    const bool has_batch = !arguments.batch.text.empty();
    for (const COMMAND_WORD& assignment : arguments.assignments) {
        if (assignment.text.find('=', 1) == std::string::npos)
            return wrong_usage(in_quotes(assignment.text) + " is no NAME=VALUE");
    }
    if (!has_data && !has_batch)
        return wrong_usage(
            "there is nothing to fill in: give NAME=VALUE, --data or --batch (`formwork fill --help` tells more)");
    if (!read_jobs(arguments))
        return wrong_usage(in_quotes(arguments.jobs.text) + " is no number of jobs: give 1 to 256");
    PDF_DATA_RULES rules;
    if (CPDFStatus status = read_rules(arguments.reading, rules); !status.ok())
        return status;
    if (CPDFStatus status = check_scripts(arguments.scripts); !status.ok())
        return status;
    return check_place(arguments);
}

int fill(FILL_ARGUMENTS& arguments)
{
    if (const CPDFStatus usage = check_usage(arguments); !usage.ok())
        return complain_usage(usage.text);
    return arguments.batch.text.empty() ? fill_once(arguments) : fill_batch(arguments);
}

constexpr const char* FOOTER =
    R"(A field takes, whatever the value comes from:
  text field    a text, no longer than its maximum
  check box     the name of a state; with one on state true or false, yes or no,
                on or off, 1 or 0
  radio group   the name of a state or an export value; Off for none
  combo box     an export value or a shown text; any text when it is editable
  list box      the same; several of them when it takes several (NAME=VALUE
                repeated, or a list in JSON)
Push buttons and signatures take none. When anything is refused nothing is
written, and all refusals are listed. Of several fields with one full name the
first is filled, and a note says so; NUMBER=VALUE fills another one.
Where no field takes a value but the form has XFA data, names are the paths in
the data that `formwork list` shows.

Data files, in UTF-8, have full names of fields:
  .json   one object of names to texts, numbers, true, false or lists of texts;
          null leaves a field alone
  .csv    a row of names and one row of values, divided by commas, semicolons or
          tabs, also in UTF-16 with its mark; save .xlsx as "CSV UTF-8"
  .fdf    FDF, as formwork export and other programs write it
  .xfdf   XFDF; of rich text the plain text beside it is read
A value that the field has already is never refused.

A batch fills FILE once for every row of a .csv file, or every line of a .jsonl
file with one JSON object each:
  formwork fill form.pdf --batch people.csv -o 'out/{id}.pdf'
--batch - takes either from standard input. NAME=VALUE and --data beside it are
for the rows that have no value of their own. A --map is JSON:
  {"Name": "person", "Notes": null, "Town": {"field": "town", "upper": true},
   "Born": {"field": "birth", "date": "dd.mm.yyyy>mm/dd/yyyy"},
   "Sum": [{"field": "sum", "number": "1.234,56>1234.56"}, "sum in words"]}
-o is a pattern: {id} is the value that the row has in the column id, {row} the
number of the row, {row:06} that with six digits, and {{ a brace. A column that
is used there need not be a field. Rows are counted from 1 without the names. A
row that is refused is told on standard error and not written; the others are.
Two rows with one output are told before anything is written. Several --jobs pay
even on one processor, since each of them waits for the disk. Exits 0 when all
rows are done, 3 when some of them were refused, 1 when the batch could not work
or an output could not be written.

--report prints {"name","result","why","value"} for every name, with "row" in a
batch: result is set, coerced (understood as something else than it said, such
as a shown text), kept (the field has it already), calculated (by scripts, which
changed a field that is not named) or refused, which why explains.)";

}  // namespace

void add_fill_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<FILL_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("fill", "Puts values into fields and saves the result");
    add_input(verb, arguments->input);
    verb.add_option("NAME=VALUE", arguments->assignments,
                    "name of a field and its new value, in UTF-8; a part of the name or its number in the list will do")
        ->option_text("...");
    verb.add_option("--data", arguments->data, "take values from a .json, .csv, .fdf or .xfdf file")
        ->option_text("DATA");
    CLI::Option& batch =
        *verb.add_option("--batch", arguments->batch, "fill once for every row of a .csv or .jsonl file")
             ->option_text("ROWS");
    add_data_options(verb, arguments->reading);
    add_output(verb, arguments->output);
    add_scripts(verb, arguments->scripts);
    verb.add_flag("--xfa", arguments->xfa,
                  "put the values of all fields into the XFA data, too; what no field holds stays");
    verb.add_flag("--flatten", arguments->flatten, "make what the fields show a part of the pages; the form goes");
    verb.add_flag("--force", arguments->force, "fill what is read-only, locked by a signature or not permitted, too");
    verb.add_flag("--dry-run", arguments->dry_run, "check all values and write nothing");
    verb.add_flag("--report", arguments->report, "print a line of JSON for every name; on standard error with -o -");
    verb.add_option("--jobs", arguments->jobs, "rows of a batch that are worked on at once (1)")
        ->option_text("N")
        ->group("Batches");
    add_batch_options(verb, arguments->batches, batch);
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return fill(*arguments); }; });
}
