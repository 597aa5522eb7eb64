// Changes of the structure of a form as JSON.
#pragma once

#include <optional>
#include <string_view>

#include "document/design/field_design.h"
#include "document/design/move_field.h"
#include "document/edit/add_field.h"
#include "document/edit/set_field.h"

// Each reads one object. Its keys, none of which must be there but for those of a new field:
//
//     "readOnly" "required" "noExport" "multiline" "password" "comb" "edit" "multiSelect"   true or false: the flags
//     "maxLength"   a whole number of characters; null for no limit
//     "options"     a list of texts, or of {"value": TEXT, "text": TEXT} where what is shown is another text
//     "default"     a text, true or false, or a list of texts
//     "page"        the page, from 1, of places that name none
//     "places"      where the widgets stand: a list of {"page": 1, "rect": [X, Y, WIDTH, HEIGHT]}, in points from the lower left
//                   corner of the page
//     "label" "mappingName" "font" "fontSize" "color" "align" "background" "borderColor" "borderWidth" "borderStyle" "caption"
//     "action" "format" "calculate" "mark"   the names and words of design_words(); sizes may be numbers
//
// An unknown key, and a value that makes no sense under its key, is refused in a sentence that names the key, text that is no
// JSON with its place.

// For CPDFDocument::add_field and design_fields. Besides, "kind" ("text", "check", "radio", "combo", "list", "push" or
// "signature") and "name", the full name, which must be there, and "states", a list of texts: the names of on states. Places are on
// the first page where nothing else is said.
CPDFStatus read_new_field(std::string_view json, PDF_NEW_FIELD& field, PDF_FIELD_DESIGN& design);

// For CPDFDocument::change_field, design_fields and move_widgets. A flag that is false is taken away; `move` is nothing where neither
// "places" nor "page" is there. Places are on the page where the widget is where nothing else is said.
CPDFStatus read_field_change(std::string_view json, PDF_FIELD_CHANGE& change, PDF_FIELD_DESIGN& design,
                             std::optional<PDF_MOVE>& move);
