// What a document has, at a glance, as JSON.
#pragma once

#include <string>

struct PDF_SUMMARY;

// One object on one line, with a line feed behind it: "fields" has the number of each kind that there is, "xfa" is "static",
// "dynamic" or null.
std::string summary_json(const PDF_SUMMARY& summary);
