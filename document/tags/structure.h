// The structure of a tagged document (ISO 32000-2, 14.7 and 14.8), kept in step with its widgets: each has a "Form" element
// with an object reference, which the parent tree leads back to.
#pragma once

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/edit/edit.h"

class CPDFAnnotWidget;

// Whether the document has a structure tree. Where it has none, nothing here changes anything.
bool is_tagged(const EDIT_TARGET& target);

// Makes an element for each of these widgets that is on a page, behind those of its page and of the pages before, and lets
// these pages be walked in the order of the structure where they say nothing else. `label` is in UTF-8, empty for none.
PDF_CHANGE_RESULT tag_widgets(EDIT_TARGET& target, std::span<CPDFAnnotWidget* const> widgets, const std::string& label);

// A widget that an element refers to, by the number that leads there.
struct PDF_TAGGED_WIDGET {
    PDF_REF widget;
    int32_t number;
};

// The widgets that have such a number.
std::vector<PDF_TAGGED_WIDGET> tagged_widgets(EDIT_TARGET& target, const std::vector<PDF_REF>& widgets);

// Takes the object references of these out of the structure, and elements in which nothing is left; the widgets
// themselves may be gone. What damage hides stays.
PDF_CHANGE_RESULT untag_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets);

// Widgets that are on other pages now keep their places in the structure, which is told the pages.
PDF_CHANGE_RESULT repage_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets);

// Makes `label` the alternate description of the "Form" elements of these.
PDF_CHANGE_RESULT label_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets,
                                const std::string& label);

// The places of annotations, by object number, in the order of the structure.
std::unordered_map<uint32_t, int32_t> structure_order(EDIT_TARGET& target);
