#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <thread>
#include <tuple>

#include "document/document.h"
#include "tools/batch/ending.h"
#include "tools/batch/manifest.h"
#include "tools/batch/zip_archive.h"
#include "tools/fill/batch_job.h"

namespace {

using DOCUMENTS = std::vector<std::unique_ptr<CPDFDocument>>;

// Runs every job in a thread of its own; the first one here. False when memory ran out.
bool run_jobs(std::vector<BatchJob>& jobs, BatchOutput& output)
{
    std::atomic<bool> good = true;
    const auto run = [&good, &output](BatchJob& job) {
        try {
            job.run();
        } catch (...) {  // nothing but memory runs out here
            good = false;
            output.give_up();
        }
    };
    std::vector<std::jthread> threads;
    for (size_t i = 1; i < jobs.size(); ++i)
        threads.emplace_back(run, std::ref(jobs[i]));
    run(jobs.front());
    threads.clear();  // waits for them
    return good;
}

// The folder is not made: a mistyped one would leave the files where nobody looks for them.
bool has_folder(const std::string& folder)
{
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored))
        return true;
    complain(folder, "there is no such folder");
    return false;
}

// The pattern for the names of the outputs, or of the entries of the archive.
std::string pattern_of(const FILL_ARGUMENTS& arguments)
{
    const BATCH_ARGUMENTS& batch = arguments.batches;
    if (!batch.is_archive)
        return arguments.output.output.text;
    const char* const name = batch.updates_only ? "{row}.update" : "{row}.pdf";
    return batch.name.text.empty() ? name : batch.name.text;
}

CPDFStatus check_pattern(const OutputPattern& pattern, bool is_parsed)
{
    if (!is_parsed)
        return wrong_usage("the output name has a brace that is none of a column: {{ stands for a brace itself");
    if (!pattern.differs())
        return wrong_usage(
            "the output name uses no column, so that all rows had one output: give one such as out/{id}.pdf");
    return {};
}

// Lets damage in the pages be noticed now, so that all rows go into the same bytes.
void settle(CPDFDocument& document)
{
    std::ignore = document.reading();
}

// Opens the template for the first job.
bool open_template(CPDFDocument& document, const FILL_ARGUMENTS& arguments)
{
    document.set_scripts(arguments.scripts.scripts, arguments.scripts.seconds);
    if (!open_document(document, arguments.input) || !(arguments.force || may_fill(document, arguments.input)))
        return false;
    settle(document);
    mend_document(document, arguments.input);
    document.set_drawing(arguments.output.drawing());
    return true;
}

bool open_more(DOCUMENTS& documents, const FILL_ARGUMENTS& arguments, size_t rows)
{
    while (documents.size() < std::min(static_cast<size_t>(arguments.job_count), rows)) {
        documents.push_back(std::make_unique<CPDFDocument>());
        CPDFDocument& document = *documents.back();
        document.set_scripts(arguments.scripts.scripts, arguments.scripts.seconds);
        const CPDFStatus status =
            document.open(arguments.input.path.text, PDF_LOAD::WHOLE_FORM, arguments.input.password.text);
        if (!status.ok()) {
            complain(arguments.input.path.text, status.text);
            return false;
        }
        settle(document);
        document.mend();
        document.set_drawing(arguments.output.drawing());
    }
    return true;
}

bool open_rows(BATCH& batch, CPDFDocument& document, const OutputPattern& pattern)
{
    const FILL_ARGUMENTS& arguments = batch.arguments;
    if (!batch.rows.open(arguments.batch.text, arguments.reading) || !batch.rows.check_columns(document) ||
        !batch.rows.add_constants(document, arguments))
        return false;
    if (!arguments.batches.is_archive) {
        if (!has_folder(pattern.fixed_folder()))
            return false;
        batch.rows.protect(arguments.input.path.text);
        for (const COMMAND_WORD& file : {arguments.batch, arguments.data, arguments.reading.map})
            batch.rows.protect(file.text);
    }
    batch.rows.select(arguments.batches.first, arguments.batches.last);
    return batch.rows.check_outputs();
}

// All that decides on the outputs besides the rows.
std::string run_of(const BATCH& batch)
{
    const FILL_ARGUMENTS& arguments = batch.arguments;
    std::string run = batch.mark.sha256 + " " + arguments.scripts.word.text;
    for (const bool flag : {arguments.xfa, arguments.flatten, arguments.force, arguments.output.no_appearance,
                            arguments.batches.updates_only})
        run += flag ? '1' : '0';
    return run;
}

bool open_outputs(BATCH& batch, const CPDFDocument& document, BatchManifest& manifest, ZipArchive& archive)
{
    const FILL_ARGUMENTS& arguments = batch.arguments;
    const BATCH_ARGUMENTS& options = arguments.batches;
    const std::string& path = arguments.input.path.text;
    if (arguments.dry_run || !(options.is_archive || options.updates_only || !options.manifest.text.empty()))
        return true;
    CPDFStatus status = batch.file.open(path);
    if (status.ok() && options.updates_only && !batch.is_file_of(document))
        status =
            CPDFStatus::failed(PDF_CODE::DAMAGED, "the file was repaired, so that an update does not belong to it");
    if (!status.ok()) {
        complain(path, status.text);
        return false;
    }
    batch.mark = TEMPLATE_MARK::of(path, {reinterpret_cast<const char*>(batch.file.data()), batch.file.size()});
    if (options.is_archive)
        status = archive.open(arguments.output.output.text);
    if (!status.ok()) {
        complain(arguments.output.output.text, status.text);
        return false;
    }
    if (options.manifest.text.empty())
        return true;
    // An archive that was not ended is not there, so its rows are done anew.
    const auto start = options.is_archive ? BatchManifest::START::AGAIN
                       : options.resume   ? BatchManifest::START::RESUME
                                          : BatchManifest::START::NEW;
    status = manifest.open(options.manifest.text, start, run_of(batch));
    if (!status.ok())
        complain(options.manifest.text, status.text);
    batch.manifest = &manifest;
    if (!options.is_archive)
        batch.rows.protect(options.manifest.text);
    return status.ok();
}

BatchOutput::SETUP setup_of(const BATCH& batch, ZipArchive& archive)
{
    const FILL_ARGUMENTS& arguments = batch.arguments;
    BatchOutput::SETUP setup;
    setup.rows_file = batch.rows.path();
    setup.first = arguments.batches.first;
    setup.rows = batch.rows.count();
    setup.reports = arguments.output.output.text == "-" ? stderr : stdout;
    setup.good = arguments.dry_run ? "good" : "written";
    setup.manifest = batch.manifest;
    setup.archive = arguments.batches.is_archive && !arguments.dry_run ? &archive : nullptr;
    return setup;
}

// Does the rows; returns a COMMAND_EXIT.
int run_batch(BATCH& batch, const DOCUMENTS& documents, ZipArchive& archive)
{
    const FILL_ARGUMENTS& arguments = batch.arguments;
    const BatchOutput::SETUP setup = setup_of(batch, archive);
    BatchOutput output(setup);
    std::vector<BatchJob> jobs;
    jobs.reserve(documents.size());
    for (const auto& document : documents)
        jobs.emplace_back(*document, batch, output);
    const bool done = run_jobs(jobs, output);
    output.finish();
    size_t skipped_scripts = 0;
    for (const auto& document : documents)
        skipped_scripts = std::max(skipped_scripts, document->skipped_scripts());
    note_skipped_scripts(skipped_scripts, arguments.input);
    if (!done)
        complain(batch.rows.path(), "there is not enough memory");
    if (!done || output.has_failed() || BatchEnding::number()) {
        if (setup.archive)
            complain(arguments.output.output.text, "the archive is not written, since the rows were not all done");
        return COMMAND_REFUSED;
    }
    if (setup.archive) {
        if (const CPDFStatus status = archive.finish(); !status.ok())
            return end_with(status, arguments.output.output.text);
    }
    if (output.count(ROW_RESULT::FAILED))
        return COMMAND_REFUSED;
    const int end = put_done();
    return end == COMMAND_DONE && output.count(ROW_RESULT::REFUSED) ? COMMAND_PARTLY : end;
}

}  // namespace

int fill_batch(const FILL_ARGUMENTS& arguments)
{
    OutputPattern pattern;
    const std::string text = pattern_of(arguments);
    const bool is_parsed = pattern.parse(text);
    if (const CPDFStatus usage = check_pattern(pattern, is_parsed); !usage.ok() && !text.empty())
        return complain_usage(usage.text);
    BATCH batch(arguments, text.empty() ? nullptr : &pattern);
    DOCUMENTS documents;
    documents.push_back(std::make_unique<CPDFDocument>());
    BatchManifest manifest;
    ZipArchive archive;
    if (!open_template(*documents.front(), arguments) || !open_rows(batch, *documents.front(), pattern) ||
        !open_outputs(batch, *documents.front(), manifest, archive) ||
        !open_more(documents, arguments, batch.rows.count()))
        return COMMAND_REFUSED;
    note_xfa(*documents.front(), arguments.input, arguments.xfa);
    int end = COMMAND_DONE;
    {
        const BatchEnding ending;
        end = run_batch(batch, documents, archive);
    }
    if (const int number = BatchEnding::number()) {
        std::fflush(stdout);
        std::raise(number);
    }
    return end;
}
