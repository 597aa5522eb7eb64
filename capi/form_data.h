// Form data put into a document, all of them or none.
#pragma once

#include <string>

#include "capi/document.h"
#include "formats/data_rules.h"

// What the format is called in formats/; null where form data are not written in it. The first four are read, too.
const char* format_name(fw_format format);

// Puts the values into the fields and calculates the form; what is refused is told for all of them. What becomes of each name is
// appended to `report`, a line of JSON each, unless that is null.
CPDFStatus fill_document(fw_document& at, const CPDFFormData& data, unsigned flags, std::string* report);

// The same for what a file says, whose names and cells are made those of fields first.
CPDFStatus fill_from_file(fw_document& at, CPDFFormData data, unsigned flags, std::string* report);

// Hands out such lines as an array, none where the call failed before there were any. Returns `code`, or why that failed.
fw_code hand_out_report(fw_code code, const std::string& lines, char** report, size_t* size);
