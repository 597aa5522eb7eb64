// The options of a batch that say what becomes of its rows.
#pragma once

#include <cstdint>

#include "tools/verb.h"

struct BATCH_ARGUMENTS {
    COMMAND_WORD range;
    COMMAND_WORD as;
    COMMAND_WORD name;
    COMMAND_WORD manifest;
    bool resume = false;
    bool skip_existing = false;
    bool updates_only = false;

    // After check_batch.
    size_t first = 1;
    size_t last = SIZE_MAX;
    bool is_archive = false;
};

struct FILL_ARGUMENTS;

// The options need `batch`.
void add_batch_options(CLI::App& verb, BATCH_ARGUMENTS& arguments, CLI::Option& batch);

// Whether the options go together, those that say where the result goes among them.
CPDFStatus check_batch(FILL_ARGUMENTS& arguments);
