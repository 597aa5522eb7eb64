#include <CLI/CLI.hpp>
#include <memory>

#include "document/lookup/field_text.h"
#include "formats/export/export_form.h"
#include "tools/save_output.h"
#include "tools/verb.h"

namespace {

struct EXPORT_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> names;
    COMMAND_WORD format;
    COMMAND_WORD output;
    bool shown = false;
};

int export_data(const EXPORT_ARGUMENTS& arguments)
{
    const std::string& name = arguments.format.text;
    const PDF_EXPORT_FORMAT* const format = find_export_format(name);
    if (!format)
        return complain_usage("there is no format " + in_quotes(name) +
                              ": give --as url, xml, xfa, json, fdf, xfdf or csv");
    if (format->is_whole && !arguments.names.empty())
        return complain_usage("--as xfa writes the data of all fields: give no names");
    if (arguments.shown && !format->has_full_names)
        return complain_usage("--shown goes with --as json, fdf, xfdf or csv, not with " + in_quotes(name));
    if (is_same_file(arguments.output.text, arguments.input.path.text))
        return complain_usage(in_quotes(arguments.output.text) + " is the input, which is never written to");
    CPDFDocument document;
    std::vector<CPDFField*> fields;
    if (!open_document(document, arguments.input) || !find_fields(document, arguments.input, arguments.names, fields))
        return COMMAND_REFUSED;
    std::string out;
    std::vector<std::string> notes;
    CPDFStatus status = export_form(document, *format, fields,
                                    arguments.shown ? PDF_EXPORT_TEXTS::SHOWN : PDF_EXPORT_TEXTS::VALUES, out, &notes);
    for (const std::string& note : notes)
        complain(arguments.input.path.text, "note: " + note);
    note_adopted(document, arguments.input);
    if (status.ok())
        status = save_text(out, arguments.output.text);
    return end_with(status, arguments.input.path.text);
}

constexpr const char* FOOTER =
    R"(The formats:
  url    the pairs of a submit action, NAME=VALUE joined by '&', in plain ASCII
  xml    the XML of a submit action; with names these fields' elements alone
  xfa    the data set as --xfa of fill and reset writes it; of a form without
         fields the data that it has
  json   one object of full names to values, as fill --data takes it
  fdf    the same as FDF
  xfdf   the same as XFDF
  csv    a row of names and a row of values; several values are joined by |, and
         a field without one, or with an empty one, has an empty cell
url and xml use the fields' own names, the last four the full names. With names,
the last four also have the fields under those that are named. A default counts
as a value; a field without either is left out, but has a column in CSV.)";

}  // namespace

void add_export_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<EXPORT_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("export", "Writes the values of fields in a format for form data");
    add_input(verb, arguments->input);
    verb.add_option("NAME", arguments->names,
                    "names of fields, parts of them or numbers; all fields when none is given")
        ->option_text("...");
    verb.add_option("--as", arguments->format, "url, xml, xfa, json, fdf, xfdf or csv")
        ->required()
        ->option_text("FORMAT");
    verb.add_flag("--shown", arguments->shown,
                  "texts as the form's formats show them; an import does not take these back");
    verb.add_option("-o,--output", arguments->output, "where to write; standard output by default")->option_text("OUT");
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return export_data(*arguments); }; });
}
