// A document and its form at a glance.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "forms/field_kind.h"

struct PDF_SUMMARY {
    int32_t pages = 0;
    std::array<size_t, KIND_COUNT> fields{};  // with a name of their own, by PDF_FIELD_KIND_ID
    size_t filled = 0;                        // fields that have a value of their own; buttons that are on
    size_t required_empty = 0;                // required fields that do not
    size_t same_names = 0;                    // fields with the full name of one before them
    size_t signatures = 0;                    // signature fields that are signed
    size_t locked = 0;                        // fields that signatures lock
    size_t with_scripts = 0;                  // fields with scripts
    size_t document_scripts = 0;
    bool certified = false;
    bool encrypted = false;
    bool has_xfa = false;
    bool is_dynamic = false;     // an XFA form that viewers make of its data, whatever its fields are
    bool needs_drawing = false;  // the form asks viewers to draw its fields
    bool tagged = false;
};
