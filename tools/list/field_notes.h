// What the dictionaries of a field and its widgets say that loading a form leaves aside.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/object.h"
#include "document/lookup/page_box.h"

class CPDFField;
class CPDFPageMap;

struct LISTED_WIDGET {
    uint32_t object;
    int32_t page;  // 0 for none
    std::optional<PDF_BOX> rect;
};

struct FIELD_NOTES {
    std::optional<std::string> label;         // "TU", UTF-8
    std::optional<std::string> mapping_name;  // "TM"
    std::vector<LISTED_WIDGET> widgets;
};

// Reads each of the dictionaries once. `widgets` are those of the field. A widget that no page lists stands on the page that it
// names itself.
FIELD_NOTES read_field_notes(const CPDFField& field, const std::vector<PDF_REF>& widgets, const CPDFPageMap& pages);

// The field's label, empty for none.
std::string label_of(const CPDFField& field);

// The first page that lists a widget of the field, its own dictionary or one below it without a name; 0 where none does.
int32_t page_of_field(const CPDFField& field, const CPDFPageMap& pages);
