#include "tools/fill/batch_job.h"

#include <sys/stat.h>

#include <cstring>

#include "document/document.h"
#include "file/output_file.h"
#include "formats/apply_data.h"
#include "formats/fill_report.h"
#include "tools/batch/ending.h"
#include "tools/batch/manifest.h"

namespace {

bool is_there(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0;
}

ROW_RESULT result_of(const CPDFStatus& status)
{
    return status.code == PDF_CODE::IO || status.code == PDF_CODE::NO_MEMORY ? ROW_RESULT::FAILED : ROW_RESULT::REFUSED;
}

}  // namespace

bool BATCH::is_file_of(const CPDFDocument& document) const
{
    return file.size() == document.size() && std::memcmp(file.data(), document.data(), file.size()) == 0;
}

void BatchJob::run()
{
    BATCH_ROW row;
    while (!BatchEnding::number() && !m_output.has_failed() && m_batch.rows.take(m_document, row)) {
        BATCH_RESULT result = do_row(row);
        need_memory();
        m_output.done(std::move(result));
    }
}

BATCH_RESULT BatchJob::do_row(const BATCH_ROW& row)
{
    BATCH_RESULT result;
    result.row = row.number;
    result.output = row.output;
    if (m_batch.manifest)
        result.mark = m_batch.manifest->mark_of(row.data, row.status.ok() ? row.output : row.status.text);
    if (is_done(row, result))
        return result;
    if (row.status.ok())
        fill_row(row, result);
    else
        result.refuse(ROW_RESULT::REFUSED, row.status.text);
    return result;
}

// A row that was refused is told once more, and done again when anything about it is another.
bool BatchJob::is_done(const BATCH_ROW& row, BATCH_RESULT& result) const
{
    BATCH_RESULT before = result;
    before.is_known = m_batch.manifest && m_batch.manifest->is_known(before);
    if (before.is_known && before.result == ROW_RESULT::REFUSED) {
        result = before;
        return true;
    }
    const bool is_known = before.is_known && before.result != ROW_RESULT::FAILED;
    if (!row.status.ok() || !(is_known || m_arguments.batches.skip_existing) || !is_there(row.output))
        return false;
    finish_left_output(row.output);
    result.is_known = is_known;
    result.result = ROW_RESULT::SKIPPED;
    return true;
}

void BatchJob::fill_row(const BATCH_ROW& row, BATCH_RESULT& result)
{
    std::vector<PDF_DATA_ITEM> items = plan_data(m_document, row.data, m_arguments.how());
    if (mend_document(m_document, m_arguments.input))
        items = plan_data(m_document, row.data, m_arguments.how());
    for (const PDF_DATA_ITEM& item : items) {
        if (m_batch.rows.is_new(item.entry.name))
            note_same_names(m_document, m_arguments.input, item.entry.name);
        if (!item.status.ok())
            result.refuse(ROW_RESULT::REFUSED, item.status.text);
    }
    const bool is_written = result.refusals.empty() && !m_arguments.dry_run;
    CPDFStatus status;
    if (is_written || m_arguments.report) {
        std::vector<CPDFField*> calculated;
        status = apply_data(m_document, items, &calculated);
        if (m_arguments.report)
            append_report(result.report, m_document, items, calculated, row.number);
    }
    if (is_written && status.ok() && m_arguments.xfa)
        status = write_xfa(m_document, m_arguments.input);
    if (is_written && status.ok() && m_arguments.flatten)
        status = m_document.flatten(m_arguments.edit());
    need_memory();
    if (is_written && status.ok())
        status = store(row, result);
    if (is_written && !status.ok())
        result.refuse(result_of(status), std::move(status.text));
    note_row();
    m_document.revert();  // what scripts did when they looked at the values, too
}

CPDFStatus BatchJob::store(const BATCH_ROW& row, BATCH_RESULT& result)
{
    std::string update;
    if (CPDFStatus status = m_document.make_update(update); !status.ok())
        return status;
    learn_bytes();
    const bool is_update = m_arguments.batches.updates_only;
    if (is_update && !m_is_file)
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "the file was repaired, so that an update does not belong to it");
    if (is_update)
        update.insert(0, m_batch.mark.line());
    if (m_batch.manifest)
        result.sha256 = (is_update ? Sha256() : m_sum).add(update).hex();
    if (!m_arguments.batches.is_archive)
        return is_update ? write_file(row.output, {update, -1}, {}) : m_document.write(row.output, update);
    const auto* const bytes = reinterpret_cast<const char*>(m_document.data());
    if (!is_update && m_is_file)
        result.head = {reinterpret_cast<const char*>(m_batch.file.data()), m_batch.file.size()};
    else if (!is_update)
        update.insert(0, bytes, m_document.size());
    result.tail = std::move(update);
    return {};
}

// They are others only where the document was repaired in between.
void BatchJob::learn_bytes()
{
    if (m_bytes == m_document.data() || !m_batch.file.data())
        return;
    m_bytes = m_document.data();
    m_is_file = m_batch.is_file_of(m_document);
    m_sum = Sha256().add({reinterpret_cast<const char*>(m_bytes), m_document.size()});
}

void BatchJob::note_row()
{
    note_drawing(m_document, m_arguments.input);
    note_script_run(m_document, m_arguments.scripts, m_arguments.input);
}
