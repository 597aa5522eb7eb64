// What a field shows of its value.
#pragma once

#include "appearance/widget_reader.h"

class CPDFFormCompute;
class CPDFOptionIndex;

// Sets text, rows and selection of the widget's look: the text of a field, the text shown for the option that a combo box
// has, the rows of a list box. `index` finds options of one field after the other; `compute` formats texts, null leaves
// them as they are.
void set_shown_value(const CPDFField& field, CPDFOptionIndex& index, CPDFFormCompute* compute,
                     WIDGET_DESCRIPTION& widget);
