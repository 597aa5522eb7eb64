// What a field shows of its value.
#pragma once

#include "appearance/widget_reader.h"

// Sets text, rows and selection of the widget's look: the text of a field, the text shown for the option that a combo box
// has, the options of a list box.
void set_shown_value(const CPDFField& field, WIDGET_DESCRIPTION& widget);
