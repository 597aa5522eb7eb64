// The fields of a form as JSON.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "file/status.h"

class CPDFDocument;
class CPDFField;
struct PDF_XFA_VALUE;

enum class PDF_LISTED {
    NAMED,  // fields with a partial name of their own
    ALL,    // the others, too, under numbered names
};

bool is_listed(const CPDFField& field, PDF_LISTED what);

// Takes a text piece by piece; each is borrowed for the call.
using PDF_TEXT_SINK = std::function<void(std::string_view)>;

// Gives `sink` a JSON array with one object a line for each field in tree order, then one for each value of `data`, which
// are those of a form that has them in XFA data alone (CPDFDocument::xfa_values). Pieces have some 64 KiB. A document opened for
// FORM_AND_NOTES takes less time. Binds the widgets of the document, and changes nothing else. Fails, with an array that ends early,
// where the fields share more options than LIMIT_LISTED_OPTIONS, and where they take too much work or memory.
CPDFStatus write_list_json(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data,
                           const PDF_TEXT_SINK& sink);
