// All formats in which the data of a form are exported.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/export/export_data.h"

// One format. "url", "xml" and "xfa" are those of submit_data.h, "json", "fdf", "xfdf" and "csv" those of export_data.h.
struct PDF_EXPORT_FORMAT {
    const char* name;
    bool has_full_names;  // and takes texts as they are shown
    bool is_whole;        // always the data of all fields
    CPDFStatus (*write)(CPDFDocument& document, const std::vector<CPDFField*>& fields, PDF_EXPORT_TEXTS texts,
                        std::string& out, std::vector<std::string>* notes);
};

std::span<const PDF_EXPORT_FORMAT> export_formats();

// Null for a name that no format has.
const PDF_EXPORT_FORMAT* find_export_format(std::string_view name);

// Makes `out` the data of `fields`, borrowed, or of all fields when there are none. Sentences about what other programs may not take
// are appended to `notes` unless that is null. Refuses `fields` and shown texts that the format does not take; on failure `out` is
// empty.
CPDFStatus export_form(CPDFDocument& document, const PDF_EXPORT_FORMAT& format, const std::vector<CPDFField*>& fields,
                       PDF_EXPORT_TEXTS texts, std::string& out, std::vector<std::string>* notes);
