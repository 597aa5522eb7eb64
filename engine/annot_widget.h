// The widget annotation that shows a field on a page (ISO 32000-2, 12.5.6.19).
#pragma once

#include "core/object.h"

class CPDFXRefTable;

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

    // Whether the widget has an appearance for `state`; "Off" needs none, and a widget without appearances takes any.
    bool has_state(const char* state) const;

    CPDFXRefTable* m_xref = nullptr;  // borrowed from the document
    PDF_REF m_ref = {0, 0};           // the widget dictionary
    char* m_on_state = nullptr;   // owned; the name under "AP"/"N", else "D", other than "Off"; null when there is none
    char* m_alt_state = nullptr;  // owned; "AS", or "Yes" where a widget without appearances shows nothing or "Off"

private:
    void show(const char* state);
};
