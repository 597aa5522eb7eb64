#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>

#include "document/document.h"
#include "formats/apply_data.h"
#include "tools/fill/batch_output.h"
#include "tools/fill/batch_rows.h"
#include "tools/fill/fill_internal.h"
#include "tools/fill/fill_report.h"

namespace {

// One template, opened, and the rows that go into it.
class BatchJob {
public:
    BatchJob(CPDFDocument& document, const FILL_ARGUMENTS& arguments, BatchRows& rows, BatchOutput& output)
        : m_document(document), m_arguments(arguments), m_rows(rows), m_output(output)
    {
    }

    void run()
    {
        BATCH_ROW row;
        while (m_rows.take(m_document, row)) {
            std::string report;
            CPDFStatus status = row.status.ok() ? fill_row(row, report) : row.status;
            need_memory();
            m_output.done(row.number, std::move(status), std::move(report));
        }
    }

private:
    CPDFStatus fill_row(const BATCH_ROW& row, std::string& report)
    {
        std::vector<PDF_DATA_ITEM> items = plan_data(m_document, row.data, m_arguments.how());
        if (mend_document(m_document, m_arguments.input))
            items = plan_data(m_document, row.data, m_arguments.how());
        for (const PDF_DATA_ITEM& item : items) {
            if (m_rows.is_new(item.entry.name))
                note_same_names(m_document, m_arguments.input, item.entry.name);
        }
        CPDFStatus status = refusals_of(items);
        const bool is_written = status.ok() && !m_arguments.dry_run;
        if (!is_written && !m_arguments.report) {
            note_row();
            m_document.revert();  // what scripts did when they looked at the values
            return status;
        }
        std::vector<CPDFField*> calculated;
        CPDFStatus written = apply_data(m_document, items, &calculated);
        if (m_arguments.report)
            append_report(report, m_document, items, calculated, row.number);
        if (written.ok() && is_written && m_arguments.xfa)
            written = write_xfa(m_document, m_arguments.input);
        if (written.ok() && is_written && m_arguments.flatten)
            written = m_document.flatten(m_arguments.edit());
        need_memory();
        if (written.ok() && is_written)
            written = m_document.save(row.output);
        note_row();
        m_document.revert();
        return is_written ? written : status;
    }

    void note_row()
    {
        note_drawing(m_document, m_arguments.input);
        note_script_run(m_document, m_arguments.scripts, m_arguments.input);
    }

    CPDFDocument& m_document;  // borrowed from the caller, as the following
    const FILL_ARGUMENTS& m_arguments;
    BatchRows& m_rows;
    BatchOutput& m_output;
};

// Runs every job in a thread of its own; the first one here. False when memory ran out.
bool run_jobs(std::vector<BatchJob>& jobs)
{
    std::atomic<bool> good = true;
    const auto run = [&good](BatchJob& job) {
        try {
            job.run();
        } catch (...) {  // nothing but memory runs out here
            good = false;
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

}  // namespace

int fill_batch(const FILL_ARGUMENTS& arguments)
{
    OutputPattern pattern;
    const bool has_output = !arguments.output.output.text.empty();
    if (!pattern.parse(arguments.output.output.text))
        return complain_usage("the output name has a brace that is none of a column: {{ stands for a brace itself");
    if (has_output && pattern.columns().empty())
        return complain_usage(
            "the output name uses no column, so that all rows had one output: give one such as out/{id}.pdf");
    BatchRows rows(has_output ? &pattern : nullptr);
    std::vector<std::unique_ptr<CPDFDocument>> documents;
    documents.push_back(std::make_unique<CPDFDocument>());
    documents.front()->set_scripts(arguments.scripts.scripts, arguments.scripts.seconds);
    if (!open_document(*documents.front(), arguments.input) ||
        !(arguments.force || may_fill(*documents.front(), arguments.input)) ||
        !rows.open(arguments.batch.text, arguments.reading) || !rows.check_columns(*documents.front()) ||
        !rows.add_constants(*documents.front(), arguments) || !has_folder(pattern.fixed_folder()))
        return COMMAND_REFUSED;
    rows.protect(arguments.input.path.text);
    rows.protect(arguments.batch.text);
    while (documents.size() < std::min(static_cast<size_t>(arguments.job_count), rows.count())) {
        documents.push_back(std::make_unique<CPDFDocument>());
        documents.back()->set_scripts(arguments.scripts.scripts, arguments.scripts.seconds);
        if (const CPDFStatus status =
                documents.back()->open(arguments.input.path.text, PDF_LOAD::WHOLE_FORM, arguments.input.password.text);
            !status.ok())
            return end_with(status, arguments.input.path.text);
    }
    for (const auto& document : documents)
        document->set_drawing(arguments.output.drawing());
    note_xfa(*documents.front(), arguments.input, arguments.xfa);
    BatchOutput output(arguments.batch.text, rows.count());
    std::vector<BatchJob> jobs;
    jobs.reserve(documents.size());
    for (const auto& document : documents)
        jobs.emplace_back(*document, arguments, rows, output);
    const bool done = run_jobs(jobs);
    const size_t refused = output.finish();
    size_t skipped = 0;
    for (const auto& document : documents)
        skipped = std::max(skipped, document->skipped_scripts());
    note_skipped_scripts(skipped, arguments.input);
    if (!done)
        complain(arguments.batch.text, "there is not enough memory");
    return refused || !done ? COMMAND_REFUSED : put_done();
}
