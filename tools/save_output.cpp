#include "tools/save_output.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "document/lookup/field_text.h"
#include "document/notes.h"
#include "file/output_file.h"

constexpr const char* STANDARD_OUTPUT = "-";

bool is_same_file(const std::string& a, const std::string& b)
{
    std::error_code ignored;
    return !a.empty() && !b.empty() && std::filesystem::equivalent(a, b, ignored);
}

void add_output(CLI::App& verb, OUTPUT_ARGUMENTS& arguments)
{
    verb.add_option("-o,--output", arguments.output, "where to save; - is standard output")->option_text("OUT");
    verb.add_flag("--in-place", arguments.in_place, "replace the input");
    verb.add_flag("--no-appearance", arguments.no_appearance,
                  "leave it to viewers to draw what changed (NeedAppearances)");
}

CPDFStatus check_output(const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments)
{
    const std::string& output = arguments.output.text;
    if (output.empty() != arguments.in_place)
        return wrong_usage("give either -o OUT or --in-place");
    if (is_same_file(output, input.path.text))
        return wrong_usage(in_quotes(output) + " is the input itself; give --in-place instead of -o to replace it");
    return {};
}

void note_xfa(CPDFDocument& document, const COMMAND_INPUT& input, bool rewritten)
{
    const std::string note = xfa_note(document, rewritten);
    put_note(input, note.empty() || rewritten ? note : note + " without --xfa");
}

CPDFStatus write_xfa(CPDFDocument& document, const COMMAND_INPUT& input)
{
    std::vector<std::string> notes;
    CPDFStatus status = document.write_xfa(&notes);
    for (size_t i = 0; status.ok() && i < notes.size(); ++i)
        complain(input.path.text, "note: " + notes[i]);
    return status;
}

void note_drawing(const CPDFDocument& document, const COMMAND_INPUT& input)
{
    for (const std::string& note : document.drawing_notes())
        complain(input.path.text, "note: " + note);
}

CPDFStatus save_output(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments)
{
    need_memory();
    CPDFStatus status;
    if (arguments.output.text != STANDARD_OUTPUT) {
        status = document.save(arguments.in_place ? input.path.text : arguments.output.text);
    } else {
        std::vector<uint8_t> bytes;
        status = document.save(bytes);
        put({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    note_adopted(document, input);
    note_drawing(document, input);
    return status;
}

CPDFStatus save_text(std::string_view text, const std::string& path)
{
    need_memory();
    if (!path.empty() && path != STANDARD_OUTPUT)
        return write_file(path, {text, -1}, {});
    put(text);
    return {};
}
