// What a field shows of its value.
#pragma once

#include <optional>
#include <string>

class CPDFField;
class CPDFFormCompute;
class CPDFOptionIndex;
struct WIDGET_DESCRIPTION;

// Sets text, rows and selection of the widget's look: the text of a field, the text shown for the option that a combo box
// has, the rows of a list box. `index` finds options of one field after the other; `compute` formats texts, null leaves
// them as they are.
void set_shown_value(const CPDFField& field, CPDFOptionIndex& index, CPDFFormCompute* compute,
                     WIDGET_DESCRIPTION& widget);

// What the format scripts of a text field or combo box make of its value, in UTF-8; nothing where that is the value itself, or
// nothing formats it.
std::optional<std::string> formatted_text(const CPDFField& field, CPDFOptionIndex& index, CPDFFormCompute& compute);
