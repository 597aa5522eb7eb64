#include <CLI/CLI.hpp>
#include <memory>

#include "document/lookup/field_text.h"
#include "file/file_bytes.h"
#include "file/output_file.h"
#include "tools/batch/template_mark.h"
#include "tools/save_output.h"

namespace {

struct JOIN_ARGUMENTS {
    COMMAND_WORD form;
    COMMAND_WORD update;
    COMMAND_WORD output;
};

std::string_view bytes_of(const CPDFFileBytes& file)
{
    return {reinterpret_cast<const char*>(file.data()), file.size()};
}

int join(const JOIN_ARGUMENTS& arguments)
{
    const std::string& path = arguments.output.text;
    for (const COMMAND_WORD* input : {&arguments.form, &arguments.update}) {
        if (is_same_file(path, input->text))
            return complain_usage(in_quotes(path) + " is an input: give -o another name");
    }
    CPDFFileBytes form;
    CPDFFileBytes file;
    if (const CPDFStatus status = form.open(arguments.form.text); !status.ok())
        return end_with(status, arguments.form.text);
    if (const CPDFStatus status = file.open(arguments.update.text); !status.ok())
        return end_with(status, arguments.update.text);
    std::string_view update = bytes_of(file);
    TEMPLATE_MARK mark;
    CPDFStatus status = mark.read(update);
    if (status.ok())
        status = mark.check(arguments.form.text, bytes_of(form));
    if (!status.ok())
        return end_with(status, arguments.update.text);
    need_memory();
    if (path != "-")
        return end_with(write_file(path, {bytes_of(form), form.descriptor()}, update), path);
    put(bytes_of(form));
    put(update);
    return put_done();
}

}  // namespace

void add_join_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<JOIN_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("join", "Makes the filled file of a template and an update");
    verb.add_option("TEMPLATE", arguments->form, "the PDF file that was filled")->required()->option_text(" ");
    verb.add_option("UPDATE", arguments->update, "what fill --updates-only wrote for one row")
        ->required()
        ->option_text(" ");
    verb.add_option("-o,--output", arguments->output, "where to save; - is standard output")
        ->required()
        ->option_text("OUT");
    verb.footer("The result is, byte for byte, what fill writes without --updates-only. A\n"
                "template of another size or with other bytes than the one that was filled is\n"
                "refused.");
    verb.callback([arguments, &action] { action = [arguments] { return join(*arguments); }; });
}
