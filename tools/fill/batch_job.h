// What a thread of a batch does: one template, opened, and the rows that go into it.
#pragma once

#include "file/file_bytes.h"
#include "tools/batch/sha256.h"
#include "tools/batch/template_mark.h"
#include "tools/fill/batch_output.h"
#include "tools/fill/batch_rows.h"
#include "tools/fill/fill_internal.h"

class BatchManifest;

// What all jobs share.
struct BATCH {
    BATCH(const FILL_ARGUMENTS& all, const OutputPattern* pattern) : arguments(all), rows(pattern) {}

    const FILL_ARGUMENTS& arguments;  // borrowed from the caller
    BatchRows rows;
    BatchManifest* manifest = nullptr;  // borrowed, null for none
    CPDFFileBytes file;                 // the template's, read for a manifest, updates and archives
    TEMPLATE_MARK mark;                 // of it

    // Whether these are the bytes that the document was opened from, and no repaired copy.
    bool is_file_of(const CPDFDocument& document) const;
};

class BatchJob {
public:
    BatchJob(CPDFDocument& document, BATCH& batch, BatchOutput& output)
        : m_document(document), m_batch(batch), m_arguments(batch.arguments), m_output(output)
    {
    }

    // Takes rows until there is none or the end is asked for.
    void run();

private:
    BATCH_RESULT do_row(const BATCH_ROW& row);
    bool is_done(const BATCH_ROW& row, BATCH_RESULT& result) const;
    void fill_row(const BATCH_ROW& row, BATCH_RESULT& result);
    CPDFStatus store(const BATCH_ROW& row, BATCH_RESULT& result);
    void learn_bytes();
    void note_row();

    CPDFDocument& m_document;  // borrowed from the caller, as the following
    BATCH& m_batch;
    const FILL_ARGUMENTS& m_arguments;
    BatchOutput& m_output;
    const uint8_t* m_bytes = nullptr;  // of the document, for which the following holds; borrowed from it
    bool m_is_file = false;
    Sha256 m_sum;
};
