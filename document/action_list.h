// Every action of a document, as people read them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/object.h"
#include "file/status.h"

class CPDFAction;
class CPDFDocument;
class CPDFField;

// One action that starts at an event.
struct PDF_LISTED_ACTION {
    const CPDFField* field = nullptr;  // borrowed; the field that has it, null for the document and its pages
    int32_t page = 0;  // the page that has it or an annotation that does, from 1; 0 for a field and the document
    uint32_t object =
        0;              // the dictionary that has it or the object it stands in, of a widget where it isn't the field's
                        // own; 0 for an XFA event
    std::string event;  // such as keystroke, calculate, mouse up, focus, open, will print, script NAME, bookmark TITLE,
                        // XFA event
    std::string type;   // as the file spells it, such as JavaScript; empty when it is unknown
    std::string script;  // the text of a script
    std::string target;  // an address, a file, the name of a named action
    int32_t flags = 0;
    std::vector<std::string> fields;  // full names of the fields that it is about; all fields when there are none
};

// Calls `visit` for every action, those that follow another one behind it: of the document, its bookmarks, its pages with
// the annotations that show no field, and the fields in tree order; of the fields `only` and under it when that is not
// null. Fails with LIMIT, after a part of them, when there is more to read than the size of the file justifies.
CPDFStatus list_actions(CPDFDocument& document, CPDFField* only,
                        const std::function<void(const PDF_LISTED_ACTION&)>& visit);

// The fields in the order in which they are calculated, "CO"; what is no field of the form is left out.
std::vector<CPDFField*> calculation_order(CPDFDocument& document);
