#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/text.h"
#include "document/lookup/field_text.h"
#include "document/lookup/xml_fit.h"
#include "formats/export/export_data.h"
#include "forms/field_walk.h"
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

// What one export has to do with. Texts come from the engine's allocator.
struct EXPORT_JOB {
    const EXPORT_ARGUMENTS& arguments;
    CPDFDocument& document;
    const std::vector<CPDFField*>& fields;  // those named; all fields when empty
};

void list_refs(const EXPORT_JOB& job, CPDFArray& refs)
{
    for (const CPDFField* field : job.fields)
        refs.append_ref(field->m_ref);
}

// The buttons of a radio group whose value is a number are told by their widgets.
void bind_radio_groups(CPDFDocument& document)
{
    const CPDFField* numbered = nullptr;
    for_each_field(document.form(), [&numbered](const CPDFField& field) {
        const char* value = field.m_type == FIELD_BUTTON ? field.m_value.name_text() : nullptr;
        if (value && *value >= '0' && *value <= '9')
            numbered = &field;
    });
    if (numbered)
        document.widgets_of(*numbered);
}

CPDFStatus export_url(const EXPORT_JOB& job, std::string& out)
{
    bind_radio_groups(job.document);
    CPDFArray refs;
    list_refs(job, refs);
    const VXBlock<char> text(job.document.form().get_url_para(&refs, 0));
    const VXBlock<char> ascii(text ? cvt_url_to_ascii(text.get()) : nullptr);
    if (ascii)
        out = ascii.get();
    return {};
}

void note_fields(const EXPORT_JOB& job, const char* why, const std::vector<std::string>& names)
{
    constexpr size_t MOST = 10;
    if (names.empty())
        return;
    std::string list;
    for (size_t i = 0; i < std::min(names.size(), MOST); ++i)
        list += (i ? ", " : "") + in_quotes(names[i]);
    if (names.size() > MOST)
        list += " and " + std::to_string(names.size() - MOST) + " more";
    complain(job.arguments.input.path.text, std::string("note: the XML is not well-formed, for ") + why + list);
}

// Notes, for a program that reads the text by other rules than those of XML may still want it.
void note_misfits(const EXPORT_JOB& job)
{
    CPDFNumberedNames all(job.document.form());
    std::vector<std::string> names;
    std::vector<std::string> values;
    const auto look_at = [&](const CPDFField& field) {
        if (field.m_type == FIELD_BUTTON && (field.m_flags & FIELD_PUSH_BUTTON))
            return;
        if (!has_xml_name(field))
            names.push_back(all.name_of(field));
        if (!has_xml_value(field))
            values.push_back(all.name_of(field));
    };
    if (job.fields.empty())
        for_each_field(job.document.form(), look_at);
    for (const CPDFField* field : job.fields)
        look_at(*field);
    note_fields(job, "the names of these fields are no XML names: ", names);
    note_fields(job, "XML can't hold the values of these fields: ", values);
}

CPDFStatus export_xml(const EXPORT_JOB& job, std::string& out)
{
    note_misfits(job);
    CPDFArray refs;
    list_refs(job, refs);
    const VXBlock<char> text(job.document.form().get_url_xml(&refs, 0));
    if (text)
        out = text.get();
    return {};
}

// The data of a form without any are those that its fields would make.
CPDFStatus export_xfa(const EXPORT_JOB& job, std::string& out)
{
    if (job.document.has_xfa()) {
        std::vector<std::string> notes;
        CPDFStatus status = job.document.read_xfa(out, &notes);
        for (const std::string& note : notes)
            complain(job.arguments.input.path.text, "note: " + note);
        return status;
    }
    note_misfits(job);
    int len = 0;
    const VXBlock<char> text(job.document.form().get_xfa_data(len));
    if (text)
        out.assign(text.get(), static_cast<size_t>(len));
    return {};
}

template <PDF_DATA_FORMAT format>
CPDFStatus export_form_data(const EXPORT_JOB& job, std::string& out)
{
    return write_form_data(job.document, format, job.fields.empty() ? nullptr : &job.fields, out,
                           job.arguments.shown ? PDF_EXPORT_TEXTS::SHOWN : PDF_EXPORT_TEXTS::VALUES);
}

// The formats by name.
struct EXPORT_FORMAT {
    const char* name;
    CPDFStatus (*write)(const EXPORT_JOB& job, std::string& out);
    bool has_full_names = false;
};

constexpr EXPORT_FORMAT FORMATS[] = {
    {"url", export_url},
    {"xml", export_xml},
    {"xfa", export_xfa},
    {"json", export_form_data<PDF_DATA_FORMAT::JSON>, true},
    {"fdf", export_form_data<PDF_DATA_FORMAT::FDF>, true},
    {"xfdf", export_form_data<PDF_DATA_FORMAT::XFDF>, true},
    {"csv", export_form_data<PDF_DATA_FORMAT::CSV>, true},
};

int export_data(const EXPORT_ARGUMENTS& arguments)
{
    const std::string& name = arguments.format.text;
    const auto* const format = std::find_if(std::begin(FORMATS), std::end(FORMATS),
                                            [&name](const EXPORT_FORMAT& at) { return name == at.name; });
    if (format == std::end(FORMATS))
        return complain_usage("there is no format " + in_quotes(name) +
                              ": give --as url, xml, xfa, json, fdf, xfdf or csv");
    if (format->write == export_xfa && !arguments.names.empty())
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
    CPDFStatus status = format->write({arguments, document, fields}, out);
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
