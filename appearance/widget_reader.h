// What the dictionaries of a form say about how its widgets look (ISO 32000-2, 12.5.6.19 and 12.7.4.3).
#pragma once

#include <unordered_map>

#include "appearance/draw/widget_look.h"
#include "core/object.h"

class CPDFDictionary;
class CPDFField;
class CPDFFormFonts;
class CPDFXRefTable;

// A widget as its dictionary describes it.
struct WIDGET_DESCRIPTION {
    WIDGET_LOOK look;    // all but the value: text, rows and what is selected
    CPDFObj dictionary;  // the entries that were read, "AP" and "AS" among them
    int top_row = 0;     // "TI"
};

// Reads widgets of one form. What fields and the form hand down is read once for all widgets under them.
class CPDFWidgetReader {
public:
    // All borrowed while this lives; `form` is the form dictionary, null for none.
    CPDFWidgetReader(CPDFXRefTable& xref, CPDFFormFonts& fonts, const CPDFDictionary* form);

    // Reads the widget `ref` of `field`, whose kind and flags count. False when it is no dictionary or has no rectangle.
    bool read(const CPDFField& field, const PDF_REF& ref, WIDGET_DESCRIPTION& out);

private:
    // What a field takes from those above it where its own dictionary is silent.
    struct HANDED_DOWN {
        CPDFObj appearance;  // "DA"; null when there is none
        int quadding = 0;
        int top_row = 0;
    };

    const HANDED_DOWN& above(const CPDFField* field);
    void update(HANDED_DOWN& values, const CPDFDictionary& dict);
    void read_frame(const CPDFDictionary& widget, WIDGET_LOOK& look);
    void read_text(const CPDFDictionary& widget, const HANDED_DOWN& values, WIDGET_LOOK& look);

    CPDFXRefTable& m_xref;  // borrowed, as the following
    CPDFFormFonts& m_fonts;
    CPDFObj m_default_resources;  // "DR" of the form
    HANDED_DOWN m_form;
    std::unordered_map<uint32_t, HANDED_DOWN> m_handed_down;  // by the object number of the field above
};
