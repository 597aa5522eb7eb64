#include "tools/fill/batch_arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "document/lookup/field_text.h"
#include "formats/import/form_data.h"
#include "tools/fill/fill_internal.h"

namespace {

bool read_number(std::string_view text, size_t& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// "5-9", "5-", "-9" and "5".
CPDFStatus read_range(BATCH_ARGUMENTS& arguments)
{
    const std::string& text = arguments.range.text;
    if (text.empty())
        return {};
    const size_t dash = text.find('-');
    const std::string_view first = std::string_view(text).substr(0, dash);
    const std::string_view last = dash == std::string::npos ? first : std::string_view(text).substr(dash + 1);
    if (text != "-" && (first.empty() || read_number(first, arguments.first)) &&
        (last.empty() || read_number(last, arguments.last)) && arguments.first >= 1 &&
        arguments.first <= arguments.last)
        return {};
    return wrong_usage(in_quotes(text) + " are no rows: give --rows A-B, counted from 1");
}

CPDFStatus check_archive(const FILL_ARGUMENTS& arguments)
{
    const BATCH_ARGUMENTS& batch = arguments.batches;
    if (!batch.is_archive && !batch.name.text.empty())
        return wrong_usage("--name is for the entries of an archive: give -o OUT.zip or --as zip");
    if (batch.is_archive && (batch.resume || batch.skip_existing))
        return wrong_usage("an archive is written as a whole: give no --resume and no --skip-existing");
    const std::string& name = batch.name.text;
    if (name.starts_with('/') || name.find("..") != std::string::npos)
        return wrong_usage("the name " + in_quotes(name) + " in the archive would lead out of it");
    return {};
}

// What is written as a file of its own must be none that is read, nor the other one.
CPDFStatus check_files(const FILL_ARGUMENTS& arguments)
{
    const std::string& manifest = arguments.batches.manifest.text;
    const std::string archive = arguments.batches.is_archive ? arguments.output.output.text : "";
    for (const std::string& written : {manifest, archive}) {
        for (const COMMAND_WORD& read :
             {arguments.input.path, arguments.batch, arguments.data, arguments.reading.map}) {
            if (is_same_file(written, read.text))
                return wrong_usage(in_quotes(written) + " is a file that the batch reads");
        }
    }
    if (!manifest.empty() && (manifest == archive || is_same_file(manifest, archive)))
        return wrong_usage(in_quotes(manifest) + " can't be both the archive and the manifest");
    if (manifest == "-")
        return wrong_usage("a manifest is a file, not standard output");
    return {};
}

}  // namespace

void add_batch_options(CLI::App& verb, BATCH_ARGUMENTS& arguments, CLI::Option& batch)
{
    const auto group = [&batch](CLI::Option* option) {
        return option->group("Batches")->needs(&batch)->option_text(" ");  // or the help would say what it needs
    };
    group(verb.add_option("--rows", arguments.range, "only rows A to B, from 1"))->option_text("A-B");
    group(verb.add_option("--as", arguments.as,
                          "zip: write one archive, which -o names; so does a name that ends with .zip"))
        ->option_text("zip");
    group(verb.add_option("--name", arguments.name, "pattern for the names in the archive; {row}.pdf by default"))
        ->option_text("NAME");
    group(verb.add_flag("--skip-existing", arguments.skip_existing, "pass over rows whose output is there"));
    group(verb.add_option("--manifest", arguments.manifest, "append a line of JSON for each row that ends"))
        ->option_text("FILE");
    group(verb.add_flag("--resume", arguments.resume, "pass over rows that the manifest says are done"));
    group(verb.add_flag("--updates-only", arguments.updates_only,
                        "write only what follows the bytes of FILE; formwork join makes the filled file of both"));
}

CPDFStatus check_batch(FILL_ARGUMENTS& arguments)
{
    BATCH_ARGUMENTS& batch = arguments.batches;
    const std::string& output = arguments.output.output.text;
    if (!batch.as.text.empty() && batch.as.text != "zip")
        return wrong_usage("--as takes zip, not " + in_quotes(batch.as.text));
    batch.is_archive = !batch.as.text.empty() || (suffix_of(output) == ".zip" && output.find('{') == std::string::npos);
    if (arguments.dry_run && (!batch.manifest.text.empty() || batch.skip_existing))
        return wrong_usage("--dry-run writes nothing: give no --manifest and no --skip-existing with it");
    if (batch.resume && batch.manifest.text.empty())
        return wrong_usage("--resume goes by a manifest: give --manifest FILE");
    if (CPDFStatus status = check_archive(arguments); !status.ok())
        return status;
    if (CPDFStatus status = check_files(arguments); !status.ok())
        return status;
    const bool has_place = output == "-" ? batch.is_archive : !output.empty() || arguments.dry_run;
    if (!has_place || arguments.output.in_place)
        return wrong_usage(
            "--batch writes many files: give -o a pattern such as out/{id}.pdf, or the name of a .zip file");
    return read_range(batch);
}
