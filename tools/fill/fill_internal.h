// What the parts of the verb fill share.
#pragma once

#include <string>
#include <vector>

#include "document/fill/filler.h"
#include "tools/fill/batch_arguments.h"
#include "tools/fill/data_options.h"
#include "tools/save_output.h"
#include "tools/script_arguments.h"
#include "tools/verb.h"

struct FILL_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> assignments;
    COMMAND_WORD data;
    COMMAND_WORD batch;
    BATCH_ARGUMENTS batches;
    DATA_ARGUMENTS reading;
    OUTPUT_ARGUMENTS output;
    SCRIPT_ARGUMENTS scripts;
    COMMAND_WORD jobs{"1"};
    int job_count = 1;
    bool xfa = false;
    bool flatten = false;
    bool force = false;
    bool dry_run = false;
    bool report = false;

    PDF_FILL how() const { return force ? PDF_FILL::FORCE : PDF_FILL::RESPECT_READ_ONLY; }
    PDF_EDIT edit() const { return force ? PDF_EDIT::FORCE : PDF_EDIT::RESPECT_SIGNATURES; }
};

// Fills the template once for every row; returns a COMMAND_EXIT.
int fill_batch(const FILL_ARGUMENTS& arguments);
