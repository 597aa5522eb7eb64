// What a document has, at a glance, as JSON.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct PDF_SUMMARY;

// The kinds of fields that there are, by their public names, and how many of each.
std::vector<std::pair<std::string, size_t>> kinds_of(const PDF_SUMMARY& summary);

// One object on one line, with a line feed behind it: "fields" has the number of each kind that there is, "xfa" is "static",
// "dynamic" or null.
std::string summary_json(const PDF_SUMMARY& summary);
