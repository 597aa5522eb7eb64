// Putting a value into a field of any kind: first a plan that checks, then the change.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "core/object.h"
#include "document/lookup/field_options.h"
#include "file/status.h"
#include "forms/field_kind.h"

class CPDFAnnotWidget;
class CPDFField;
class CPDFWidgetBinder;
class CPDFXRefTable;

// A value for a field, in UTF-8: a text, a state name, an export value or a shown text; true or false for a check box;
// several options of a list box.
using CPDFValue = std::variant<std::string, bool, std::vector<std::string>>;

// The texts of a value: one, or those of a list; "true" and "false" are texts, too.
std::vector<std::string> texts_of(const CPDFValue& value);

// Whether a read-only field may be changed.
enum class PDF_FILL {
    RESPECT_READ_ONLY,
    FORCE,
};

// What a word for a radio group or check box is looked up as first, where it is one button's state and another's export value.
enum class PDF_WORDS {
    STATES_FIRST,  // as lists of fields print them
    EXPORT_FIRST,  // as other programs write them into data files
};

// What filling one field will do. Made by plan_fill, carried out by apply_fill while the form is as it was.
struct PDF_FILL_PLAN {
    enum ACTION {
        SET_TEXT,     // a text field, or free text in an editable combo box: `text`
        SET_BUTTON,   // a check box or radio group: the widget `button` on and those that go with it, -1 for all off
        SET_OPTIONS,  // a choice: the options `options`, in ascending order
        KEEP,         // nothing: the field has the value already, though it would not take it
    };

    CPDFField* field = nullptr;  // borrowed from the form; the field whose value changes
    ACTION action = SET_TEXT;
    std::string text;
    int button = -1;
    std::vector<int> options;
    bool coerced = false;  // the value was understood as something else than it said, such as a shown text
};

// What a widget of a button field stands for.
struct PDF_BUTTON_CHOICE {
    CPDFAnnotWidget* widget;   // borrowed from the binder; null of a field that is not made yet
    std::string state;         // the on state
    std::string export_value;  // from "Opt" by position, else the state
};

// What a field is, as far as values are checked against it: a field of a form, or what one is to become.
struct PDF_FIELD_SHAPE {
    const PDF_FIELD_KIND* kind;  // a row of the table
    uint32_t flags = 0;
    int32_t max_length = 0;                  // of a text field; 0 for no limit
    CPDFFieldOptions options;                // of a choice field
    std::vector<PDF_BUTTON_CHOICE> buttons;  // of a button field, in the order of its widgets
};

PDF_FIELD_SHAPE shape_of(const CPDFField& field, const CPDFWidgetBinder& widgets);

// Decides what `value` means for a field of this shape, whatever it has now; all of `plan` but the field. The refusal, of
// a kind that takes no value or not such a one, a text longer than the maximum, and a state or option that isn't there,
// is the end of a sentence that begins with the field.
CPDFStatus plan_value(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_WORDS words, PDF_FILL_PLAN& plan);

// What a plan for this shape stores as "V", and what "DV" is for the same value; an empty text for no option.
void make_value(const PDF_FIELD_SHAPE& shape, const PDF_FILL_PLAN& plan, CPDFObj& out);

// Decides what `value` means for `field`; for a field without a name, which only shows the value of the one above it, for
// that one. Refuses, in a sentence that names the field, what plan_value does and a read-only field; nothing is changed. A
// value that the field has already is never refused: forms in use hold what their fields don't take, and so do exports of
// those.
CPDFStatus plan_fill(CPDFField& field, const CPDFValue& value, PDF_FILL fill, PDF_WORDS words,
                     const CPDFWidgetBinder& widgets, PDF_FILL_PLAN& plan);

// Makes `plan` keep what the field has, and returns true, when that is `value`.
bool plan_keep(CPDFField& field, const CPDFValue& value, PDF_FILL_PLAN& plan);

// Carries out a plan: the field's memory, its dictionary ("V", "I"; "RV" is dropped) and all its widgets' states. Appends
// the fields whose values it changes to `changed`. Fails where the field's dictionary is missing or memory runs out.
CPDFStatus apply_fill(CPDFXRefTable& xref, const PDF_FILL_PLAN& plan, const CPDFWidgetBinder& widgets,
                      std::vector<CPDFField*>& changed);

// What the widgets of a button field stand for, in their order.
std::vector<PDF_BUTTON_CHOICE> button_choices(const CPDFField& field, const CPDFWidgetBinder& widgets);
