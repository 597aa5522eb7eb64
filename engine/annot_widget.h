// The widget annotation that shows a field on a page (ISO 32000-2, 12.5.6.19).
#pragma once

#include "core/object.h"

class CPDFXRefTable;

// The state of a button that is not on (ISO 32000-2, 12.7.5.2.3).
inline constexpr const char* PDF_STATE_OFF = "Off";

// Bound to one widget dictionary, which may be the field's own. Setters store a changed private copy of it; a widget
// whose dictionary is gone keeps what it knows and changes nothing.
class CPDFAnnotWidget {
public:
    CPDFAnnotWidget() = default;
    ~CPDFAnnotWidget();
    CPDFAnnotWidget(const CPDFAnnotWidget&) = delete;
    CPDFAnnotWidget& operator=(const CPDFAnnotWidget&) = delete;

    // Binds to the widget dictionary that `ref` names and reads its states. `xref` is borrowed and outlives the widget.
    // Returns 1, or 0 when `ref` names no dictionary.
    int load(CPDFXRefTable* xref, const PDF_REF& ref);

    // Shows the widget checked or unchecked: "AS" becomes its on state or "Off".
    void set_check_value(int on);

    // The same for a radio button.
    void set_radio_value(int on);

    // Tells a button of a radio group the state of the group: "AS" becomes `state`, not null, when that is this
    // widget's on state (m_alt_state where it has no appearances), and "Off" otherwise.
    void set_radio_value(const char* state);

    // Notes what the widget of a text field is to show: a copy of `value`, where null means nothing. The other arguments
    // have no meaning here. The dictionary does not change, nor does anything when memory runs out.
    void set_edit_value(const PDF_String* value, const PDF_String* second, int third);

    // Notes which option, zero-based, the widget of a choice field is to show. The dictionary does not change.
    void set_choice_sel(int index);

    CPDFXRefTable* m_xref = nullptr;  // borrowed from the document
    PDF_REF m_ref = {0, 0};           // the widget dictionary
    char* m_on_state = nullptr;   // owned; the name under "AP"/"N", else "D", other than "Off"; null when there is none
    char* m_alt_state = nullptr;  // owned; "AS", or "Yes" where a widget without appearances shows nothing or "Off"
    PDF_String m_text = {0, nullptr};  // owned; see set_edit_value; null buffer before the first call
    int32_t m_choice = -1;             // see set_choice_sel; -1 before the first call

private:
    void show(const char* state);
};
