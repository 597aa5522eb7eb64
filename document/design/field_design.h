// What a designer says about a field besides what it holds: how it is called and what its widgets look like.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "document/design/button_action.h"
#include "document/design/field_script.h"
#include "document/edit/edit.h"

class CPDFField;

// Values from 0 to 1 (ISO 32000-2, table 192). 0 of them: none (transparent); 1: gray; 3: RGB; 4: CMYK.
using PDF_FIELD_COLOR = std::vector<double>;

enum class PDF_BORDER_STYLE { SOLID, DASHED, BEVELED, INSET, UNDERLINE };
enum class PDF_ALIGNMENT { LEFT, CENTER, RIGHT };

// How the widgets of a field look; what is not given stays. Lengths are points.
struct PDF_WIDGET_STYLE {
    std::optional<std::string> font;       // see find_font
    std::optional<double> size;            // 0: fitted to the box
    std::optional<PDF_FIELD_COLOR> color;  // of text and marks
    std::optional<PDF_ALIGNMENT> alignment;
    std::optional<PDF_FIELD_COLOR> border_color;
    std::optional<PDF_FIELD_COLOR> background;
    std::optional<double> border_width;
    std::optional<PDF_BORDER_STYLE> border_style;
    // What a push button says, in UTF-8; of a check box or radio button the code of its mark in ZapfDingbats: 4 check,
    // l circle, 8 cross, u diamond, n square, H star.
    std::optional<std::string> caption;

    bool sets_text() const { return font || size || color; }
    bool sets_frame() const { return border_color || background || border_width || border_style || caption; }
    bool sets_any() const { return sets_text() || sets_frame() || alignment; }
};

// What is not given stays. Texts are UTF-8; an empty one takes the entry away.
struct PDF_FIELD_DESIGN {
    std::optional<std::string> label;         // "TU", what people are told that the field is
    std::optional<std::string> mapping_name;  // "TM", what the field is called in exported data
    PDF_WIDGET_STYLE style;
    std::optional<PDF_FIELD_FORMAT> format;  // of text fields and combo boxes, as is the calculation
    std::optional<PDF_CALCULATION> calculation;
    std::optional<PDF_BUTTON_ACTION> action;  // of push buttons

    bool sets_scripts() const { return format || calculation; }
    bool sets_any() const { return label || mapping_name || style.sets_any() || sets_scripts() || action; }
};

// Notes in `refusals` what of `design` does not fit the kinds of `fields` or can't be.
void check_design(EDIT_TARGET& target, std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design,
                  CPDFRefusals& refusals);

// Makes a design that was checked that of `fields`, whose widgets are bound, without drawing them. Fails where a dictionary
// is missing or memory runs out, with a part of the fields perhaps changed.
CPDFStatus design_fields(EDIT_TARGET& target, std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design);
