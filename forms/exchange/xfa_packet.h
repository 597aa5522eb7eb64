// Finds the data set among the packets of an XFA stream (ISO 32000-2, 12.7.8).
#pragma once

#include <cstddef>
#include <string_view>

constexpr std::string_view XFA_DATA_NAMESPACE = "http://www.xfa.org/schema/xfa-data/1.0/";

// A byte range of the text, `end` behind its last byte.
struct PDF_XFA_RANGE {
    size_t begin;
    size_t end;
};

// Makes `packet` the element "datasets" of the data namespace, tags included, that is the root of `text` or the first
// such child of the root. False when there is none, for a text that is not one whole element or has a document type,
// and for one whose encoding is not an extension of ASCII in which UTF-8 can be written. Linear in `text`, which is
// taken as it comes.
bool find_xfa_datasets(std::string_view text, PDF_XFA_RANGE& packet);
